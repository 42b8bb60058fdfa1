import assert from 'node:assert/strict';
import { TEXT, draw, field, inBrowsers, open, picture, text, write } from './support.js';

const greeting = draw([text('Grüße 😀', 100, 100)]);

inBrowsers('1 UTF-8 and UTF-16 give the same page, the rest an error', async page => {
  await open(page);
  const [shown, messages] = await page.evaluate(async text => {
    const utf8 = [...new TextEncoder().encode(text)];
    const units = Array.from({ length: text.length }, (_, i) => text.charCodeAt(i));
    const [little, big] = [[0, 8], [8, 0]].map(shifts => units.flatMap(unit => shifts.map(shift => (unit >> shift) & 255)));
    const forms = [utf8, [0xef, 0xbb, 0xbf, ...utf8], [...utf8, 0], little, [0xff, 0xfe, ...little, 0, 0], big, [0xfe, 0xff, ...big], [...big, 0, 0]];
    const texts = [];
    for (const source of [text, `\ufeff${text}\0`, ...forms.map(bytes => new Uint8Array(bytes)), new Uint8Array(utf8).buffer]) {
      await viewer.show([]);
      await viewer.show([source]);
      texts.push($('text')?.textContent);
    }
    const [errors, last] = [[], $('section')];
    viewer.addEventListener('error', ({ message }) => errors.push(message));
    const bad = ['<!DOCTYPE html><p>Sorry', text.slice(0, -3), text.replace(/width="\d+"/, 'width="0"'), Uint8Array.from(utf8, byte => (byte === 0xc3 ? 0xe9 : byte)), ''];
    for (const source of bad) await viewer.show([text, source]);
    viewer.setAttribute('src', '/missing.svg');
    await new Promise(done => viewer.addEventListener('error', done));
    return [texts, last === $('section') && errors];
  }, greeting);
  assert.deepEqual([...new Set(shown)], ['Grüße 😀']);
  assert.equal(messages.length, 6);
  for (const message of messages) assert.match(message, /^Page [12]: .*\.$/);
  assert.equal(messages[5], 'Page 1: /missing.svg cannot be loaded.');
});

inBrowsers('1 src names pages, and the latest counts', async page => {
  for (const name of ['a', 'b', 'c']) write(`${name}.svg`, draw([text(name, 100, 100)]));
  await open(page);
  const shown = await page.evaluate(async () => {
    await document.createElement('velumark-viewer').show([await (await fetch('/a.svg')).text()]);  // before it is anywhere
    const wait = time => new Promise(done => setTimeout(done, time));
    const load = fetch;
    globalThis.fetch = async address => (await wait(address === '/c.svg' ? 200 : 0), load(address));
    viewer.setAttribute('src', '/c.svg');
    viewer.setAttribute('src', ' /a.svg\n/b.svg');
    await wait(400);
    return $$('text').map(each => each.textContent).join();
  });
  assert.equal(shown, 'a,b');
});

const claim = '<g velumark:purpose="FormField" velumark:formFieldType="FT_FORMTEXT" velumark:bounds="0 0 500 500" velumark:name="stolen"></g>';
const escapes = ['', '</g></g>', '</g></g></defs>', '</svg>', '</g></g></defs></svg><svg>'];
const claimed = draw([...escapes.map(out => picture(out + claim)), ...field(TEXT, 'own', '', [0, 0, 100, 100])])
  .replace('<defs>', `<defs>${claim}`);  // as no page of the library has it

inBrowsers('2 3 each character is parsed once, detached, and a picture cannot claim a field', async page => {
  await open(page);
  const seen = await page.evaluate(async text => {
    let parsed = 0;
    const parse = DOMParser.prototype.parseFromString;
    DOMParser.prototype.parseFromString = function (text, type) {
      parsed += String(text).length;
      return parse.call(this, text, type);
    };
    Object.defineProperty(Element.prototype, 'innerHTML', { set() { parsed = Infinity; } });
    await viewer.show([text]);
    return [parsed, viewer.pages[0].fields.map(({ name }) => name).join(), $$('input').length];
  }, claimed);
  assert.deepEqual(seen, [claimed.length + '<svg></svg>'.length, 'own', 1]);
});
