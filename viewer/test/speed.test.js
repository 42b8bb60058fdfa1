import assert from 'node:assert/strict';
import { gzipSync } from 'node:zlib';
import { buildSync } from 'esbuild';
import { draw, every, rectangle, text } from './draw.js';
import { files, folder, inBrowsers, open, samples, url } from './support.js';

/** Set on a machine that does nothing else: everything is measured, told, and held to its aim. */
const quiet = Boolean(process.env.QUIET);

/** The time until a page is painted, raw inline and in the viewer: the best of each, taken in turns. */
async function ratio(browser, page, rounds = 5) {
  return browser.evaluate(async (page, rounds) => {
    const painted = () => new Promise(done => requestAnimationFrame(() => setTimeout(done)));
    const raw = document.createElement('div');
    viewer.after(raw);
    const [, width, height] = /width="(\d+)" height="(\d+)"/.exec(page);
    const ways = {
      raw: () => { raw.innerHTML = `<svg width="800" height="${800 * height / width}" viewBox="0 0 ${width} ${height}">${page}</svg>`; },
      viewer: () => viewer.show([page]),
    };
    const best = { raw: Infinity, viewer: Infinity };
    for (let round = 0; round < rounds; ++round) {
      for (const [way, show] of Object.entries(ways)) {
        raw.replaceChildren();
        await viewer.show([]);
        await painted();
        const start = performance.now();
        await show();
        (way === 'raw' ? raw : viewer).getBoundingClientRect();
        await painted();
        best[way] = Math.min(best[way], performance.now() - start);
      }
    }
    return { ...best, ratio: best.viewer / best.raw };
  }, page, rounds);
}

const many = draw(Array.from({ length: 10_000 }, (_, i) => [10 * (i % 100), 10 * Math.floor(i / 100)]).flatMap(([x, y], i) =>
  i % 2 ? [text('abc', x, y, every(4, 3))] : [['SetFill', 255, i % 255, 0, 0], rectangle(x, y, x + 8, y + 8)]));
const inverted = draw([
  ...Array.from({ length: 60 }, (_, i) => text('A line of text that is searched for hits', 20, 16 * i + 20, every(18, 40))),
  ...Array.from({ length: 20 }, (_, i) => ['InvertRectangle', [100, 40 * i, 400, 40 * i + 30]]),
]);

inBrowsers('23 beside the raw page', async (browser, kind) => {
  const cases = [...(quiet ? samples() : []).map(([name, page]) => [name, page, /QZ_V19/.test(page) ? 1 : 3]), ['10,000 elements', many, 2], ['20 inversions', inverted, 1]];
  for (const [name, page, most] of cases) {
    await open(browser);
    const measured = await ratio(browser, page, quiet ? 5 : 3);
    if (quiet) console.log(`${kind} ${name}: ${Object.values(measured).map(each => each.toFixed(2)).join(' ')}`);
    // Both wait for the next frame: a small page is in it or just not.
    assert.ok(measured.viewer <= most * measured.raw * (quiet ? 1 : 2) + (most > 1 ? 17 : 0), `${name}: ${JSON.stringify(measured)}`);
  }
});

inBrowsers('23 the first of 300 pages is there before the rest is parsed', async browser => {
  await open(browser);
  const [first, all] = await browser.evaluate(async page => {
    let parsed = 0;
    const parse = DOMParser.prototype.parseFromString;
    DOMParser.prototype.parseFromString = function (...rest) {
      ++parsed;
      return parse.apply(this, rest);
    };
    let first = 0;
    const done = viewer.show(Array(300).fill(page));
    await new Promise(requestAnimationFrame);
    await new Promise(requestAnimationFrame);
    first = root.querySelector('section').getBoundingClientRect().height > 0 ? parsed : Infinity;
    await done;
    return [first, root.querySelectorAll('section').length];
  }, samples().at(-1)[1]);
  assert.ok(first < 250, `${first}`);
  assert.equal(all, 300);
});

inBrowsers('24 one file of at most 12,000 bytes shows a page', async browser => {
  const { outputFiles: [{ contents }] } = buildSync({ entryPoints: [`${folder}/src/viewer.js`], bundle: true, minify: true, format: 'esm', write: false });
  const size = gzipSync(contents, { level: 9 }).length;
  if (quiet) console.log(`${size} bytes`);
  assert.ok(size <= 12_000, `${size}`);
  files.set('/bundle.js', { content: contents });
  files.set('/one.svg', { content: draw([text('One', 100, 100)]) });
  files.set('/bundled.html', { content: '<!DOCTYPE html><script type="module" src="/bundle.js"></script><velumark-viewer src="/one.svg"></velumark-viewer>' });
  await browser.goto(`${url}/bundled.html`);
  await browser.waitForFunction(() => document.querySelector('velumark-viewer').shadowRoot.querySelector('text')?.textContent === 'One');
});
