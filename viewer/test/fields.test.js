import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import {
  CHECKBOX, COMBOBOX, DATE, OTHER, TEXT, colours, draw, every, field, fill, inBrowsers, open, rectangle, shoot, text,
} from './support.js';

const red = fill(200, 0, 0);
const framed = (type, name, data, [x, y, width, height], ...drawn) => field(type, name, data, [x, y, x + width, y + height],
  fill(255, 255, 255), ['SetStroke', 255, 0, 0, 255, 4], rectangle(x, y, x + width, y + height), ['ClearStroke'], red, ...drawn);
/** The type data of a date field: a number and a pattern. */
const dated = pattern => ({ base64: Buffer.concat([Buffer.alloc(8, 1), Buffer.from(pattern, 'utf16le')]).toString('base64') });
const form = draw([
  text('Your name:', 100, 145), ...framed(TEXT, 'name', 'Ada', [350, 100, 350, 60], text('Ada', 365, 142)),
  ...framed(CHECKBOX, 'paid', 'Yes', [100, 220, 60, 60], ['DrawPolygon', [[110, 250], [130, 270], [150, 230]]]), text('Paid', 180, 265),
  ...framed(CHECKBOX, 'bare', 'Off', [400, 220, 60, 60]),
  ...framed(COMBOBOX, 'method', 'Card\0Cash\0Card\0', [100, 320, 300, 60], text('Cash', 110, 362)),
  ...framed(DATE, 'day', dated('d.M.yyyy'), [500, 320, 300, 60], text('7.11.2025', 510, 362)),
  ...framed(TEXT, 'name', 'Ada', [350, 420, 350, 60], text('Ada', 365, 462)),
  ...framed(TEXT, 'note', 'one\ntwo', [100, 520, 400, 160], text('one', 110, 560), text('two', 110, 606)),
  ...framed(OTHER, 'radio', '1', [600, 520, 60, 60]),
  ...field(TEXT, 'hidden', 'secret', [900, 520, 960, 580]),
]);
const control = (page, name) => page.evaluateHandle(name => $(`.layer [aria-label$="${name}"]`), name);
const entriesOf = page => page.evaluate(() => entries());

inBrowsers('10 20 controls stand on their bounds at any zoom, which keeps them', async page => {
  await open(page, [form], { head: '<style>#viewer {height: 600px; width: 800px; scrollbar-width: none}</style>' });
  await (await control(page, 'name')).type(' L');
  for (const [zoom, shown] of [['2', 960], ['fit-page', 600], ['0.5', 240], ['fit-width', 800]]) {
    const [width, font, off, kept] = await page.evaluate(async zoom => {
      globalThis.input ??= $('input');
      viewer.setAttribute('units-per-inch', '200');
      viewer.setAttribute('zoom', zoom);
      const { left, top, width } = $('section').getBoundingClientRect();
      const off = viewer.pages[0].fields.filter(({ type, drawn }) => type && drawn).flatMap(({ bounds }, i) => {
        const box = $$('.layer > *')[i].getBoundingClientRect();
        return ['left', 'right', 'top', 'bottom'].map((side, at) => Math.abs(box[side] - (at < 2 ? left : top) - bounds[side] * width / 1000));
      });
      return [width, parseFloat(getComputedStyle(input).fontSize), off, input === root.activeElement && input.value];
    }, zoom);
    assert.deepEqual([Math.round(width), Math.round(width / font), off.length, kept], [shown, 25, 28, 'Ada L']);
    assert.ok(Math.max(...off) < 1, `${zoom}: ${off}`);
  }
});

/** Where what is dark in a picture begins, above and on the left, and ends below; and how red it is. */
function inkOf({ data, width }) {
  const dark = [...Array(data.length / 4).keys()].filter(i => data[4 * i + 1] < 90);
  const [x, y] = [dark.map(i => i % width), dark.map(i => Math.floor(i / width))];
  return [Math.min(...x), Math.min(...y), Math.max(...y), dark.reduce((sum, i) => sum + data[4 * i], 0) / dark.length];
}

inBrowsers('10 controls look like the drawn values', async page => {
  await open(page, [form]);
  const insides = await page.evaluate(() => $$('.layer > :not([type=checkbox])').map(each => each.getBoundingClientRect())
    .map(({ x, y, width, height }) => ({ x: x + 4, y: y + 4, width: width - 8, height: height - 8 })));
  const inks = () => Promise.all(insides.map(async inside => inkOf(await shoot(page, inside))));
  const shown = await inks();
  await page.evaluate(() => {
    const sheet = new CSSStyleSheet();
    sheet.replaceSync('.layer { display: none } .value:not(.stale) { display: inline }');
    root.adoptedStyleSheets.push(sheet);
  });
  const drawn = await inks();
  assert.ok(drawn.flat().every((each, i) => Math.abs(each - shown.flat()[i]) <= [1, 1, 1, 20][i % 4]), JSON.stringify([shown, drawn]));
});

inBrowsers('11 13 the host says what a field means; what it leaves and other types stay drawn', async page => {
  await open(page, [form], {
    prepare: () => {
      viewer.interpretation = ({ name }) => ({
        name: { value: 'Grace', label: 'Full name', required: true, readOnly: true, multiline: true }, paid: { checked: false, value: 'ja' },
        method: { choices: ['Barter'], value: 'Barter' }, day: null, hidden: {}, note: undefined, bare: { value: 'x', checked: true },
      })[name];
    },
  });
  const [controls, groups, radio] = await page.evaluate(() => [
    $$('.layer > *').map(each => [each.localName, each.ariaLabel, each.value, each.checked, each.required, each.readOnly].join()),
    $$('g[role=group]').map(each => each.getAttribute('aria-label')), viewer.pages[0].fields.find(({ name }) => name === 'radio')]);
  assert.deepEqual(controls, [
    'textarea,Full name, name,Grace,,true,true', 'input,Paid, paid,on,false,false,false', 'input,bare,on,true,false,false', 'select,method,Barter,,false,',
    'textarea,Full name, name,Grace,,true,true', 'textarea,note,one\ntwo,,false,false', 'input,hidden,secret,false,false,false']);
  assert.deepEqual(groups, ['day', 'radio']);
  const bounds = { left: 600, top: 520, right: 660, bottom: 580 };
  assert.deepEqual(radio, { page: 1, type: null, name: 'radio', data: '1', flags: 0, exFlags: 0, text: '', drawn: true, bounds });
  assert.equal(await entriesOf(page), 'name=Grace&bare=x&method=Barter&note=one\ntwo&hidden=secret');
});

inBrowsers('12 check boxes, dates, fields of one name', async page => {
  await open(page, [form]);
  const marks = [[132, 255], [425, 264]];
  assert.deepEqual(await colours(page, ...marks), ['200 0 0', '255 255 255']);
  for (const name of ['paid', 'bare']) await (await control(page, name)).click();
  await page.mouse.click(5, 5);
  assert.deepEqual(await colours(page, ...marks), ['255 255 255', '0 0 0']);

  const day = await control(page, 'day');
  const states = [];
  const choose = day => {
    day.value = '2024-02-29';
    day.dispatchEvent(new Event('input', { bubbles: true, composed: true }));
  };
  for (const act of [() => {}, day => day.focus(), choose, day => day.blur()]) {
    await day.evaluate(act);
    states.push(await day.evaluate(day => `${day.type} ${day.value} ${viewer.values.day}`));
  }
  assert.deepEqual(states, ['text 7.11.2025 7.11.2025', 'date 2025-11-07 7.11.2025', 'date 2024-02-29 29.2.2024', 'text 29.2.2024 29.2.2024']);

  await (await control(page, 'name')).type(' L');
  assert.deepEqual(await page.evaluate(() => $$('[aria-label$=name]').map(({ value }) => value)), ['Ada L', 'Ada L']);
  assert.equal(await entriesOf(page), 'name=Ada L&bare=on&method=Cash&day=29.2.2024&note=one\ntwo');
});

inBrowsers('14 the fields belong to the form', async page => {
  await open(page, [form], {
    prepare: () => {
      viewer.interpretation = ({ name }) => name === 'name' ? { required: true } : undefined;
      viewer.values = { day: '1.2.2023' };
      globalThis.events = [];
      for (const type of ['input', 'change']) document.addEventListener(type, ({ target }) => events.push(`${type} ${target.id} ${viewer.values.name}`));
    },
  });
  const initial = 'name=Ada&paid=Yes&method=Cash&day=1.2.2023&note=one\ntwo';
  assert.equal(await entriesOf(page), initial);
  await (await control(page, 'name')).evaluate(each => each.select());
  for (const key of ['Delete', 'Tab']) await page.keyboard.press(key);
  const invalid = await page.evaluate(() => [events.join(), document.forms[0].reportValidity(), viewer.validity.valueMissing, root.activeElement.ariaLabel]);
  assert.deepEqual(invalid, ['input viewer ,change viewer ', false, true, 'Your name, name']);
  const locked = () => page.evaluate(() => $$('.layer > *').map(each => each.disabled ? 'disabled' : each.readOnly ? 'read' : 'open').join(' '));
  for (const [act, expected, states] of [
    [() => { viewer.values = { name: 'Grace', paid: false, method: 'Card' }; }, 'name=Grace&method=Card&day=1.2.2023&note=one\ntwo', every('open', 7)],
    [() => viewer.setAttribute('readonly', ''), 'name=Grace&method=Card&day=1.2.2023&note=one\ntwo', ['read', ...every('disabled', 3), ...every('read', 3)]],
    [() => { document.querySelector('fieldset').disabled = true; }, '', every('disabled', 7)],
    [() => {
      document.querySelector('fieldset').disabled = viewer.toggleAttribute('readonly', false);
      document.forms[0].reset();
    }, initial.replace('1.2.2023', '7.11.2025'), every('open', 7)],
    [() => viewer.show(shown), initial.replace('1.2.2023', '7.11.2025'), every('open', 7)],
  ]) {
    await page.evaluate(act);
    assert.deepEqual([await entriesOf(page), await locked()], [expected, states.join(' ')]);
  }
  assert.equal(await page.evaluate(() => document.forms[0].checkValidity()), true);
});

const axe = readFileSync(createRequire(import.meta.url).resolve('axe-core'), 'utf8');
inBrowsers('15 16 names, reading order, and nothing for axe to report', async (page, browser) => {
  await open(page, [form, form]);
  const labels = await page.evaluate(() => $$('g[aria-owns]').map(each => root.getElementById(each.getAttribute('aria-owns')).ariaLabel));
  const expected = ['Your name, name', 'Paid, paid', 'bare', 'method', 'day', 'name', 'note'];
  assert.deepEqual(labels, [...expected, ...expected]);
  await page.evaluate(axe);
  const { violations, passes } = await page.evaluate(() => axe.run({ rules: { 'page-has-heading-one': { enabled: false } } }));
  assert.deepEqual(violations.map(({ id, nodes }) => `${id}: ${nodes.map(each => each.html).join()}`), []);
  assert.ok(passes.length > 10);
  if (browser === 'firefox') return;  // tells no tree
  const { nodes } = await (await page.createCDPSession()).send('Accessibility.getFullAXTree');
  const read = ({ role, name, childIds = [] }) => [
    ...['StaticText', 'textbox', 'checkbox'].includes(role?.value) ? [name.value] : [],
    ...childIds.flatMap(id => nodes.filter(({ nodeId }) => nodeId === id).flatMap(read))];
  assert.deepEqual(read(nodes[0]).filter(name => /name|aid/.test(name)).slice(0, 4), ['Your name:', 'Your name, name', 'Paid, paid', 'Paid']);
});
