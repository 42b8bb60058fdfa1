// What tests have at hand in the document that they run in, beside the services of support.js.
import '/src/viewer.js';
import pixelmatch from '/node_modules/pixelmatch/index.js';

const root = viewer.shadowRoot;
const $$ = selector => [...root.querySelectorAll(selector)];

/** What is seen in a box. */
async function pixels({ x, y, width, height }) {
  const image = new Image();
  image.src = `data:image/png;base64,${await photograph({ x, y, width, height })}`;
  await image.decode();
  const context = new OffscreenCanvas(image.width, image.height).getContext('2d');
  context.drawImage(image, 0, 0);
  return context.getImageData(0, 0, image.width, image.height);
}

Object.assign(globalThis, {
  root, $$, pixels,
  $: selector => root.querySelector(selector),
  control: name => $(`.layer [aria-label$="${name}"]`),
  entries: () => [...new FormData(document.forms[0])].map(pair => pair.join('=')).join('&'),
  load: address => import(address),
  painted: () => new Promise(done => requestAnimationFrame(() => setTimeout(done))),

  /** Fails unless both are the same, as JSON. */
  equal(actual, expected, what = '') {
    const [is, should] = [actual, expected].map(each => JSON.stringify(each));
    if (is !== should) throw new Error(`${what} is ${is} and should be ${should}`);
  },

  /** How many pixels of two pictures differ clearly. */
  difference: (one, { data, width, height }) =>
    pixelmatch(one.data, data, null, width, height, { threshold: 0.3, includeAA: true }),

  /** The colours at points of the first page, in units of a page of 1000. */
  async colours(points) {
    const { data, width } = await pixels($('section').getBoundingClientRect());
    const at = ([x, y]) => 4 * (Math.floor(y * width / 1000) * width + Math.floor(x * width / 1000));
    return points.map(point => [...data.subarray(at(point), at(point) + 3)].join(' '));
  },

  /** Adds rules to the document and to the viewer. */
  style(rules) {
    const sheet = new CSSStyleSheet();
    sheet.replaceSync(rules);
    for (const each of [document, root]) each.adoptedStyleSheets.push(sheet);
  },

  async click(element) {
    await painted();
    const { x, y, width, height } = element.getBoundingClientRect();
    await clickAt(x + width / 2, y + height / 2);
  },

  /** The events of a type from now on. */
  hear(type) {
    const heard = [];
    viewer.addEventListener(type, event => heard.push(event));
    return heard;
  },

  /** A page as it is, in an element of this width. */
  inline(page, shown) {
    const [, width, height] = /width="(\d+)" height="(\d+)"/.exec(page);
    return `<svg width="${shown}" viewBox="0 0 ${width} ${height}" style="display: block">${page}</svg>`;
  },
});
