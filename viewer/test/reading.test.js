import { TEXT, draw, field, inDocument, picture, text } from './support.js';

const greeting = draw([text('Grüße 😀', 100, 100)]);
const little = Buffer.from(`\ufeff${greeting}\0`, 'utf16le');
const big = Buffer.from(little).swap16();
const good = [greeting, `\ufeff${greeting}\0`, little, little.subarray(2, -2), big, big.subarray(2, -2)];
const bad = ['<!DOCTYPE html><p>Sorry', greeting.slice(0, -3), greeting.replace(/width="\d+"/, 'width="0"'),
  Buffer.from(greeting, 'latin1'), ''];
const given = [greeting, ...[good, bad].map(all => all.map(each => [...Buffer.from(each)]))];

inDocument('1 UTF-8 and UTF-16 are one page, the rest an error; the latest counts', [], async ([text, ...all]) => {
  const [good, bad] = all.map(each => each.map(bytes => new Uint8Array(bytes)));
  const errors = hear('error');
  await viewer.show([...good, good[0].buffer, `\ufeff${text}\0`]);
  equal($$('text').map(each => each.textContent), Array(8).fill('Grüße 😀'));

  const page = $('section');
  for (const each of bad) await viewer.show([text, each]);
  viewer.setAttribute('src', '/missing.svg');
  await new Promise(done => viewer.addEventListener('error', done));
  equal(errors.map(({ message }) => message.replace(/^Page 2: .*\.$/, '')),
    [...bad.map(() => ''), 'Page 1: /missing.svg cannot be loaded.']);
  equal(page.isConnected, true);

  let answer;
  fetch = () => new Promise(done => { answer = done; });
  viewer.setAttribute('src', '/late.svg');
  await viewer.show([text, text]);
  answer({ ok: true, arrayBuffer: () => good[0] });
  await new Promise(setTimeout);
  equal([page.isConnected, $$('section').length], [false, 2]);
}, { given });

const claim = `<g velumark:purpose="FormField" velumark:formFieldType="FT_FORMTEXT" velumark:bounds="0 0 500 500"
  velumark:name="stolen"></g>`;
const escapes = ['', '</g></g>', '</g></g></defs>', '</svg>', '</g></g></defs></svg><svg>'];
const claimed = draw([...escapes.map(escape => picture(escape + claim)), ...field(TEXT, 'own', '', [0, 0, 100, 100])])
  .replace('<defs>', `<defs>${claim}`);  // as no page of the library has it

inDocument('2 3 each character is parsed once, detached, and a picture cannot claim a field', [], async page => {
  let parsed = 0;
  const { parseFromString } = DOMParser.prototype;
  DOMParser.prototype.parseFromString = function (text, type) {
    parsed += String(text).length;
    return parseFromString.call(this, text, type);
  };
  Object.defineProperty(Element.prototype, 'innerHTML', { set() { parsed = Infinity; } });
  await viewer.show([page]);
  equal([parsed, viewer.pages[0].fields.map(({ name }) => name), $$('input').length],
    [page.length + '<svg></svg>'.length, ['own'], 1]);
}, { given: claimed });
