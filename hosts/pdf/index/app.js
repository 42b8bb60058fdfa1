// The script of index.html: it shows the pages that stand in the document, and leads to them.
import '../../../viewer/src/viewer.js';

const viewer = document.querySelector('velumark-viewer');
const number = document.querySelector('input');

/**
 * Pages are packed: a long value is written out where it comes first, and as <NUMBER> from then on;
 * <@NUMBER> stands for a font. No page holds such tags.
 */
function unpack(pages, fonts) {
  const values = [];
  const put = (value, index) => index ? values[index] : values[values.push(value) - 1];
  return pages.map(page => page.replace(/<(\d+)>|[ !#-&*-;=?-~]{48,}/g, put)
    .replace(/<@(\d+)>/g, (_, index) => fonts[index]));
}

/** The size in twentieths of a point, as the viewer reads it. */
const inUnits = page =>
  page.replace(/ width="[\d.]+pt" height="[\d.]+pt" viewBox="0 0 (\d+) (\d+)"/, ' width="$1" height="$2"');

// ---- Fields: what qzsvggen-pdf says with their data and flags, which are those of the PDF ----

const [READ_ONLY, REQUIRED, MULTILINE] = [1, 2, 0x10];

viewer.interpretation = ({ type, data, flags, exFlags, drawn }) => {
  const isHidden = !drawn && !/^(?:Off)?$/.test(data);
  if (isHidden) return null;
  const meaning = { readOnly: Boolean(flags & READ_ONLY), required: Boolean(flags & REQUIRED) };
  if (type === 'FT_COMBOBOX') [meaning.value, ...meaning.choices] = data.replace(/\t$/, '').split('\t');
  if (type !== 'FT_FORMTEXT') return meaning;
  return { ...meaning, value: data.replaceAll('\u2028', '\n'), multiline: Boolean(exFlags & MULTILINE) };
};

// ---- Ways to a page, and what is asked on the way ----

/** Where to go when its page has come. */
let awaited = () => true;

function go(attempt) {
  awaited = attempt() ? () => true : attempt;
}

function goToPage(index) {
  viewer.pages[index]?.element.scrollIntoView();
  return index < viewer.pages.length;
}

const goToHash = () => go(() => viewer.goTo(decodeURIComponent(location.hash.slice(1))));

/** The page in the middle of the window. */
function currentPage() {
  const { pages } = viewer;
  let [low, high] = [0, pages.length - 1];
  while (low < high) {
    const middle = (low + high) >> 1;
    if (pages[middle].element.getBoundingClientRect().bottom < innerHeight / 2) low = middle + 1;
    else high = middle;
  }
  return low + 1;
}

viewer.addEventListener('link', event => {
  const { type, target } = event.detail;
  if (type !== 'internal') return;
  event.preventDefault();
  history.pushState(null, '', `#${encodeURIComponent(target)}`);  // the way back leads here
  goToHash();
});
viewer.addEventListener('signature', ({ detail: { name, info } }) =>
  alert(`Signature field: ${name}\n${info}\nNothing is verified here.`));
viewer.addEventListener('load', () => awaited());
number.addEventListener('change', () => go(() => goToPage(number.value - 1)));
addEventListener('scroll', () => {
  if (document.activeElement !== number) number.value = currentPage();
});

// ---- Print ----

/** Sheets are of the first page's size. */
function setSheetSize([page]) {
  const [, width, height] = / width="(\d+)" height="(\d+)"/.exec(page);
  document.querySelector('style').append(`@page { size: ${width / 20}pt ${height / 20}pt; }`);
}

// ---- The beginning ----

/** Takes the content of elements out of the document. */
const taken = type => [...document.querySelectorAll(`script[type="${type}"]`)].map(element => {
  element.remove();
  return element.text;
});

const pages = unpack(taken('image/svg+xml'), taken('font/otf')).map(inUnits);
number.max = document.querySelector('output').value = pages.length;
if (location.hash) goToHash();
setSheetSize(pages);
viewer.show(pages);
