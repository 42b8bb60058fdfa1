import assert from 'node:assert/strict';
import { existsSync, readFileSync } from 'node:fs';
import { TEXT, draw, every, field, link, picture, rectangle, text } from './draw.js';
import { colours, inBrowsers, onPixels, open, samples } from './support.js';

const fill = (...colour) => ['SetFill', 255, ...colour];
const [WHITE, BLACK] = ['255 255 255', '0 0 0'];

inBrowsers('4 each character stands where it was written', async browser => {
  const runs = [
    ['joined', -40, [30, 20, 25, 15, 30, 10]],
    ['a😀b😀😀c', 100, [40, 50, 0, 30, 60, 0, 70, 0, 20]],
    ['x😀y', -90, [50, 60, 0, 10]],
  ];
  await open(browser, [draw(runs.map(([string, x, steps], i) => text(string, x, 100 * i + 100, steps)))]);
  const measured = await browser.evaluate(() => [...root.querySelectorAll('text')].map(each =>
    Array.from({ length: each.getNumberOfChars() }, (_, i) => each.getStartPositionOfChar(i).x)));
  for (const [i, [string, x, steps]] of runs.entries()) {
    const written = steps.map((_, n) => x + steps.slice(0, n).reduce((a, b) => a + b, 0));
    assert.equal(measured[i].length, string.length);
    for (const n of steps.keys())
      if (!/[\udc00-\udfff]/.test(string[n])) assert.ok(Math.abs(measured[i][n] - written[n]) < 0.1, `${string} ${n}: ${measured[i]}`);
  }
});

inBrowsers('5 scaled text is left alone but where its characters are stretched', async browser => {
  const document = draw([text('Scaled', 100, 100, every(30, 6), 120)]);
  await open(browser, [document]);
  const lengths = await browser.evaluate(async document => {
    const length = element => element.shadowRoot.querySelector('text').getAttribute('textLength');
    const measured = SVGGraphicsElement.prototype.getBBox;
    SVGGraphicsElement.prototype.getBBox = function () { return new DOMRect(0, 0, 30 + Number(this.getAttribute('textLength'))); };  // as WebKit's
    const other = window.document.createElement('velumark-viewer');
    window.document.body.append(other);
    await other.show([document]);
    SVGGraphicsElement.prototype.getBBox = measured;
    return [length(viewer), length(other)];
  }, document);
  assert.deepEqual(lengths, ['180', null]);
});

inBrowsers('6 inversion: areas, shapes, lines, and what lies beneath', async browser => {
  const path = (left, top, right, bottom) =>
    ['InvertPath', [[left, top], [right, top], [right, bottom], [left, bottom]], [6, 2, 2, 3]];
  await open(browser, [draw([
    fill(200, 100, 50), rectangle(0, 0, 400, 400),
    ...link(1, 'https://example.org/', fill(0, 0, 0), text('A link', 20, 60)),
    path(0, 0, 200, 200), path(100, 0, 200, 200), path(500, 0, 600, 100),
    ['InvertRectangle', [100, 100, 300, 300]], ['InvertRectangle', [250, 250, 350, 350]], ['InvertRectangle', [700, 0, 900, 100]],
    ['BeginInvertPainting'], fill(10, 20, 30), rectangle(0, 500, 100, 600), fill(0, 0, 0), rectangle(100, 500, 200, 600),
    ['SetFill', 0, 0, 0, 0], ['SetStroke', 255, 255, 255, 255, 20], ['DrawLine', [300, 550], [500, 550]],
  ])]);
  const points = {
    'path': [[50, 150], '55 155 205'], 'two paths': [[150, 50], '55 155 205'], 'path and rectangle': [[150, 150], '200 100 50'],
    'rectangle': [[250, 150], '55 155 205'], 'two rectangles': [[275, 275], '55 155 205'], 'neither': [[350, 150], '200 100 50'],
    'path on paper': [[550, 50], BLACK], 'rectangle on paper': [[800, 50], BLACK], 'paper': [[650, 50], WHITE],
    'shape': [[50, 550], '245 235 225'], 'black shape': [[150, 550], WHITE], 'level line': [[400, 550], BLACK],
  };
  const seen = await colours(browser, ...Object.values(points).map(([at]) => at));
  assert.deepEqual(Object.fromEntries(Object.keys(points).map((name, i) => [name, seen[i]])),
    Object.fromEntries(Object.entries(points).map(([name, [, colour]]) => [name, colour])));
  const [hit, copies] = await browser.evaluate(() => {
    const { left, top } = root.querySelector('text').getBoundingClientRect();
    return [root.elementFromPoint(left + 2, top + 20)?.closest('a')?.getAttribute('href'), root.querySelectorAll('use, filter').length];
  });
  assert.deepEqual([hit, copies], ['https://example.org/', 0]);
});

inBrowsers('7 names and rules stay in their page and picture', async browser => {
  const coloured = colour => `<svg x="1"><style>rect, .a > rect:not(.b) {fill: ${colour}} #c {fill: ${colour}}</style>
    <defs><g id="g" class="a"><rect width="100" height="100"/></g></defs><use href="#g"/><circle id="c" cx="150" cy="50" r="50"/>
    <defs><linearGradient id="d"><stop stop-color="${colour}"/></linearGradient></defs>
    <path fill="url(#d)" d="M200 0h100v100h-100z"/><path style="fill:url('#d')" d="M300 0h100v100h-100z"/></svg>`;
  const page = (...parts) => draw(parts.map((colour, i) => picture(coloured(colour), [0, 200 * i, 500, 200 * i + 500])));
  await open(browser, [page('#f00', '#00f'), page('#080')]);
  const along = y => [50, 150, 250, 350].map(x => [x, y]);
  assert.deepEqual(await colours(browser, ...along(50), ...along(250)), [...every('255 0 0', 4), ...every('0 0 255', 4)]);
  const outside = await browser.evaluate(() => [...root.querySelectorAll('[id]')].length ===
    new Set([...root.querySelectorAll('[id]')].map(({ id }) => id)).size && document.styleSheets.length === 0 && !root.querySelector('style'));
  assert.ok(outside);
});

const fontFile = '/usr/share/fonts/truetype/liberation/LiberationMono-Bold.ttf';
inBrowsers('7 a picture brings its font', async browser => {
  const data = readFileSync(fontFile).toString('base64');
  const svg = `<svg x="1"><style>@font-face{font-family:Mine;src:url(data:font/ttf;base64,${data})} text{font-family:Mine, serif}</style>
    <text y="50" font-size="50">iiii</text><text y="100" style="font-size:50px;font-family:'Mine'">iiii</text></svg>`;
  await open(browser, [draw([picture(svg)]), draw([picture(svg.replace('Mine', 'Other'))])]);
  const [families, widths] = await browser.evaluate(async () => {
    await document.fonts.ready;
    const use = root.querySelectorAll('text');
    return [[...document.fonts].map(({ family, status }) => [family.replaceAll('"', ''), status]), [...use].map(each => each.getComputedTextLength())];
  });
  assert.equal(families.length, 2);
  assert.ok(families.every(([family]) => /^p\d+_QZ_G0_(Mine|Other)$/.test(family)), String(families));
  assert.deepEqual(widths.map(Math.round).slice(0, 2), [120, 120]);
  assert.ok(widths[2] < 100, 'the other page does not get the font');
  await browser.evaluate(() => viewer.show([]));
  assert.equal(await browser.evaluate(() => document.fonts.size), 0);
});

inBrowsers('8 the search of the browser finds words across runs', async browser => {
  await open(browser, [draw([
    text('An ex', 100, 100, every(25, 5)), fill(200, 0, 0), text('ample', 225, 100, every(25, 5)), text('of', 370, 100),
    ...link(1, 'https://example.org/', text('search', 430, 100)), text('next', 100, 200), text('to it', 600, 200),
  ])]);
  for (const words of ['example', 'An example of search', 'next to it'])
    assert.ok(await browser.evaluate(words => getSelection().empty() ?? find(words, true, false, true), words), words);
  assert.equal(await browser.evaluate(() => root.querySelector('a').textContent), 'search');
});

inBrowsers('9 pages look as they do raw', async browser => {
  const repaired = /QZ_V|textLength|[\ud800-\udfff]/;
  const mixed = draw([
    ['BeginClippingRegion', [0, 0, 500, 500]], fill(0, 100, 200), rectangle(100, 100, 900, 300), ['EndClippingRegion'],
    ['SetFill', 128, 255, 0, 0], ['SetStroke', 255, 0, 0, 0, 7], ['DrawPolygon', [[200, 200], [700, 250], [400, 700]]], ['ClearStroke'],
    picture('<svg viewBox="0 0 9 9" fill="none" stroke="#080"><g transform="translate(1 1)"><path style="stroke-width:.5" d="M0 0c1 7 5-2 7 5z"/></g></svg>', [500, 500, 900, 900]),
    fill(0, 0, 0), ['SetFont', 'Liberation Serif', 60, 1, 1], text('Mixed', 100, 800, every(30, 5)), text('on', 400, 800), ...link(1, 'https://example.org/', text('a line', 500, 800)),
    ...field(TEXT, 'f', 'value', [100, 850, 400, 920], ['SetFont', 'Liberation Sans', 40, 0, 0], text('value', 110, 900)),
  ]);
  for (const [name, document] of [['mixed', mixed], ...samples()].filter(([, document]) => !repaired.test(document))) {
    await open(browser, [document], { head: '<style>body, main, fieldset {margin: 0; padding: 0; border: 0} #viewer, main {width: 800px; overflow: hidden; scrollbar-gutter: auto}</style>' });
    const shown = await browser.screenshot({ encoding: 'base64', clip: { x: 0, y: 0, width: 800, height: 1000 } });
    await browser.evaluate(document => {
      const [, width, height] = /width="(\d+)" height="(\d+)"/.exec(document);
      window.document.body.innerHTML = `<svg width="800" height="${800 * height / width}" viewBox="0 0 ${width} ${height}" style="display:block">${document}</svg>`;
    }, document);
    const raw = await browser.screenshot({ encoding: 'base64', clip: { x: 0, y: 0, width: 800, height: 1000 } });
    const share = await onPixels(browser, [shown, raw], (a, b) => {
      let different = 0;
      for (let i = 0; i < a.data.length; i += 4)
        if (Math.max(...[0, 1, 2].map(channel => Math.abs(a.data[i + channel] - b.data[i + channel]))) > 85) ++different;
      return different / (a.data.length / 4);
    });
    assert.ok(share <= 0.002, `${name}: ${share}`);
  }
});
