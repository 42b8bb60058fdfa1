import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { TEXT, colours, draw, field, fill, inBrowsers, link, open, picture, rectangle, requests, text, url } from './support.js';

const evil = `${url}/evil`;
const bomb = Array.from({ length: 12 }, (_, i) => `<g id="b${i + 1}">${`<use href="#b${i}"/>`.repeat(10)}</g>`).join('');
/** What strangers try, as the content of a picture. `hack` is called by what gets to run. */
const hostile = [
  `<script>hack()</script><script href="${evil}"/><script xlink:href="${evil}"></script>`,
  '<circle r="500" onclick="hacked = true" onload="hack()" onfocusin="hack()"/><image href="x:" onerror="hack()"/><svg onload="hack()"/>',
  `<foreignObject width="500" height="500"><iframe src="${evil}"></iframe><img src="${evil}" onerror="hack()"></foreignObject>`,
  `<style>@import url(${evil});</style><style>@import "${evil}";</style><link rel="stylesheet" href="${evil}"/><?xml-stylesheet href="${evil}"?>`,
  `<style>@font-face{font-family:E;src:url(${evil})} text{font-family:E}</style><text y="50">E</text>`,
  `<style>rect{fill:url(${evil}#a);mask:url(${evil}#m);filter:url(${evil}#f);cursor:url(${evil});clip-path:url(${evil}#c)}</style><rect width="500" height="500"/>`,
  `<style>*{background:url(${evil})} p::before{content:url(${evil})} text{fill:#0f0;stroke:#0f0}</style>`,
  '<style>html,body,p,:root,:host,section,svg,.layer,input,*{display:none!important;position:fixed;inset:0}</style>',
  `<image href="${evil}" width="9" height="9"/><image xlink:href="${evil}" width="9" height="9"/><image href="data:text/html,x"/>`,
  `<rect style="background-image:url(${evil});fill:url(${evil}#x);mask-image:image-set('${evil}' 1x)" width="500" height="500"/>`,
  `<rect fill="url(${evil}#x)" filter="u\\72l(${evil}#f)" mask="image-set('${evil}' 1x)" clip-path="src('${evil}')" width="500" height="500"/>`,
  `<use href="${evil}.svg#x"/><use xlink:href="data:image/svg+xml,<svg xmlns='http://www.w3.org/2000/svg' id='x' onload='hack()'/>#x"/>`,
  '<a href="javascript:hack()"><circle r="500"/></a><a xlink:href="https://example.org/"><circle r="500"/></a><a href="#x"/>',
  '<a id="a"><circle r="500"/><animate attributeName="href" values="javascript:hack()"/><set attributeName="href" to="javascript:hack()"/></a><set href="#a" attributeName="href" to="javascript:hack()"/>',
  '<rect width="9" height="9"><animate onbegin="hack()" attributeName="x" dur="1s"/><set onend="hack()" attributeName="x" dur="1ms"/></rect>',
  `<filter id="f"><feImage href="${evil}"/></filter><rect filter="url(#f)" width="500" height="500"/><pattern href="${evil}#p"/><mpath href="${evil}"/>`,
  `<!DOCTYPE svg [<!ENTITY e SYSTEM "${evil}"><!ENTITY s "<script>hack()</script>">]>&e;&s;<![CDATA[<script>hack()</script>]]>`,
  '</g></g></defs><script>hack()</script><style>text{fill:#0f0}</style><a href="javascript:hack()"><rect width="1000" height="1000"/></a>',
  `</svg><script>hack()</script><img src="${evil}" onerror="hack()"><style>body,text{display:none}</style><form id="viewer">`,
  `<p><img src="${evil}" onerror="hack()"></p><base href="${evil}/"><meta http-equiv="refresh" content="0;url=${evil}">`,
  '<title><style><!--</style><img src="x:" onerror="hack()"></title><desc><script>hack()</script></desc>',
  `<style><!--</style><img title="--><img src=${evil} onerror=hack()>"></style><!-- --!><img src="x:" onerror="hack()">`,
  `<text><iframe srcdoc="<script>parent.hack()</script>"></iframe><object data="${evil}"></object><embed src="${evil}"><video src="${evil}" poster="${evil}"></video></text>`,
  `<style>@media all{@import '${evil}'; p{color:#0f0}} @namespace x url(${evil}); @keyframes k{to{background:url(${evil})}} rect{--x:url(${evil});fill:var(--x);animation:k 1ms}</style><rect width="9" height="9"/>`,
  '<style>text:not(p,{}*{fill:#0f0}</style><style>}*{fill:#0f0}</style><style>a,b\\{}*{fill:#0f0}</style><style>:is(text){fill:#0f0} *|*{fill:#0f0} &{fill:#0f0}</style>',
  `<g id="b0"><rect width="9" height="9"/></g>${bomb}<use href="#b12"/><g id="c"><use href="#c"/></g><use href="#c"/>`,
  '<math><mi xlink:href="data:x,<script>hack()</script>"></mi></math><template><script>hack()</script></template><slot onslotchange="hack()"/><handler type="text/javascript" ev:event="load">hack()</handler>',
];
const innocent = [fill(10, 20, 30), text('Innocent', 100, 560), rectangle(100, 600, 200, 700), ...field(TEXT, 'own', '', [300, 600, 400, 700])];
const forged = draw(innocent);
const pages = [
  ...hostile.map(markup => draw([picture(markup), ...innocent])),
  draw([['DrawImage', 8, [0, 0, 9, 9], `<svg viewBox='0 0 9 9"/><script>hack()</script><img src="${evil}"><x y="' width='1'><rect/></svg>`, 100], ...innocent]),
  draw([['SetFont', `x;} *{display:none} .a{background:url(${evil})`, 40, 0, 0], text('</text></svg><script>hack()</script>', 0, 100), ...innocent,
    ...link(1, 'javascript:hack()', rectangle(0, 0, 100, 100)), ...field(TEXT, '"><script>hack()</script>', '"><img src=x: onerror=hack()>', [0, 0, 9, 9], text('x', 0, 0))]),
  // The same in pages that the library did not draw, whose own drawing is not safe from it.
  ...hostile.map(markup => forged.replace('</defs>', `</defs>${markup}`)),
];
const purify = readFileSync(createRequire(import.meta.url).resolve('dompurify/dist/purify.js'), 'utf8');

inBrowsers('21 nothing that a stranger draws runs, loads, leads or styles', async page => {
  await open(page, null, { head: '<script>hack = () => { globalThis.hacked = true; }</script><p id="outside">Outside</p>' });
  await page.evaluate(purify);
  requests.length = 0;
  for (const [i, markup] of pages.entries()) {
    const [own, ...harm] = await page.evaluate(async markup => {
      await viewer.show([markup]);
      await new Promise(requestAnimationFrame);
      for (const each of $$('svg *')) each.dispatchEvent(new MouseEvent('click', { bubbles: true, composed: true, cancelable: true }));
      const { display, color, position } = getComputedStyle(document.querySelector('#outside'));
      const innocent = $$('text').find(each => each.textContent === 'Innocent');
      const own = innocent && [innocent.getAttribute('fill'), getComputedStyle(innocent).fill, innocent.getBoundingClientRect().width > 1, $('input') !== null];
      const links = $$('a').flatMap(each => each.getAttribute('href') ?? each.getAttribute('xlink:href') ?? []);
      // The second opinion; it knows neither `use` nor the extensions.
      DOMPurify.sanitize($('section > svg').outerHTML, { ADD_TAGS: ['use', 'velumark:target'], ADD_ATTR: name => /^velumark:|^target$|^role$/.test(name) });
      const refused = DOMPurify.removed.map(({ element, attribute }) => element?.nodeName ?? attribute?.name).filter(name => !/^use$|^velumark:/.test(name));
      return [own?.join(' '), Boolean(globalThis.hacked), display, color, position, $$('style').length, document.fonts.size, ...links, ...refused];
    }, markup);
    assert.deepEqual(harm, [false, 'block', 'rgb(0, 0, 0)', 'static', 0, 0], markup);
    if (i < hostile.length + 2) assert.equal(own, 'rgb(10,20,30) rgb(10, 20, 30) true true', markup);
  }
  await new Promise(done => setTimeout(done, 300));
  assert.deepEqual(requests, []);
});

inBrowsers('22 a strict policy changes nothing', async page => {
  const data = 'data:image/svg+xml,%3Csvg xmlns="http://www.w3.org/2000/svg" width="9" height="9"%3E%3Crect width="9" height="9" fill="lime"/%3E%3C/svg%3E';
  const styled = picture(`<style>rect{fill:#f00}</style><rect width="100" height="100"/><circle cx="150" cy="50" r="50" style="fill:#f00"/><image x="200" width="99" height="99" href='${data}'/>`, [0, 0, 500, 500]);
  await open(page, [draw([styled, ['InvertRectangle', [0, 50, 1000, 100]], ...field(TEXT, 'f', '', [500, 500, 600, 600])])], {
    contentPolicy: "default-src 'none'; script-src 'self'; img-src data:; font-src data:; connect-src 'self'; style-src 'self'; require-trusted-types-for 'script'",
  });
  assert.deepEqual(await colours(page, [20, 20], [150, 20], [250, 20], [20, 80], [150, 80]), ['255 0 0', '255 0 0', '0 255 0', '0 255 255', '0 255 255']);
  const place = await page.evaluate(() => $('input').getBoundingClientRect().left - $('section').getBoundingClientRect().left - $('section').clientWidth / 2);
  assert.ok(Math.abs(place) < 5, `${place}`);
});
