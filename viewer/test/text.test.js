import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { CHECKBOX, TEXT, draw, field, link, rectangle, text } from './draw.js';
import { inBrowsers, open } from './support.js';

inBrowsers('19 copying gives lines as seen', async browser => {
  const first = draw([
    text('Two ', 100, 100), text('words', 200, 100), ...link(1, 'https://example.org/', text('linked', 400, 100)), text('joi', 600, 100, [9, 22, 9]), text('ned', 640, 100),
    text('Label', 100, 200), ...field(TEXT, 'f', 'drawn', [300, 160, 600, 220], rectangle(300, 160, 600, 220), text('drawn', 310, 200)), text('after', 650, 200),
    text('אחד', 700, 300), text('שנ', 664, 300), text('שלוש', 400, 300),
  ]);
  await open(browser, [first, draw([text('Next page', 100, 100)])]);
  const copied = await browser.evaluate(() => {
    root.querySelector('input').value = 'typed';
    root.querySelector('input').dispatchEvent(new Event('input', { bubbles: true, composed: true }));
    const texts = [...root.querySelectorAll('text:not(.value)')];
    const [start, end] = [texts[0].firstElementChild.firstChild, texts.at(-1).firstChild];
    getSelection().setBaseAndExtent(start, 1, end, 4);
    const event = new ClipboardEvent('copy', { bubbles: true, composed: true, cancelable: true, clipboardData: new DataTransfer() });
    texts[0].dispatchEvent(event);
    return event.clipboardData.getData('text/plain');
  });
  assert.equal(copied, 'wo words linked joined\nLabel typed after\nאחדשנ שלוש\nNext');
});

inBrowsers('19 search reaches pages never laid out', async browser => {
  const pages = Array.from({ length: 60 }, (_, i) => draw([text(`Page number ${i} of them`, 100, 100)]));
  await open(browser, pages, { head: '<style>#viewer {height: 500px}</style>' });
  assert.ok(await browser.evaluate(() => find('number 57 of')));
  assert.ok(await browser.evaluate(() => getComputedStyle(root.querySelector('section')).contentVisibility === 'auto'));
});

const form = draw([
  ...field(TEXT, 'name', 'Ada', [100, 100, 600, 160], rectangle(100, 100, 600, 160), ['SetFill', 255, 0, 0, 0], text('Ada', 110, 142)),
  ...field(CHECKBOX, 'ok', '0', [100, 200, 160, 260], ['SetFill', 255, 200, 200, 200], rectangle(100, 200, 160, 260)),
], [0, 0, 1000, 1400]);

inBrowsers('20 zoom keeps the controls', async browser => {
  await open(browser, [form], { head: '<style>#viewer {height: 600px}</style>' });
  const kept = await browser.evaluate(async () => {
    const input = root.querySelector('input');
    input.value = 'typed';
    input.focus();
    const sizes = [];
    for (const zoom of ['2', 'fit-page', '0.5', 'fit-width']) {
      viewer.setAttribute('zoom', zoom);
      viewer.setAttribute('units-per-inch', '200');
      await new Promise(requestAnimationFrame);
      const { width, height } = root.querySelector('section').getBoundingClientRect();
      sizes.push([Math.round(width), Math.round(width / parseFloat(getComputedStyle(input).fontSize))].join());
      if (zoom === 'fit-page') sizes.push(height <= 600);
    }
    return [input === root.querySelector('input'), root.activeElement === input, input.value, ...sizes];
  });
  assert.deepEqual([...kept.slice(0, 5), kept[5], kept[6]], [true, true, 'typed', '960,25', '429,25', true, '240,25']);
});

inBrowsers('20 printing: a page a sheet, with what was typed', async (browser, kind) => {
  const out = mkdtempSync(join(tmpdir(), 'viewer-'));
  for (const [format, margin, head] of [['a4', 0, '<style>body {margin: 0}</style>'], ['a4', '0.7in', ''], ['letter', 0, ''], ['letter', '0.4in', '<style>#viewer {height: 500px}</style>']]) {
    const wide = draw([text('Wide', 0, 500)], [0, 0, 3000, 1000]);
    await open(browser, [form, form, wide, wide], { head: `${head}<style>main, form, fieldset {margin: 0; padding: 0; border: 0}</style>` });
    await browser.evaluate(() => { viewer.values = { name: 'Grace Hopper', ok: true }; });
    const pdf = join(out, 'page.pdf');
    writeFileSync(pdf, await browser.pdf({ format, printBackground: true, margin: { top: margin, left: margin, right: margin, bottom: margin } }));
    const sheets = execFileSync('pdftotext', [pdf, '-'], { encoding: 'utf8' }).split('\f').map(each => each.trim());
    assert.deepEqual(sheets, ['Grace Hopper', 'Grace Hopper', 'Wide', 'Wide', ''], `${kind} ${format} ${margin}`);
  }
  rmSync(out, { recursive: true });
});
