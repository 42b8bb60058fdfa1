import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { TEXT, draw, field, link, picture, rectangle, text } from './draw.js';
import { colours, inBrowsers, open, requests, samples, url } from './support.js';

const evil = `${url}/evil`;
const bomb = Array.from({ length: 12 }, (_, i) => `<g id="b${i + 1}">${`<use href="#b${i}"/>`.repeat(10)}</g>`).join('');
/** What strangers try, as the content of a picture. `hack` is called by what gets to run. */
const hostile = [
  `<script>hack()</script><script href="${evil}"/><script xlink:href="${evil}"></script>`,
  '<circle r="500" onclick="hack()" onload="hack()" onfocusin="hack()"/><image href="x:" onerror="hack()"/><svg onload="hack()"/>',
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
  '<a href="javascript:hack()"><circle r="500"/></a><a xlink:href="https://example.org/"><circle r="500"/></a>',
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
const innocent = [['SetFill', 255, 10, 20, 30], text('Innocent', 100, 560), rectangle(100, 600, 200, 700), ...field(TEXT, 'own', '', [300, 600, 400, 700])];
const pages = [
  ...hostile.map(markup => draw([picture(`<svg x="1">${markup}</svg>`), ...innocent])),
  draw([picture(`<svg viewBox='0 0 9 9"/><script>hack()</script><img src="${evil}"><x y="' width='1'><rect/></svg>`), ...innocent]),
  draw([['SetFont', `x;} *{display:none} .a{background:url(${evil})`, 40, 0, 0], text('</text></svg><script>hack()</script>', 0, 100), ...innocent,
    ...link(1, 'javascript:hack()', rectangle(0, 0, 100, 100)), ...field(TEXT, '"><script>hack()</script>', '"><img src=x: onerror=hack()>', [0, 0, 9, 9], text('x', 0, 0))]),
];
/** The same in a page that the library did not draw. */
const forged = hostile.map(markup => draw(innocent).replace('</defs>', `</defs>${markup}`));

const purify = readFileSync(createRequire(import.meta.url).resolve('dompurify/dist/purify.js'), 'utf8');

inBrowsers('21 nothing that a stranger draws runs, loads, leads or styles', async browser => {
  await open(browser, null, { head: `<script>hack = () => { globalThis.hacked = true; }</script><p id="outside">Outside</p>` });
  await browser.evaluate(purify);
  requests.length = 0;
  for (const [i, document] of [...pages, ...forged].entries()) {
    const drawn = i < pages.length;
    const seen = await browser.evaluate(async page => {
      await viewer.show([page]);
      await new Promise(requestAnimationFrame);
      for (const each of root.querySelectorAll('svg *')) each.dispatchEvent(new MouseEvent('click', { bubbles: true, composed: true, cancelable: true }));
      // The second opinion; it knows neither `use` nor the extensions.
      DOMPurify.sanitize(root.querySelector('section > svg').outerHTML, { ADD_TAGS: ['use', 'velumark:target'], ADD_ATTR: (name, tag) => name.startsWith('velumark:') || name === 'target' || name === 'role' });
      const outside = getComputedStyle(document.querySelector('#outside'));
      const own = [...root.querySelectorAll('text')].find(each => each.textContent === 'Innocent');
      return {
        hacked: Boolean(globalThis.hacked),
        outside: [outside.display, outside.color, outside.position].join(' '),
        own: own && [own.getAttribute('fill'), getComputedStyle(own).fill, own.getBoundingClientRect().width > 1].join(' '),
        controls: root.querySelectorAll('input').length > 0,
        links: [...root.querySelectorAll('a')].flatMap(each => each.getAttribute('href') ?? each.getAttribute('xlink:href') ?? []),
        refused: DOMPurify.removed.map(({ element, attribute }) => element?.nodeName ?? attribute?.name).filter(name => name !== 'use' && !name.startsWith('velumark:')),
        styled: root.querySelectorAll('style').length + document.fonts.size,
      };
    }, document);
    const what = JSON.stringify(hostile[i % pages.length] ?? document).slice(0, 200);
    assert.deepEqual({ ...seen, own: undefined, controls: undefined }, { hacked: false, outside: 'block rgb(0, 0, 0) static', own: undefined, controls: undefined, links: [], refused: [], styled: 0 }, what);
    if (drawn) assert.deepEqual([seen.own, seen.controls], ['rgb(10,20,30) rgb(10, 20, 30) true', true], what);
  }
  await new Promise(done => setTimeout(done, 300));
  assert.deepEqual(requests, []);
});

const policy = "default-src 'none'; script-src 'self'; img-src data:; font-src data:; connect-src 'self'; style-src 'self'; require-trusted-types-for 'script'";
inBrowsers('22 a strict policy changes nothing', async browser => {
  const styled = '<svg x="1"><style>rect{fill:#f00}</style><rect width="100" height="100"/><circle cx="150" cy="50" r="50" style="fill:#f00"/></svg>';
  const calls = [picture(styled, [0, 0, 1000, 1000]), ['InvertRectangle', [0, 50, 1000, 100]], ...field(TEXT, 'f', '', [500, 500, 600, 600], rectangle(500, 500, 600, 600))];
  await open(browser, [draw(calls), samples()[0][1]], { headers: { 'content-security-policy': policy } });
  assert.deepEqual(await colours(browser, [20, 20], [150, 20], [20, 80], [150, 80]), ['255 0 0', '255 0 0', '0 255 255', '0 255 255']);
  const [left, pictures] = await browser.evaluate(async () => {
    const page = root.querySelector('section').getBoundingClientRect();
    return [(root.querySelector('input').getBoundingClientRect().left - page.left) / page.width, root.querySelectorAll('image').length];
  });
  assert.ok(Math.abs(left - 0.5) < 0.01 && pictures > 0);
});
