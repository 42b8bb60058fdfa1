// Fields as real controls: what a field means, where its control stands, and the value it shares
// with others of its name.
import { svg } from './repair.js';
import { nameGroup } from './semantics.js';
import { measure, widthOf } from './text.js';

/**
 * @typedef {import('./semantics.js').Field} Field
 * @typedef {import('./semantics.js').Bounds} Bounds
 * @typedef {import('./text.js').Font} Font
 * @typedef {object} Interpretation What a field means. What is left out stays a guess.
 * @property {string} [value] the value at the beginning; of a check box, what it submits
 * @property {string[]} [choices] of a combo box
 * @property {boolean} [checked]
 * @property {string} [label]
 * @property {boolean} [required]
 * @property {boolean} [readOnly]
 * @property {boolean} [multiline]
 * @typedef {{run: Element, x: number, end: number, y: number}} Words a run of text on the page
 * @typedef {HTMLInputElement | HTMLTextAreaElement | HTMLSelectElement} Input
 */

const OFF = /^(?:|0|off|no|false)$/i;

/** Whether a field has a value of which the page shows nothing: then it is not for the reader. @param {Field} field */
const isHidden = ({ data, drawn }) => !drawn && !OFF.test(data);

/**
 * The guess of what a field means, from its data and what is drawn in it.
 * @param {Field} field
 * @returns {Interpretation}
 */
function guess({ type, data, text }) {
  switch (type) {
    case 'FT_CHECKBOX': return { checked: !OFF.test(data), value: OFF.test(data) || data === '1' ? 'on' : data };
    case 'FT_COMBOBOX': return { value: text, choices: [...new Set(data.replace(/\t$/, '').split('\t'))] };
    case 'FT_DATE': return { value: text };
    default: return { value: data, multiline: /[\n\r]/.test(data + text) };
  }
}

// ---- Dates ----

/** Whether a pattern is made of a year, a month and a day in digits. @param {string} pattern */
const isNumeric = pattern =>
  pattern.replace(/[^a-z]+/gi, ' ').trim().split(' ').map(part => part[0]).sort().join('') === 'Mdy' &&
  !/yyyyy|MMM|ddd|(?<!y)y{1,3}(?!y)/.test(pattern);

/** @param {string} iso @param {string} pattern */
function formatDate(iso, pattern) {
  const [y, m, d] = iso.split('-');
  return iso && pattern.replace(/yyyy|MM?|dd?/g, part =>
    part[0] === 'y' ? y : (part[0] === 'M' ? m : d).slice(part.length === 2 ? 0 : -String(Number(part[0] === 'M' ? m : d)).length));
}

/** The date that a text shows, or nothing. @param {string} text @param {string} pattern */
function parseDate(text, pattern) {
  const order = pattern.match(/yyyy|MM?|dd?/g) ?? [];
  const digits = text.match(/\d+/g) ?? [];
  /** @type {Record<string, string>} */
  const parts = Object.fromEntries(order.map((part, i) => [part[0], digits[i] ?? '']));
  const iso = `${parts.y?.padStart(4, '0')}-${parts.M?.padStart(2, '0')}-${parts.d?.padStart(2, '0')}`;
  return formatDate(iso, pattern) === text ? iso : '';
}

/** The browser's calendar while the field has the focus, the page's pattern otherwise. @param {HTMLInputElement} input @param {string} pattern */
function addCalendar(input, pattern) {
  input.addEventListener('focus', () => {
    const iso = parseDate(input.value, pattern);
    if (input.type === 'date' || input.readOnly || (input.value && !iso)) return;
    input.type = 'date';
    input.value = iso;
  });
  input.addEventListener('blur', () => {
    if (input.type !== 'date') return;
    const shown = formatDate(input.value, pattern);
    input.type = 'text';
    input.value = shown;
  });
}

// ---- A control ----

/** One field's control and what is drawn for it. */
class Control {
  /** @param {Field} field @param {Interpretation} meaning @param {Element} group @param {(run: Element) => Font} fontOf */
  constructor(field, meaning, group, fontOf) {
    this.field = field;
    this.meaning = meaning;
    this.group = group;
    this.pattern = field.type === 'FT_DATE' ? field.data.replace(/^\d+ /, '') : '';
    this.input = this.#createInput();
    // Letters drawn as outlines show the value, too. No other shapes have names.
    this.drawn = [...group.querySelectorAll('text,path[id],use:not([*|href*=QZ_I],[*|href*=QZ_S])')];
    if (this.checkable) this.mark = this.#findMark();
    else {
      this.#placeText(fontOf);
      this.#preparePrint();
    }
  }

  get checkable() {
    return this.field.type === 'FT_CHECKBOX';
  }

  #createInput() {
    const { type } = this.field;
    const name = type === 'FT_COMBOBOX' ? 'select' : this.meaning.multiline && type === 'FT_FORMTEXT' ? 'textarea' : 'input';
    const input = /** @type {Input} */ (document.createElement(name));
    if (this.checkable) /** @type {HTMLInputElement} */ (input).type = 'checkbox';
    if (input instanceof HTMLSelectElement) {
      const { choices = [], value = '' } = this.meaning;
      for (const choice of new Set([...(choices.includes(value) ? [] : [value]), ...choices])) input.add(new Option(choice));
    }
    if (isNumeric(this.pattern)) addCalendar(/** @type {HTMLInputElement} */ (input), this.pattern);
    input.required = this.meaning.required ?? false;
    return input;
  }

  /** What is drawn for a check box apart from its frame, which is about as large as the field. */
  #findMark() {
    const { left, top, right, bottom } = this.field.bounds;
    const drawn = [...this.group.querySelectorAll('path,rect,line,polyline,polygon,use,text')];
    const mark = drawn.filter(element => {
      const [, w, h] = /^M\S+ ?\S*h(-?\d+)v(-?\d+)h\S+z$/.exec(element.getAttribute('d') ?? '')?.map(Number) ?? [];
      return !(Math.abs(w) > 0.75 * (right - left) && Math.abs(h) > 0.75 * (bottom - top));
    });
    if (mark.length) return mark;
    const [w, h] = [right - left, bottom - top];
    const tick = svg('path', {
      d: `M${left + 0.2 * w} ${top + 0.55 * h}L${left + 0.42 * w} ${top + 0.78 * h}L${left + 0.82 * w} ${top + 0.24 * h}`,
      fill: 'none', stroke: 'rgb(0,0,0)', 'stroke-width': 0.1 * Math.min(w, h),
    });
    this.group.append(tick);
    return [tick];
  }

  /** Font, colour and place of the drawn value are those of the control's text. @param {(run: Element) => Font} fontOf */
  #placeText(fontOf) {
    const { left, top, right, bottom } = this.field.bounds;
    const height = bottom - top;
    const { style } = this.input;
    const run = this.drawn.find(each => each.localName === 'text');
    const font = run ? fontOf(run) : { css: `${Math.round(height * 0.65)}px sans-serif`, size: Math.round(height * 0.65) };
    const x = run ? Number(run.getAttribute('x')?.split(' ')[0]) : left + font.size / 5;
    style.font = font.css;
    style.fontSize = units(font.size);
    style.color = this.drawn[0]?.closest('[fill]')?.getAttribute('fill') ?? '';
    const { fontBoundingBoxAscent: ascent, fontBoundingBoxDescent: descent } = measure('x', font);
    const baseline = run ? Number(run.getAttribute('y')) - top : (height - ascent - descent) / 2 + ascent;
    const multiline = this.input instanceof HTMLTextAreaElement;
    // One line is centred in its box; the box is made smaller on one side until the line is in place.
    const shift = multiline ? baseline - ascent : 2 * baseline - height - ascent + descent;
    style.paddingTop = units(Math.max(0, shift));
    style.paddingBottom = units(multiline ? 0 : Math.max(0, -shift));
    style.paddingLeft = units(Math.max(0, x - left));
    this.place = { x, y: top + baseline, font, line: ascent + descent };
  }

  /** In print the value is text of the page: the drawn one until it is changed. */
  #preparePrint() {
    const { x, y, font } = /** @type {NonNullable<typeof this.place>} */ (this.place);
    this.printed = svg('text', { 'xml:space': 'preserve', x, y });
    this.printed.style.font = font.css;
    this.printed.style.fill = this.input.style.color;
    this.group.append(this.printed);
    for (const element of [...this.drawn, this.printed]) element.classList.add('value');
  }

  /** @param {string | boolean} value */
  show(value) {
    const input = /** @type {HTMLInputElement} */ (this.input);
    if (this.checkable) {
      input.checked = Boolean(value);
      for (const element of this.mark ?? []) /** @type {SVGElement} */ (element).style.display = value ? '' : 'none';
      return;
    }
    const shown = String(value);
    const own = input.type === 'date' ? parseDate(shown, this.pattern) : shown;
    if (input.value !== own) input.value = own;  // a date that is half typed stays
    this.#print(shown);
  }

  /** @param {string} value */
  #print(value) {
    const { place, printed } = this;
    if (!place || !printed) return;
    const changed = value !== this.field.text;
    for (const element of this.drawn) element.classList.toggle('stale', changed);
    printed.classList.toggle('stale', !changed);
    printed.replaceChildren(...value.split('\n').map((line, i) => {
      const span = svg('tspan', { x: place.x, y: place.y + i * place.line });
      span.textContent = line;
      return span;
    }));
  }

  /** @returns {string | boolean} */
  read() {
    const input = /** @type {HTMLInputElement} */ (this.input);
    if (this.checkable) return input.checked;
    return input.type === 'date' ? formatDate(input.value, this.pattern) : input.value;
  }

  /** @param {boolean} readOnly @param {boolean} disabled */
  lock(readOnly, disabled) {
    const locked = readOnly || (this.meaning.readOnly ?? false);
    const typed = !this.checkable && !(this.input instanceof HTMLSelectElement);
    if (typed) /** @type {HTMLInputElement} */ (this.input).readOnly = locked;
    // The others know no such state.
    this.input.disabled = disabled || (locked && !typed);
  }
}

/** A length in the page's units, at any zoom. @param {number} count */
const units = count => `calc(${count} * var(--unit))`;

// ---- Names ----

/**
 * Words drawn strictly beside a field: of a check box on its right, else on the left, on its line.
 * A label further away might be another field's, and a wrong one is worse than none.
 * @param {Field} field @param {Words[]} words in reading order
 */
function wordsBeside({ type, bounds: { left, top, right, bottom } }, words) {
  const near = bottom - top;
  const line = words.filter(({ y }) => y > top && y < bottom + 0.2 * near).sort((a, b) => a.x - b.x);
  /** @param {Words[]} ordered @param {(a: Words) => number} distance @param {(a: Words, b: Words) => number} gap */
  const collect = (ordered, distance, gap) => {
    const result = ordered.filter(word => distance(word) >= -1).sort((a, b) => distance(a) - distance(b)).slice(0, 20);
    if (!result.length || distance(result[0]) > near) return [];
    const end = result.findIndex((word, i) => i > 0 && gap(result[i - 1], word) > near * 0.6);
    return end < 0 ? result : result.slice(0, end);
  };
  const after = type === 'FT_CHECKBOX' ? collect(line, word => word.x - right, (a, b) => b.x - a.end) : [];
  const before = after.length ? [] : collect(line, word => left - word.end, (a, b) => a.x - b.end).reverse();
  return [...after, ...before].map(({ run }) => run.textContent?.trim()).join(' ').replace(/[\s:]+$/, '');
}

/** The runs of a page that lie outside fields. @param {Element} page @param {(run: Element) => Font} fontOf @returns {Words[]} */
function wordsOf(page, fontOf) {
  return [...page.querySelectorAll('text')]
    .filter(text => !text.closest('g[velumark\\:purpose],defs'))
    .flatMap(text => [...text.querySelectorAll('tspan[class]')].length ? [...text.querySelectorAll('tspan[class]')] : [text])
    .map(run => {
      const x = Number((run.firstElementChild ?? run).getAttribute('x')?.split(' ')[0]);
      const y = Number(run.closest('text')?.getAttribute('y'));
      return { run, x, y, end: x + widthOf(run.textContent ?? '', fontOf(run)) };
    });
}

// ---- Values ----

/** The value that all fields of one name have in common. */
class Entry {
  /** @param {string} name @param {string | boolean} value @param {string} submitted of a check box */
  constructor(name, value, submitted) {
    this.name = name;
    this.value = this.initial = value;
    this.submitted = submitted;
    /** @type {Control[]} */
    this.controls = [];
  }

  /** @param {string | boolean} value */
  set(value) {
    this.value = value;
    for (const control of this.controls) control.show(value);
  }
}

/** @typedef {Record<string, string | boolean>} Values text, or of a check box whether it is checked */

/** All fields of the pages that are shown, and what they hold. */
export class Fields {
  /** @type {Map<Element, {control: Control, entry: Entry}>} by input */
  #inputs = new Map();
  /** @type {Map<string, Entry>} */
  #entries = new Map();
  /** @type {Values} set before their fields were there */
  #given = {};

  get controls() {
    return [...this.#inputs.values()].map(({ control }) => control);
  }

  get #named() {
    return [...this.#entries.values()].filter(({ name }) => name);
  }

  /**
   * Puts the controls of a page into the layer above its drawing.
   * @param {Map<Element, Field>} fields by group
   * @param {Element} drawing @param {Element} layer
   * @param {{width: number, height: number}} size of the page
   * @param {(run: Element) => Font} fontOf
   * @param {(field: Field) => Interpretation | null | undefined} interpretation
   */
  addPage(fields, drawing, layer, { width, height }, fontOf, interpretation) {
    const words = fields.size ? wordsOf(drawing, fontOf) : [];
    for (const [group, field] of fields) {
      const known = interpretation(field);
      if (!field.type || known === null || (!known && isHidden(field))) {
        nameGroup(group, field.name || 'Field');
        continue;
      }
      const control = new Control(field, { ...guess(field), ...known }, group, fontOf);
      const { input } = control;
      const label = control.meaning.label ?? wordsBeside(field, words);
      input.setAttribute('aria-label', [...new Set([label, field.name])].filter(Boolean).join(', ') || 'Field');
      input.id = `field${this.#inputs.size}`;
      group.setAttribute('aria-owns', input.id);
      const { left, top, right, bottom } = field.bounds;
      const box = { left: left / width, top: top / height, width: (right - left) / width, height: (bottom - top) / height };
      for (const [name, part] of Object.entries(box)) input.style.setProperty(name, `${100 * part}%`);
      layer.append(input);
      this.#add(control);
    }
  }

  /** @param {Control} control */
  #add(control) {
    const { field: { name }, meaning, input, checkable } = control;
    const key = name ? `${checkable} ${name}` : input.id;
    let entry = this.#entries.get(key);
    if (!entry) {
      entry = new Entry(name, checkable ? meaning.checked ?? false : meaning.value ?? '', meaning.value ?? 'on');
      this.#entries.set(key, entry);
      if (name && Object.hasOwn(this.#given, name)) entry.value = this.#given[name];
    }
    entry.controls.push(control);
    this.#inputs.set(input, { control, entry });
    control.show(entry.value);
  }

  clear() {
    this.#inputs.clear();
    this.#entries.clear();
  }

  /** @returns {Values} */
  get values() {
    return Object.fromEntries(this.#named.map(({ name, value }) => [name, value]));
  }

  set values(values) {
    Object.assign(this.#given, values);
    for (const entry of this.#named) if (Object.hasOwn(values, entry.name)) entry.set(values[entry.name]);
  }

  reset() {
    this.#given = {};
    for (const entry of this.#entries.values()) entry.set(entry.initial);
  }

  /** Takes over what was typed. @param {EventTarget | null} input */
  take(input) {
    const { control, entry } = this.#inputs.get(/** @type {Element} */ (input)) ?? {};
    if (control) entry?.set(control.read());
  }

  /** What a form is sent. */
  get data() {
    const data = new FormData();
    for (const { name, value, submitted } of this.#named)
      if (value !== false) data.append(name, value === true ? submitted : value);
    return data;
  }

  get firstInvalid() {
    return [...this.#inputs.keys()].map(input => /** @type {Input} */ (input)).find(input => input.willValidate && !input.validity.valid);
  }
}
