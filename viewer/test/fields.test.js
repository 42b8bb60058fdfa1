import { CHECKBOX, COMBOBOX, DATE, OTHER, TEXT, draw, field, fill, inDocument, rectangle, text } from './support.js';

/** A field with a frame, and its value drawn in red. */
const framed = (type, name, data, [x, y, width, height], ...drawn) => {
  const bounds = [x, y, x + width, y + height];
  return field(type, name, data, bounds, fill(255, 255, 255), ['SetStroke', 255, 0, 0, 255, 4], rectangle(...bounds),
    ['ClearStroke'], fill(200, 0, 0), ...drawn);
};
/** The type data of a date field: a number and a pattern. */
const dated = pattern => ({ base64: Buffer.from(`\x01\x01\x01\x01${pattern}`, 'utf16le').toString('base64') });
const form = draw([
  text('Your name:', 100, 145), ...framed(TEXT, 'name', 'Ada', [350, 100, 350, 60], text('Ada', 365, 142)),
  ...framed(CHECKBOX, 'paid', 'Yes', [100, 220, 60, 60], ['DrawPolygon', [[110, 250], [130, 270], [150, 230]]]),
  text('Paid', 180, 265), ...framed(CHECKBOX, 'bare', 'Off', [400, 220, 60, 60]),
  ...framed(COMBOBOX, 'method', 'Card\0Cash\0Card\0', [100, 320, 300, 60], text('Cash', 110, 362)),
  ...framed(DATE, 'day', dated('d.M.yyyy'), [500, 320, 300, 60], text('7.11.2025', 510, 362)),
  ...framed(TEXT, 'name', 'Ada', [350, 420, 350, 60], text('Ada', 365, 462)),
  ...framed(TEXT, 'note', 'one\ntwo', [100, 520, 400, 160], text('one', 110, 560), text('two', 110, 606)),
  ...framed(OTHER, 'radio', '1', [600, 520, 60, 60]), ...field(TEXT, 'hidden', 'secret', [900, 520, 960, 580]),
]);

inDocument('10 20 22 controls stand on their bounds at any zoom, which keeps them', [form], async () => {
  style('#viewer {height: 600px; width: 800px; scrollbar-width: none}');
  viewer.setAttribute('units-per-inch', '200');
  const name = control('name');
  name.focus();
  await write(' L');
  for (const [zoom, width] of [['2', 960], ['fit-page', 600], ['0.5', 240], ['fit-width', 800]]) {
    viewer.setAttribute('zoom', zoom);
    const page = $('section').getBoundingClientRect();
    const size = parseFloat(getComputedStyle(name).fontSize);
    equal([Math.round(page.width), Math.round(page.width / size)], [width, 25], zoom);
    const fields = viewer.pages[0].fields.filter(({ type, drawn }) => type && drawn);
    const off = fields.flatMap(({ bounds }, i) => Object.entries(bounds).filter(([side, units]) => {
      const from = /left|right/.test(side) ? page.left : page.top;
      return Math.abs($$('.layer > *')[i].getBoundingClientRect()[side] - from - units * width / 1000) >= 1;
    }));
    equal(off, [], zoom);
  }
  equal([root.activeElement === name, name.value], [true, 'Ada L']);
});

inDocument('10 22 controls look like the drawn values', [form], async () => {
  style('#viewer {width: 1000px; scrollbar-gutter: auto}');
  await painted();
  const box = $('section').getBoundingClientRect();
  const controls = await pixels(box);
  style('.layer { display: none } .value:not(.stale) { display: inline }');
  const different = difference(controls, await pixels(box));
  equal(different < 500, true, different);  // a line that is off by a pixel makes it a thousand
});

inDocument('11 13 the host says what a field means; what it leaves and other types stay drawn', [form], async pages => {
  viewer.interpretation = ({ name }) => ({
    name: { value: 'Grace', label: 'Full name', required: true, readOnly: true, multiline: true },
    paid: { checked: false, value: 'ja' }, bare: { value: 'x', checked: true },
    method: { choices: ['Barter'], value: 'Barter' }, day: null, hidden: {},
  })[name];
  await viewer.show(pages);
  const properties = ['localName', 'ariaLabel', 'value', 'checked', 'required', 'readOnly'];
  equal($$('.layer > *').map(each => properties.map(name => each[name]).join()), [
    'textarea,Full name, name,Grace,,true,true', 'input,Paid, paid,on,false,false,false',
    'input,bare,on,true,false,false', 'select,method,Barter,,false,', 'textarea,Full name, name,Grace,,true,true',
    'textarea,note,one\ntwo,,false,false', 'input,hidden,secret,false,false,false',
  ]);
  equal(entries(), 'name=Grace&bare=x&method=Barter&note=one\ntwo&hidden=secret');
  equal($$('g[role=group]').map(each => each.getAttribute('aria-label')), ['day', 'radio']);
  equal(viewer.pages[0].fields.find(({ name }) => name === 'radio'), {
    page: 1, type: null, name: 'radio', data: '1', flags: 0, exFlags: 0,
    bounds: { left: 600, top: 520, right: 660, bottom: 580 }, drawn: true, text: '',
  });
});

inDocument('12 check boxes, dates, fields of one name', [form], async () => {
  const marks = [[132, 255], [425, 264]];
  equal(await colours(marks), ['200 0 0', '255 255 255']);
  for (const name of ['paid', 'bare']) await click(control(name));
  await clickAt(5, 5);
  equal(await colours(marks), ['255 255 255', '0 0 0']);

  const day = control('day');
  for (const [act, expected] of [
    [() => {}, 'text 7.11.2025 7.11.2025'], [() => day.focus(), 'date 2025-11-07 7.11.2025'],
    [() => { day.value = '2024-02-29'; }, 'date 2024-02-29 29.2.2024'], [() => day.blur(), 'text 29.2.2024 29.2.2024'],
  ]) {
    act();
    day.dispatchEvent(new Event('input', { bubbles: true }));
    equal([day.type, day.value, viewer.values.day].join(' '), expected);
  }
  control('name').focus();
  await write(' L');
  equal($$('[aria-label$=name]').map(({ value }) => value), ['Ada L', 'Ada L']);
  equal(entries(), 'name=Ada L&bare=on&method=Cash&day=29.2.2024&note=one\ntwo');
});

inDocument('14 the fields belong to the form', [form], async pages => {
  viewer.interpretation = ({ name }) => name === 'name' ? { required: true } : undefined;
  viewer.values = { day: '1.2.2023' };
  await viewer.show(pages);
  const drawn = 'name=Ada&paid=Yes&method=Cash&day=7.11.2025&note=one\ntwo';
  equal(entries(), drawn.replace('7.11.2025', '1.2.2023'));

  const [form, fieldset] = document.querySelectorAll('form, fieldset');
  const events = [];
  for (const type of ['input', 'change'])
    form.addEventListener(type, ({ target }) => events.push(`${type} ${target.id} ${viewer.values.name}`));
  control('name').select();
  for (const key of ['Delete', 'Tab']) await press(key);
  equal(events, ['input viewer ', 'change viewer ']);
  equal([form.reportValidity(), viewer.validity.valueMissing, root.activeElement.ariaLabel],
    [false, true, 'Your name, name']);

  const changed = 'name=Grace&method=Card&day=1.2.2023&note=one\ntwo';
  for (const [act, entered, states] of [
    [() => { viewer.values = { name: 'Grace', paid: false, method: 'Card' }; }, changed, '-------'],
    [() => viewer.setAttribute('readonly', ''), changed, 'rxxxrrr'],
    [() => { fieldset.disabled = true; }, '', 'xxxxxxx'],
    [() => { fieldset.disabled = viewer.toggleAttribute('readonly'); }, changed, '-------'],
    [() => form.reset(), drawn, '-------'], [() => viewer.show(pages), drawn, '-------'],
  ]) {
    await act();
    equal([entries(), $$('.layer > *').map(each => each.disabled ? 'x' : each.readOnly ? 'r' : '-').join('')],
      [entered, states], act);
  }
  equal(form.checkValidity(), true);
});

inDocument('15 16 names, reading order, and nothing for axe to report', [form, form], async () => {
  const owned = $$('g[aria-owns]').map(each => root.getElementById(each.getAttribute('aria-owns')).ariaLabel);
  const names = ['Your name, name', 'Paid, paid', 'bare', 'method', 'day', 'name', 'note'];
  equal(owned, [...names, ...names]);
  await load('/node_modules/axe-core/axe.js');
  const { violations, passes } = await axe.run({ rules: { 'page-has-heading-one': { enabled: false } } });
  equal(violations.map(({ id, nodes }) => `${id}: ${nodes.map(({ html }) => html)}`), []);
  equal(passes.length > 10, true);
  if (navigator.userAgent.includes('Firefox')) return;  // which does not tell what is read
  const heard = ({ name, children = [] }) => [name, ...children.flatMap(heard)];
  equal(heard(await read()).filter(name => /name|aid/.test(name)).slice(0, 4),
    ['Your name:', 'Your name, name', 'Paid, paid', 'Paid']);
});
