// From what a host hands over to the text of a page, and from there to its two halves: what the
// library wrote, and the pictures it copied as they came.

/**
 * @typedef {string | ArrayBuffer | Uint8Array} Source A page's document: text, or bytes in UTF-8 or
 *   UTF-16 of either order, with or without a mark or a terminating zero.
 * @typedef {{text: string, width: number, height: number}} PageText
 */

/** What cannot be shown, with a sentence that says why. */
export class PageError extends Error {}

/** @param {Uint8Array} bytes */
function encodingOf([first, second]) {
  if ((first === 0xfe && second === 0xff) || (first === 0 && second === 0x3c)) return 'utf-16be';
  if ((first === 0xff && second === 0xfe) || (first === 0x3c && second === 0)) return 'utf-16le';
  return 'utf-8';
}

/** @param {Source} source */
function textOf(source) {
  if (typeof source === 'string') return source;
  const bytes = new Uint8Array(source);
  const encoding = encodingOf(bytes);
  try {
    // Half a surrogate pair may stand in UTF-16 and is shown as a replacement.
    return new TextDecoder(encoding, { fatal: encoding === 'utf-8' }).decode(bytes);
  } catch {
    throw new PageError('The document is neither UTF-8 nor UTF-16.');
  }
}

/**
 * Reads a page's text and size. Throws a PageError when it is not a page.
 * @param {Source} source
 * @returns {PageText}
 */
export function readPage(source) {
  const text = textOf(source).replace(/^\uFEFF/, '').replace(/\0+$/, '');
  const root = /^<svg xmlns=[^>]* width="(-?\d+)" height="(-?\d+)"><defs>/.exec(text);
  if (!root) throw new PageError('The document is not a page: it does not begin as one.');
  if (!text.endsWith('</svg>')) throw new PageError('The page is cut off: its end is missing.');
  const [width, height] = [Number(root[1]), Number(root[2])];
  if (width <= 0 || height <= 0) throw new PageError(`The page has no area: ${width} by ${height}.`);
  return { text, width, height };
}

/** @type {{createHTML(text: string): any} | undefined} */
let policy;

/** A detached document runs nothing and loads nothing. @param {string} text */
function parse(text) {
  const trustedTypes = /** @type {any} */ (globalThis).trustedTypes;
  policy ??= trustedTypes?.createPolicy('velumark-viewer', { createHTML: (/** @type {string} */ t) => t });
  const parsed = new DOMParser().parseFromString(policy?.createHTML(text) ?? text, 'text/html');
  return /** @type {SVGSVGElement} */ (parsed.querySelector('svg'));
}

/**
 * Parses a page by the rules of HTML, which keep the TABs in attributes and show pages that no XML
 * parser accepts.
 *
 * Pictures are copied into the definitions unread, so their markup may close more than it opened.
 * They are parsed apart: whatever stands in them, the rest of the page stays as the library wrote
 * it. Their place is certain, since all other text of a host is escaped: it begins with the first
 * group of that name and ends with the last symbol before the end of the definitions.
 * @param {string} text
 */
export function parsePage(text) {
  const from = text.indexOf('<g id="QZ_G0">');
  const end = text.lastIndexOf('</symbol>', text.lastIndexOf('</defs>')) + '</symbol>'.length;
  if (from < 0 || from > end) return { page: parse(text) };
  return {
    page: parse(text.slice(0, from) + text.slice(end)),
    pictures: parse(`<svg>${text.slice(from, end)}</svg>`),
  };
}
