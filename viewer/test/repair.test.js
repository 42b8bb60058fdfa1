import { cpSync, readFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { replayText } from '../replay.js';
import {
  draw, every, fill, inDocument, link, out, picture, rectangle, sample, samples, text, write,
} from './support.js';

const written = [
  ['joined', [-40, -10, 10, 35, 50, 80]],
  ['a😀b😀😀c', [100, 140, 190, 220, 280, 350]],
  ['x😀y', [-90, -40, 20]],
];
const runs = written.map(([string, starts], line) => text(string, starts[0], 100 * line + 100,
  [...string].flatMap((each, i) => [(starts[i + 1] ?? 0) - starts[i], 0].slice(0, each.length))));

inDocument('4 each character stands where it was written', [draw(runs)], written => {
  const startsOf = text => {
    let units = 0;
    const offsets = [...text.textContent].map(each => (units += each.length) - each.length);
    return offsets.map(offset => Math.round(text.getStartPositionOfChar(offset).x));
  };
  equal($$('text').map(each => [each.textContent, startsOf(each)]), written);
}, { given: written });

const scaled = draw([text('Scaled', 100, 100, every(30, 6), 120)]);
inDocument('5 scaled text is left alone but where its characters are stretched', [scaled], async pages => {
  equal($('text').getAttribute('textLength'), '180');
  // As WebKit measures: the last character of the probe is as long as the whole run.
  SVGGraphicsElement.prototype.getBBox = () => new DOMRect(0, 0, 70, 10);
  const another = document.body.appendChild(document.createElement('velumark-viewer'));
  await another.show(pages);
  equal(another.shadowRoot.querySelector('text').getAttribute('textLength'), null);
});

const path = (left, top, right, bottom) =>
  ['InvertPath', [[left, top], [right, top], [right, bottom], [left, bottom]], [6, 2, 2, 3]];
const inverted = draw([
  fill(200, 100, 50), rectangle(0, 0, 400, 400),
  ...link(1, 'https://example.org/', fill(0, 0, 0), text('A link', 20, 60)),
  path(0, 0, 200, 200), path(100, 0, 200, 200), path(500, 0, 600, 100),
  ...[[100, 100, 300, 300], [250, 250, 350, 350], [700, 0, 900, 100]].map(bounds => ['InvertRectangle', bounds]),
  ['BeginInvertPainting'], fill(10, 20, 30), rectangle(0, 500, 100, 600), fill(0, 0, 0), rectangle(100, 500, 200, 600),
  ['SetFill', 0, 0, 0, 0], ['SetStroke', 255, 255, 255, 255, 20], ['DrawLine', [300, 550], [500, 550]],
]);

inDocument('6 22 inversion: areas, shapes, lines, and what lies beneath', [inverted], async () => {
  const expected = [
    [50, 150, '55 155 205', 'path'], [150, 50, '55 155 205', 'two paths'], [350, 150, '200 100 50', 'neither'],
    [150, 150, '200 100 50', 'path and rectangle'], [250, 150, '55 155 205', 'rectangle'],
    [275, 275, '55 155 205', 'two rectangles'], [650, 50, '255 255 255', 'paper'],
    [550, 50, '0 0 0', 'path on paper'], [800, 50, '0 0 0', 'rectangle on paper'], [50, 550, '245 235 225', 'shape'],
    [150, 550, '255 255 255', 'black shape'], [400, 550, '0 0 0', 'level line'],
  ];
  const seen = await colours(expected);
  equal(expected.map(([x, y, , what], i) => [x, y, seen[i], what]), expected);
  const { left, top } = $('text').getBoundingClientRect();
  const hit = root.elementFromPoint(left + 2, top + 20).closest('a')?.getAttribute('href');
  equal([hit, $$('use, filter').length], ['https://example.org/', 0]);
});

const dot = colour => `data:image/svg+xml,${encodeURIComponent(
  `<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9"><rect width="9" height="9" fill="${colour}"/></svg>`)}`;
/** Six squares of one colour, which names, rules, styles and data give. */
const coloured = (colour, y) => picture(`
  <style>rect, .a > rect:not(.b) {fill: ${colour}} #c {fill: ${colour}}</style>
  <defs><g id="g" class="a"><rect width="100" height="100"/></g>
    <linearGradient id="d"><stop stop-color="${colour}"/></linearGradient></defs>
  <use href="#g"/><circle id="c" cx="150" cy="50" r="50"/>
  <path fill="url(#d)" d="M200 0h100v100h-100z"/><path style="fill:url('#d')" d="M300 0h100v100h-100z"/>
  <path style="fill:${colour}" d="M400 0h100v100h-100z"/>
  <image x="500" width="99" height="99" href="${dot(colour)}"/>`, [0, y, 600, y + 600]);
const font = readFileSync('/usr/share/fonts/truetype/liberation/LiberationMono-Bold.ttf', 'base64');
/** Three runs in a font that a picture brings: by a rule, by a style, and on the page. */
const lettered = (family, used) => [picture(`
  <style>@font-face {font-family: ${family}; src: url(data:font/ttf;base64,${font})}
    text {font-family: ${used}, serif}</style>
  <text y="50" font-size="50">iiii</text>
  <text y="100" style="font-size:50px;font-family:'${used}'">iiii</text>`, [0, 500, 1000, 1500]),
['SetFont', used, 50, 0, 0], text('iiii', 0, 900)];

inDocument('7 22 names, rules and fonts stay in their page and picture', [
  draw([coloured('#f00', 0), coloured('#00f', 200), ...lettered('Mine', 'Mine')]),
  draw([coloured('#080', 0), ...lettered('Other', 'Other')]), draw(lettered('Other', 'Mine')),
], async () => {
  const along = y => [50, 150, 250, 350, 450, 550].map(x => [x, y]);
  equal(await colours([...along(50), ...along(250)]), [...Array(6).fill('255 0 0'), ...Array(6).fill('0 0 255')]);
  const ids = $$('[id]').map(({ id }) => id);
  equal([new Set(ids).size, document.styleSheets.length, $$('style').length], [ids.length, 0, 0]);
  await document.fonts.ready;
  const families = [...document.fonts].map(({ family }) => family.replace(/"|p\d+_QZ_G\d_/g, ''));
  equal(families, ['Mine'], 'equal fonts are one');
  const isLettered = text => Math.round(text.getComputedTextLength()) === 120;
  equal($$('text').map(isLettered), [...Array(6).fill(true), ...Array(3).fill(false)], 'pages that name it get it');
  await viewer.show([]);
  equal(document.fonts.size, 0);
});

// The sample has all kinds of drawing, and inversion, which raw pages do not show.
cpSync(dirname(sample), out, { recursive: true });
const clipped = '["SVG_BeginClippingRegion",[0,0,9,9]]\n["SVG_DrawRectangle",[0,0,9999,9999]]';
write('plain.jsonl', readFileSync(sample, 'utf8').replace(/.*Invert.*\n/g, '') + clipped);
const plain = [['plain', replayText(join(out, 'plain.jsonl'))], ...samples()];

inDocument('9 pages look as they do raw', [], async pages => {
  style('* {margin: 0; padding: 0; border: 0} #viewer {width: 800px; overflow: hidden; scrollbar-gutter: auto}');
  const raw = document.body.appendChild(document.createElement('div'));
  const box = { x: 0, y: 0, width: 800, height: 1000 };
  for (const [name, page] of pages) {
    raw.replaceChildren();
    await viewer.show([page]);
    const shown = await pixels(box);
    await viewer.show([]);
    raw.innerHTML = inline(page, 800);
    const different = difference(shown, await pixels(box));
    equal(different <= 0.002 * 800 * 1000, true, `${name}: ${different}`);
  }
}, { given: plain.filter(([, page]) => !/QZ_V|[\ud800-\udfff]/.test(page)), free: true });
