import assert from 'node:assert/strict';
import { test } from 'node:test';
import { gzipSync } from 'node:zlib';
import { buildSync } from 'esbuild';
import { draw, every, fill, folder, inDocument, rectangle, samples, text } from './support.js';

const cells = Array.from({ length: 10_000 }, (_, i) => [10 * (i % 100), 10 * Math.floor(i / 100)]);
const many = draw(cells.flatMap(([x, y], i) =>
  i % 2 ? [text('abc', x, y, every(4, 3))] : [fill(i % 255, 0, 0), rectangle(x, y, x + 8, y + 8)]));
const inverted = draw([
  ...Array.from({ length: 60 }, (_, i) => text('A line that is searched for hits', 20, 16 * i + 20, every(18, 32))),
  ...Array.from({ length: 20 }, (_, i) => ['InvertRectangle', [100, 40 * i, 400, 40 * i + 30]]),
]);
/** How often each way is measured, for all pages, on a machine that does nothing else. */
const { ROUNDS: rounds } = process.env;
const real = samples().slice(0, rounds ? Infinity : 1);
/** Names, documents, and how many times as long as the raw page they may take. */
const aims = [...real.map(([name, page]) => [name, page, page.includes('QZ_V19') ? 1 : 3]),
  ['10,000 elements', many, 2], ['20 inversions', inverted, 1]];

inDocument('23 beside the raw page', [], async ([aims, rounds]) => {
  const raw = document.body.appendChild(document.createElement('div'));
  for (const [name, page, most] of aims) {
    const ways = [() => { raw.innerHTML = inline(page, 800); }, () => viewer.show([page])];
    const best = [Infinity, Infinity];
    for (let round = 0; round < (rounds ?? 3); ++round) {
      for (const [i, show] of ways.entries()) {
        raw.replaceChildren();
        await viewer.show([]);
        await painted();
        const start = performance.now();
        await show();
        document.body.getBoundingClientRect();
        await painted();
        best[i] = Math.min(best[i], performance.now() - start);
      }
    }
    const told = `${name}: ${best.map(Math.round).join(' ')} ${(best[1] / best[0]).toFixed(2)}`;
    await tell(told);
    // An aim may be missed by half while others compute at the same time, but never that of inversion.
    const allowed = rounds || most === 1 ? most : 1.5 * most;
    // Both wait for the next frame: a small page is in it or just not.
    equal(best[1] <= allowed * best[0] + (most > 1 ? 17 : 0), true, told);
  }
}, { given: [aims, rounds], free: true, measures: true });

inDocument('23 the first of 300 pages is there before the rest is parsed', [], async page => {
  const start = performance.now();
  const shown = viewer.show(Array(300).fill(page));
  await painted();
  const times = [performance.now() - start];
  await shown;
  times.push(performance.now() - start);
  const told = `${$$('section').length} pages: ${times.map(Math.round).join(' ')}`;
  await tell(told);
  equal([$$('section').length, times[0] < times[1] / 2], [300, true], told);
}, { given: rounds ? real.at(-1)[1] : inverted, measures: true });

test('24 the viewer weighs at most 12,000 bytes', () => {
  const options = { bundle: true, minify: true, format: 'esm', write: false };
  const { outputFiles: [{ contents }] } = buildSync({ entryPoints: [`${folder}/src/viewer.js`], ...options });
  const size = gzipSync(contents, { level: 9 }).length;
  console.log(`${size} bytes`);
  assert.ok(size <= 12_000);
});
