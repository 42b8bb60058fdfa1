import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { join } from 'node:path';
import {
  TEXT, draw, every, field, fill, folder, inBrowsers, inDocument, link, rectangle, sample, text,
} from './support.js';

const safe = ['http://example.org/', 'https://example.org/?a=1&b=%22', 'mailto:a@example.org', 'tel:+123'];
const unsafe = ['javascript:alert(1)', ' java\nscript:alert(1)', 'data:text/html,x', 'vbscript:x', 'file:///etc/passwd',
  'blob:x', 'page.html', '//example.org/', ''];
const external = draw([...link(7, 'https://example.org/', text('Untyped', 500, 100)),
  ...[...safe, ...unsafe].flatMap((target, i) => link(1, target, text('Link', 100, 50 * i + 50)))]);

inDocument('17 links lead to safe addresses only', [external], safe => {
  const leading = $$('a').filter(each => each.hasAttribute('href') || each.hasAttribute('xlink:href'));
  equal(leading.map(each => ['href', 'rel', 'target'].map(name => each.getAttribute(name))),
    safe.map(address => [address, 'noopener noreferrer', '_blank']));
}, { given: safe });

const internal = draw(['far “one”', 'near'].flatMap((name, i) => link(2, name, text('Go', 100, 100 * i + 100))));
const between = draw([text('Between', 100, 100)]);
const target = (name, y, ...rest) => draw([['SetDocumentTarget', [100, y], name], text('Here', 100, y + 40), ...rest]);
const next = field(TEXT, 'next', '', [100, 700, 300, 750], rectangle(100, 700, 300, 750));

inDocument('17 internal links reach any page, by mouse and by Enter, and move the focus', [
  internal, ...every(between, 20), target('near', 500), target('far “one”', 600, ...next),
], async () => {
  style('#viewer {height: 500px}');
  const reached = () => {
    const top = $('.target:focus')?.getBoundingClientRect().top - viewer.getBoundingClientRect().top;
    return [root.activeElement.closest('section').ariaLabel, top > -1 && top < 500];
  };
  await click($('a text'));
  equal(reached(), ['Page 23', true]);
  await press('Tab');
  equal(root.activeElement.ariaLabel, 'next', 'where Tab goes on');
  $$('a')[1].focus();
  await press('Enter');
  equal(reached(), ['Page 22', true]);

  const { scrollTop } = viewer;
  const followed = hear('link');
  viewer.addEventListener('link', event => event.preventDefault());
  $('a').dispatchEvent(new MouseEvent('click', { bubbles: true, cancelable: true }));
  equal(followed.map(({ detail }) => detail), [{ page: 1, type: 'internal', target: 'far “one”' }]);
  equal([viewer.scrollTop, viewer.goTo('none'), viewer.goTo('near'), location.hash], [scrollTop, false, true, '']);
});

const signed = draw([['BeginSignatureField', [100, 100, 500, 300], 'Payer', 'Name=Ada; Reason=Agreed'],
  rectangle(100, 100, 500, 300), ['EndSignatureField']]);
inDocument('18 a signature is named, told of, and never called valid', [signed], async () => {
  const told = hear('signature');
  const group = $('g[role=group]');
  await click(group);
  group.focus();
  for (const key of ['Enter', ' ', 'x']) await press(key);
  const bounds = { left: 100, top: 100, right: 500, bottom: 300 };
  equal([...told.map(({ detail }) => detail), ...viewer.pages[0].signatures],
    Array(4).fill({ page: 1, name: 'Payer', info: 'Name=Ada; Reason=Agreed', bounds }));
  equal(group.getAttribute('aria-label'), 'Signature, Payer, Name=Ada; Reason=Agreed');
  equal(/valid/i.test(root.innerHTML), false);
});

inDocument('19 copying gives lines as seen', [draw([
  text('Two ', 100, 100), text('words', 200, 100), ...link(1, 'https://example.org/', text('linked', 400, 100)),
  text('joi', 600, 100, [9, 22, 9]), text('ned', 640, 100), text('Label', 100, 200),
  ...field(TEXT, 'f', 'drawn', [300, 160, 600, 220], rectangle(300, 160, 600, 220), text('drawn', 310, 200)),
  text('after', 650, 200), text('אחד', 700, 300), text('שנ', 664, 300), text('שלוש', 400, 301),
]), draw([text('Next page', 100, 100)])], async () => {
  viewer.values = { f: 'typed' };
  const texts = $$('text:not(.value)');
  getSelection().setBaseAndExtent(texts[0].firstElementChild.firstChild, 1, texts.at(-1).firstChild, 4);
  const options = { bubbles: true, composed: true, cancelable: true, clipboardData: new DataTransfer() };
  const copy = new ClipboardEvent('copy', options);
  texts[0].dispatchEvent(copy);
  const lines = copy.clipboardData.getData('text/plain').split('\n');
  equal(lines, ['wo words linked joined', 'Label typed after', 'אחדשנ שלוש', 'Next']);
});

const searched = draw([
  text('An ex', 100, 100, every(25, 5)), fill(200, 0, 0), text('ample', 225, 100, every(25, 5)), text('of', 370, 100),
  ...link(1, 'https://example.org/', text('search', 430, 100)), text('next', 100, 200), text('to it', 600, 200),
]);
inDocument('8 19 search finds words across runs, on pages never laid out', [...every(between, 60), searched], () => {
  style('#viewer {height: 500px}');
  equal(getComputedStyle($('section')).contentVisibility, 'auto');
  for (const words of ['example', 'An example of search', 'next to it']) {
    getSelection().empty();
    equal(find(words), true, words);
  }
  equal($('a').textContent, 'search');
});

const filled = draw(field(TEXT, 'name', 'Ada', [100, 100, 600, 160],
  rectangle(100, 100, 600, 160), fill(255, 255, 255), text('Ada', 110, 142)), [0, 0, 1000, 1400]);
const wide = draw([text('Wide', 0, 500)], [0, 0, 3000, 1000]);

inDocument('20 printing: a page a sheet, with what was typed', [filled, filled, wide, wide], async () => {
  viewer.values = { name: 'Grace Hopper' };
  style('main, form, fieldset {margin: 0; padding: 0; border: 0}');
  for (const [format, margin, rules] of [['a4', '0.7in', ''], ['letter', 0, ''],
    ['letter', '0.4in', '#viewer {height: 500px}'], ['a4', 0, 'body {margin: 0}']]) {
    style(rules);
    equal(await printed(format, margin), ['Grace Hopper', 'Grace Hopper', 'Wide', 'Wide', ''], `${format} ${margin}`);
  }
});

inBrowsers('the sample as ./dev view shows it: filled in, printed, sent', async page => {
  const server = spawn('node', [join(folder, 'view/serve.js'), sample]);
  try {
    const [line] = await once(server.stdout, 'data');
    await page.goto(/http\S+/.exec(line)[0]);
    const shows = text => page.waitForFunction(text => data.innerText.includes(text), {}, text);
    await shows('Quillfeather');
    await page.click('>>> [aria-label$=Paid]');
    await page.type('>>> [aria-label$=Reference]', ' and Ada');
    await page.select('>>> [aria-label$=Method]', 'Card');
    await shows('TC-2047 and Ada');
    const [sheet] = await page.evaluate(() => printed('a4', 0));
    assert.match(sheet, /Card[^]*Edda Quillfeather, TC-2047 and Ada/);
    await page.click('button:not([type])');
    await page.waitForSelector('.echo');
    assert.deepEqual(await page.$$eval('td', all => all.map(each => each.innerText)),
      ['Card', '16.11.2025', 'Edda Quillfeather, TC-2047 and Ada']);
  } finally {
    server.kill();
  }
});
