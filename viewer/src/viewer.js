// The element: it loads pages, shows them, and keeps what is typed into them.
import { Fields } from './fields.js';
import { PageError, parsePage, readPage } from './read.js';
import { repair, stretchesCharacters, svg } from './repair.js';
import { Scope, limitReferences, sanitize, sanitizePictures } from './sanitize.js';
import { activateLink, nameGroup, readSemantics } from './semantics.js';
import { style } from './style.js';
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

/** What text without a font is shown in. */
const NO_FONT = { css: '16px serif', size: 16 };

let pagesMade = 0;

/** Lets the browser show what there is and answer its user. */
const nextTask = () => new Promise(resolve => {
  const { port1, port2 } = new MessageChannel();
  port1.onmessage = resolve;
  port2.postMessage(null);
});

/** @param {Source} source @param {number} index */
function readNumbered(source, index) {
  try {
    return readPage(source);
  } catch (error) {
    throw error instanceof PageError ? new PageError(`Page ${index + 1}: ${error.message}`) : error;
  }
}

/** @param {string} address @param {number} index */
function load(address, index) {
  const page = fetch(address).catch(() => null).then(async response => {
    if (!response?.ok) throw new PageError(`Page ${index + 1}: ${address} cannot be loaded.`);
    return readNumbered(await response.arrayBuffer(), index);
  });
  page.catch(() => {});  // is reported at its turn
  return page;
}

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
  #sharedFonts = new Map();
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
    if (name === 'src') this.#showAll(() => (value ?? '').split(/\s+/).filter(Boolean).map(load));
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

  /** @param {string} state */
  formStateRestoreCallback(state) {
    this.values = JSON.parse(state);
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
  show(sources) {
    return this.#showAll(() => sources.map(readNumbered));
  }

  /** @param {() => (PageText | Promise<PageText>)[]} read */
  async #showAll(read) {
    const run = ++this.#run;
    try {
      const pages = read();
      if (!pages.length) this.#clear();
      for (const [i, coming] of pages.entries()) {
        const page = await coming;
        if (run !== this.#run) return;
        if (i === 0) this.#clear();
        this.#add(page, i + 1);
        await nextTask();
        if (run !== this.#run) return;
      }
      this.dispatchEvent(new Event('load'));
    } catch (error) {
      if (!(error instanceof PageError)) throw error;
      if (run === this.#run) this.dispatchEvent(new ErrorEvent('error', { message: error.message, error }));
    }
  }

  #clear() {
    this.#root.replaceChildren();
    this.#root.adoptedStyleSheets = [style];
    for (const font of this.#fonts) document.fonts.delete(font);
    this.#fonts = [];
    this.#pages = [];
    for (const map of [this.#fields, this.#sharedFonts, this.#links, this.#signatures]) map.clear();
    this.scrollTop = 0;
  }

  /** @param {PageText} text @param {number} number */
  #add({ text, width, height }, number) {
    const parsed = parsePage(text);
    const { page } = parsed;
    const scope = new Scope(`p${++pagesMade}_`, this.#sharedFonts);
    const pictures = parsed.pictures ? sanitizePictures(parsed.pictures, scope) : [];
    sanitize(page, scope);
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
    repair(page, scope.prefix, fontOf, this.#probed ?? false);
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
    this.#fields.addPage(found.fields, drawing, layer, shown, fontOf, this.interpretation);
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

  /** Tells the form around what the fields hold and whether they may be sent. */
  #submit() {
    this.#internals.setFormValue(this.#fields.data, JSON.stringify(this.values));
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
      page.element.style.contentVisibility = '';
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
    const link = this.#links.get(target.closest('a[href]') ?? target);
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
      if (!group.hasAttribute('aria-owns')) return undefined;
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
