// The element: it loads pages, shows them, and keeps what is typed into them.
import { Control, Fields, guess, isHidden, wordsBeside, wordsOf } from './fields.js';
import { PageError, parsePage, readPage } from './read.js';
import { repair, stretchesCharacters, svg } from './repair.js';
import { Scope, limitReferences, sanitize, sanitizePictures } from './sanitize.js';
import { activateLink, nameGroup, readSemantics } from './semantics.js';
import { selectedText } from './text.js';

/**
 * @typedef {import('./read.js').Source} Source
 * @typedef {import('./read.js').PageText} PageText
 * @typedef {import('./semantics.js').Field} Field
 * @typedef {import('./semantics.js').Link} Link
 * @typedef {import('./semantics.js').Target} Target
 * @typedef {import('./semantics.js').Signature} Signature
 * @typedef {import('./fields.js').Interpretation} Interpretation
 * @typedef {import('./text.js').Font} Font
 * @typedef {object} Page
 * @property {number} number from 1
 * @property {number} width in the page's units
 * @property {number} height
 * @property {HTMLElement} element
 * @property {Field[]} fields
 * @property {Link[]} links
 * @property {Target[]} targets
 * @property {Signature[]} signatures
 */

const STYLE = `
:host { display: block; overflow: auto; scrollbar-gutter: stable; background: #e6e6e6; color: #000; }
:host([hidden]) { display: none; }
section { position: relative; margin: 0 auto; background: #fff; content-visibility: auto; }
section + section { margin-top: 12px; }
svg { position: absolute; inset: 0; width: 100%; height: 100%; overflow: hidden; isolation: isolate;
  font: 16px serif; }
[role=group]:focus-visible, section:focus { outline: none; }
g:focus-visible { outline: 2px solid #06c; }
tspan { unicode-bidi: isolate; }
.value { display: none; }
.layer { position: absolute; inset: 0; pointer-events: none; }
.target { position: absolute; width: 1px; height: 1px; outline: none; }
input, select, textarea { position: absolute; box-sizing: border-box; margin: 0; padding: 0; border: 0;
  min-width: 0; min-height: 0; border-radius: 0; background: transparent; appearance: none; resize: none;
  overflow: hidden; pointer-events: auto; text-overflow: clip; opacity: 1; }
input:is(:hover, :focus), select:is(:hover, :focus), textarea:is(:hover, :focus) { background: rgb(0 102 204 / .08); }
input:focus-visible, select:focus-visible, textarea:focus-visible { outline: 2px solid #06c; outline-offset: 1px; }
option { color: initial; font: 16px sans-serif; }
@media print {
  :host { overflow: visible; background: none; }
  section { content-visibility: visible; break-inside: avoid;
    width: min(100%, (100vh - var(--above, 0px)) * var(--ratio)) !important; }
  section + section { break-before: page; margin-top: 0; }
  .layer { display: none; }
  .value:not(.stale) { display: inline; }
}`;

const style = new CSSStyleSheet();
style.replaceSync(STYLE);

/** What text without a font is shown in. */
const NO_FONT = { css: '16px serif', size: 16 };

let pagesMade = 0;

/** Lets the browser show what there is and answer its user. */
const nextTask = () => new Promise(resolve => {
  const { port1, port2 } = new MessageChannel();
  port1.onmessage = resolve;
  port2.postMessage(null);
});

/**
 * Shows pages and makes them live.
 *
 * Attributes: `src` (addresses of pages, parted by blanks), `zoom` (`fit-width`, `fit-page` or a
 * number, 1 being the size in print), `units-per-inch` of the pages (1440), `readonly`.
 *
 * Events: `load` when all pages are shown; `error` with a sentence in `message`; `input` and
 * `change` of fields; `signature` with the signature in `detail`; `link` with the link in `detail`,
 * which can be cancelled.
 */
export class VelumarkViewer extends HTMLElement {
  static formAssociated = true;
  static observedAttributes = ['src', 'zoom', 'units-per-inch', 'readonly'];

  #root = this.attachShadow({ mode: 'open' });
  #internals = this.attachInternals();
  /** @type {Page[]} */
  #pages = [];
  #fields = new Fields();
  /** @type {Map<Element, Link>} */
  #links = new Map();
  /** @type {Map<Element, Signature>} */
  #signatures = new Map();
  /** @type {FontFace[]} */
  #fonts = [];
  /** @type {Map<string, string>} */
  #fontClasses = new Map();
  #disabled = false;
  #run = 0;
  #observer = new ResizeObserver(() => this.#layOut());

  /**
   * What a field means. It gets the raw field and may return what it knows better than the viewer's
   * guess, or null for a field that shall stay as it is drawn.
   * @type {(field: Field) => Interpretation | null | undefined}
   */
  interpretation = () => undefined;

  constructor() {
    super();
    this.#root.adoptedStyleSheets = [style];
    this.#root.addEventListener('input', event => this.#take(event));
    this.#root.addEventListener('change', event => {
      this.#take(event);
      this.dispatchEvent(new Event('change', { bubbles: true }));
    });
    this.#root.addEventListener('click', event => this.#follow(event));
    this.#root.addEventListener('keydown', event => this.#press(/** @type {KeyboardEvent} */ (event)));
    this.addEventListener('copy', event => this.#copy(event));
    this.addEventListener('invalid', () => this.#fields.firstInvalid?.focus());
  }

  connectedCallback() {
    if (!this.hasAttribute('tabindex')) this.tabIndex = 0;
    this.#observer.observe(this);
    addEventListener('beforeprint', this.#beforePrint);
  }

  disconnectedCallback() {
    this.#observer.disconnect();
    removeEventListener('beforeprint', this.#beforePrint);
  }

  /** The first page shares its sheet with the margin of the document around. */
  #beforePrint = () => {
    const above = this.getBoundingClientRect().top + scrollY;
    this.#pages[0]?.element.style.setProperty('--above', `${above < 20 ? above : 0}px`);
  };

  /** @param {string} name @param {string | null} _ @param {string | null} value */
  attributeChangedCallback(name, _, value) {
    if (name === 'src') this.#load((value ?? '').split(/\s+/).filter(Boolean));
    else if (name === 'readonly') this.#lock();
    else this.#layOut();
  }

  /** @param {boolean} disabled */
  formDisabledCallback(disabled) {
    this.#disabled = disabled;
    this.#lock();
  }

  formResetCallback() {
    this.#fields.reset();
    this.#submit();
  }

  /** @param {FormData} state */
  formStateRestoreCallback(state) {
    this.values = Object.fromEntries(/** @type {any} */ (state));
  }

  /** The pages that are shown, with all that they say beyond their drawing. */
  get pages() {
    return [...this.#pages];
  }

  /** The fields' values by name: text, or of a check box whether it is checked. */
  get values() {
    return this.#fields.values;
  }

  /** Sets those that are named; they may come before their pages. */
  set values(values) {
    this.#fields.values = values;
    this.#submit();
  }

  get form() {
    return this.#internals.form;
  }

  get validity() {
    return this.#internals.validity;
  }

  checkValidity() {
    return this.#internals.checkValidity();
  }

  reportValidity() {
    return this.#internals.reportValidity();
  }

  // ---- Loading ----

  /**
   * Shows these pages instead of what is shown. If one of them is no page, there is an `error` event
   * and everything stays as it was.
   * @param {Source[]} sources
   * @returns {Promise<void>} when all are shown
   */
  async show(sources) {
    const run = ++this.#run;
    try {
      await this.#showAll(sources.map((source, i) => this.#read(source, i)), run);
    } catch (error) {
      this.#fail(error, run);
    }
  }

  /** @param {Source} source @param {number} index */
  #read(source, index) {
    try {
      return readPage(source);
    } catch (error) {
      throw error instanceof PageError ? new PageError(`Page ${index + 1}: ${error.message}`) : error;
    }
  }

  /** @param {string[]} addresses */
  async #load(addresses) {
    const run = ++this.#run;
    const pages = addresses.map(async (address, i) => {
      const response = await fetch(new URL(address, document.baseURI)).catch(() => null);
      if (!response?.ok) throw new PageError(`Page ${i + 1}: ${address} cannot be loaded.`);
      return this.#read(await response.arrayBuffer(), i);
    });
    for (const page of pages) page.catch(() => {});  // each is reported at its turn
    try {
      await this.#showAll(pages, run);
    } catch (error) {
      this.#fail(error, run);
    }
  }

  /** @param {unknown} error @param {number} run */
  #fail(error, run) {
    if (!(error instanceof PageError)) throw error;
    if (run === this.#run) this.dispatchEvent(new ErrorEvent('error', { message: error.message, error }));
  }

  /** @param {(PageText | Promise<PageText>)[]} pages @param {number} run */
  async #showAll(pages, run) {
    for (const [i, coming] of pages.entries()) {
      const page = await coming;
      if (run !== this.#run) return;
      if (i === 0) this.#clear();
      this.#add(page, i + 1);
      await nextTask();
      if (run !== this.#run) return;
    }
    if (!pages.length) this.#clear();
    this.dispatchEvent(new Event('load'));
  }

  #clear() {
    this.#root.replaceChildren();
    this.#root.adoptedStyleSheets = [style];
    for (const font of this.#fonts) document.fonts.delete(font);
    this.#fonts = [];
    this.#pages = [];
    for (const map of [this.#fields, this.#fontClasses, this.#links, this.#signatures]) map.clear();
    this.scrollTop = 0;
  }

  /** @param {PageText} text @param {number} number */
  #add({ text, width, height }, number) {
    const parsed = parsePage(text);
    const { page } = parsed;
    const scope = new Scope(`p${++pagesMade}_`, this.#fontClasses);
    sanitize(page, scope);
    const pictures = parsed.pictures ? sanitizePictures(parsed.pictures, scope) : [];
    if (parsed.pictures) page.querySelector('defs')?.append(...parsed.pictures.children);
    limitReferences(page);

    const section = document.createElement('section');
    nameGroup(section, `Page ${number}`);
    section.tabIndex = -1;
    const layer = document.createElement('div');
    layer.className = 'layer';
    const drawing = /** @type {SVGSVGElement} */ (svg('svg', { viewBox: `0 0 ${width} ${height}` }));
    const fonts = new Map([...scope.classes.values()].map(font => [font.name, font]));
    /** @param {Element} run */
    const fontOf = run => fonts.get(run.closest('[class]')?.classList[0] ?? '') ?? NO_FONT;
    this.#probed ??= stretchesCharacters(this.#root);
    repair(page, scope.prefix, fontOf, this.#probed);
    drawing.append(svg('rect', { width, height, fill: 'white' }), ...page.childNodes);
    const found = readSemantics(drawing, number);
    const shown = { number, width, height, element: section, fields: [...found.fields.values()],
      links: [...found.links.values()], targets: [...found.targets.values()], signatures: [...found.signatures.values()] };
    this.#pages.push(shown);
    this.#adoptRules([scope, ...pictures]);
    for (const [element, link] of found.links) {
      this.#links.set(element, link);
      activateLink(element, link);
    }
    for (const [group, signature] of found.signatures) {
      this.#signatures.set(group, signature);
      nameGroup(group, ['Signature', signature.name, signature.info].filter(Boolean).join(', '));
      group.setAttribute('tabindex', '0');
    }
    this.#addControls(found.fields, drawing, layer, fontOf, shown);
    section.append(drawing, layer);
    this.#size(shown);
    this.#root.append(section);
    this.#lock();
    this.#submit();
  }

  /** @type {boolean | undefined} */
  #probed;

  /** @param {Scope[]} scopes */
  #adoptRules(scopes) {
    const rules = scopes.flatMap(({ rules }) => rules).join('');
    if (rules) {
      const sheet = new CSSStyleSheet();
      sheet.replaceSync(rules);
      this.#root.adoptedStyleSheets.push(sheet);
    }
    for (const { family, source, descriptors } of scopes.flatMap(({ fonts }) => fonts)) {
      const font = new FontFace(family, `url("${source}")`, descriptors);
      document.fonts.add(font);
      this.#fonts.push(font);
    }
  }

  // ---- Fields ----

  /** @param {Map<Element, Field>} fields @param {Element} drawing @param {HTMLElement} layer @param {(run: Element) => Font} fontOf @param {Page} page */
  #addControls(fields, drawing, layer, fontOf, { width, height }) {
    const words = fields.size ? wordsOf(drawing, fontOf) : [];
    for (const [group, field] of fields) {
      const known = this.interpretation(field);
      if (!field.type || known === null || (!known && isHidden(field))) {
        nameGroup(group, field.name || 'Field');
        continue;
      }
      const meaning = { ...guess(field), ...known };
      const control = new Control(field, meaning, group, fontOf);
      const { input } = control;
      const label = meaning.label ?? wordsBeside(field, words);
      input.setAttribute('aria-label', [...new Set([label, field.name])].filter(Boolean).join(', ') || 'Field');
      const { left, top, right, bottom } = field.bounds;
      const box = { left: left / width, top: top / height, width: (right - left) / width, height: (bottom - top) / height };
      for (const [name, part] of Object.entries(box)) input.style.setProperty(name, `${100 * part}%`);
      layer.append(input);
      this.#fields.add(control);
      group.setAttribute('aria-owns', input.id);
    }
  }

  /** Tells the form around what the fields hold and whether they may be sent. */
  #submit() {
    this.#internals.setFormValue(this.#fields.data);
    const invalid = this.#fields.firstInvalid;
    if (invalid) this.#internals.setValidity(invalid.validity, invalid.validationMessage, invalid);
    else this.#internals.setValidity({});
  }

  /** @param {Event} event */
  #take({ target }) {
    this.#fields.take(target);
    this.#submit();
  }

  #lock() {
    for (const control of this.#fields.controls) control.lock(this.hasAttribute('readonly'), this.#disabled);
  }

  // ---- Links and signatures ----

  /**
   * Shows a document target and moves the focus there. Returns whether there is one of that name.
   * @param {string} name
   */
  goTo(name) {
    for (const page of this.#pages) {
      const target = page.targets.find(each => each.name === name);
      if (!target) continue;
      const mark = document.createElement('span');
      mark.className = 'target';
      mark.tabIndex = -1;
      mark.style.left = `${100 * target.x / page.width}%`;
      mark.style.top = `${100 * target.y / page.height}%`;
      // A browser that skips a page's content scrolls to nothing inside it.
      page.element.style.contentVisibility = 'visible';
      const next = this.#fields.controls.find(({ field }) => field.page === page.number && field.bounds.bottom > target.y);
      page.element.lastElementChild?.insertBefore(mark, next?.input ?? null);
      mark.scrollIntoView({ block: 'start' });
      mark.focus({ preventScroll: true });
      mark.addEventListener('blur', () => mark.remove());
      return true;
    }
    return false;
  }

  /** @param {Event} event */
  #follow(event) {
    const target = /** @type {Element} */ (event.target);
    const signature = this.#signatures.get(target.closest('g[tabindex]') ?? target);
    if (signature) this.dispatchEvent(new CustomEvent('signature', { detail: signature }));
    const link = this.#links.get(target.closest('a') ?? target);
    if (!link) return;
    const goes = this.dispatchEvent(new CustomEvent('link', { detail: link, cancelable: true }));
    if (!goes || link.type === 'internal') event.preventDefault();
    if (goes && link.type === 'internal') this.goTo(link.target);
  }

  /** @param {KeyboardEvent} event */
  #press(event) {
    const signature = this.#signatures.get(/** @type {Element} */ (event.target));
    if (!signature || !['Enter', ' '].includes(event.key)) return;
    event.preventDefault();
    this.dispatchEvent(new CustomEvent('signature', { detail: signature }));
  }

  // ---- Text and size ----

  /** @param {ClipboardEvent} event */
  #copy(event) {
    const text = selectedText(this.#root, group => {
      const control = this.#fields.controls.find(each => each.group === group && !each.checkable);
      return control && { text: String(control.read()), box: control.input.getBoundingClientRect(), page: group.closest('section') };
    });
    if (!text || !event.clipboardData) return;
    event.clipboardData.setData('text/plain', text);
    event.preventDefault();
  }

  #layOut() {
    for (const page of this.#pages) this.#size(page);
  }

  /** @param {Page} page */
  #size({ width, height, element }) {
    const zoom = this.getAttribute('zoom') ?? 'fit-width';
    const perInch = Number(this.getAttribute('units-per-inch')) || 1440;
    const number = Number(zoom);
    let shown = this.clientWidth;
    if (zoom === 'fit-page') shown = Math.min(shown, this.clientHeight * width / height);
    else if (number > 0) shown = number * width * 96 / perInch;
    element.style.width = `${shown}px`;
    element.style.setProperty('--ratio', String(width / height));
    element.style.aspectRatio = `${width} / ${height}`;
    /** @type {HTMLElement} */ (element.lastElementChild).style.setProperty('--unit', `${shown / width}px`);
  }
}

customElements.define('velumark-viewer', VelumarkViewer);
