"""Pages that lint has something to say about, and the pages as it advises."""
import base64
import json
import zlib

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
LARGE = call('DrawRectangle', [0, 0, 100, 100])
SQUARE = [[10, 10], [50, 10], [50, 50]]
PNG = png(10, 10)
TRIANGLE = path(SQUARE, [6, 2, 3])


# Rule, the bad page, its line, the page as advised. Lines count from that behind SVG_Create; 0 is
# SVG_Create itself.
PAIRS = [
    ('xml-character', text('a\x07'), 2, text('a ')),
    ('lone-surrogate', FONT + '\n' + call('DrawText', {'base64': 'ANg='}, [9, 9], None, 100), 2,
     text('\ufffd')),
    ('negative-x', text('abc', [-110, -20, 60]), 2,
     '\n'.join([text('a'), *(call('DrawText', each, [x, 100], [9], 100)
                             for each, x in [('b', -10), ('c', -30)])])),
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
    ('path-after-close', path([*SQUARE, [60, 60], [20, 90]], [6, 2, 3, 2, 2]), 1,
     path([*SQUARE, [50, 50], [60, 60], [20, 90]], [6, 2, 3, 6, 2, 2])),
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
     call('ExcludeClippingRegion', [9, 9, 20, 20]) + '\n' + BOX, 2,
     call('ExcludeClippingRegion', [0, 0, 50, 50]) + '\n' + BOX),
    ('clip-cut-overlap', call('ExcludeClippingRegion', [0, 0, 50, 50]) + '\n' +
     call('ExcludeClippingRegion', [40, 40, 90, 90]) + '\n' + LARGE, 2,
     call('ExcludeClippingRegion', [0, 0, 50, 50]) + '\n' +
     call('ExcludeClippingRegion', [50, 50, 90, 90]) + '\n' + LARGE),
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
     block(call('BeginCharacter', [100, 500]),
           path([[100, 500], [120, 500], [100, 480], *SQUARE], [6, 2, 3, 6, 2, 3]),
           call('SetCharacterReference', 0, [150, 500]))),
    ('block-outline', block(call('BeginCharacter', [100, 500]), call('DrawPolygon', SQUARE)), 3,
     block(glyph(100))),
    ('block-relative', block(call('BeginCharacter', [100, 500]),
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
