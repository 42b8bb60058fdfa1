import { readFileSync } from 'node:fs';
import { TEXT, draw, field, fill, inDocument, link, picture, rectangle, text, url } from './support.js';

const evil = `${url}/evil`;
const level = (_, i) => `<g id="b${i + 1}">${`<use href="#b${i}"/>`.repeat(10)}</g>`;
const [, ...hostile] = readFileSync(new URL('hostile.txt', import.meta.url), 'utf8').trim()
  .replaceAll('EVIL', evil).replaceAll('BOMB', Array.from({ length: 12 }, level).join('')).split('\n\n');
const innocent = [fill(10, 20, 30), text('Innocent', 100, 560), rectangle(100, 600, 200, 700),
  ...field(TEXT, 'own', '', [300, 600, 400, 700])];
const [bounds, script] = [[0, 0, 9, 9], '<script>hack()</script>'];
const drawn = [
  ...hostile.map(markup => [picture(markup)]),
  [['DrawImage', 8, bounds, `<svg viewBox='0 0 9 9"/>${script}<img src="${evil}"><x y="'><rect/></svg>`, 100]],
  [['SetFont', `x;} *{display:none} .a{background:url(${evil})`, 40, 0, 0], text(`</text></svg>${script}`, 0, 100),
    ...link(1, 'javascript:hack()', rectangle(0, 0, 100, 100)),
    ...field(TEXT, `">${script}`, '"><img src=x: onerror=hack()>', bounds, text('x', 0, 0))],
].map(calls => draw([...calls, ...innocent]));
// The same in pages that the library did not draw, whose own drawing is not safe from it.
const harmless = draw(innocent);
const forged = hostile.map(markup => harmless.replace('</defs>', `</defs>${markup}`));

inDocument('21 nothing that a stranger draws runs, loads, leads or styles', [], async ([drawn, forged]) => {
  const { default: DOMPurify } = await load('/node_modules/dompurify/dist/purify.es.mjs');
  const outside = document.body.appendChild(document.createElement('p'));
  globalThis.hacked = false;
  globalThis.hack = () => { hacked = true; };
  for (const page of [...drawn, ...forged]) {
    await viewer.show([page]);
    await painted();
    for (const each of $$('svg *'))
      each.dispatchEvent(new MouseEvent('click', { bubbles: true, composed: true, cancelable: true }));
    const { display, color, position } = getComputedStyle(outside);
    const links = $$('a').flatMap(each => each.getAttribute('href') ?? each.getAttribute('xlink:href') ?? []);
    // The second opinion; it knows neither `use` nor the extensions.
    const known = name => /^velumark:|^target$|^role$/.test(name);
    DOMPurify.sanitize($('section > svg').outerHTML, { ADD_TAGS: ['use', 'velumark:target'], ADD_ATTR: known });
    const refused = DOMPurify.removed.map(({ element, attribute }) => element?.nodeName ?? attribute?.name)
      .filter(name => !/^use$|^velumark:/.test(name));
    equal([hacked, display, color, position, $$('style').length, document.fonts.size, ...links, ...refused],
      [false, 'block', 'rgb(0, 0, 0)', 'static', 0, 0], page);
    if (!drawn.includes(page)) continue;
    const innocent = $$('text').find(each => each.textContent === 'Innocent');
    equal([innocent.getAttribute('fill'), getComputedStyle(innocent).fill, $$('input').length > 0,
      innocent.getBoundingClientRect().width > 1], ['rgb(10,20,30)', 'rgb(10, 20, 30)', true, true], page);
  }
  await fetch('/last');
  equal((await requested()).filter(address => address.startsWith('/evil')), []);
}, { given: [drawn, forged], free: true });
