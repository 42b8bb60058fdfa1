import assert from 'node:assert/strict';
import { cpSync, readFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import pixelmatch from 'pixelmatch';
import { replayText } from '../replay.js';
import { colours, draw, every, fill, inBrowsers, link, open, out, picture, rectangle, sample, samples, shoot, text, write } from './support.js';

inBrowsers('4 each character stands where it was written', async page => {
  const runs = [
    ['joined', -40, [30, 20, 25, 15, 30, 10]],
    ['a😀b😀😀c', 100, [40, 50, 0, 30, 60, 0, 70, 0, 20]],
    ['x😀y', -90, [50, 60, 0, 10]],
  ];
  await open(page, [draw(runs.map(([string, x, steps], i) => text(string, x, 100 * i + 100, steps)))]);
  const measured = await page.evaluate(() => $$('text').map(each =>
    Array.from({ length: each.getNumberOfChars() }, (_, i) => Math.round(each.getStartPositionOfChar(i).x))));
  for (const [i, [string, x, steps]] of runs.entries()) {
    const firsts = [...steps.keys()].filter(n => !/[\udc00-\udfff]/.test(string[n]));
    const written = firsts.map(n => steps.slice(0, n).reduce((a, b) => a + b, x));
    assert.deepEqual(firsts.map(n => measured[i][n]), written, string);
  }
});

inBrowsers('5 scaled text is left alone but where its characters are stretched', async page => {
  const scaled = draw([text('Scaled', 100, 100, every(30, 6), 120)]);
  const length = () => page.evaluate(() => $('text').getAttribute('textLength'));
  await open(page, [scaled]);
  assert.equal(await length(), '180');
  // As WebKit measures: the last character of the probe is as long as the whole run.
  const likeWebKit = () => { SVGGraphicsElement.prototype.getBBox = () => new DOMRect(0, 0, 70, 10); };
  await open(page, [scaled], { prepare: likeWebKit });
  assert.equal(await length(), null);
});

inBrowsers('6 inversion: areas, shapes, lines, and what lies beneath', async page => {
  const path = (left, top, right, bottom) =>
    ['InvertPath', [[left, top], [right, top], [right, bottom], [left, bottom]], [6, 2, 2, 3]];
  await open(page, [draw([
    fill(200, 100, 50), rectangle(0, 0, 400, 400),
    ...link(1, 'https://example.org/', fill(0, 0, 0), text('A link', 20, 60)),
    path(0, 0, 200, 200), path(100, 0, 200, 200), path(500, 0, 600, 100),
    ['InvertRectangle', [100, 100, 300, 300]], ['InvertRectangle', [250, 250, 350, 350]], ['InvertRectangle', [700, 0, 900, 100]],
    ['BeginInvertPainting'], fill(10, 20, 30), rectangle(0, 500, 100, 600), fill(0, 0, 0), rectangle(100, 500, 200, 600),
    ['SetFill', 0, 0, 0, 0], ['SetStroke', 255, 255, 255, 255, 20], ['DrawLine', [300, 550], [500, 550]],
  ])]);
  const expected = [
    [50, 150, '55 155 205', 'path'], [150, 50, '55 155 205', 'two paths'], [150, 150, '200 100 50', 'path and rectangle'],
    [250, 150, '55 155 205', 'rectangle'], [275, 275, '55 155 205', 'two rectangles'], [350, 150, '200 100 50', 'neither'],
    [550, 50, '0 0 0', 'path on paper'], [800, 50, '0 0 0', 'rectangle on paper'], [650, 50, '255 255 255', 'paper'],
    [50, 550, '245 235 225', 'shape'], [150, 550, '255 255 255', 'black shape'], [400, 550, '0 0 0', 'level line'],
  ];
  const seen = await colours(page, ...expected);
  assert.deepEqual(expected.map(([x, y, , what], i) => [x, y, seen[i], what]), expected);
  const [hit, copies] = await page.evaluate(() => {
    const { left, top } = $('text').getBoundingClientRect();
    return [root.elementFromPoint(left + 2, top + 20)?.closest('a')?.getAttribute('href'), $$('use, filter').length];
  });
  assert.deepEqual([hit, copies], ['https://example.org/', 0]);
});

inBrowsers('7 names and rules stay in their page and picture', async page => {
  const coloured = (colour, y) => picture(`<style>rect, .a > rect:not(.b) {fill: ${colour}} #c {fill: ${colour}}</style>
    <defs><g id="g" class="a"><rect width="100" height="100"/></g></defs><use href="#g"/><circle id="c" cx="150" cy="50" r="50"/>
    <defs><linearGradient id="d"><stop stop-color="${colour}"/></linearGradient></defs>
    <path fill="url(#d)" d="M200 0h100v100h-100z"/><path style="fill:url('#d')" d="M300 0h100v100h-100z"/>`, [0, y, 500, y + 500]);
  await open(page, [draw([coloured('#f00', 0), coloured('#00f', 200)]), draw([coloured('#080', 0)])]);
  const along = y => [50, 150, 250, 350].map(x => [x, y]);
  assert.deepEqual(await colours(page, ...along(50), ...along(250)), [...every('255 0 0', 4), ...every('0 0 255', 4)]);
  const [ids, sheets] = await page.evaluate(() => [$$('[id]').map(({ id }) => id), document.styleSheets.length + $$('style').length]);
  assert.deepEqual([new Set(ids).size, sheets], [ids.length, 0]);
});

inBrowsers('7 a picture brings its font, for its page as well', async page => {
  const data = readFileSync('/usr/share/fonts/truetype/liberation/LiberationMono-Bold.ttf', 'base64');
  const lettered = (family, used) => draw([picture(`<style>@font-face{font-family:${family};src:url(data:font/ttf;base64,${data})} text{font-family:${used}, serif}</style>
    <text y="50" font-size="50">iiii</text><text y="100" style="font-size:50px;font-family:'${used}'">iiii</text>`), ['SetFont', used, 50, 0, 0], text('iiii', 0, 150)]);
  await open(page, [lettered('Mine', 'Mine'), lettered('Other', 'Other'), lettered('Other', 'Mine')]);
  const [families, widths] = await page.evaluate(async () => {
    await document.fonts.ready;
    return [[...document.fonts].map(({ family }) => family.replace(/"|p\d+_/g, '')), $$('text').map(each => Math.round(each.getComputedTextLength()))];
  });
  assert.deepEqual([families, widths.slice(0, 6)], [['QZ_G0_Mine'], every(120, 6)], 'equal fonts are one');
  assert.ok(widths.slice(6).every(width => width < 100), 'a page that does not name it does not get the font');
  await page.evaluate(() => viewer.show([]));
  assert.equal(await page.evaluate(() => document.fonts.size), 0);
});

inBrowsers('8 the search of the browser finds words across runs', async page => {
  await open(page, [draw([
    text('An ex', 100, 100, every(25, 5)), fill(200, 0, 0), text('ample', 225, 100, every(25, 5)), text('of', 370, 100),
    ...link(1, 'https://example.org/', text('search', 430, 100)), text('next', 100, 200), text('to it', 600, 200),
  ])]);
  const words = ['example', 'An example of search', 'next to it'];
  assert.deepEqual(await page.evaluate(words => words.filter(each => getSelection().empty() ?? find(each, true, false, true)), words), words);
  assert.equal(await page.evaluate(() => $('a').textContent), 'search');
});

inBrowsers('9 pages look as they do raw', async page => {
  // The sample has all kinds of drawing, and inversion.
  cpSync(dirname(sample), out, { recursive: true });
  const clipped = '["SVG_BeginClippingRegion",[0,0,9,9]]\n["SVG_DrawRectangle",[0,0,9999,9999]]';
  write('plain.jsonl', readFileSync(sample, 'utf8').split('\n').filter(line => !line.includes('Invert')).join('\n') + clipped);
  const pages = [['plain', replayText(join(out, 'plain.jsonl'))], ...samples()].filter(([, markup]) => !/QZ_V|[\ud800-\udfff]/.test(markup));
  const clip = { x: 0, y: 0, width: 800, height: 1000 };
  for (const [name, markup] of pages) {
    await open(page, [markup], { head: '<style>* {margin: 0; padding: 0; border: 0} #viewer {width: 800px; overflow: hidden; scrollbar-gutter: auto}</style>' });
    const shown = await shoot(page, clip);
    await page.evaluate(markup => {
      const [, width, height] = /width="(\d+)" height="(\d+)"/.exec(markup);
      document.body.innerHTML = `<svg width="800" height="${800 * height / width}" viewBox="0 0 ${width} ${height}" style="display:block">${markup}</svg>`;
    }, markup);
    const different = pixelmatch(shown.data, (await shoot(page, clip)).data, null, 800, 1000, { threshold: 0.3, includeAA: true });
    assert.ok(different <= 0.002 * 800 * 1000, `${name}: ${different}`);
  }
});
