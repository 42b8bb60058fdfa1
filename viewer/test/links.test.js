import assert from 'node:assert/strict';
import { draw, field, link, rectangle, text, TEXT } from './draw.js';
import { inBrowsers, open } from './support.js';

inBrowsers('17 links lead to safe addresses only', async browser => {
  const safe = ['http://example.org/', 'https://example.org/?a=1&b=%22', 'mailto:a@example.org', 'tel:+123'];
  const unsafe = ['javascript:alert(1)', ' java\nscript:alert(1)', 'data:text/html,x', 'vbscript:x', 'file:///etc/passwd', 'blob:x', 'page.html', '//example.org/', ''];
  const calls = [...safe, ...unsafe].flatMap((target, i) => link(1, target, text(`Link ${i}`, 100, 50 * i + 50)));
  await open(browser, [draw([...calls, ...link(7, 'https://example.org/', text('Untyped', 500, 100))])]);
  const [addresses, others] = await browser.evaluate(() => [
    [...root.querySelectorAll('a[href]')].map(each => [each.getAttribute('href'), each.getAttribute('rel'), each.getAttribute('target')].join(' ')),
    [...root.querySelectorAll('a')].flatMap(each => each.hasAttribute('href') ? [] : [...each.attributes].filter(({ value }) => /^\s*java/.test(value)).map(({ name }) => name)),
  ]);
  assert.deepEqual(addresses, safe.map(address => `${address} noopener noreferrer _blank`));
  assert.deepEqual(new Set(others), new Set(['velumark:targetname']));
});

inBrowsers('17 internal links reach any page, by mouse and by Enter, and move the focus', async browser => {
  const filler = draw([text('Between', 100, 100)]);
  const first = draw([...link(2, 'far “one”', text('Go far', 100, 100)), ...link(2, 'near', text('Go near', 100, 200)), ...link(2, 'none', text('Nowhere', 100, 300))]);
  const last = draw([['SetDocumentTarget', [100, 600], 'far “one”'], text('Here', 100, 640), ...field(TEXT, 'next', '', [100, 700, 300, 750], rectangle(100, 700, 300, 750))]);
  await open(browser, [first, ...Array(20).fill(filler), draw([['SetDocumentTarget', [0, 500], 'near'], text('Near', 0, 500)]), filler, last], {
    head: '<style>#viewer {height: 500px}</style>',
  });
  const at = () => browser.evaluate(() => {
    const { top } = root.querySelector('.target:focus')?.getBoundingClientRect() ?? {};
    return [Math.round(top - viewer.getBoundingClientRect().top), root.activeElement?.closest('section')?.getAttribute('aria-label')];
  });
  const box = await browser.evaluate(() => root.querySelector('a').getBoundingClientRect().toJSON());
  await browser.mouse.click(box.x + 5, box.y + box.height / 2);
  const [far, page] = await at();
  assert.equal(page, 'Page 24');
  assert.ok(far >= 0 && far < 500, `${far}`);
  await browser.keyboard.press('Tab');
  assert.equal(await browser.evaluate(() => root.activeElement.ariaLabel), 'next', 'Tab goes on from there');

  await browser.evaluate(() => root.querySelectorAll('a')[1].focus());
  await browser.keyboard.press('Enter');
  assert.equal((await at())[1], 'Page 22');
  const results = await browser.evaluate(() => {
    const before = viewer.scrollTop;
    viewer.addEventListener('link', event => {
      globalThis.link = event.detail;
      event.preventDefault();
    });
    root.querySelector('a').dispatchEvent(new MouseEvent('click', { bubbles: true, cancelable: true }));
    return [viewer.scrollTop === before, link, viewer.goTo('none'), viewer.goTo('near'), location.hash];
  });
  assert.deepEqual(results, [true, { page: 1, type: 'internal', target: 'far “one”' }, false, true, '']);
});

inBrowsers('18 a signature is named, told of, and never called valid', async browser => {
  const signature = (name, info) => [['BeginSignatureField', [100, 100, 500, 300], name, info], rectangle(100, 100, 500, 300), ['EndSignatureField']];
  await open(browser, [draw([...signature('Payer', 'Name=Ada; Reason=Agreed')])]);
  await browser.evaluate(() => {
    globalThis.signatures = [];
    viewer.addEventListener('signature', ({ detail }) => signatures.push(detail));
  });
  const group = await browser.evaluateHandle(() => root.querySelector('g[role=group]'));
  assert.equal(await group.evaluate(each => each.getAttribute('aria-label')), 'Signature, Payer, Name=Ada; Reason=Agreed');
  await group.click();
  await group.evaluate(each => each.focus());
  for (const key of ['Enter', ' ', 'x']) await browser.keyboard.press(key);
  const expected = { page: 1, name: 'Payer', info: 'Name=Ada; Reason=Agreed', bounds: { left: 100, top: 100, right: 500, bottom: 300 } };
  assert.deepEqual(JSON.parse(await browser.evaluate(() => JSON.stringify(signatures))), [expected, expected, expected]);
  assert.deepEqual(await browser.evaluate(() => viewer.pages[0].signatures), [expected]);
  assert.doesNotMatch(await browser.evaluate(() => root.querySelector('section').outerHTML), /valid/i);
});
