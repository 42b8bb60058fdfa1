// What a page says beyond its drawing: fields, links, targets and signatures, as raw data.

/**
 * @typedef {{left: number, top: number, right: number, bottom: number}} Bounds in the page's units
 * @typedef {object} Field
 * @property {number} page number of the page, from 1
 * @property {string | null} type FT_CHECKBOX, FT_COMBOBOX, FT_FORMTEXT, FT_DATE, or null for others
 * @property {string} name
 * @property {string} data the type data, as the host of the library gave it; TABs part choices
 * @property {number} flags meaning known to that host alone
 * @property {number} exFlags likewise
 * @property {Bounds} bounds
 * @property {string} text what is drawn in it, as text
 * @property {boolean} drawn whether anything is drawn in it
 * @typedef {{page: number, type: 'external' | 'internal' | null, target: string}} Link
 * @typedef {{page: number, name: string, x: number, y: number}} Target
 * @typedef {{page: number, name: string, info: string, bounds: Bounds}} Signature
 */

/** The parser of HTML lowers the letters of names. @param {Element} element @param {string} name */
const extension = (element, name) => element.getAttribute(`velumark:${name}`) ?? '';

/** @param {Element} element @returns {Bounds} */
function boundsOf(element) {
  const [left, top, right, bottom] = extension(element, 'bounds').split(' ').map(Number);
  return { left, top, right, bottom };
}

/** @param {Element} group @param {number} page @returns {Field} */
function readField(group, page) {
  return {
    page,
    type: extension(group, 'formfieldtype') || null,
    name: extension(group, 'name'),
    data: extension(group, 'typedata'),
    flags: Number(extension(group, 'fieldflags')),
    exFlags: Number(extension(group, 'exfieldflags')),
    bounds: boundsOf(group),
    drawn: group.firstElementChild !== null,
    text: [...group.querySelectorAll('text')].map(text => text.textContent).join('\n'),
  };
}

/** @param {Element} element @param {number} page @returns {Link} */
function readLink(element, page) {
  const type = { FT_EXTERNALLINK: /** @type {const} */ ('external'), FT_INTERNALLINK: /** @type {const} */ ('internal') };
  const key = /** @type {keyof typeof type} */ (extension(element, 'linktype'));
  return { page, type: type[key] ?? null, target: extension(element, 'targetname') };
}

/** @param {Element} element @param {number} page @returns {Target} */
function readTarget(element, page) {
  const [x, y] = (element.getAttribute('position') ?? '').split(' ').map(Number);
  return { page, name: element.getAttribute('name') ?? '', x, y };
}

/** @param {Element} group @param {number} page @returns {Signature} */
function readSignature(group, page) {
  return { page, name: extension(group, 'name'), info: extension(group, 'infodata'), bounds: boundsOf(group) };
}

/**
 * @param {Element} page a cleaned page
 * @param {number} number
 */
export function readSemantics(page, number) {
  /** @template T @param {string} selector @param {(element: Element, page: number) => T} read @returns {Map<Element, T>} */
  const all = (selector, read) => new Map([...page.querySelectorAll(selector)]
    .filter(element => !element.closest('defs')).map(element => [element, read(element, number)]));
  return {
    fields: all('g[velumark\\:purpose="FormField"]', readField),
    links: all('a[velumark\\:purpose="HypertextLink"]', readLink),
    targets: all('velumark\\:target', readTarget),
    signatures: all('g[velumark\\:purpose="SignatureField"]', readSignature),
  };
}

const SAFE = /^(?:https?|mailto|tel):$/;

/** The address of an external link if it is one that may be followed. @param {string} target */
function safeAddress(target) {
  try {
    const url = new URL(target);
    return SAFE.test(url.protocol) ? url.href : null;
  } catch {
    return null;
  }
}

/** Gives a link its address back. @param {Element} element @param {Link} link */
export function activateLink(element, { type, target }) {
  const address = type === 'internal' ? `#${encodeURIComponent(target)}` : type && safeAddress(target);
  if (!address) return;
  element.setAttribute('href', address);
  if (type === 'internal') return;
  element.setAttribute('rel', 'noopener noreferrer');
  element.setAttribute('target', '_blank');
}

/** Makes a group that assistive software names. @param {Element} group @param {string} name */
export function nameGroup(group, name) {
  group.setAttribute('role', 'group');
  group.setAttribute('aria-label', name);
}
