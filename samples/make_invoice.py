#!/usr/bin/env python3
"""Writes invoice.jsonl: an A4 page in twentieths of a point that uses every function there is."""
import base64
import json
import pathlib
import struct

OUT = []
SANS, SERIF = 'Liberation Sans,Arial,sans-serif', 'Liberation Serif,Times New Roman,serif'
PAGE, LEFT, RIGHT = [0, 0, 11906, 16838], 1000, 10906
INK, GREY, TEAL, BRASS, SEA, RUST = ((30, 40, 46), (104, 112, 116), (18, 52, 64), (201, 161, 78),
                                     (47, 125, 140), (150, 40, 32))

# Widths of the characters from the blank to the tilde, and of those below, in thousandths.
REGULAR = [int(w) for w in '''
    278 278 355 556 556 889 667 191 333 333 389 584 278 333 278 278 556 556 556 556 556 556 556 556
    556 556 278 278 584 584 584 556 1015 667 667 722 722 667 611 778 722 278 500 667 556 833 722 778
    667 778 722 667 611 722 667 944 667 667 611 278 278 278 469 556 333 556 556 500 556 556 278 556
    556 222 222 500 222 833 556 556 556 556 333 500 278 556 500 722 500 500 500 334 260 334 584
    '''.split()]
BOLD = [int(w) for w in '''
    278 333 474 556 556 889 722 238 333 333 389 584 278 333 278 278 556 556 556 556 556 556 556 556
    556 556 333 333 584 584 584 611 975 722 722 722 722 667 611 778 722 278 556 722 611 833 722 778
    667 778 722 667 611 722 667 944 667 667 611 333 278 333 584 556 333 556 611 556 611 556 333 611
    611 278 278 556 278 889 611 611 611 611 389 556 333 611 556 778 556 556 500 389 280 389 584
    '''.split()]
OTHERS = {'·': 333, '€': 556}


def call(name, *arguments):
    OUT.append(json.dumps(['SVG_' + name, *arguments], ensure_ascii=False, separators=(',', ':')))


def fill(colour, alpha=255):
    call('SetFill', alpha, *colour)


def stroke(colour, width, alpha=255):
    call('SetStroke', alpha, *colour, width)


def advances_of(string, size, bold, scaling, spacing):
    """Whole advances whose rounding does not add up."""
    table, result, exact, reached = BOLD if bold else REGULAR, [], 0, 0
    for character in string:
        width = OTHERS.get(character) or table[ord(character) - 32]
        exact += (width * size / 1000 + spacing) * scaling / 100
        result.append(round(exact) - reached)
        reached += result[-1]
    return result


def text(x, y, string, size=190, colour=INK, bold=0, italic=0, right=False, scaling=100, spacing=0):
    advances = advances_of(string, size, bold, scaling, spacing)
    call('SetFont', SANS, size, italic, bold)
    fill(colour)
    call('DrawText', string, [x - sum(advances) if right else x, y], advances, scaling)


def heading(x, y, string, size, colour=TEAL):
    call('SetFont', SERIF, size, 0, 0)
    fill(colour)
    call('DrawText', string, [x, y], None, 100)


def link(kind, target, *arguments, **options):
    call('BeginLink', kind, target)
    text(*arguments, **options, colour=SEA)
    call('EndLink')


def path(name, x, y, outline):
    """A path written as letters and points, "M 0 0 L 5 5 C 1 1 2 2 3 3 Z", at a position."""
    points, types, kind, words = [], [], 0, outline.split()
    while words:
        word = words.pop(0)
        if word == 'Z':
            types[-1] += 1
        elif word in ('M', 'L', 'C'):
            kind = {'M': 6, 'L': 2, 'C': 4}[word]
        else:
            points.append([x + int(word), y + int(words.pop(0))])
            types.append(kind)
    call(name, points, types)


# ---- The letter head ----------------------------------------------------------------------------

# One stroke a letter, on a baseline at 0; and its width.
LETTERS = {
    'T': (300, 'M 0 -380 L 300 -380 150 -380 150 0'),
    'I': (0, 'M 0 -380 L 0 0'),
    'D': (310, 'M 0 0 L 0 -380 110 -380 C 240 -380 310 -300 310 -190 310 -80 240 0 110 0 Z'),
    'E': (230, 'M 230 -380 L 0 -380 0 -195 190 -195 0 -195 0 0 230 0'),
    'W': (440, 'M 0 -380 L 110 0 220 -300 330 0 440 -380'),
    'L': (210, 'M 0 -380 L 0 0 210 0'),
    'C': (310, 'M 310 -320 C 280 -360 240 -380 190 -380 80 -380 0 -300 0 -190 0 -80 80 0 190 0'
               ' 240 0 280 -20 310 -60'),
    'O': (380, 'M 190 -380 C 295 -380 380 -295 380 -190 380 -85 295 0 190 0'
               ' 85 0 0 -85 0 -190 0 -295 85 -380 190 -380 Z'),
    'K': (270, 'M 0 -380 L 0 0 0 -150 250 -380 85 -228 270 0'),
    'S': (250, 'M 235 -325 C 210 -360 175 -380 125 -380 60 -380 10 -345 10 -285 10 -155 250 -230'
               ' 250 -100 250 -40 195 0 125 0 65 0 25 -25 0 -65'),
}


def word(x, y, string):
    """Outlined text: a letter that comes again refers to its first."""
    call('BeginCharacterBlock')
    for index, letter in enumerate(string):
        width, outline = LETTERS[letter]
        if string.index(letter) < index:
            call('SetCharacterReference', string.index(letter), [x, y])
        else:
            call('BeginCharacter', [x, y])
            path('DrawPath', x, y, outline)
            call('EndCharacter')
        x += width + 135
    call('EndCharacterBlock')


def letter_head():
    fill((255, 255, 255))
    call('DrawRectangle', PAGE)
    fill(TEAL)
    call('DrawRectangle', [0, 0, PAGE[2], 2560])
    # The photograph through four panes with a bar across; the region can be selected again.
    call('BeginClippingRegion', [6906, 0, 8106, 2500])
    for left in (8166, 9426, 10686):
        call('AddClippingRegion', [left, 0, left + 1200, 2500])
    call('ExcludeClippingRegion', [6906, 820, 11906, 880])
    call('DrawImage', 5, [6906, 0, 11906, 2500], {'file': 'harbour.jpg'}, 85)
    call('GetCurrentClippingRegion')  # the fifth region of the page: 4
    call('EndClippingRegion')
    fill(BRASS)
    call('DrawRectangle', [0, 2500, PAGE[2], 2560])
    call('SetCurrentClippingRegion', 4)
    fill(TEAL, 110)
    call('DrawPolygon', [[6906, 2150], [11906, 2150], [11906, 2500], [6906, 2500]])
    call('EndClippingRegion')
    text(RIGHT, 2390, 'The harbour at half past six', 170, (255, 244, 214), italic=1, right=True)
    call('DrawImage', 8, [LEFT, 560, LEFT + 1250, 1810], {'file': 'clock.svg'}, 100)
    fill(TEAL, 0)
    stroke(BRASS, 56)
    word(2600, 1180, 'TIDEWELL')
    word(2600, 1760, 'CLOCKS')
    call('ClearStroke')
    text(2590, 2150, 'MAKERS AND MENDERS OF TIDE CLOCKS', 150, (222, 212, 190), spacing=26)


# ---- Addresses and the tide ---------------------------------------------------------------------

def tide(left, top, right, bottom):
    stroke((222, 214, 196), 14)
    fill((252, 249, 241))
    # Its edge lies within its sides, that of DrawRectangle half outside. Corners of a size would
    # bulge outward, as the format prescribes.
    call('DrawRoundedRectangle', [left, top, right, bottom], 0, 0, 15)
    call('ClearStroke')
    text(left + 220, top + 340, 'Tide in your harbour, Thursday', 170, TEAL, bold=1)
    text(right - 240, top + 340, 'metres', 140, GREY, right=True)
    stroke((216, 216, 210), 8)
    for level in range(4):
        y = bottom - 400 - 480 * level
        call('DrawLine', [left + 420, y], [right - 240, y])
    heights = [24, 31, 26, 15, 6, 2, 7, 18, 28, 33, 27, 17, 6, 1, 5, 14, 23]
    step = (right - left - 660) // (len(heights) - 1)
    line = [[left + 420 + step * i, bottom - 400 - 44 * h] for i, h in enumerate(heights)]
    call('ClearStroke')
    fill(SEA, 56)
    call('DrawPolygon', [[line[0][0], bottom - 400], *line, [line[-1][0], bottom - 400]])
    fill(SEA, 0)
    stroke(SEA, 32)
    call('DrawPolyline', line)
    call('ClearStroke')
    for level in range(4):
        text(left + 330, bottom - 350 - 480 * level, str(level), 140, GREY, right=True)
    for hour in range(0, 25, 6):
        text(left + 240 + step * hour * 2 // 3, bottom - 170, f'{hour:02}:00', 140, GREY,
             scaling=90)


def addresses():
    call('SetDocumentTarget', [LEFT, 3000], 'invoice')
    heading(LEFT, 3560, 'Invoice', 760)
    for i, (label, value) in enumerate([('Number', 'TC-2047'), ('Date', '14 November 2025'),
                                        ('Due', '12 December 2025')]):
        text(LEFT, 4060 + 290 * i, label, colour=GREY)
        text(LEFT + 1100, 4060 + 290 * i, value, bold=int(label == 'Due'))
    for i, row in enumerate(['Ms Edda Quillfeather', 'The Old Ropewalk', '7 Anchor Lane',
                             'Saltmere']):
        text(LEFT, 5080 + 260 * i, row)
    tide(6300, 3020, RIGHT, 5900)


# ---- The items and the sum ----------------------------------------------------------------------

ITEMS = [
    ('Tide clock, model Ebb', 'brass case, 160 mm dial, hand-painted', 1, 31500),
    ('Longcase movement, overhauled', 'cleaned, two bushings, new gut lines', 1, 24000),
    ('Pendulum spring', 'blued steel, 0.10 mm', 3, 850),
    ('Collection & delivery', 'by boat, weather permitting', 2, 1800),
    ('Beeswax, a tin', 'for cases of oak and walnut <outside only>', 1, 720),
]
COLUMNS = {'Quantity': 7500, 'Each, €': 9150, 'Amount, €': RIGHT - 160}


def money(cents):
    return f'{cents // 100:,}.{cents % 100:02}'


def items(top=6350):
    fill(TEAL)
    call('DrawRectangle', [LEFT, top, RIGHT, top + 420])
    text(LEFT + 160, top + 280, 'For', 180, (255, 255, 255), bold=1)
    for label, x in COLUMNS.items():
        text(x, top + 280, label, 180, (255, 255, 255), bold=1, right=True)
    for i, (name, remark, quantity, cents) in enumerate(ITEMS):
        y = top + 420 + 580 * i
        if i % 2:
            fill(BRASS, 30)
            call('DrawRectangle', [LEFT, y, RIGHT, y + 580])
        call('DrawImage', 8, [LEFT + 160, y + 130, LEFT + 480, y + 450], {'file': 'gear.svg'}, 100)
        text(LEFT + 640, y + 265, name, bold=1)
        text(LEFT + 640, y + 475, remark, 160, GREY, scaling=96)
        for value, x in zip((str(quantity), money(cents), money(quantity * cents)),
                            COLUMNS.values()):
            text(x, y + 360, value, right=True)
    return top + 420 + 580 * len(ITEMS)


def total(top):
    net = sum(quantity * cents for _, _, quantity, cents in ITEMS)
    stroke(TEAL, 16)
    call('DrawLine', [LEFT, top], [RIGHT, top])
    call('ClearStroke')
    for i, (label, cents) in enumerate([('Net', net), ('VAT 20 %', net // 5)]):
        text(9150, top + 380 + 290 * i, label, colour=GREY, right=True)
        text(RIGHT - 160, top + 380 + 290 * i, money(cents), right=True)
    # Drawn dark on light, then inverted but for a rim.
    fill((252, 240, 205))
    call('DrawRectangle', [6900, top + 880, RIGHT, top + 1480])
    text(7060, top + 1260, 'To pay', 250, (40, 20, 0), bold=1)
    text(RIGHT - 160, top + 1260, '€ ' + money(net + net // 5), 300, (40, 20, 0), bold=1,
         right=True)
    call('InvertRectangle', [6920, top + 900, RIGHT - 20, top + 1460])


def remarks(top):
    call('DrawImage', 4, [LEFT, top + 300, LEFT + 1260, top + 1560], {'file': 'dial.png'}, 100)
    x, y = LEFT + 1500, top + 560
    text(x, y, 'Thank you for your order!', 200, TEAL, bold=1)
    text(x, y + 290, 'Your clock is set to the harbour of Saltmere.', 170, GREY)
    text(x, y + 530, 'It gains a minute a week at most, see our', 170, GREY)
    link(2, 'terms', x, y + 770, 'terms and guarantee', 170)
    text(x + 1600, y + 770, '· more at', 170, GREY)
    link(1, 'https://tidewell.example/care?clock=ebb&lang=en', x + 2330, y + 770,
         'tidewell.example', 170)


# ---- The slip -----------------------------------------------------------------------------------

def box(bounds):
    fill((255, 255, 255))
    stroke((168, 176, 178), 10)
    call('DrawRectangle', bounds)
    call('ClearStroke')


def field(kind, flags, bounds, name, data, label, value):
    left, top, right, bottom = bounds
    text(left, top - 80, label, 150, GREY)
    call('BeginFormField', kind, flags, 0, bounds, name, data)
    box(bounds)
    text(left + 110, bottom - 125, value, 180)
    if kind == 15:
        fill(TEAL)
        call('DrawPolygon', [[right - 280, top + 160], [right - 100, top + 160],
                             [right - 190, top + 270]])
    call('EndFormField')


def barcode(x, top, bottom, digits):
    """Bars as characters: each width is outlined once and used again."""
    fill(INK)
    call('BeginCharacterBlock')
    for digit in digits:
        width = 22 * (1 + int(digit) % 4)
        call('BeginCharacter', [x, top])
        call('DrawRectangle', [x, top, x + width, bottom])
        call('EndCharacter')
        x += width + 22 * (1 + int(digit) // 4)
    call('EndCharacterBlock')


def slip(top):
    stroke(GREY, 10)
    for x in range(0, PAGE[2], 220):
        call('DrawLine', [x, top], [x + 120, top])
    call('ClearStroke')
    heading(LEFT, top + 560, 'Payment slip', 380)
    y = top + 1080
    call('BeginFormField', 14, 1, 4, [LEFT, y - 210, LEFT + 250, y + 40], 'Paid', 'Yes')
    box([LEFT, y - 210, LEFT + 250, y + 40])
    fill(SEA, 0)
    stroke(SEA, 46)
    call('DrawPolyline', [[LEFT + 55, y - 80], [LEFT + 115, y - 15], [LEFT + 205, y - 155]])
    call('ClearStroke')
    call('EndFormField')
    text(LEFT + 400, y, 'I have paid the amount above.')
    y = top + 1640
    field(15, 2, [LEFT, y, LEFT + 2500, y + 420], 'Method',
          'Bank transfer\0Card\0Cash at the harbour', 'Paid by', 'Bank transfer')
    day = struct.pack('<Q', 45977) + 'dd.MM.yyyy'.encode('utf-16-le')
    field(17, 0, [LEFT + 2800, y, LEFT + 4700, y + 420], 'PaidOn',
          {'base64': base64.b64encode(day).decode()}, 'On', '16.11.2025')
    field(16, 0, [LEFT, y + 820, LEFT + 4700, y + 1240], 'Reference',
          'Edda Quillfeather, TC-2047', 'Reference', 'Edda Quillfeather, TC-2047')
    bounds = [6900, y - 640, RIGHT, y + 640]
    call('BeginSignatureField', bounds, 'Payer', 'Signed by Edda Quillfeather')
    fill(SEA, 18)
    call('DrawRectangle', bounds)
    fill(TEAL, 0)
    stroke((34, 58, 120), 34)
    path('DrawPath', 7300, y + 180, 'M 0 0 C 200 -120 420 -430 300 -470 170 -500 40 -130 130 10'
         ' 210 120 420 -30 520 -170 590 -260 640 -190 600 -110 560 -20 660 40 760 -60'
         ' 860 -170 940 -460 860 -470 760 -480 740 -60 850 0 960 50 1050 -120 1130 -150'
         ' 1200 -170 1170 -20 1260 -10 1400 0 1480 -190 1580 -140 1650 -100 1590 20 1720 0'
         ' 1900 -30 2200 -120 2700 -60')
    stroke(GREY, 8)
    call('DrawLine', [7100, y + 440], [RIGHT - 200, y + 440])
    call('ClearStroke')
    text(7100, y + 580, 'Signature', 140, GREY)
    call('EndSignatureField')
    barcode(6900, y + 860, y + 1240, '0712930415820463971502846130759204618357')


def foot():
    call('SetDocumentTarget', [LEFT, 15600], 'terms')
    call('DrawImage', 8, [LEFT, 15640, LEFT + 460, 16100], {'file': 'clock.svg'}, 100)
    text(LEFT + 620, 15800, 'Terms: payment within four weeks. Guarantee: two years on movements, '
         'five on dials; floods excepted.', 140, GREY)
    text(LEFT + 620, 16020, 'Tidewell Clocks · 1 Breakwater Steps · Saltmere · an invented firm '
         'in an invented town', 140, GREY)
    # A band in the complement of the colour that is given for it, and a mark for a consumer that
    # inverts the area of a path.
    call('BeginInvertPainting')
    fill((252, 244, 240))
    call('DrawRectangle', [0, 16560, PAGE[2], PAGE[3]])
    call('EndInvertPainting')
    fill(INK)
    path('InvertPath', 10500, 16200, 'M 0 0 L 150 150 0 300 -150 150 Z')


call('Create', PAGE)
call('GetVersion')
letter_head()
addresses()
after = items()
total(after)
remarks(after)
slip(11900)
foot()
call('ClearFont')
(pathlib.Path(__file__).parent / 'invoice.jsonl').write_text('\n'.join(OUT) + '\n', 'utf-8')
