"""What `qzsvggen replay` refuses, with which message, and what it accepts."""
import unittest

import tool

CREATE = '["SVG_Create",[0,0,10,20]]'

# A second line, and what stands behind "page.jsonl:2: ".
BAD = [
    ('', 'is blank'),
    (' \t', 'is blank'),
    ('\ufeff' + CREATE, 'begins with a byte-order mark'),
    ('["SVG_DrawText",', 'not JSON'),
    ('["SVG_DrawText","\\ud800",[0,0],null,100]', 'not JSON'),
    ('3', 'a line is a list'),
    ('{"a":1,"a":2}', 'not JSON: the key "a" is there twice'),
    ('["SVG_SetFill",1e999,2,3,4]', 'a number is far out of range'),
    ('["SVG_SetFill",1,2,3,99999999999999999999]',
     'SVG_SetFill: argument 4: 1e+20 is not in 0 to 255'),
    ('["SVG_Fill",1]', 'unknown function "SVG_Fill"'),
    ('["SVG_Delete"]', 'SVG_Delete is implied'),
    (CREATE, 'a recording has one SVG_Create'),
    ('["SVG_SetFill",1,2,3]', 'SVG_SetFill: takes 4 arguments, not 3'),
    ('["SVG_EndLink",1]', 'SVG_EndLink: takes 0 arguments, not 1'),
    ('["SVG_SetFill",1,2,256,4]', 'SVG_SetFill: argument 3: 256 is not in 0 to 255'),
    ('["SVG_SetFill",1,-2,3,4]', 'SVG_SetFill: argument 2: -2 is not in 0 to 255'),
    ('["SVG_SetFill",1,2.0,3,4]', 'SVG_SetFill: argument 2: must be a whole number'),
    ('["SVG_SetFill","1",2,3,4]', 'SVG_SetFill: argument 1: must be a whole number'),
    ('["SVG_DrawLine",[0,0],[0,2147483648]]', 'SVG_DrawLine: argument 2: 2147483648 is not in'),
    ('["SVG_DrawLine",[0,0],[0]]', 'SVG_DrawLine: argument 2: must be a point'),
    ('["SVG_DrawRectangle",[]]', 'SVG_DrawRectangle: argument 1: must be a rectangle'),
    ('["SVG_DrawPolyline",[1,2]]', 'SVG_DrawPolyline: argument 1: must be a point'),
    ('["SVG_DrawPolygon",null]', 'SVG_DrawPolygon: argument 1: must be a list of points'),
    ('["SVG_DrawPath",[[1,2]],[6,2]]', 'SVG_DrawPath: argument 2: 2 types for 1 points'),
    ('["SVG_DrawText","ab",[0,0],[1],100]', 'SVG_DrawText: argument 3: 1 advances for 2'),
    ('["SVG_DrawText",{"text":"ab","count":3},[0,0],null,100]', 'SVG_DrawText: argument 1: a'),
    ('["SVG_DrawText",{"base64":"QQA"},[0,0],null,100]', 'SVG_DrawText: argument 1: is not base64'),
    ('["SVG_DrawText",{"base64":"QUFB"},[0,0],null,100]', 'SVG_DrawText: argument 1: an odd'),
    ('["SVG_DrawText",{"text":"","base64":""},[0,0],null,100]', 'SVG_DrawText: argument 1: has'),
    ('["SVG_SetFont",{"text":"a","count":-1},1,0,0]', 'SVG_SetFont: argument 1: a count of -1'),
    ('["SVG_SetFont",{"name":"a"},1,0,0]', 'SVG_SetFont: argument 1: unknown member "name"'),
    ('["SVG_DrawImage",5,[0,0,1,1],{"file":"none.jpg"},1]', 'SVG_DrawImage: cannot read'),
    ('["SVG_DrawImage",5,[0,0,1,1],{"file":"../page.jsonl"},1]', 'SVG_DrawImage: "../'),
    ('["SVG_DrawImage",5,[0,0,1,1],{"file":".."},1]', 'SVG_DrawImage: cannot read ".."'),
    ('["SVG_DrawImage",5,[0,0,1,1],{},1]', 'SVG_DrawImage: argument 3: has none of'),
    ('["SVG_BeginFormField",17,0,0,[0,0,1,1],"a","abc"]', 'SVG_BeginFormField: argument 6'),
]

# A second line, and a part of the document.
GOOD = [
    ('["SVG_GetVersion"]\r\n["SVG_GetCurrentClippingRegion"]\n["SVG_EndCharacter"]',
     '<defs></defs></svg>'),
    ('["SVG_DrawPolyline",[]]', '<defs></defs></svg>'),
    ('["SVG_DrawLine",[1,2],[3,4]]\n["SVG_Close"]', 'width="0" height="0"><defs></defs></svg>'),
    ('["SVG_DrawText",{"text":"abc","count":-1},[0,0],[1,2,3],100]', '<defs></defs></svg>'),
    ('["SVG_DrawText",{"text":"abc","count":2},[0,0],null,100]', '>ab</text>'),
    ('["SVG_DrawText",{"base64":"PNj23wDY"},[0,0],null,100]', '>\U0001f3f6\ufffd</text>'),
    ('["SVG_BeginFormField",17,0,0,[0,0,1,1],"a",{"base64":"AQAAAAAAAABkAA==","count":0}]',
     'velumark:typeData="1 "'),
    ('["SVG_BeginSignatureField",[0,0,1,1],"a",{"base64":"ZAB5AA=="}]', 'velumark:infoData="dy"'),
    ('["SVG_DrawImage",4,[0,0,1,1],{"file":"dot.png"},100]', 'base64,RE9U'),
    ('["SVG_DrawImage",4,[0,0,1,1],{"file":"dot.png","count":2},100]', 'base64,RE8='),
]


def document_hash(document):
    result = 0xcbf29ce484222325 ^ len(document)
    for start in range(0, len(document), 4):
        step = int.from_bytes(document[start:start + 4].encode('utf-16-le'), 'little')
        result = (result ^ step) * 0x100000001b3 % 2**64
        result ^= result >> 32
    return f'{result:016x}'


class Lines(tool.InFolder):
    def setUp(self):
        super().setUp()
        (self.folder / 'dot.png').write_bytes(b'DOT')

    def replay(self, recording, *options):
        self.write('page.jsonl', recording)
        return self.run_tool('replay', 'page.jsonl', '-o', 'page.svg', *options)

    def refuses(self, recording, message):
        result = self.replay(recording)
        self.assertEqual(result.returncode, 2, result.stderr)
        self.assertEqual(result.stderr[:len(message)], message)
        self.assertFalse((self.folder / 'page.svg').exists())

    def test_bad_lines(self):
        for line, message in BAD:
            with self.subTest(line=line):
                self.refuses(f'{CREATE}\n{line}\n', 'page.jsonl:2: ' + message)

    def test_needs_a_page_first(self):
        self.refuses('', 'page.jsonl:1: no SVG_Create')
        self.refuses('["SVG_EndLink"]', 'page.jsonl:1: a recording begins with SVG_Create')

    def test_good_lines(self):
        for line, part in GOOD:
            with self.subTest(line=line):
                result = self.replay(f'{CREATE}\n{line}')
                self.assertEqual(result.returncode, 0, result.stderr)
                self.assertIn(part, (self.folder / 'page.svg').read_text('utf-8'))
                self.assertEqual('lone surrogates' in result.stderr, '\ufffd' in part)

    def test_writes_utf16_with_a_mark(self):
        self.assertEqual(self.replay(CREATE, '--utf16', '--time').returncode, 0)
        document = (self.folder / 'page.svg').read_bytes()
        self.assertEqual(document[:4], b'\xff\xfe<\0')
        self.assertTrue(document.decode('utf-16').endswith('</svg>'))

    def test_notes_and_what_a_trace_leaves_behind(self):
        line = '["SVG_DrawText","ab",[0,0],null,100]'
        for end in ['{"problems":[]}\n', '\0' * 99, line[:20], line[:20] + '\0\0', '["SV']:
            with self.subTest(end=end):
                result = self.replay(f'{CREATE}\n{line}\n{end}')
                self.assertEqual(result.returncode, 0, result.stderr)
                self.assertIn('>ab</text>', (self.folder / 'page.svg').read_text())
                cut_off = 'page.jsonl:3: warning: '
                self.assertEqual(result.stderr.startswith(cut_off), end.startswith('['))
                self.assertEqual('SVG_DrawText was cut off' in result.stderr, len(end) > 19 and
                                 end.startswith('['))

    def test_until(self):
        line = '["SVG_DrawLine",[0,0],[1,1]]\n'
        result = self.replay(CREATE + '\n{}\n' + 3 * line, '--until', '4', '--time')
        self.assertTrue(result.stderr.startswith('2 calls: '), result.stderr)
        self.assertEqual((self.folder / 'page.svg').read_text().count('<line'), 2)

    def test_verify(self):
        note = '{"document":{"size":%d,"hash":"%s"}}'
        self.replay(CREATE)
        document = (self.folder / 'page.svg').read_text('utf-8')
        right = note % (len(document) + 1, document_hash(document))
        for text, status in [(right, 0), (note % (len(document) + 1, '0'), 1), ('{}', 2)]:
            result = self.replay(CREATE + '\n' + text, '--verify')
            self.assertEqual(result.returncode, status, result.stderr)

    def test_keeps_what_is_there(self):
        self.write('page.svg', 'kept')
        self.assertEqual(self.replay('bad').returncode, 2)
        self.assertEqual(self.replay(CREATE, '-o', 'none/page.svg').returncode, 2)
        result = self.run_tool('replay', 'page.jsonl', '-o', './page.jsonl')
        self.assertEqual(result.stderr, './page.jsonl: is the input; it is not written over\n')
        self.assertEqual((self.folder / 'page.jsonl').read_text(), CREATE)
        self.assertEqual(sorted(p.name for p in self.folder.iterdir()),
                         ['dot.png', 'page.jsonl', 'page.svg'])

    def test_says_what_is_wrong(self):
        for arguments, part in [(['replay', 'none'], 'none: cannot be read: No such file'),
                                (['replay', '.'], '.: cannot be read: Is a directory'),
                                (['replay', 'a', '--utf8'], '--utf8'), (['paint'], 'paint'), ([], '')]:
            result = self.run_tool(*arguments)
            self.assertIn(part, result.stderr)
            self.assertEqual(result.returncode, 2)
        self.assertRegex(self.run_tool('--version').stdout, r'^qzsvggen \d+\.\d+\.\d+\n')


unittest.main()
