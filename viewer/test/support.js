// What the tests share: pages drawn by the library, a server, the browsers.
import { execFileSync } from 'node:child_process';
import { existsSync, mkdtempSync, readFileSync, readdirSync, rmSync, writeFileSync } from 'node:fs';
import { createServer } from 'node:http';
import { tmpdir } from 'node:os';
import { basename, extname, join } from 'node:path';
import { after, test } from 'node:test';
import { fileURLToPath } from 'node:url';
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
export const every = (each, count) => Array(count).fill(each);
export const fill = (...colour) => ['SetFill', 255, ...colour];
export const rectangle = (...bounds) => ['DrawRectangle', bounds];
export const picture = (markup, bounds = [0, 0, 1000, 1000]) =>
  ['DrawImage', 8, bounds, `<svg x="1">${markup}</svg>`, 100];
export const link = (type, target, ...drawn) => [['BeginLink', type, target], ...drawn, ['EndLink']];
export const [CHECKBOX, COMBOBOX, TEXT, DATE, OTHER] = [14, 15, 16, 17, 18];
export const field = (type, name, data, bounds, ...drawn) =>
  [['BeginFormField', type, 0, 0, bounds, name, data], ...drawn, ['EndFormField']];

/** Names and documents of the sample and, where the environment names a folder of recordings, of real pages. */
export function samples() {
  const { QZSVGGEN_RECORDINGS: folder } = process.env;
  if (!folder) console.log('QZSVGGEN_RECORDINGS names no folder of real pages: the sample is the only one.');
  const others = folder ? readdirSync(folder).filter(name => name.endsWith('.jsonl')) : [];
  return [sample, ...others.map(name => join(folder, name))].map(file => [basename(file, '.jsonl'), replayText(file)]);
}

// ---- The server ----

const types = { '.js': 'text/javascript', '.mjs': 'text/javascript', '.svg': 'image/svg+xml' };
const strict = `default-src 'none'; script-src 'self'; img-src data:; font-src data:; connect-src 'self';
  style-src 'self'; require-trusted-types-for 'script'`.replace(/\s+/g, ' ');
const requests = [];
const server = createServer(({ url }, response) => {
  requests.push(url);
  const [path, policy] = url.split('?');
  const file = [folder, out].map(each => join(each, path)).find(existsSync);
  response.writeHead(file ? 200 : 404, {
    'content-type': `${types[extname(path)] ?? 'text/html'}; charset=utf-8`,
    'content-security-policy': policy ? strict : '',
  }).end(file && readFileSync(file));
});
await new Promise(done => server.listen(0, '127.0.0.1', done));
export const url = `http://127.0.0.1:${server.address().port}`;

// ---- The browsers ----

/** What a document cannot do itself, and asks the test's process for. */
const services = {
  press: (page, key) => page.keyboard.press(key),
  write: (page, string) => page.keyboard.type(string),
  clickAt: (page, x, y) => page.mouse.click(x, y),
  photograph: (page, clip) => page.screenshot({ clip, encoding: 'base64' }),
  /** What assistive software reads, in order. */
  read: page => page.accessibility.snapshot(),
  /** The text of each sheet that the document is printed on. */
  async printed(page, format, all) {
    const margin = { top: all, left: all, right: all, bottom: all };
    write('page.pdf', await page.pdf({ format, printBackground: true, margin }));
    const sheets = execFileSync('pdftotext', [join(out, 'page.pdf'), '-'], { encoding: 'utf8' }).split('\f');
    return sheets.map(each => each.trim());
  },
  requested: () => requests,
  tell: (_, line) => console.log(line),
};

const pages = [];
// Ubuntu's are snaps, elsewhere, which a test cannot start.
for (const [browser, executablePath] of [['chrome', '/usr/bin/chromium'], ['firefox', '/usr/bin/firefox-esr']]) {
  if (!existsSync(executablePath)) {
    console.log(`There is no ${executablePath} here: the viewer is not tested in it.`);
    continue;
  }
  const args = browser === 'chrome' && process.getuid() === 0 ? ['--no-sandbox'] : [];
  const defaultViewport = { width: 900, height: 1200 };
  const page = await (await puppeteer.launch({ browser, executablePath, args, defaultViewport })).newPage();
  page.on('pageerror', error => console.log(error));
  for (const [name, act] of Object.entries(services)) await page.exposeFunction(name, act.bind(null, page));
  pages.push([browser, page]);
}

after(async () => {
  for (const [, page] of pages) await page.browser().close();
  server.close();
  rmSync(out, { recursive: true });
});

/** A test of each browser's page, in all browsers at once unless it measures. */
export const inBrowsers = (title, body, { measures = false } = {}) => test(title, { concurrency: !measures }, context =>
  Promise.all(pages.map(([browser, page]) => context.test(browser, async () => {
    await page.goto('about:blank');
    await body(page, browser);
  }))));

write('document.html', `<!DOCTYPE html><html lang="en"><title>Test</title><meta charset="utf-8">
  <link rel="icon" href="data:,"><script type="module" src="/test/document.js"></script>
  <main><form><fieldset><velumark-viewer id="viewer"></velumark-viewer></fieldset></form></main>`);

/**
 * A test inside a document that shows these pages. It gets them, or what else is given, and knows
 * what document.js has at hand, but nothing of the module it stands in. The document has the
 * strictest policy that the viewer works under, unless it is a `free` one.
 */
export const inDocument = (title, pages, body, { given = pages, free, measures } = {}) =>
  inBrowsers(title, async page => {
    await page.goto(`${url}/document.html${free ? '' : '?strict'}`);
    await page.evaluate(pages => viewer.show(pages), pages);
    await page.evaluate(body, given);
  }, { measures });
