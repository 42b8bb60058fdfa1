"""Each rule: the bad page gives exactly it, at its line; the page as advised gives nothing."""
import base64
import json
import re
import unittest
import zlib

import tool

WHITE = '["SVG_SetFill",255,250,250,250]'
FONT = '["SVG_SetFont","serif",40,0,0]'
STROKE = '["SVG_SetStroke",255,0,0,0,4]'
NO_FILL = '["SVG_SetFill",0,0,0,0]'


def png(width, height):
    def chunk(kind, data):
        return (len(data).to_bytes(4, 'big') + kind + data +
                zlib.crc32(kind + data).to_bytes(4, 'big'))
    head = width.to_bytes(4, 'big') + height.to_bytes(4, 'big') + bytes([8, 0, 0, 0, 0])
    return (b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', head) +
            chunk(b'IDAT', zlib.compress(bytes((width + 1) * height))) + chunk(b'IEND', b''))


def call(name, *arguments):
    return json.dumps(['SVG_' + name, *arguments], separators=(',', ':'))


def picture(data, form=4, bounds=(0, 0, 100, 100)):
    data = data.encode() if isinstance(data, str) else data
    return call('DrawImage', form, bounds, {'base64': base64.b64encode(data).decode()}, 100)


def text(string, advances=None, origin=(100, 100), scaling=100):
    return FONT + '\n' + call('DrawText', string, origin, advances, scaling)


def path(points, types):
    return call('DrawPath', points, types)


def block(*calls):
    return '\n'.join([call('BeginCharacterBlock'), *calls, call('EndCharacterBlock')])


def glyph(x, y=500, size=20):
    return (call('BeginCharacter', [x, y]) + '\n' +
            path([[x, y], [x + size, y], [x, y - size]], [6, 2, 3]))


def svg(inside='<path d="M0 0h9v9z"/>', root=' viewBox="0 0 24 24"'):
    return picture(f'<svg xmlns="http://www.w3.org/2000/svg"{root}>{inside}</svg>', 8)


FIELD = [0, 0, 50, 50]
LINK = call('BeginLink', 1, 'https://a.example') + '\n' + text('a') + '\n' + call('EndLink')
REGION = call('BeginClippingRegion', [0, 0, 500, 500])
LINE = call('DrawLine', [0, 0], [50, 50])
BOX = call('DrawRectangle', [10, 10, 50, 50])
SQUARE = [[10, 10], [50, 10], [50, 50]]
PNG = png(10, 10)
TRIANGLE = path(SQUARE, [6, 2, 3])


# Rule, the bad page, its line, the page as advised. Lines count from that behind SVG_Create; 0 is
# SVG_Create itself.
PAIRS = [
    ('xml-character', text('a\x07'), 2, text('a ')),
    ('lone-surrogate', FONT + '\n' + call('DrawText', {'base64': 'ANg='}, [9, 9], None, 100), 2,
     text('\ufffd')),
    ('negative-x', text('abc', [-150, 70, 60]), 2, text('a') + text('bc', [5, 5])[len(FONT):]),
    ('crlf-in-run', text('a\r\nb', [9, 9, 9, 9]), 2, text('ab', [9, 9])),
    ('font-size', call('SetFont', 'serif', 0, 0, 0) + '\n' + call('DrawText', 'a', [9, 9], None, 100),
     1, text('a')),
    ('surrogate-in-run', text('\U0001f600ab', [9, 0, 9, 9]), 2, text('\U0001f600', [9, 0])),
    ('no-font', call('DrawText', 'a', [9, 9], None, 100), 1, text('a')),
    ('scaling-ignored', text('a', None, (9, 9), 90), 2, text('a', [9], (9, 9), 90)),
    ('rtl-forward', text('\u05d0\u05d1', [9, 9]), 2, text('\u05d0\u05d1')),
    ('line-break', text('a\nb'), 2, text('a b')),
    ('one-character-runs', FONT + '\n' + '\n'.join(
        call('DrawText', 'a', [20 * i, 100], None, 100) for i in range(8)), 2,
     text('aaaaaaaa', [20] * 8)),
    ('path-start', path(SQUARE, [2, 2, 3]), 1, TRIANGLE),
    ('path-curves', path(SQUARE, [6, 4, 4]), 1, path([*SQUARE, [9, 9]], [6, 4, 4, 4])),
    ('path-type', path(SQUARE, [6, 2, 7]), 1, TRIANGLE),
    ('path-after-close', path([*SQUARE, [60, 60]], [6, 2, 3, 2]), 1,
     path([*SQUARE, [60, 60], [70, 90]], [6, 2, 3, 6, 2])),
    ('path-empty', path([[9, 9]], [6]), 1, ''),
    ('few-points', STROKE + '\n' + call('DrawPolyline', [[9, 9]]), 2, STROKE),
    ('wrap', path([[-2000000000, 9], [2000000000, 9], [0, 0]], [6, 2, 2]), 1, TRIANGLE),
    ('far', call('DrawRectangle', [0, 0, 9000000, 50]), 1, BOX),
    ('rounded-corners', call('DrawRoundedRectangle', [10, 10, 90, 90], 20, 20, 15), 1, TRIANGLE),
    ('rounded-mask', call('DrawRoundedRectangle', [10, 10, 90, 90], 20, 20, 16), 1,
     call('DrawRoundedRectangle', [10, 10, 90, 90], 20, 20, 0)),
    ('reversed-rectangle', call('DrawRectangle', [50, 10, 10, 50]), 1, BOX),
    ('line-without-stroke', LINE, 1, STROKE + '\n' + LINE),
    ('stroke-width-0', NO_FILL + '\n' + call('SetStroke', 255, 0, 0, 0, 0) + '\n' + BOX, 3,
     NO_FILL + '\n' + STROKE + '\n' + BOX),
    ('invisible-shape', NO_FILL + '\n' + BOX, 2, WHITE + '\n' + BOX),
    ('filled-line', STROKE + '\n' + call('DrawPolyline', SQUARE), 2,
     STROKE + '\n' + NO_FILL + '\n' + call('DrawPolyline', SQUARE)),
    ('after-close', call('Close') + '\n' + BOX, 2, BOX),
    ('clip-lost', call('ExcludeClippingRegion', [0, 0, 50, 50]) + '\n' +
     call('ExcludeClippingRegion', [9, 9, 20, 20]), 2, call('ExcludeClippingRegion', [0, 0, 50, 50])),
    ('clip-cut-overlap', call('ExcludeClippingRegion', [0, 0, 50, 50]) + '\n' +
     call('ExcludeClippingRegion', [40, 40, 90, 90]), 2,
     call('ExcludeClippingRegion', [0, 0, 50, 50]) + '\n' +
     call('ExcludeClippingRegion', [50, 50, 90, 90])),
    ('clip-in-group', call('BeginFormField', 14, 0, 0, FIELD, 'a', '') + '\n' +
     call('BeginClippingRegion', [0, 0, 30, 30]) + '\n' + BOX + '\n' + call('EndFormField'), 3,
     call('BeginClippingRegion', [0, 0, 30, 30]) + '\n' +
     call('BeginFormField', 14, 0, 0, FIELD, 'a', '') + '\n' + BOX + '\n' + call('EndFormField')),
    ('clip-missing', call('AddClippingRegion', [0, 0, 9, 9]), 1, REGION),
    ('clip-unknown', call('SetCurrentClippingRegion', 0), 1,
     REGION + '\n' + call('SetCurrentClippingRegion', 0)),
    ('clip-overlap', REGION + '\n' + call('AddClippingRegion', [400, 0, 600, 90]), 2,
     REGION + '\n' + call('AddClippingRegion', [500, 0, 600, 90])),
    ('clip-empty', call('BeginClippingRegion', [9, 9, 9, 90]), 1, REGION),
    ('clip-repeated', '\n'.join([REGION, BOX] * 5), 3,
     '\n'.join([REGION, BOX] + [call('SetCurrentClippingRegion', 0), BOX] * 4)),
    ('group-nested', call('BeginFormField', 14, 0, 0, FIELD, 'a', '') + '\n' + LINK, 2,
     call('BeginFormField', 14, 0, 0, FIELD, 'a', '') + '\n' + call('EndFormField') + '\n' + LINK),
    ('group-not-open', call('EndLink'), 1, LINK),
    ('group-other-end', LINK.replace('EndLink', 'EndFormField'), 4, LINK),
    ('group-unclosed', LINK.replace(call('EndLink'), call('ClearFont')), 1, LINK),
    ('link-empty', call('BeginLink', 1, 'https://a.example') + '\n' + call('EndLink'), 1, LINK),
    ('link-type', LINK.replace('",1', '",3'), 1, LINK),
    ('link-no-target', LINK.replace('https://a.example', ''), 1, LINK),
    ('link-script', LINK.replace('https', ' JavaScript'), 1, LINK),
    ('target-repeated', '\n'.join([call('SetDocumentTarget', [9, 9], 'a')] * 2), 2,
     call('SetDocumentTarget', [9, 9], 'a') + '\n' + call('SetDocumentTarget', [9, 9], 'b')),
    ('field-data', call('BeginFormField', 16, 0, 0, FIELD, 'a', {'base64': 'YQBi'}) + '\n' +
     call('EndFormField'), 1, call('BeginFormField', 16, 0, 0, FIELD, 'a', 'a') + '\n' +
     call('EndFormField')),
    ('field-bounds', call('BeginSignatureField', [9, 9, 9, 9], 'a', '') + '\n' +
     call('EndSignatureField'), 1, call('BeginSignatureField', FIELD, 'a', '') + '\n' +
     call('EndSignatureField')),
    ('picture-format', picture(PNG, 6), 1, picture(PNG)),
    ('picture-bounds', picture(PNG, 4, (90, 0, 10, 80)), 1, picture(PNG)),
    ('picture-mismatch', picture(PNG, 5), 1, picture(PNG)),
    ('picture-truncated', picture(PNG[:-9]), 1, picture(PNG)),
    ('picture-proportions', picture(png(20, 10)), 1, picture(png(20, 10), 4, (0, 0, 100, 50))),
    # Two bytes more and one of 31 less: the same key.
    ('picture-collision', picture(PNG + b'\x02\x00') + '\n' + picture(PNG + b'\x01\x1f'), 2,
     picture(PNG)),
    ('svg-broken', svg('<path d="M0 0h9v9z">'), 1, svg()),
    ('svg-broken', svg(root=' viewBox="0 0 9 9" stroke-width="2"'), 1, svg()),
    ('svg-not-found', picture('<svg><path/></svg>', 8), 1, svg()),
    ('svg-size', svg(root=' height="9"'), 1, svg(root=' width="9" height="9"')),
    ('svg-size', svg(root=' width="24pt" height="24pt"'), 1, svg()),
    ('svg-style', svg('<style>rect{fill:red}</style>'), 1, svg('<rect fill="red"/>')),
    ('svg-ids', svg('<g id="a"/>') + '\n' + svg('<g id="a"/><path/>'), 2,
     svg('<g id="a"/>') + '\n' + svg('<g id="b"/><path/>')),
    ('svg-script', svg('<path onclick="run()"/>'), 1, svg()),
    ('block-no-character', block(TRIANGLE), 2, block(glyph(100))),
    ('block-reference', block(glyph(100), call('SetCharacterReference', 1, [150, 500])), 4,
     block(glyph(100), call('SetCharacterReference', 0, [150, 500]))),
    ('block-parts', block(glyph(100), TRIANGLE, call('SetCharacterReference', 0, [150, 500])), 5,
     block(glyph(100), call('SetCharacterReference', 0, [150, 500]))),
    ('block-outline', block(call('BeginCharacter', [100, 500]), call('DrawPolygon', SQUARE)), 3,
     block(call('BeginCharacter', [0, 0]), call('DrawPolygon', SQUARE))),
    ('block-outline', block(call('BeginCharacter', [100, 500]),
                            path([[0, 0], [20, 0], [0, -20]], [6, 2, 3])), 3, block(glyph(100))),
    ('block-origin', block(glyph(100), call('SetCharacterReference', 0, [0, 0])), 4,
     block(glyph(100), call('SetCharacterReference', 0, [0, 1]))),
    ('block-missing', call('BeginCharacter', [9, 9]), 1, block(glyph(9))),
    ('block-nested', call('BeginCharacterBlock') + '\n' + block(glyph(100)), 2, block(glyph(100))),
    ('block-unclosed', call('BeginCharacterBlock') + '\n' + glyph(100), 1, block(glyph(100))),
    ('block-other', FONT + '\n' + block(call('DrawText', 'a', [9, 9], None, 100)), 3, text('a')),
    ('block-state', block(WHITE), 2, WHITE + '\n' + block()),
    ('block-not-shared', '\n'.join(block(glyph(x)) for x in range(100, 600, 100)), 7,
     block(glyph(100), *(call('SetCharacterReference', 0, [x, 500]) for x in range(200, 600, 100)))),
    ('invert-late', '\n'.join([call('BeginInvertPainting'), BOX, call('EndInvertPainting')]), 2,
     '\n'.join([call('BeginInvertPainting'), WHITE, BOX, call('EndInvertPainting')])),
    ('invert-flat-line', '\n'.join([call('BeginInvertPainting'), STROKE, call(
        'DrawLine', [9, 9], [9, 90]), call('EndInvertPainting')]), 3, '\n'.join([
            call('BeginInvertPainting'), WHITE, BOX, call('EndInvertPainting')])),
    ('invert-rectangle', call('InvertRectangle', [50, 9, 10, 90]), 1,
     call('InvertRectangle', [10, 9, 50, 90])),
    ('invert-path', call('InvertPath', SQUARE, [6, 2, 3]), 1, call('InvertRectangle', [0, 0, 9, 9])),
    ('invert-open', call('BeginInvertPainting') + '\n' + WHITE, 2,
     call('BeginInvertPainting') + '\n' + WHITE + '\n' + call('EndInvertPainting')),
]
REMARKS = [
    ('invisible-text', NO_FILL + '\n' + text('a'), 3),
    ('off-page', call('DrawRectangle', [1100, 10, 1200, 20]), 1),
    ('clipped-away', REGION + '\n' + call('DrawRectangle', [600, 600, 700, 700]), 2),
    ('field-type', call('BeginFormField', 13, 0, 0, FIELD, 'a', '') + '\n' + call('EndFormField'), 1),
    ('svg-external', svg('<image href="a.png"/>'), 1),
]
BAD_FAMILIES = ['', 'Univers 55', 'ABCDEF+Name', 'Font (TT)', "O'Hara", '@font', 'a;b', 'a{b', 'a}b',
                'inherit', 'a,', '"a" b']
GOOD_FAMILIES = ['serif', '"Univers 55"', "'ABCDEF+Name'", '-apple-system', 'a b,c', 'Gill Sans',
                 '"O\'Hara",serif', '\u4e2d\u6587', 'a\0']


class Lint(tool.InFolder):
    def lint(self, lines, *options, create=tool.CREATE):
        self.write('page.jsonl', create + '\n' + lines)
        result = self.run_tool('lint', '--json', 'page.jsonl', *options)
        self.assertEqual(result.stderr, '')
        found = [(each['id'], each['line'] - 1) for each in json.loads(result.stdout)]
        errors = any(each['severity'] == 'error' for each in json.loads(result.stdout))
        self.assertEqual(result.returncode, int(errors))
        return found

    def test_pairs(self):
        for rule, bad, line, advised in PAIRS:
            with self.subTest(rule=rule, bad=bad):
                self.assertEqual(self.lint(bad), [(rule, line)])
                self.assertEqual(self.lint(advised), [])
        for rule, bad, line in REMARKS:
            with self.subTest(rule=rule, bad=bad):
                self.assertEqual(self.lint(bad), [])
                self.assertEqual(self.lint(bad, '--all'), [(rule, line)])

    def test_pages(self):
        for rule, page in [('page-size', [0, 0, 0, 9]), ('page-origin', [5, 0, 900, 900])]:
            self.assertEqual(self.lint('', create=call('Create', page)), [(rule, 0)])

    def test_families(self):
        for families, expected in [(BAD_FAMILIES, [('font-family', 1)]), (GOOD_FAMILIES, [])]:
            for family in families:
                with self.subTest(family=family):
                    lines = call('SetFont', family, 40, 0, 0)
                    self.assertEqual(self.lint(lines), [])  # it is not used
                    lines += '\n' + call('DrawText', 'a', [9, 9], None, 100)
                    self.assertEqual(self.lint(lines), expected)

    def test_documents(self):
        """What can be seen in the document is found there, too, and leads to the call."""
        listed = self.run_tool('lint', '--rules').stdout
        self.write('x.svg', '<svg/>')
        if 'without expat' in self.run_tool('lint', 'x.svg').stderr:
            self.skipTest('this build checks no documents')
        for rule, bad, line, advised in PAIRS:
            if re.search(f'^. `{rule}`[^|]*recordings', listed, re.M):
                continue
            with self.subTest(rule=rule, bad=bad):
                self.write('page.jsonl', tool.CREATE + '\n' + bad + '\n')
                for option in ['--utf16'] if rule == 'lone-surrogate' else ['--time', '--utf16']:
                    self.run_tool('replay', 'page.jsonl', '-o', 'page.svg', option)
                    result = self.run_tool('lint', '--json', 'page.svg', '--of', 'page.jsonl')
                    found = json.loads(result.stdout)
                    self.assertEqual([each['id'] for each in found], [rule])
                    # A font or picture that is used again is made by the first call.
                    self.assertEqual(found[0].get('call'), f'page.jsonl:{line + 1}')
                self.write('page.jsonl', tool.CREATE + '\n' + advised)
                self.run_tool('replay', 'page.jsonl', '-o', 'page.svg')
                self.assertEqual(self.run_tool('lint', 'page.svg').stdout, '')

    def test_each_rule_has_a_pair(self):
        listed = set(re.findall('^. `(.*?)`', self.run_tool('lint', '--rules').stdout, re.M))
        tested = {rule for rule, *_ in PAIRS + REMARKS}
        # These need more than one page or other files; they are tested below and above.
        others = {'font-family', 'page-size', 'page-origin', 'link-unresolved', 'svg-root-scan',
                  'not-well-formed'}
        self.assertEqual(listed, tested | others)

    def test_links_between_pages(self):
        self.write('a.jsonl', tool.CREATE + '\n' + LINK.replace('",1', '",2') + '\n')
        self.write('b.jsonl', tool.CREATE + '\n' + call('SetDocumentTarget', [9, 9], 'b') + '\n')
        self.assertEqual(self.run_tool('lint', 'a.jsonl', 'b.jsonl').stdout, '')
        told = self.run_tool('lint', '--pages', 'a.jsonl', 'b.jsonl').stdout
        self.assertRegex(told, r'^a.jsonl:2: warning: .*\[link-unresolved\]\n$')
        self.write('b.jsonl',
                   tool.CREATE + '\n' + call('SetDocumentTarget', [9, 9], 'https://a.example'))
        self.assertEqual(self.run_tool('lint', '--pages', 'a.jsonl', 'b.jsonl').stdout, '')

    def test_lost_attributes(self):
        bad = svg(root=' viewBox="0 0 9 9" data-note="a&gt;b" fill="red"')
        self.assertEqual(self.lint(bad), [])
        self.assertIn(self.lint(svg(root=' viewBox="0 0 9 9" aria-hidden="true" fill="red"'))[0][0],
                      ['svg-root-scan', 'svg-broken'])

    def test_messages(self):
        self.write('page.jsonl', '\n'.join([tool.CREATE] + [LINE] * 5))
        lines = self.run_tool('lint', 'page.jsonl').stdout.splitlines()
        self.assertEqual(lines[0], 'page.jsonl:2: error: a line without a stroke: it is not seen; '
                         'set a stroke before it [line-without-stroke]')
        self.assertEqual(lines[3:], ['page.jsonl: and 2 more [line-without-stroke]'])
        self.assertEqual(len(self.run_tool('lint', '--all', 'page.jsonl').stdout.splitlines()), 5)
        result = self.run_tool('lint', 'page.jsonl', '--disable', 'line-without-stroke')
        self.assertEqual((result.stdout, result.returncode), ('', 0))
        for arguments in [['none.jsonl'], ['page.jsonl', '--disable', 'line'], []]:
            self.assertEqual(self.run_tool('lint', *arguments).returncode, 2)

    def test_guide(self):
        guide = (tool.REPOSITORY / 'docs/integration.md').read_text('utf-8')
        self.assertIn(self.run_tool('lint', '--rules').stdout, guide,
                      'paste `qzsvggen lint --rules` into it')

    def test_counts_of_pages(self):
        stored = json.loads((tool.REPOSITORY / 'tests/tools/lint_counts.json').read_text())
        for page in tool.recordings():
            with self.subTest(page=page):
                counts = {}
                for each in json.loads(tool.run('lint', '--json', page).stdout):
                    counts[each['id']] = counts.get(each['id'], 0) + 1
                self.assertEqual(counts, stored.get(page.stem, {}))


unittest.main()
