import assert from 'node:assert/strict';
import { draw, field, picture, text, TEXT } from './draw.js';
import { files, inBrowsers, open } from './support.js';

const page = draw([text('Grüße 😀', 100, 100)]);

inBrowsers('1 UTF-8 and UTF-16 give the same page, the rest an error', async browser => {
  await open(browser);
  const shown = await browser.evaluate(async page => {
    const utf8 = [...new TextEncoder().encode(page)];
    const units = Array.from({ length: page.length }, (_, i) => page.charCodeAt(i));
    const little = units.flatMap(unit => [unit & 255, unit >> 8]);
    const big = units.flatMap(unit => [unit >> 8, unit & 255]);
    const texts = [];
    const forms = [utf8, [0xef, 0xbb, 0xbf, ...utf8], [...utf8, 0], little, [0xff, 0xfe, ...little, 0, 0], big, [0xfe, 0xff, ...big], [...big, 0, 0]];
    for (const source of [page, `\ufeff${page}\0`, ...forms.map(bytes => new Uint8Array(bytes)), new Uint8Array(utf8).buffer]) {
      await viewer.show([]);
      await viewer.show([source]);
      texts.push(root.querySelector('text')?.textContent);
    }
    return texts;
  }, page);
  assert.deepEqual(new Set(shown), new Set(['Grüße 😀']));

  const messages = await browser.evaluate(async page => {
    const last = root.querySelector('section');
    const bad = ['Not found', '<!DOCTYPE html><p>Sorry', page.slice(0, -3), page.replace(/width="\d+"/, 'width="0"'), new Uint8Array([0x3c, 0xe9, 0x20]), ''];
    for (const source of bad) await viewer.show([page, source]);
    await new Promise(done => {
      viewer.addEventListener('error', done);
      viewer.setAttribute('src', '/missing.svg');
    });
    return last === root.querySelector('section') && errors;
  }, page);
  assert.equal(messages.length, 7);
  for (const message of messages) assert.match(message, /^Page [12]: .*\.$/);
});

inBrowsers('1 src names pages, and the latest counts', async browser => {
  for (const name of ['a', 'b', 'c']) files.set(`/${name}.svg`, { content: draw([text(name, 100, 100)]) });
  await open(browser);
  const shown = await browser.evaluate(async () => {
    await document.createElement('velumark-viewer').show([await (await fetch('/a.svg')).text()]);  // before it is anywhere
    viewer.setAttribute('src', '/c.svg');
    await new Promise(done => {
      viewer.addEventListener('load', done);
      viewer.setAttribute('src', ' /a.svg\n/b.svg');
    });
    return [...root.querySelectorAll('text')].map(each => each.textContent).join();
  });
  assert.equal(shown, 'a,b');
});

inBrowsers('2 each character is parsed once, detached', async browser => {
  const document = draw([picture('<svg x="1"><circle r="5"/></svg>'), text('Once', 10, 10)]);
  await open(browser, null, {
    prepare: () => {
      globalThis.parsed = 0;
      const parse = DOMParser.prototype.parseFromString;
      DOMParser.prototype.parseFromString = function (text, type) {
        parsed += String(text).length;
        return parse.call(this, text, type);
      };
      const { set } = Object.getOwnPropertyDescriptor(Element.prototype, 'innerHTML');
      Object.defineProperty(Element.prototype, 'innerHTML', { set(text) { parsed = Infinity; set.call(this, text); } });
    },
  });
  const count = await browser.evaluate(async document => {
    await viewer.show([document]);
    return parsed;
  }, document);
  assert.equal(count, document.length + '<svg></svg>'.length);
});

inBrowsers('3 a picture cannot claim a field', async browser => {
  const claim = '<g velumark:purpose="FormField" velumark:formFieldType="FT_FORMTEXT" velumark:bounds="0 0 500 500" velumark:name="stolen"></g>';
  const calls = ['', '</g></g>', '</g></g></defs>', '</svg>', '</g></g></defs></svg><svg>'].map(out => picture(`<svg x="1">${out}${claim}</svg>`));
  await open(browser, [draw([...calls, ...field(TEXT, 'own', '', [0, 0, 100, 100])])]);
  const names = await browser.evaluate(() => [viewer.pages[0].fields.map(({ name }) => name), root.querySelectorAll('input').length]);
  assert.deepEqual(names, [['own'], 1]);
});
