// What the tests share: a server, the browsers, a document with a viewer, pictures of it.
import { existsSync, readFileSync, readdirSync, realpathSync } from 'node:fs';
import { createServer } from 'node:http';
import { basename, extname, join, resolve } from 'node:path';
import { after, test } from 'node:test';
import { fileURLToPath } from 'node:url';
import puppeteer from 'puppeteer-core';
import { replayText } from '../replay.js';

export const folder = fileURLToPath(new URL('..', import.meta.url));
const repository = resolve(folder, '..');

/** The documents of the sample and, where they are at hand, of real pages. */
export function samples() {
  return [join(repository, 'samples'), join(repository, '../shared/recordings')].filter(existsSync).flatMap(each =>
    readdirSync(each).filter(name => name.endsWith('.jsonl')).map(name => [basename(name, '.jsonl'), replayText(join(each, name))]));
}

// ---- The server ----

const types = { '.js': 'text/javascript', '.svg': 'image/svg+xml' };
/** What a test adds to the package's own files, by path: content and headers. */
export const files = new Map();
/** What was asked for. */
export const requests = [];

const server = createServer(async (request, response) => {
  let body = '';
  for await (const chunk of request) body += chunk;
  requests.push({ path: request.url, body });
  const path = request.url.split('?')[0];
  const file = join(folder, path);
  const { content, headers } = files.get(path) ?? (existsSync(file) ? { content: readFileSync(file) } : {});
  response.writeHead(content === undefined ? 404 : 200, { 'content-type': `${types[extname(path)] ?? 'text/html'}; charset=utf-8`, ...headers });
  response.end(content);
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

const running = [];
const found = [['chrome', executable('chromium')], ['firefox', executable('firefox-esr')]].filter(([, path]) => path);

async function launch(browser, executablePath) {
  const args = browser === 'chrome' && process.getuid() === 0 ? ['--no-sandbox'] : [];
  return puppeteer.launch({ browser, executablePath, args, defaultViewport: { width: 900, height: 1200 } });
}

/** A test that runs in each browser, in a document of its own. */
export function inBrowsers(title, body) {
  for (const [name, path] of found) {
    test(`${title} (${name})`, async () => {
      running[name] ??= await launch(name, path);
      const page = await running[name].newPage();
      page.on('pageerror', error => console.log(error));
      try {
        await body(page, name);
      } finally {
        await page.close();
      }
    });
  }
}

after(async () => {
  for (const browser of Object.values(running)) await browser.close();
  server.close();
});

/** Opens a document with a viewer, reachable as `viewer`, that shows these pages in a form. */
export async function open(page, documents, { attributes = '', head = '', headers = {}, prepare } = {}) {
  const content = `<!DOCTYPE html><html lang="en"><title>Test</title><meta charset="utf-8">${head}
    <script type="module" src="/src/viewer.js"></script>
    <main><form method="post" action="/echo"><fieldset><velumark-viewer id="viewer" ${attributes}></velumark-viewer></fieldset></form></main>`;
  files.set('/document.html', { content, headers });
  await page.goto(`${url}/document.html`);
  await page.waitForFunction(() => customElements.get('velumark-viewer'));
  if (prepare) await page.evaluate(prepare);
  await page.evaluate(async texts => {
    globalThis.errors = [];
    viewer.addEventListener('error', event => errors.push(event.message));
    globalThis.root = viewer.shadowRoot;
    if (texts) await viewer.show(texts);
  }, documents);
}

// ---- Pictures ----

/** Runs a function in the browser on the pixels of pictures, rows of red, green, blue, alpha. */
export async function onPixels(page, pictures, body, ...rest) {
  const source = `(async (pictures, ...rest) => {
    const pixels = [];
    for (const each of pictures) {
      const image = new Image();
      image.src = 'data:image/png;base64,' + each;
      await image.decode();
      const context = Object.assign(document.createElement('canvas'), { width: image.width, height: image.height }).getContext('2d');
      context.drawImage(image, 0, 0);
      pixels.push(context.getImageData(0, 0, image.width, image.height));
    }
    return (${body})(...pixels, ...rest);
  })(${JSON.stringify(pictures)}, ...${JSON.stringify(rest)})`;
  return page.evaluate(source);
}

/** The colours at points of the first page, in units of a page of 1000. */
export async function colours(page, ...points) {
  const box = await page.evaluate(() => root.querySelector('section').getBoundingClientRect().toJSON());
  const picture = await page.screenshot({ encoding: 'base64', clip: { x: box.x, y: box.y, width: box.width, height: box.height } });
  return onPixels(page, [picture], ({ data, width }, points) => points.map(([x, y]) => {
    const at = 4 * (Math.floor(y * width / 1000) * width + Math.floor(x * width / 1000));
    return [...data.slice(at, at + 3)].join(' ');
  }), points);
}
