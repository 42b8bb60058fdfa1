// Text as it is seen: how wide it is, and how it is copied.

/** @typedef {{css: string, size: number}} Font a CSS font and its size in the page's units */

const context = /** @type {CanvasRenderingContext2D} */ (document.createElement('canvas').getContext('2d'));

/** @param {string} text @param {Font} font */
export function measure(text, font) {
  if (context.font !== font.css) context.font = font.css;
  return context.measureText(text);
}

/** @param {string} text @param {Font} font */
export const widthOf = (text, font) => measure(text, font).width;

/** @typedef {{text: string, box: DOMRect, page: Element | null}} Piece */

/** The part of a text node that lies in a range. @param {Text} node @param {StaticRange} range */
function partOf(node, { startContainer, startOffset, endContainer, endOffset }) {
  const start = node === startContainer ? startOffset : 0;
  const end = node === endContainer ? endOffset : node.data.length;
  const part = document.createRange();
  part.setStart(node, start);
  part.setEnd(node, end);
  return part;
}

/**
 * The selected pieces of text in reading order.
 * @param {ShadowRoot} root @param {StaticRange} range @param {(group: Element) => Piece | undefined} valueOf
 */
function piecesOf(root, range, valueOf) {
  /** @type {Piece[]} */
  const pieces = [];
  const whole = document.createRange();
  whole.setStart(range.startContainer, range.startOffset);
  whole.setEnd(range.endContainer, range.endOffset);
  const walker = document.createTreeWalker(root, NodeFilter.SHOW_TEXT | NodeFilter.SHOW_ELEMENT);
  for (let node = walker.nextNode(); node; node = walker.nextNode()) {
    if (!whole.intersectsNode(node)) continue;
    const piece = node instanceof Element ? valueOf(node) : undefined;
    if (piece) pieces.push(piece);
    if (!(node instanceof Text) || !node.parentElement?.closest('text') || node.parentElement.closest('.value')) continue;
    const part = partOf(node, range);
    const text = part.toString();
    if (text) pieces.push({ text, box: part.getBoundingClientRect(), page: node.parentElement.closest('section') });
  }
  return pieces;
}

/** What stands between two pieces: nothing, a blank or the end of a line. @param {Piece} before @param {Piece} after */
function between({ text, box: a, page }, { text: next, box: b, page: nextPage }) {
  const overlap = Math.min(a.bottom, b.bottom) - Math.max(a.top, b.top);
  if (page !== nextPage || overlap < Math.min(a.height, b.height) / 2) return '\n';
  // In writing from right to left the next piece lies on the left.
  const distance = Math.max(b.left - a.right, a.left - b.right);
  return distance > 0.15 * Math.min(a.height, b.height) && !/\s$/.test(text) && !/^\s/.test(next) ? ' ' : '';
}

/**
 * The selected text of a viewer, in lines as they are seen.
 * @param {ShadowRoot} root @param {(group: Element) => Piece | undefined} valueOf
 * @returns {string}
 */
export function selectedText(root, valueOf) {
  const selection = /** @type {any} */ (root).getSelection?.() ?? document.getSelection();
  const range = rangeOf(selection, root);
  if (!range || range.collapsed || !root.contains(range.startContainer)) return '';
  const pieces = piecesOf(root, range, valueOf);
  return pieces.map((piece, i) => (i ? between(pieces[i - 1], piece) : '') + piece.text).join('');
}

/** @param {any} selection @param {ShadowRoot} root @returns {StaticRange | undefined} */
function rangeOf(selection, root) {
  if (selection.getComposedRanges) return selection.getComposedRanges({ shadowRoots: [root] })[0];
  return selection.rangeCount ? selection.getRangeAt(0) : undefined;
}
