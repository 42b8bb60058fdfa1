import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { CHECKBOX, COMBOBOX, DATE, TEXT, dated, draw, every, field, rectangle, text } from './draw.js';
import { colours, inBrowsers, onPixels, open, requests } from './support.js';

const red = ['SetFill', 255, 200, 0, 0];
const white = ['SetFill', 255, 255, 255, 255];
const frame = (left, top, right, bottom) => [white, ['SetStroke', 255, 0, 0, 255, 4], rectangle(left, top, right, bottom), ['ClearStroke'], red];
const tick = ['DrawPolygon', [[110, 250], [130, 270], [150, 230]]];
const form = draw([
  text('Your name:', 100, 145), ...field(TEXT, 'name', 'Ada', [350, 100, 700, 160], ...frame(350, 100, 700, 160), text('Ada', 365, 142, every(26, 3))),
  ...field(CHECKBOX, 'paid', 'Yes', [100, 220, 160, 280], ...frame(100, 220, 160, 280), tick), text('Paid', 180, 265),
  ...field(CHECKBOX, 'bare', 'Off', [400, 220, 460, 280], ...frame(400, 220, 460, 280)),
  ...field(COMBOBOX, 'method', 'Card\0Cash\0Card\0', [100, 320, 400, 380], ...frame(100, 320, 400, 380), text('Cash', 110, 362)),
  ...field(DATE, 'day', dated('d.M.yyyy'), [500, 320, 800, 380], ...frame(500, 320, 800, 380), text('7.11.2025', 510, 362)),
  ...field(TEXT, 'name', 'Ada', [350, 420, 700, 480], ...frame(350, 420, 700, 480), text('Ada', 365, 462)),
  ...field(TEXT, 'note', 'one\ntwo', [100, 520, 500, 680], text('one', 110, 560), text('two', 110, 606)),
  ...field(18, 'radio', '1', [600, 520, 660, 580], ...frame(600, 520, 660, 580)),
  ...field(TEXT, 'hidden', 'secret', [900, 520, 960, 580]),
]);
const entries = () => [...new FormData(document.forms[0])].map(pair => pair.join('=')).join('&');
const input = (name, index = 0) => `root.querySelectorAll('[aria-label$="${name}"]:is(input, select, textarea)')[${index}]`;

inBrowsers('10 controls stand on their bounds and look like the drawn value', async browser => {
  await open(browser, [form]);
  for (const zoom of ['fit-width', 'fit-page', '4', '0.3']) {
    const off = await browser.evaluate(async zoom => {
      viewer.setAttribute('zoom', zoom);
      viewer.setAttribute('units-per-inch', '400');
      const page = root.querySelector('section').getBoundingClientRect();
      return viewer.pages[0].fields.filter(({ type, name }) => type && name !== 'hidden').map(({ bounds }, i) => {
        const box = root.querySelectorAll('.layer > *')[i].getBoundingClientRect();
        return Math.max(...['left', 'top', 'right', 'bottom'].map(side =>
          Math.abs(box[side] - (side === 'left' || side === 'right' ? page.left : page.top) - bounds[side] * page.width / 1000)));
      });
    }, zoom);
    assert.equal(off.length, 7);
    assert.ok(Math.max(...off) < 1, `${zoom}: ${off}`);
  }
  await browser.evaluate(() => viewer.setAttribute('zoom', 'fit-width'));
  const clips = await browser.evaluate(() => {
    const page = root.querySelector('section').getBoundingClientRect();
    return [[110, 322, 280, 56], [510, 322, 280, 56], [355, 104, 300, 50], [102, 522, 300, 140]].map(part => {
      const [x, y, width, height] = part.map(each => each * page.width / 1000);
      return { x: page.x + x, y: page.y + y, width, height };
    });
  });
  const shoot = () => Promise.all(clips.map(clip => browser.screenshot({ encoding: 'base64', clip })));
  const controls = await shoot();
  await browser.evaluate(() => {
    const sheet = new CSSStyleSheet();
    sheet.replaceSync('.layer { display: none } .value:not(.stale) { display: inline }');
    root.adoptedStyleSheets.push(sheet);
  });
  const drawn = await shoot();
  for (const i of clips.keys()) {
    // The ink of both, by its box and its colour.
    const inks = await onPixels(browser, [controls[i], drawn[i]], (...pictures) => pictures.map(({ data, width }) => {
      const ink = { left: 1e9, top: 1e9, bottom: 0, red: 0, other: 0 };
      for (let at = 0; at < data.length; at += 4) {
        if (data[at + 1] > 90) continue;
        const [x, y] = [at / 4 % width, Math.floor(at / 4 / width)];
        Object.assign(ink, { left: Math.min(ink.left, x), top: Math.min(ink.top, y), bottom: Math.max(ink.bottom, y) });
        if (data[at] > 190) ++ink.red; else ++ink.other;
      }
      return ink;
    }));
    for (const side of ['left', 'top', 'bottom']) assert.ok(Math.abs(inks[0][side] - inks[1][side]) <= 1.5, `${i} ${JSON.stringify(inks)}`);
    assert.ok(inks[0].red > 20 && Math.abs(inks[0].other - inks[1].other) < 5, JSON.stringify(inks));
  }
});

inBrowsers('11 13 the host says what a field means; what it leaves and other types stay drawn', async browser => {
  await open(browser, [form], {
    prepare: () => {
      viewer.interpretation = ({ name }) => ({
        name: { value: 'Grace', label: 'Full name', required: true, readOnly: true, multiline: true },
        paid: { checked: false, value: 'ja' }, method: { choices: ['Barter'], value: 'Barter' }, day: null, hidden: {}, note: undefined, bare: { value: 'x', checked: true },
      })[name];
    },
  });
  const seen = await browser.evaluate(() => [...root.querySelectorAll('.layer > *')].map(each =>
    [each.localName, each.getAttribute('aria-label'), each.value, each.checked, each.required, each.readOnly].join()));
  assert.deepEqual(seen, ['textarea,Full name, name,Grace,,true,true', 'input,Paid, paid,on,false,false,false', 'input,bare,on,true,false,false',
    'select,method,Barter,,false,', 'textarea,Full name, name,Grace,,true,true', 'textarea,note,one\ntwo,,false,false', 'input,hidden,secret,false,false,false']);
  assert.deepEqual(await browser.evaluate(() => [...root.querySelectorAll('g[role=group]')].map(each => each.getAttribute('aria-label'))), ['day', 'radio']);
  const radio = await browser.evaluate(() => viewer.pages[0].fields.find(({ name }) => name === 'radio'));
  assert.deepEqual(radio, { page: 1, type: null, name: 'radio', data: '1', flags: 0, exFlags: 0, text: '', drawn: true, bounds: { left: 600, top: 520, right: 660, bottom: 580 } });
  assert.equal(await browser.evaluate(entries), 'name=Grace&bare=x&method=Barter&note=one\ntwo&hidden=secret');
});

inBrowsers('12 check boxes, dates, fields of one name', async browser => {
  await open(browser, [form]);
  const [drawnMark, ownMark] = [[132, 255], [425, 264]];
  assert.deepEqual(await colours(browser, drawnMark, ownMark), ['200 0 0', '255 255 255']);
  for (const name of ['paid', 'bare']) await (await browser.evaluateHandle(input(name))).click();
  await browser.mouse.click(5, 5);
  assert.deepEqual(await colours(browser, drawnMark, ownMark), ['255 255 255', '0 0 0']);

  const day = await browser.evaluateHandle(input('day'));
  const state = () => browser.evaluate(day => [day.type, day.value].join(), day);
  const states = [await state()];
  await day.focus();
  states.push(await state());
  await browser.evaluate(day => {
    day.value = '2024-02-29';
    day.dispatchEvent(new Event('input', { bubbles: true, composed: true }));
  }, day);
  states.push(await browser.evaluate(() => viewer.values.day));
  await day.evaluate(day => day.blur());
  states.push(await state());
  assert.deepEqual(states, ['text,7.11.2025', 'date,2025-11-07', '29.2.2024', 'text,29.2.2024']);

  await (await browser.evaluateHandle(input('name'))).type(' L');
  assert.equal(await browser.evaluate(`${input('name', 1)}.value`), 'Ada L');
  assert.equal(await browser.evaluate(entries), 'name=Ada L&bare=on&method=Cash&day=29.2.2024&note=one\ntwo');
});

inBrowsers('14 the fields belong to the form', async browser => {
  await open(browser, [form], {
    prepare: () => {
      viewer.interpretation = ({ name }) => name === 'name' ? { required: true } : undefined;
      viewer.values = { day: '1.2.2023' };
      globalThis.events = [];
      for (const type of ['input', 'change']) document.addEventListener(type, ({ target }) => events.push(`${type} ${target.id} ${viewer.values.name}`));
    },
  });
  const initial = 'name=Ada&paid=Yes&method=Cash&day=1.2.2023&note=one\ntwo';
  assert.equal(await browser.evaluate(entries), initial);
  const name = await browser.evaluateHandle(input('name'));
  await name.focus();
  await browser.keyboard.down('Control');
  await browser.keyboard.press('a');
  await browser.keyboard.up('Control');
  await browser.keyboard.press('Delete');
  await browser.keyboard.press('Tab');
  assert.deepEqual(await browser.evaluate(() => events), ['input viewer ', 'change viewer ']);
  assert.deepEqual(await browser.evaluate(() => [document.forms[0].reportValidity(), viewer.validity.valueMissing, root.activeElement.ariaLabel]), [false, true, 'Your name, name']);
  await browser.evaluate(() => { viewer.values = { name: 'Grace', paid: false, method: 'Card' }; });
  assert.equal(await browser.evaluate(entries), 'name=Grace&method=Card&day=1.2.2023&note=one\ntwo');
  assert.equal(await browser.evaluate(() => document.forms[0].checkValidity()), true);
  await browser.evaluate(() => viewer.setAttribute('readonly', ''));
  const locked = () => [...root.querySelectorAll('.layer > *')].every(each => each.readOnly || each.disabled);
  assert.ok(await browser.evaluate(locked));
  await browser.evaluate(() => {
    viewer.removeAttribute('readonly');
    document.querySelector('fieldset').disabled = true;
  });
  assert.deepEqual(await browser.evaluate(() => [...root.querySelectorAll('.layer > *')].map(each => each.disabled)), every(true, 7));
  assert.equal(await browser.evaluate(entries), '');
  await browser.evaluate(() => {
    document.querySelector('fieldset').disabled = false;
    document.forms[0].reset();
  });
  assert.equal(await browser.evaluate(entries), initial.replace('1.2.2023', '7.11.2025'));
  await Promise.all([browser.waitForNavigation(), browser.evaluate(() => document.forms[0].submit())]);
  assert.match(requests.findLast(({ path }) => path === '/echo').body, /^name=Ada&paid=Yes&method=Cash&day=7.11.2025&note=one%0D%0Atwo$/);
});

const axe = readFileSync(createRequire(import.meta.url).resolve('axe-core'), 'utf8');
inBrowsers('15 16 names, reading order, and nothing for axe to report', async (browser, kind) => {
  await open(browser, [form, form]);
  const labels = await browser.evaluate(() => [...root.querySelectorAll('.layer > *')].slice(0, 7).map(each => each.ariaLabel));
  assert.deepEqual(labels, ['Your name, name', 'Paid, paid', 'bare', 'method', 'day', 'name', 'note']);
  await browser.evaluate(axe);
  const { violations, passes } = await browser.evaluate(() => axe.run({ rules: { 'page-has-heading-one': { enabled: false } } }));
  assert.deepEqual(violations.map(({ id, nodes }) => `${id}: ${nodes.map(each => each.html).join()}`), []);
  assert.ok(passes.length > 10);
  if (kind === 'firefox') return;  // tells no tree
  const tree = await (await browser.createCDPSession()).send('Accessibility.getFullAXTree');
  const nodes = new Map(tree.nodes.map(node => [node.nodeId, node]));
  const read = node => [...(['StaticText', 'textbox', 'checkbox', 'combobox'].includes(node.role?.value) ? [node.name.value] : []),
    ...(node.childIds ?? []).flatMap(id => nodes.has(id) ? read(nodes.get(id)) : [])];
  assert.deepEqual(read(tree.nodes[0]).filter(name => /name|aid/.test(name)).slice(0, 4), ['Your name:', 'Your name, name', 'Paid, paid', 'Paid']);
});
