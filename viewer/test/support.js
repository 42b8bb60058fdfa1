// What the tests share: pages drawn by the library, a server, the browsers, a document with a viewer.
import { existsSync, mkdtempSync, readFileSync, readdirSync, realpathSync, rmSync, writeFileSync } from 'node:fs';
import { createServer } from 'node:http';
import { tmpdir } from 'node:os';
import { basename, extname, join } from 'node:path';
import { after, test } from 'node:test';
import { fileURLToPath } from 'node:url';
import { PNG } from 'pngjs';
import puppeteer from 'puppeteer-core';
import { replayText } from '../replay.js';

export const folder = fileURLToPath(new URL('..', import.meta.url));
export const sample = join(folder, '../samples/invoice.jsonl');
/** The tests' own files. The server shows them beside the package's. */
export const out = mkdtempSync(join(tmpdir(), 'viewer-'));
export const write = (name, content) => writeFileSync(join(out, name), content);

// ---- Pages ----

/** The document of a page of 1000 by 1000 units, from calls without their prefix. */
export function draw(calls, size = [0, 0, 1000, 1000]) {
  const lines = [['Create', size], ['SetFont', 'Liberation Sans', 40, 0, 0], ...calls];
  write('page.jsonl', lines.map(([name, ...rest]) => JSON.stringify([`SVG_${name}`, ...rest])).join('\n'));
  return replayText(join(out, 'page.jsonl'));
}

export const text = (string, x, y, advances = null, scaling = 100) => ['DrawText', string, [x, y], advances, scaling];
export const every = (width, count) => Array(count).fill(width);
export const fill = (...colour) => ['SetFill', 255, ...colour];
export const rectangle = (...bounds) => ['DrawRectangle', bounds];
export const picture = (markup, bounds = [0, 0, 1000, 1000]) => ['DrawImage', 8, bounds, `<svg x="1">${markup}</svg>`, 100];
export const link = (type, target, ...drawn) => [['BeginLink', type, target], ...drawn, ['EndLink']];
export const [CHECKBOX, COMBOBOX, TEXT, DATE, OTHER] = [14, 15, 16, 17, 18];
export const field = (type, name, data, bounds, ...drawn) =>
  [['BeginFormField', type, 0, 0, bounds, name, data], ...drawn, ['EndFormField']];

const recordings = process.env.QZSVGGEN_RECORDINGS;

/** The sample's document and, where the environment names a folder of recordings, those of real pages, by name. */
export function samples() {
  const others = recordings ? readdirSync(recordings).filter(name => name.endsWith('.jsonl')) : [];
  return [sample, ...others.map(name => join(recordings, name))].map(file => [basename(file, '.jsonl'), replayText(file)]);
}

// ---- The server ----

const types = { '.js': 'text/javascript', '.svg': 'image/svg+xml' };
/** What was asked for. */
export const requests = [];
let policy = '';

const server = createServer((request, response) => {
  requests.push(request.url);
  const path = request.url.split('?')[0];
  const file = [folder, out].map(each => join(each, path)).find(existsSync);
  const headers = { 'content-type': `${types[extname(path)] ?? 'text/html'}; charset=utf-8`, 'content-security-policy': policy };
  response.writeHead(file ? 200 : 404, headers).end(file && readFileSync(file));
});
await new Promise(done => server.listen(0, '127.0.0.1', done));
export const url = `http://127.0.0.1:${server.address().port}`;

// ---- The browsers ----

function executable(name) {
  const path = process.env.PATH.split(':').map(each => join(each, name)).find(existsSync);
  // Ubuntu's is a snap's shell, which no test can start.
  if (path && !realpathSync(path).includes('snap') && !readFileSync(path, 'latin1').slice(0, 2000).includes('/snap/')) return path;
  console.log(`There is no ${name} here: the viewer is not tested in it.`);
}

const running = {};
const found = [['chrome', executable('chromium')], ['firefox', executable('firefox-esr')]].filter(([, path]) => path);

/** A test that runs in each browser, in a document of its own. */
export function inBrowsers(title, body) {
  for (const [browser, executablePath] of found) {
    test(`${title} (${browser})`, async () => {
      const args = browser === 'chrome' && process.getuid() === 0 ? ['--no-sandbox'] : [];
      running[browser] ??= await puppeteer.launch({ browser, executablePath, args, defaultViewport: { width: 900, height: 1200 } });
      const page = await running[browser].newPage();
      page.on('pageerror', error => console.log(error));
      try {
        await body(page, browser);
      } finally {
        await page.close();
      }
    });
  }
}

after(async () => {
  for (const browser of Object.values(running)) await browser.close();
  server.close();
  rmSync(out, { recursive: true });
});

/**
 * Opens a document with a viewer, reachable as `viewer`, that shows these pages in a form. Before
 * they are shown, `prepare` is run there.
 */
export async function open(page, documents, { head = '', contentPolicy = '', prepare = () => {} } = {}) {
  write('document.html', `<!DOCTYPE html><html lang="en"><title>Test</title><meta charset="utf-8"><link rel="icon" href="data:,">${head}
    <script type="module" src="/src/viewer.js"></script>
    <main><form><fieldset><velumark-viewer id="viewer"></velumark-viewer></fieldset></form></main>`);
  policy = contentPolicy;
  await page.goto(`${url}/document.html`);
  await page.waitForFunction(() => customElements.get('velumark-viewer'));
  await page.evaluate(prepare);
  await page.evaluate(async texts => {
    globalThis.root = viewer.shadowRoot;
    globalThis.$ = selector => root.querySelector(selector);
    globalThis.$$ = selector => [...root.querySelectorAll(selector)];
    globalThis.entries = () => [...new FormData(document.forms[0])].map(pair => pair.join('=')).join('&');
    globalThis.shown = texts;
    if (texts) await viewer.show(texts);
  }, documents);
}

// ---- Pictures ----

export const shoot = async (page, clip) => PNG.sync.read(Buffer.from(await page.screenshot({ clip })));

/** The colours at points of the first page, in units of a page of 1000. */
export async function colours(page, ...points) {
  const { data, width } = await shoot(page, await page.evaluate(() => $('section').getBoundingClientRect().toJSON()));
  const at = ([x, y]) => 4 * (Math.floor(y * width / 1000) * width + Math.floor(x * width / 1000));
  return points.map(point => [...data.subarray(at(point), at(point) + 3)].join(' '));
}
