// Tries an index.html in browsers, as a user does. Its address is in INDEX; pdf_test.py makes it.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { inBrowsers } from '../../../viewer/test/support.js';

const TARGET_PAGE = 32;

/** Waits without an eval, which the page's policy forbids, and Firefox 140 to puppeteer as well. */
async function until(browser, holds, ...given) {
  while (!await browser.evaluate(holds, ...given)) await new Promise(done => setTimeout(done, 50));
}

async function open(browser, hash = '') {
  await browser.goto(process.env.INDEX + hash);
  await until(browser, () => document.querySelector('velumark-viewer').pages.length === 40);
  await browser.evaluate(() => {
    globalThis.viewer = document.querySelector('velumark-viewer');
    globalThis.root = viewer.shadowRoot;
    globalThis.topOf = number => viewer.pages[number - 1].element.getBoundingClientRect().top;
  });
}

const inside = (browser, selector) => browser.evaluateHandle(selector => root.querySelector(selector), selector);

inBrowsers('the browser finds text on all pages, and asks for no other file', async browser => {
  const asked = [];
  browser.on('request', request => asked.push(request.url()));
  await open(browser);
  const finds = text => browser.evaluate(text => getSelection().empty() ?? find(text, true, false, true), text);
  assert.ok(await finds('To chapter nine'));
  assert.ok(await finds('Chapter nine begins here'));
  assert.ok(!await finds('Chapter ten'));
  assert.deepEqual(asked.filter(each => !each.startsWith('data:') && each !== process.env.INDEX), []);
});

inBrowsers('a page looks as its file does, though it shares fonts', async browser => {
  await open(browser);
  const place = await browser.evaluate(async page => {
    viewer.setAttribute('zoom', '1');
    const { element } = viewer.pages[page - 1];
    element.scrollIntoView({ block: 'center' });
    const { x, y, width, height } = element.getBoundingClientRect();
    await new Promise(requestAnimationFrame);
    await document.fonts.ready;
    return { x: x + scrollX, y: y + scrollY, width, height };
  }, TARGET_PAGE);
  const shown = await browser.screenshot({ clip: place, encoding: 'base64' });
  await browser.goto(new URL(`page-0${TARGET_PAGE}.svg`, process.env.INDEX));
  const alone = await browser.screenshot({ clip: { ...place, x: 0, y: 0 }, encoding: 'base64' });
  assert.ok(shown === alone);
});

inBrowsers('a link leads to another page, and the way back from it', async browser => {
  await open(browser);
  await (await inside(browser, 'a[href]')).click();
  await until(browser, page => Math.abs(topOf(page)) < innerHeight, TARGET_PAGE);
  assert.match(await browser.evaluate(() => location.hash), /^#p32\./);
  await until(browser, page => Number(document.querySelector('input').value) === page, TARGET_PAGE);
  await browser.evaluate(() => history.back());
  await until(browser, () => Math.abs(topOf(1)) < 200);
});

inBrowsers('a page has an address and a number', async browser => {
  await open(browser, '#p32.400.1760');
  await until(browser, page => Math.abs(topOf(page)) < innerHeight, TARGET_PAGE);
  await browser.click('input', { count: 3 });
  await browser.keyboard.type('20\n');
  await until(browser, () => Math.abs(topOf(20)) < 200);
});

inBrowsers('what is filled in is printed', async (browser, name) => {
  await open(browser);
  await (await inside(browser, 'input')).click({ count: 3 });
  await browser.keyboard.type('Grace Hopper');
  await (await inside(browser, 'input[type=checkbox]')).click();
  assert.deepEqual(await browser.evaluate(() => viewer.values), { name: 'Grace Hopper', yes: true });
  const shown = await browser.evaluate(() => [...root.querySelectorAll('g[velumark\\:purpose="FormField"] use')]
    .filter(use => getComputedStyle(use).display !== 'none').length);
  assert.equal(shown, 0, 'the old letters are gone');
  if (name !== 'chrome') return;  // Firefox prints into no such file
  const pdf = await browser.pdf({ preferCSSPageSize: true });
  const text = execFileSync('pdftotext', ['-', '-'], { input: pdf }).toString();
  assert.match(text, /Grace Hopper/);
  assert.doesNotMatch(text, /Ada/);
  assert.match(text, /Chapter nine begins here/);
  const info = execFileSync('pdfinfo', ['-'], { input: pdf }).toString();
  assert.match(info, /Pages: +40\nEncrypted/);
  assert.match(info, /Page size: +300 x 300 pts/);
});

inBrowsers('a signature tells of itself', async browser => {
  await open(browser);
  const said = new Promise(done => browser.once('dialog', async dialog => {
    done(dialog.message());
    await dialog.accept();
  }));
  await browser.evaluate(() => root.querySelector('g[aria-label^=Signature]').focus());
  await browser.keyboard.press('Enter');
  assert.match(await said, /^Signature field: Sign here\nName=Edda Quill; .*\nNothing is verified here\.$/);
});
