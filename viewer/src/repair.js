// What browsers get wrong in pages as they are prescribed, put right: positions, inversion, runs of
// text that belong together.
import { widthOf } from './text.js';

const SVG = 'http://www.w3.org/2000/svg';
const XML = 'http://www.w3.org/XML/1998/namespace';

/** @param {string} name @param {Record<string, string | number>} attributes */
export function svg(name, attributes = {}) {
  const element = document.createElementNS(SVG, name);
  for (const [key, value] of Object.entries(attributes))
    element.setAttributeNS(key === 'xml:space' ? XML : null, key, String(value));
  return element;
}

/** @typedef {import('./text.js').Font} Font */

/** Positions joined by a minus sign are read by no browser. @param {Element} text */
function partPositions(text) {
  const x = text.getAttribute('x') ?? '';
  if (/\d-/.test(x)) text.setAttribute('x', x.replaceAll('-', ' -').trim());
}

/**
 * There is a position for each code unit. Browsers differ in how many they take for a surrogate
 * pair; in an element of its own it takes one.
 * @param {Element} text
 */
function partPairs(text) {
  const content = text.textContent ?? '';
  const x = (text.getAttribute('x') ?? '').split(' ');
  if (x.length < 2 || !/[\ud800-\udbff][\udc00-\udfff]/.test(content)) return;
  text.removeAttribute('x');
  let start = 0;
  const parts = content.split(/([\ud800-\udbff][\udc00-\udfff])/).filter(Boolean).map(part => {
    const count = /^[\ud800-\udbff]/.test(part) ? 1 : part.length;
    const span = svg('tspan', { x: x.slice(start, start + count).join(' ') });
    span.textContent = part;
    start += part.length;
    return span;
  });
  text.replaceChildren(...parts);
}

/**
 * Whether this browser stretches each character of a scaled run to the length of the run. Measured
 * where the page is shown; undefined where nothing is shown yet.
 * @param {Node} root
 */
export function stretchesCharacters(root) {
  const probe = svg('svg', { width: 0, height: 0, 'aria-hidden': 'true' });
  const text = svg('text', { x: '0 10 20 30', y: 0, 'font-size': 10, textLength: 40, lengthAdjust: 'spacingAndGlyphs' });
  text.textContent = 'nnnn';
  probe.append(text);
  root.appendChild(probe);
  const measured = /** @type {SVGTextContentElement} */ (text);
  // The extents of the characters do not tell; the last one reaches from 30 to 40, or to 70.
  const stretched = measured.getNumberOfChars() ? measured.getBBox().width > 60 : undefined;
  probe.remove();
  return stretched;
}

/** @param {string} colour */
function complementOf(colour) {
  return colour.replace(/\d+/g, channel => String(255 - Number(channel)));
}

/** Shapes in invert painting: the complement of their colours instead of a filter. @param {Element} page @param {string} prefix */
function invertShapes(page, prefix) {
  for (const shape of page.querySelectorAll(`[filter="url(#${prefix}QZ_V)"]`)) {
    if (shape.localName === 'use') continue;
    shape.removeAttribute('filter');
    const fill = shape.getAttribute('fill') ?? 'rgb(0,0,0)';
    if (fill !== 'none') shape.setAttribute('fill', complementOf(fill));
    const stroke = shape.getAttribute('stroke');
    if (stroke) shape.setAttribute('stroke', complementOf(stroke));
  }
}

/** @param {Iterable<Element>} areas */
function difference(areas) {
  const group = svg('g', { fill: 'white', 'pointer-events': 'none' });
  group.style.mixBlendMode = 'difference';
  group.append(...areas);
  return group;
}

/**
 * Inverted areas: white shapes that are subtracted from what lies below, in place of the copies of
 * the content. The paths lie below the rectangles, so that what is in both is as it was.
 * @param {Element} page @param {string} prefix
 */
function invertAreas(page, prefix) {
  const paths = page.querySelector(`mask[id="${prefix}QZ_MI"]`);
  const rectangles = [...page.querySelectorAll(`defs > filter[id^="${prefix}QZ_V"][x]`)];
  page.querySelector(`use[mask="url(#${prefix}QZ_MI)"]`)?.remove();
  const content = page.querySelector(`[id="${prefix}QZ_x"]`);
  if (content) {
    while (content.nextElementSibling) content.nextElementSibling.remove();
    content.replaceWith(...content.childNodes);
  }
  for (const filter of page.querySelectorAll(`filter[id^="${prefix}QZ_V"]`)) filter.remove();
  if (paths) {
    paths.remove();
    page.append(difference([...paths.children]));
  }
  if (rectangles.length)
    page.append(difference(rectangles.map(({ attributes }) => svg('rect', Object.fromEntries(
      ['x', 'y', 'width', 'height'].map(name => [name, attributes.getNamedItem(name)?.value ?? 0]))))));
}

/** The runs that an element stands for: itself, or those of a link that has nothing else. @param {Element | null} element */
function runsOf(element) {
  const runs = element?.localName === 'a' ? [...element.children] : element ? [element] : [];
  const y = runs[0]?.getAttribute('y');
  const joinable = runs.every(run =>
    run.localName === 'text' && run.getAttribute('y') === y && !run.hasAttribute('textLength'));
  return joinable ? runs : [];
}

/** Where a run begins and ends, from left to right. @param {Element} run @param {(run: Element) => Font} fontOf */
function extentOf(run, fontOf) {
  const parts = run.children.length ? [...run.children] : [run];
  const x = parts.flatMap(part => (part.getAttribute('x') ?? '0').split(' ').map(Number));
  const content = run.textContent ?? '';
  return [Math.min(...x), Math.max(...x) + widthOf(x.length > 1 ? content.slice(-1) : content, fontOf(run))];
}

/**
 * A blank for runs that stand apart. It has a position of its own, or it would move what is written
 * from right to left.
 * @param {Element} run @param {Element} next @param {(run: Element) => Font} fontOf
 */
function blankBetween(run, next, fontOf) {
  if (/\s$/.test(run.textContent ?? '') || /^\s/.test(next.textContent ?? '')) return [];
  const [start, end] = extentOf(run, fontOf);
  const [nextStart, nextEnd] = extentOf(next, fontOf);
  if (Math.max(nextStart - end, start - nextEnd) <= fontOf(run).size * 0.15) return [];
  const blank = svg('tspan', { x: Math.round(end) });
  blank.textContent = ' ';
  return [blank];
}

/**
 * Runs on one baseline become parts of one text, with a blank where they stand apart: only within
 * one text does a browser's search find words across runs.
 * @param {Element} parent @param {(run: Element) => Font} fontOf
 */
function joinRuns(parent, fontOf) {
  for (let first = parent.firstElementChild; first; first = first.nextElementSibling) {
    if (first.localName === 'g') {
      if (!first.hasAttribute('velumark:purpose')) joinRuns(first, fontOf);
      continue;
    }
    const line = [...runsOf(first)];
    const members = [first];
    const y = line[0]?.getAttribute('y');
    for (let next = first.nextElementSibling; line.length && next; next = next.nextElementSibling) {
      const runs = runsOf(next);
      if (!runs.length || runs[0].getAttribute('y') !== y) break;
      line.push(...runs);
      members.push(next);
    }
    if (line.length < 2) continue;
    const text = svg('text', { y: y ?? 0, 'xml:space': 'preserve' });
    first.before(text);
    const blanks = line.slice(1).map((run, i) => blankBetween(line[i], run, fontOf));
    text.append(...members);
    line.forEach((run, i) => run.replaceWith(spanOf(run), ...blanks[i] ?? []));
    first = text;
  }
}

/** @param {Element} run */
function spanOf(run) {
  const span = svg('tspan');
  for (const { name, value } of run.attributes) if (name !== 'xml:space' && name !== 'y') span.setAttribute(name, value);
  span.append(...run.childNodes);
  return span;
}

/**
 * @param {Element} page a cleaned page
 * @param {string} prefix of its ids
 * @param {(run: Element) => Font} fontOf
 * @param {boolean} stretched whether scaled text is to be left unscaled
 */
export function repair(page, prefix, fontOf, stretched) {
  for (const text of page.querySelectorAll('text')) {
    partPositions(text);
    partPairs(text);
    if (stretched) text.removeAttribute('textLength');
  }
  invertShapes(page, prefix);
  invertAreas(page, prefix);
  joinRuns(page, fontOf);
}
