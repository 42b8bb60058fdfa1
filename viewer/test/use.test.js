import assert from 'node:assert/strict';
import { execFileSync, spawn } from 'node:child_process';
import { once } from 'node:events';
import { join } from 'node:path';
import { TEXT, draw, field, fill, folder, inBrowsers, link, open, out, rectangle, sample, text, write } from './support.js';

inBrowsers('17 links lead to safe addresses only', async page => {
  const safe = ['http://example.org/', 'https://example.org/?a=1&b=%22', 'mailto:a@example.org', 'tel:+123'];
  const unsafe = ['javascript:alert(1)', ' java\nscript:alert(1)', 'data:text/html,x', 'vbscript:x', 'file:///etc/passwd', 'blob:x', 'page.html', '//example.org/', ''];
  const links = [...safe, ...unsafe].flatMap((target, i) => link(1, target, text('Link', 100, 50 * i + 50)));
  await open(page, [draw([...links, ...link(7, 'https://example.org/', text('Untyped', 500, 100))])]);
  const addresses = await page.evaluate(() => $$('a').filter(each => each.hasAttribute('href') || each.hasAttribute('xlink:href'))
    .map(each => ['href', 'rel', 'target'].map(name => each.getAttribute(name)).join(' ')));
  assert.deepEqual(addresses, safe.map(address => `${address} noopener noreferrer _blank`));
});

inBrowsers('17 internal links reach any page, by mouse and by Enter, and move the focus', async page => {
  const target = (name, y, ...rest) => draw([['SetDocumentTarget', [100, y], name], text('Here', 100, y + 40), ...rest]);
  const next = field(TEXT, 'next', '', [100, 700, 300, 750], rectangle(100, 700, 300, 750));
  const first = draw(['far “one”', 'near', 'none'].flatMap((name, i) => link(2, name, text(`Go ${name}`, 100, 100 * i + 100))));
  await open(page, [first, ...Array(20).fill(draw([text('Between', 100, 100)])), target('near', 500), target('far “one”', 600, ...next)], { head: '<style>#viewer {height: 500px}</style>' });
  const reached = () => page.evaluate(() => {
    const top = $('.target:focus')?.getBoundingClientRect().top - viewer.getBoundingClientRect().top;
    return [root.activeElement.closest('section').ariaLabel, top > -1 && top < 500];
  });
  await (await page.evaluateHandle(() => $('a text'))).click();
  assert.deepEqual(await reached(), ['Page 23', true]);
  await page.keyboard.press('Tab');
  assert.equal(await page.evaluate(() => root.activeElement.ariaLabel), 'next', 'Tab goes on from there');
  await page.evaluate(() => $$('a')[1].focus());
  await page.keyboard.press('Enter');
  assert.deepEqual(await reached(), ['Page 22', true]);
  const results = await page.evaluate(() => {
    const before = viewer.scrollTop;
    viewer.addEventListener('link', event => {
      globalThis.link = event.detail;
      event.preventDefault();
    });
    $('a').dispatchEvent(new MouseEvent('click', { bubbles: true, cancelable: true }));
    return [viewer.scrollTop === before, link, viewer.goTo('none'), viewer.goTo('near'), location.hash];
  });
  assert.deepEqual(results, [true, { page: 1, type: 'internal', target: 'far “one”' }, false, true, '']);
});

inBrowsers('18 a signature is named, told of, and never called valid', async page => {
  const signature = [['BeginSignatureField', [100, 100, 500, 300], 'Payer', 'Name=Ada; Reason=Agreed'], rectangle(100, 100, 500, 300), ['EndSignatureField']];
  await open(page, [draw(signature)]);
  await page.evaluate(() => {
    globalThis.told = [];
    viewer.addEventListener('signature', ({ detail }) => told.push(detail));
  });
  const group = await page.evaluateHandle(() => $('g[role=group]'));
  await group.click();
  await group.evaluate(each => each.focus());
  for (const key of ['Enter', ' ', 'x']) await page.keyboard.press(key);
  const [told, label, markup] = await page.evaluate(() =>
    [JSON.stringify([...told, ...viewer.pages[0].signatures]), $('g[role=group]').getAttribute('aria-label'), root.innerHTML]);
  const expected = { page: 1, name: 'Payer', info: 'Name=Ada; Reason=Agreed', bounds: { left: 100, top: 100, right: 500, bottom: 300 } };
  assert.deepEqual(JSON.parse(told), Array(4).fill(expected));
  assert.equal(label, 'Signature, Payer, Name=Ada; Reason=Agreed');
  assert.doesNotMatch(markup, /valid/i);
});

inBrowsers('19 copying gives lines as seen', async page => {
  const first = draw([
    text('Two ', 100, 100), text('words', 200, 100), ...link(1, 'https://example.org/', text('linked', 400, 100)), text('joi', 600, 100, [9, 22, 9]), text('ned', 640, 100),
    text('Label', 100, 200), ...field(TEXT, 'f', 'drawn', [300, 160, 600, 220], rectangle(300, 160, 600, 220), text('drawn', 310, 200)), text('after', 650, 200),
    text('אחד', 700, 300), text('שנ', 664, 300), text('שלוש', 400, 301),
  ]);
  await open(page, [first, draw([text('Next page', 100, 100)])]);
  const copied = await page.evaluate(() => {
    viewer.values = { f: 'typed' };
    const texts = $$('text:not(.value)');
    getSelection().setBaseAndExtent(texts[0].firstElementChild.firstChild, 1, texts.at(-1).firstChild, 4);
    const event = new ClipboardEvent('copy', { bubbles: true, composed: true, cancelable: true, clipboardData: new DataTransfer() });
    texts[0].dispatchEvent(event);
    return event.clipboardData.getData('text/plain');
  });
  assert.equal(copied, 'wo words linked joined\nLabel typed after\nאחדשנ שלוש\nNext');
});

inBrowsers('19 search reaches pages never laid out', async page => {
  await open(page, Array.from({ length: 60 }, (_, i) => draw([text(`Page number ${i} of them`, 100, 100)])), { head: '<style>#viewer {height: 500px}</style>' });
  assert.deepEqual(await page.evaluate(() => [find('number 57 of'), getComputedStyle($('section')).contentVisibility]), [true, 'auto']);
});

async function printed(page, format, margin) {
  write('page.pdf', await page.pdf({ format, printBackground: true, margin: { top: margin, left: margin, right: margin, bottom: margin } }));
  return execFileSync('pdftotext', [join(out, 'page.pdf'), '-'], { encoding: 'utf8' });
}

inBrowsers('20 printing: a page a sheet, with what was typed', async page => {
  const form = draw(field(TEXT, 'name', 'Ada', [100, 100, 600, 160], rectangle(100, 100, 600, 160), fill(255, 255, 255), text('Ada', 110, 142)), [0, 0, 1000, 1400]);
  const wide = draw([text('Wide', 0, 500)], [0, 0, 3000, 1000]);
  for (const [format, margin, css] of [['a4', 0, 'body {margin: 0}'], ['a4', '0.7in', ''], ['letter', 0, ''], ['letter', '0.4in', '#viewer {height: 500px}']]) {
    await open(page, [form, form, wide, wide], { head: `<style>main, form, fieldset {margin: 0; padding: 0; border: 0} ${css}</style>` });
    await page.evaluate(() => { viewer.values = { name: 'Grace Hopper' }; });
    const sheets = (await printed(page, format, margin)).split('\f').map(each => each.trim());
    assert.deepEqual(sheets, ['Grace Hopper', 'Grace Hopper', 'Wide', 'Wide', ''], `${format} ${margin}`);
  }
});

inBrowsers('the sample as ./dev view shows it: filled in, printed, sent', async page => {
  const server = spawn('node', [join(folder, 'view/serve.js'), sample]);
  try {
    const [line] = await once(server.stdout, 'data');
    await page.goto(/http\S+/.exec(line)[0]);
    const shown = text => page.waitForFunction(text => document.querySelector('table')?.innerText.includes(text), {}, text);
    await shown('Quillfeather');
    const control = name => page.evaluateHandle(name => viewer.shadowRoot.querySelector(`.layer [aria-label$=${name}]`), name);
    await (await control('Paid')).click();
    await (await control('Reference')).type(' and Ada');
    await (await control('Method')).select('Card');
    await shown('TC-2047 and Ada');
    assert.match(await printed(page, 'a4', 0), /Card[^]*Edda Quillfeather, TC-2047 and Ada/);
    await page.click('button:not([type])');
    await page.waitForSelector('.echo');
    assert.equal(await page.$eval('table', each => each.innerText.replace(/\s+/g, ' ').trim()), 'Method Card PaidOn 16.11.2025 Reference Edda Quillfeather, TC-2047 and Ada');
  } finally {
    server.kill();
  }
});
