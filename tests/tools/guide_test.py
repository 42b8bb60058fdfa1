"""What docs/integration.md says of readers holds in Chromium and librsvg: each question about a
small page gets the answer that the guide gives. Prints what was asked and answered.

    guide_test.py PROGRAM REPOSITORY RECORDINGS CHROMIUM RSVG_CONVERT
"""
import json
import re
import subprocess
import unittest
from concurrent.futures import ThreadPoolExecutor

import reading
import tool
from lint_pages import NO_FILL, STROKE, block, call, path, picture, png, svg, text

CHROMIUM, RSVG = tool.MORE
GUIDE = (tool.REPOSITORY / 'docs/integration.md').read_text('utf-8')
TABLE = re.search(r'\n\| The document has .*\n.*\n((?:\|.*\n)+)', GUIDE)[1]
LINKS = 'internal links'
YES, NO = True, False


def box(*sides):
    return lambda seen: seen['box'] == list(sides)


def same(one, other):
    return one['sum'] == other['sum']


def smaller(one, other):
    return 0 < one['count'] < 0.8 * other['count']


def inverted(seen):
    """Orange, computed in linear light."""
    return seen['colour'] == [174, 240, 251]


def lost(seen):
    return seen['count'] == 0


def off(pixels, *sides):
    """Not in place, but so far off at most."""
    return lambda seen: 0 < max(abs(a - b) for a, b in zip(seen['box'], sides)) <= pixels


def polygon(*points):
    return call('DrawPolygon', points)


def corner(at):
    """A triangle of 300 whose corner is at (at, at), as points and types."""
    return [[at, at], [at + 300, at], [at + 300, at + 300]], [6, 2, 3]


def letter(at):
    return text('H', None, (at, at))


def band(left, right):
    return call('DrawRectangle', [left, 101, right, 401])


def family(name):
    return call('SetFont', name, 40, 0, 0)


def in_view(n):
    """Shows the page from (n, n)."""
    return lambda document: document.replace(b'">', b'" viewBox="%d %d 1000 1000">' % (n, n), 1)


def nested(document):
    return re.sub(rb'<symbol( id="QZ_S.*?)</symbol>', rb'<svg\1</svg>', document)


def framed(document):
    return (b'<svg xmlns="http://www.w3.org/2000/svg" width="500" viewBox="0 0 2000 2000">' +
            document + b'</svg>')


def with_content(document):
    return re.sub(b'(</defs>)(.*)(<use href="#content")', rb'\1<g id="content">\2</g>\3', document)


HALF = picture('<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 24 24">'
               '<path d="M0 0h12v12h-12z"/></svg>', 8, (100, 100, 200, 200))
ORANGE = '["SVG_SetFill",255,200,100,50]\n' + band(101, 401) + '\n'
INVERTED = call('BeginInvertPainting') + '\n' + ORANGE
INVERTED_PATH = ORANGE + call('InvertPath', [[200, 200], [300, 200], [300, 300], [200, 300]],
                              [6, 2, 2, 3])
WORD = call('DrawText', 'HHH', [100, 100], None, 100)
OTHER_WORD = call('DrawText', 'HHH', [100, 300], None, 100)
OUTLINE = [[300, 500], [400, 500], [350, 600]]
OUTLINED = NO_FILL + '\n' + STROKE + '\n'
FIRST, SECOND = text('I'), text('I', None, (600, 100))
BAD_ROOT = ' viewBox="0 0 24 24" stroke-width="2"'
FAR, FARTHER = 100_000_000, 1_000_000_000

# The row's beginning or the paragraph's heading; question; its pages, or pages and what is done to
# the document; answer of both; Chromium's; librsvg's.
ROWS = [
    ('`points` and path data', 'polygon', [polygon([100, 100], [500, -20], [900, 500])],
     box(100, 0, 900, 500), YES, YES),
    ('`points` and path data', 'path', [path([[100, 500], [600, 900], [500, 100]], [6, 2, 3])],
     box(100, 100, 600, 900), YES, YES),
    ('positions of text in which', 'begins at 0', [text('III', [-150, 550, 9])],
     lambda seen: seen['box'][0] < 50, YES, NO),
    ('positions of text in which', 'any x is read behind the first', [text('III', [-150, 550, 9])],
     lambda seen: seen['box'][2] > 500, NO, NO),
    ('positions of text in which', 'in place if the first x alone is below 0',
     [text('III', [550, 9, 9], (-50, 100))], lambda seen: seen['box'][2] > 500, YES, NO),
    ('an x for each', 'the second in place', [text('II', [500, 9])],
     lambda seen: seen['box'][2] > 600, YES, NO),
    ('an x for each', 'as without advances', [text('II', [500, 9]), text('II')], same, NO, YES),
    ('an x for each', 'word by word', [FIRST + '\n' + SECOND],
     lambda seen: seen['box'][0] >= 100 and seen['box'][2] > 600, YES, YES),
    ('`textLength`', 'glyphs are narrower',
     [text('H' * 8, [9] * 8, scaling=50), text('H' * 8, [9] * 8)], smaller, YES, NO),
    ('SVG pictures, sized', 'in their size', [HALF], box(100, 100, 150, 150), YES, NO),
    ('SVG pictures, sized', "in the page's size", [HALF], box(100, 100, 600, 600), NO, YES),
    ('SVG pictures, sized', 'as svg elements', [(HALF, nested)], box(100, 100, 150, 150), YES, YES),
    ('inverted colours', 'painted', [INVERTED], inverted, YES, YES),
    ('inverted colours', 'rectangle', [ORANGE + call('InvertRectangle', [0, 0, 999, 999])],
     inverted, YES, YES),
    *[('coordinates within', f'{name} {n}', page, ask, YES, YES)
      for n in (-8_000_000, 8_000_000) for name, page, ask in [
          ('fill', [band(*sorted((n, 501)))],
           box(*((0, 101, 501, 401) if n < 0 else (501, 101, 1000, 401)))),
          ('stroke', [OUTLINED + call('DrawLine', [n, 103], [501, 103])],
           box(*((0, 101, 501, 105) if n < 0 else (501, 101, 1000, 105)))),
          ('path in view', [(path(*corner(n + 101)), in_view(n))], box(101, 101, 401, 401)),
          ('points in view', [(polygon(*corner(n + 101)[0]), in_view(n))], box(101, 101, 401, 401)),
          ('text in view', [(letter(n + 101), in_view(n)), letter(101)], same)]],
    ('shapes that reach', 'a pixel off at most', [band(-20_000_000, 501)],
     off(1, 0, 101, 501, 401), YES, NO),
    ('shapes that reach', 'pixels off', [band(-FAR, 501)], off(4, 0, 101, 501, 401), YES, NO),
    ('shapes that reach', 'on the other side', [band(-FAR, 501)], box(501, 101, 1000, 401),
     NO, YES),
    ('shapes that reach', 'lost', [band(-8_388_608, 8_388_608)], lost, NO, YES),
    ('shapes that reach', 'shown, far off', [band(-FARTHER, 501)], off(64, 0, 101, 501, 401),
     YES, NO),
    *[('content out there', f'{name} {n}', [(page, in_view(n))], ask, *answers)
      for n in (FAR, FARTHER) for name, page, ask, *answers in [
          ('path in place', path(*corner(n + 101)), box(101, 101, 401, 401), NO, YES),
          ('points in place', polygon(*corner(n + 101)[0]), box(101, 101, 401, 401), NO, NO),
          ('points off', polygon(*corner(n + 101)[0]), off(64, 101, 101, 401, 401), YES, YES),
          ('strokes vanish', OUTLINED + call('DrawRectangle', [n + 101, n + 101, n + 401, n + 401]),
           lost, YES, NO),
          ('text vanishes', letter(n + 101), lost, YES, NO)]],
    ('**Pictures.**', 'fitted in and centred', [picture(png(20, 10))], box(0, 25, 100, 75), YES, YES),
    ('**Characters that readers refuse.**', 'refused', [text('a\x07')], lost, YES, YES),
    ('**Scaled.**', 'in an outer element', [(call('DrawRectangle', [100, 100, 400, 400]), framed)],
     box(25, 25, 100, 100), YES, YES),
    ('**Inverted paths.**', 'inverted', [INVERTED_PATH], inverted, NO, NO),
    ('**Inverted paths.**', 'with #content', [(INVERTED_PATH, with_content)], inverted, YES, YES),
    ('**SVG pictures whose root', 'refused', [svg(root=BAD_ROOT)], lost, YES, YES),
    ('**SVG pictures whose root', 'with one around it',
     [(svg('<svg' + BAD_ROOT + '><path d="M0 0h24v24z"/></svg>'), nested)], box(0, 0, 100, 100),
     YES, YES),
    *[('**Fonts.**', f'default font for {name}', [family(name) + '\n' + WORD, WORD], same, YES, YES)
      for name in ['Univers 55', 'ABCDEF+Name', 'Font (TT)', '', "O'Hara"]],
    *[('**Fonts.**', f'own size for {name}', [WORD, family(name) + '\n' + WORD], smaller, YES, YES)
      for name in ['"Univers 55"', '"ABCDEF+Name"', '"Font (TT)"', '"O\'Hara"']],
    ('**Fonts.**', 'an apostrophe voids the next', ['\n'.join(
        [family("O'Hara"), WORD, family('serif'), OTHER_WORD]), WORD + '\n' + OTHER_WORD], same,
     YES, YES),
    ('**Text as outlines.**', 'points move to the corner',
     [block(call('BeginCharacter', [300, 500]), polygon(*OUTLINE))], box(0, 0, 100, 100), YES, YES),
    ('**Text as outlines.**', 'paths stay',
     [block(call('BeginCharacter', [300, 500]), path(OUTLINE, [6, 2, 3]))],
     box(300, 500, 400, 600), YES, YES),
]
# Opened by itself in Chromium; rsvg-convert is asked for a quarter.
OPENED = 'no `viewBox`, opened directly'

# Clicks a link on the page before and after the guide's script.
CLICKS = """<!DOCTYPE html><meta charset="utf-8"><body style="margin:0"><script>
document.body.append(document.importNode(
  new DOMParser().parseFromString(DOCUMENT, 'image/svg+xml').documentElement, true));
const click = async () => {
  document.querySelector('a').dispatchEvent(
    new MouseEvent('click', {bubbles: true, cancelable: true}));
  await new Promise(done => setTimeout(done, 100));
  return [location.hash, scrollX, scrollY];
};
(async () => {
  const before = await click();
  location.hash = '';
  GUIDE
  const all = JSON.stringify([before, await click()]);
  document.body.innerHTML = `<pre id="result">${all}</pre>`;
})();
</script>"""


class Guide(tool.InFolder):
    def page(self, page, create=tool.CREATE):
        lines, change = page if isinstance(page, tuple) else (page, lambda document: document)
        return change(self.document(lines, create))

    def librsvg(self, document, *options):
        """A PNG file, or nothing when it is refused."""
        return subprocess.run([RSVG, *options], input=document, capture_output=True,
                              timeout=60).stdout

    def test_rows(self):
        rows = [(row, f'{row}: {question}', [self.page(page) for page in pages], ask, answers)
                for row, question, pages, ask, *answers in ROWS]
        opened = self.document(band(101, 401), call('Create', [0, 0, 2000, 2000]))
        documents = list({each: 1 for _, _, pages, *_ in rows for each in pages})
        with ThreadPoolExecutor(2) as both:
            drawn = list(both.map(self.librsvg, documents))
        seen = reading.measure(CHROMIUM, [
            *documents, *drawn, reading.screenshot(CHROMIUM, opened),
            self.librsvg(opened, '--width=500', '--keep-aspect-ratio')])
        shown = dict(zip(documents, zip(seen, seen[len(documents):])))
        for row, question, pages, ask, answers in rows:
            found = [ask(*each) for each in zip(*(shown[page] for page in pages))]
            print(question, *('yes' if each else 'no' for each in found), sep=' | ')
            with self.subTest(question=question, shown=[shown[page] for page in pages]):
                self.assertIn(f'\n| {row}' if row[0] != '*' else f'\n{row}', GUIDE)
                self.assertEqual(found, answers)
        self.assertEqual([each['box'] for each in seen[-2:]],
                         [[101, 101, 401, 401], [25, 25, 101, 101]], OPENED)

    def test_links(self):
        page = self.document('\n'.join([
            call('BeginLink', 2, 'a'), band(0, 100), call('EndLink'),
            call('SetDocumentTarget', [500, 1500], 'a')]), call('Create', [0, 0, 4000, 4000]))
        script = re.search(r'```js\n(.*?)```', GUIDE, re.S)[1]
        clicks = CLICKS.replace('GUIDE', script).replace('DOCUMENT', json.dumps(page.decode()))
        self.assertEqual(reading.result_of(CHROMIUM, clicks), [['#a', 0, 0], ['', 500, 1500]])

    def test_each_row_is_tried(self):
        tried = tuple(f'| {row}' for row in [OPENED, LINKS, *(row for row, *_ in ROWS)])
        for row in TABLE.splitlines():
            self.assertTrue(row.startswith(tried), row)


unittest.main()
