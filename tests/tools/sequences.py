"""Random sequences of calls within the contract, the same ones each time."""
import base64
import json
import random

FUNCTIONS = '''SetFill:bbbb SetStroke:bbbbu ClearStroke: BeginInvertPainting: EndInvertPainting:
    InvertPath:LY InvertRectangle:R DrawLine:PP DrawRectangle:R DrawRoundedRectangle:Ruub
    DrawPolyline:L DrawPolygon:L DrawPath:LY SetFont:Tibb ClearFont: DrawText:TPAu
    BeginCharacterBlock: BeginCharacterBlock: EndCharacterBlock: BeginCharacter:P BeginCharacter:P
    BeginCharacter:P SetCharacterReference:uP EndCharacter: DrawImage:FRDb BeginClippingRegion:R
    AddClippingRegion:R ExcludeClippingRegion:R EndClippingRegion: GetCurrentClippingRegion:
    SetCurrentClippingRegion:u BeginFormField:KbbRTO EndFormField: BeginLink:kT EndLink:
    SetDocumentTarget:PT BeginSignatureField:RTO EndSignatureField: GetVersion:'''.split()
PICTURES = ['<svg  width="10%" height="2in" fill="red"><g>é</g></svg>', '<svg a="1"><g/></svg>',
            '<svg viewBox="0 0 1 1"><path/></svg>', '<svg>nothing</svg>', 'no picture']


class Sequence:
    def __init__(self, seed):
        self.random = random.Random(seed)
        lines = [['SVG_Create', [0, 0, 210, 297]]]
        for _ in range(self.random.randrange(80)):
            if self.random.random() < 0.3:  # the library knows again what it has seen
                lines.append(self.random.choice(lines[1:] or [['SVG_ClearFont']]))
                continue
            name, kinds = self.random.choice(FUNCTIONS).split(':')
            lines.append(['SVG_' + name, *(self.argument(kind) for kind in kinds)])
        if seed % 10 == 0:
            lines.insert(self.random.randrange(1, len(lines) + 1), ['SVG_Close'])
        self.text = ''.join(json.dumps(line, ensure_ascii=False) + '\n' for line in lines)

    def number(self):
        return self.random.choice([0, 1, 2, 3, 5, 10, 40, -3, 2**31 - 1, -2**31])

    def argument(self, kind):
        below = self.random.randrange
        if kind in 'bk':
            return below(4) if kind == 'k' else self.random.choice([0, 1, 90, 100, 255])
        if kind in 'iu':
            return abs(self.number()) % 2**31 if kind == 'u' else self.number()
        if kind in 'PR':
            return [self.number() for _ in range(2 if kind == 'P' else 4)]
        if kind == 'L':
            self.count = below(6)
            return [self.argument('P') for _ in range(self.count)]
        if kind == 'Y':
            return [self.random.choice([6, 2, 3, 4, 5, 1, 0, 7]) for _ in range(self.count)]
        if kind == 'A':
            # Without text there is no telling an empty list from none.
            advances = [self.number() for _ in range(self.count)]
            return self.random.choice([None, advances or None])
        if kind in 'TO':
            text = ''.join(self.random.choice('a b<&"\'\0é中\U0001f3f6') for _ in range(below(6)))
            self.count = len(text.encode('utf-16-le')) // 2
            return 'date' + text if kind == 'O' else text
        if kind == 'K':
            return 13 + below(6)
        if kind == 'F':
            self.format = self.random.choice([4, 5, 8, 8, 8, 0])
            return self.format
        data = self.random.choice(PICTURES).encode()
        if self.format != 8:
            data = bytes([below(3)]) * self.random.choice([1, 2, 3, 3000])
        return {'base64': base64.b64encode(data).decode()}


def sequences(count):
    return [Sequence(seed).text for seed in range(count)]
