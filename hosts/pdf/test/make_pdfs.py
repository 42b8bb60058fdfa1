"""Makes the PDFs that the tests read: one for each feature."""

import io

import pikepdf
from PIL import Image, ImageDraw
from pikepdf import Array, Dictionary, Name, String
from reportlab.lib.colors import Color, black, blue, green, orange, red, white
from reportlab.lib.utils import ImageReader
from reportlab.pdfgen import canvas

SIZE = (300, 300)  # points, of every page


def drawn(*pages):
    """A PDF whose pages are drawn by functions that take a canvas."""
    data = io.BytesIO()
    c = canvas.Canvas(data, SIZE, pageCompression=0, invariant=1)
    for page in pages:
        page(c)
        c.showPage()
    c.save()
    return data.getvalue()


def changed(data, change):
    """The PDF after a function has changed it."""
    with pikepdf.open(io.BytesIO(data)) as pdf:
        change(pdf)
        return saved(pdf)


def saved(pdf, **options):
    data = io.BytesIO()
    pdf.save(data, static_id=True, **options)
    return data.getvalue()


def raw(content, resources=None):
    """A PDF of one page with such content."""
    pdf = pikepdf.new()
    pdf.add_blank_page(page_size=SIZE)
    pdf.pages[0].Contents = pdf.make_stream(content.encode())
    pdf.pages[0].Resources = resources(pdf) if resources else Dictionary()
    return saved(pdf)


def photo(mode="RGB", size=(60, 40)):
    image = Image.new(mode, size, {"RGB": (40, 90, 160), "L": 128}.get(mode, (0, 0, 0, 0)))
    draw = ImageDraw.Draw(image)
    draw.ellipse((10, 5, 45, 35), fill=(230, 180, 30, 200) if mode == "RGBA" else None if mode == "L"
                 else (230, 180, 30))
    draw.line((0, 0, *size), fill=255 if mode == "L" else (200, 0, 0), width=3)
    return image


def jpeg():
    data = io.BytesIO()
    photo().save(data, "JPEG", quality=90)
    return data.getvalue()


def shapes(c):
    c.setFillColor(orange)
    c.rect(20, 200, 80, 60, stroke=0, fill=1)
    c.setLineWidth(6)
    c.circle(180, 230, 30, fill=0)
    path = c.beginPath()  # two open figures and a closed one
    path.moveTo(20, 120), path.lineTo(60, 180), path.lineTo(100, 120)
    path.moveTo(120, 120), path.lineTo(160, 180)
    path.moveTo(180, 120), path.lineTo(220, 180), path.lineTo(260, 120), path.close()
    path.lineTo(220, 130)
    c.drawPath(path)
    c.setFillColor(green)
    c.setFillAlpha(0.5)
    c.rect(60, 180, 80, 60, stroke=0, fill=1)
    c.setLineWidth(0)
    c.line(20, 100, 280, 90)


def joins(c):
    c.setLineWidth(14)
    for join in range(3):
        c.setLineJoin(join)
        c.setLineCap(join)
        c.lines([(30 + 90 * join, 200, 60 + 90 * join, 270), (30, 40 + 40 * join, 270, 60 + 40 * join)])
        path = c.beginPath()
        path.moveTo(30 + 90 * join, 160), path.lineTo(50 + 90 * join, 190)
        path.lineTo(70 + 90 * join, 160)
        c.drawPath(path)


def clips(c):
    path = c.beginPath()
    path.rect(40, 160, 100, 100)
    c.saveState()
    c.clipPath(path, stroke=0)
    c.setFillColor(red)
    c.circle(90, 210, 65, stroke=0, fill=1)
    c.restoreState()
    path = c.beginPath()
    path.circle(210, 210, 50)
    c.saveState()
    c.clipPath(path, stroke=0)
    c.setFillColor(blue)
    c.rect(150, 150, 80, 120, stroke=0, fill=1)
    c.restoreState()
    c.saveState()
    path = c.beginPath()
    path.rect(20, 20, 260, 120)  # holds all that is drawn
    c.clipPath(path, stroke=0)
    c.rect(40, 40, 200, 80, fill=0)
    c.restoreState()


def text(c):
    c.setFont("Times-Roman", 20)
    c.drawString(20, 250, "The quick brown fox")
    c.setFont("Helvetica-Bold", 12)
    c.setFillColor(blue)
    c.drawString(20, 225, "jumps over <the> lazy & dog")
    c.setFillColor(black)
    c.setFont("Courier", 11)
    run = c.beginText(20, 200)
    run.textLines(["first line of four", "second line of four", "third line", "fourth line"])
    c.drawText(run)
    c.setFont("Times-Italic", 40)
    run = c.beginText(20, 100)
    run.setTextRenderMode(1)
    run.textOut("Outline")
    c.drawText(run)
    c.translate(280, 40)
    c.rotate(90)
    c.setFont("Helvetica", 14)
    c.drawString(0, 0, "upwards")


def type3():
    def resources(pdf):
        glyphs = {"/s": "600 0 0 0 500 500 d1 0 0 500 500 re f",
                  "/t": "600 0 0 0 500 500 d1 0 0 m 500 0 l 250 500 l f",
                  "/c": "600 0 d0 1 0 0 rg 100 100 300 300 re f"}
        font = Dictionary(
            Type=Name.Font, Subtype=Name.Type3, FontBBox=Array([0, 0, 600, 600]),
            FontMatrix=Array([0.001, 0, 0, 0.001, 0, 0]), FirstChar=97, LastChar=99,
            Widths=Array([600, 600, 600]), Resources=Dictionary(),
            Encoding=Dictionary(Type=Name.Encoding,
                                Differences=Array([97, Name("/s"), Name("/t"), Name("/c")])),
            CharProcs=Dictionary({k: pdf.make_stream(v.encode()) for k, v in glyphs.items()}),
            ToUnicode=pdf.make_stream(
                b"/CIDInit /ProcSet findresource begin begincmap\n1 begincodespacerange <00> <FF> "
                b"endcodespacerange\n3 beginbfchar <61> <0058> <62> <0059> <63> <005A> endbfchar\n"
                b"endcmap end"))
        return Dictionary(Font=Dictionary(F=pdf.make_indirect(font)))

    return raw("BT /F 60 Tf 0 0.5 0 rg 30 150 Td (abcab) Tj ET", resources)


def letters(codes, content):
    """A page whose font Helvetica says what its characters mean: codes as keys, hex UTF-16 as values."""
    def resources(pdf):
        lines = "".join(f"<{ord(code):02x}> <{meant}> " for code, meant in codes.items())
        meanings = pdf.make_stream((
            "/CIDInit /ProcSet findresource begin begincmap\n1 begincodespacerange <00> <FF> "
            f"endcodespacerange\n{len(codes)} beginbfchar {lines}endbfchar\nendcmap end").encode())
        font = Dictionary(Type=Name.Font, Subtype=Name.Type1, BaseFont=Name.Helvetica,
                          Encoding=Name.WinAnsiEncoding, ToUnicode=meanings)
        return Dictionary(Font=Dictionary(F=pdf.make_indirect(font)))

    return raw(content, resources)


def forms():
    """Text squeezed and slanted, a letter of two shapes, a shape of no or several letters."""
    plain = {c: f"{ord(c):04x}" for c in "Stretchdlan "}
    return letters({**plain, "A": "0041", "B": "0041", "C": "FFFD", "D": "0066006A", "E": "00660069"},
                   "BT /F 24 Tf 60 Tz 20 250 Td (Stretched) Tj 100 Tz ET "
                   "BT /F 24 Tf 1 0 0.4 1 20 200 Tm (Slanted) Tj ET "
                   "BT /F 24 Tf 20 150 Td (ABA) Tj ET BT /F 24 Tf 20 100 Td (ACDE) Tj ET")


def large():
    """Letters larger than browsers show them in fonts."""
    return letters({"o": "006F", "p": "0070"}, "BT /F 600 Tf 10 100 Td (op) Tj ET")


def scripts():
    """Right to left, drawn from the left, with a number in it; a vowel sign before its consonant."""
    return letters({"a": "0633", "b": "0644", "c": "0627", "d": "0645", "1": "0031", "2": "0032",
                    " ": "0020", "i": "093F", "k": "0915", "t": "0924", "v": "094D"},
                   "BT /F 24 Tf 20 250 Td (dcba 12 abcd) Tj ET BT /F 24 Tf 20 200 Td (ikvtk) Tj ET")


def pictures(c):
    own = ImageReader(io.BytesIO(jpeg()))
    c.drawImage(own, 20, 200, 120, 80)
    c.drawImage(own, 160, 240, 60, 40)
    c.drawImage(own, 20, 120, 120, 40)  # squeezed
    c.drawImage(ImageReader(photo("RGBA")), 160, 120, 120, 80, mask="auto")
    c.drawImage(ImageReader(photo("L")), 20, 20, 90, 60)
    c.translate(200, 20)
    c.rotate(30)
    c.drawImage(own, 0, 0, 60, 40)


def links():
    def first(c):
        c.setFont("Helvetica", 14)
        for i, label in enumerate(["web site", "mail", "script", "chapter two"]):
            c.drawString(20, 250 - 30 * i, label)
        c.linkURL("https://example.org/?a=1&b=2", (20, 246, 100, 264))
        c.linkURL("mailto:a@example.org", (20, 216, 100, 234))
        c.linkURL("javascript:alert(1)", (20, 186, 100, 204))
        c.linkRect("", "two", (20, 156, 140, 174))
        c.linkURL("http://example.org/empty", (200, 20, 260, 60))

    def second(c):
        c.drawString(50, 200, "Chapter two")
        c.bookmarkPage("two", fit="XYZ", left=50, top=212)

    return drawn(first, second)


def add_signature(pdf):
    signature = pdf.make_indirect(Dictionary(
        Type=Name.Annot, Subtype=Name.Widget, FT=Name.Sig, T=String("Sign here"),
        Rect=Array([20, 60, 140, 120]), F=4, P=pdf.pages[0].obj,
        V=pdf.make_indirect(Dictionary(
            Type=Name.Sig, Filter=Name("/Adobe.PPKLite"), Name=String("Edda Quill"),
            Reason=String("Agreed"), M=String("D:20241224120000Z")))))
    pdf.Root.AcroForm.Fields.append(signature)
    pdf.pages[0].Annots.append(signature)


def form():
    def page(c):
        fields = c.acroForm
        fields.textfield(name="name.first", x=20, y=250, width=120, height=20, value="Ada & <Co>")
        fields.textfield(name="when", x=160, y=250, width=120, height=20, value="24.12.2024")
        fields.choice(name="food", x=20, y=210, width=120, height=20, value="Rice",
                      options=["Rice", "Meat"])
        fields.checkbox(name="yes", x=20, y=180, checked=True)
        fields.checkbox(name="no", x=60, y=180, checked=False, fieldFlags="required")
        fields.radio(name="radio", x=100, y=180, value="one", selected=True)
        fields.radio(name="radio", x=130, y=180, value="two")
        fields.listbox(name="list", x=160, y=180, width=120, height=50, value="b", options=["a", "b"])
        c.rect(20, 60, 120, 60)

    def change(pdf):
        def fit(field, **values):
            for key, value in values.items():
                field[f"/{key}"] = value

        for field in pdf.Root.AcroForm.Fields:
            if field.T == "when":
                fit(field, AA=Dictionary(F=Dictionary(
                    S=Name.JavaScript, JS=String('AFDate_FormatEx("dd.mm.yyyy");'))))
            elif field.T == "name.first":
                fit(field, Ff=4096 + 2, V=String("Ada & <Co>\nLovelace"))
        add_signature(pdf)

    return changed(drawn(page), change)


def leaflet(c):
    """A bit of everything, for the documentation's picture."""
    c.linearGradient(0, 300, 300, 300, (Color(0.05, 0.25, 0.45), Color(0.2, 0.6, 0.7)))
    c.setFillColor(white)
    c.rect(0, 0, 300, 236, stroke=0, fill=1)
    c.setFont("Helvetica-Bold", 26)
    c.drawString(20, 256, "Harbour Days")
    c.setFillColor(black)
    c.setFont("Times-Roman", 11)
    for i, line in enumerate(["Boats, a market and music on both", "quays, from Friday to Sunday. See",
                              "the harbour's pages for the hours", "of the ferries."]):
        c.drawString(20, 210 - 14 * i, line)
    c.setFillColor(blue)
    c.drawString(20, 146, "example.org/harbour")
    c.linkURL("https://example.org/harbour", (20, 142, 120, 158))
    path = c.beginPath()
    path.circle(235, 178, 42)
    c.saveState()
    c.clipPath(path, stroke=0)
    c.drawImage(ImageReader(io.BytesIO(jpeg())), 172, 136, 126, 84)
    c.restoreState()
    c.setDash(6, 4)
    c.line(20, 118, 280, 118)
    c.setFillColor(black)
    c.setFont("Helvetica", 9)
    c.drawString(20, 92, "Your name")
    c.acroForm.textfield(name="name", x=80, y=84, width=200, height=20, value="Edda Quillfeather")
    c.drawString(20, 62, "I need a berth")
    c.acroForm.checkbox(name="berth", x=80, y=56, checked=True)
    c.drawString(20, 24, "Cut off here and hand in at the pier.")


def effects():
    """One thing a row that no call of the library says."""
    def resources(pdf):
        shading = Dictionary(ShadingType=2, ColorSpace=Name.DeviceRGB, Coords=Array([20, 0, 280, 0]),
                             Function=Dictionary(FunctionType=2, N=1, Domain=Array([0, 1]),
                                                 C0=Array([1, 0, 0]), C1=Array([0, 0, 1])))
        group = Dictionary(Type=Name.XObject, Subtype=Name.Form, BBox=Array([0, 0, 300, 300]),
                           Group=Dictionary(S=Name.Transparency, CS=Name.DeviceGray),
                           Resources=Dictionary())
        mask = pdf.make_stream(b"0.3 g 20 150 130 40 re f 0.9 g 150 150 130 40 re f", group)
        pair = pdf.make_stream(b"1 0 0 rg 20 100 80 40 re f 0 0 1 rg 60 110 80 20 re f", group)
        tile = pdf.make_stream(b"0 0.6 0 rg 2 2 6 6 re f", Dictionary(
            Type=Name.Pattern, PatternType=1, PaintType=1, TilingType=1, BBox=Array([0, 0, 10, 10]),
            XStep=10, YStep=10, Resources=Dictionary()))
        return Dictionary(
            Shading=Dictionary(S=shading), Pattern=Dictionary(P=tile), XObject=Dictionary(X=pair),
            ExtGState=Dictionary(
                M=Dictionary(SMask=Dictionary(S=Name.Luminosity, G=mask)),
                A=Dictionary(ca=0.4), B=Dictionary(BM=Name.Multiply)))

    return raw("q 20 250 260 40 re W n /S sh Q "
               "q 20 200 130 40 re 50 210 40 20 re f* Q "
               "q [12 6] 0 d 4 w 170 220 m 280 220 l S Q "
               "q /M gs 0 0 1 rg 20 150 260 40 re f Q "
               "q /A gs /X Do Q "
               "q 1 1 0 rg 170 100 70 40 re f /B gs 0 1 1 rg 210 90 70 40 re f Q "
               "q /Pattern cs /P scn 20 20 120 60 re f Q", resources)


def function(*colours):
    """From the first colour to the last, each part as long as the others."""
    parts = [Dictionary(FunctionType=2, N=1, Domain=Array([0, 1]), C0=Array(a), C1=Array(b))
             for a, b in zip(colours, colours[1:])]
    if len(parts) == 1:
        return parts[0]
    return Dictionary(FunctionType=3, Domain=Array([0, 1]), Functions=Array(parts),
                      Bounds=Array([i / len(parts) for i in range(1, len(parts))]),
                      Encode=Array([0, 1] * len(parts)))


def gradients():
    """Along lines and between circles, with and without colours beyond the ends; in shapes and text."""
    warm, rainbow = ([1, 0.9, 0], [0.8, 0, 0]), ([1, 0, 0], [0, 1, 0], [0, 0, 1])

    def shading(kind, coords, colours, *extend):
        return Dictionary(ShadingType=kind, ColorSpace=Name.DeviceRGB, Coords=Array(coords),
                          Function=function(*colours), Extend=Array(extend or [True, True]))

    def resources(pdf):
        turned = Dictionary(Type=Name.Pattern, PatternType=2,
                            Shading=shading(2, [0, 0, 100, 0], rainbow, False, True),
                            Matrix=Array([0.7, 0.7, -0.7, 0.7, 180, 200]))
        font = Dictionary(Type=Name.Font, Subtype=Name.Type1, BaseFont=Name("/Helvetica-Bold"))
        return Dictionary(
            Font=Dictionary(F=font), Pattern=Dictionary(T=turned),
            Shading=Dictionary(
                A=shading(2, [40, 0, 120, 0], rainbow, False, False),
                B=shading(3, [80, 140, 10, 80, 140, 40], warm, False, False),
                C=shading(3, [220, 150, 30, 205, 140, 5], warm, True, True),
                D=shading(2, [20, 0, 280, 0], rainbow)))

    return raw("q 20 210 130 70 re W n /A sh Q "
               "q /Pattern cs /T scn 225 200 m 285 240 l 225 280 l 165 240 l f Q "
               "q 20 90 120 100 re W n /B sh Q "
               "q 160 90 m 280 90 l 280 190 l 200 190 l h W n /C sh Q "
               "q BT /F 54 Tf 7 Tr 20 30 Td (Rainbow) Tj ET /D sh Q", resources)


def masks():
    """Soft masks of groups, by lightness and by alpha, and of pictures."""
    def resources(pdf):
        group = Dictionary(Type=Name.XObject, Subtype=Name.Form, BBox=Array([0, 0, 300, 300]),
                           Group=Dictionary(S=Name.Transparency, CS=Name.DeviceGray),
                           Resources=Dictionary(ExtGState=Dictionary(H=Dictionary(ca=0.5))))
        light = pdf.make_stream(b"0.3 g 20 210 130 70 re f 0.9 g 150 220 130 40 re f", group)
        alpha = pdf.make_stream(b"20 120 130 70 re f /H gs 150 130 130 40 re f", group)
        grey = pdf.make_stream(photo("L").tobytes(), Dictionary(
            Type=Name.XObject, Subtype=Name.Image, Width=60, Height=40, BitsPerComponent=8,
            ColorSpace=Name.DeviceGray))
        stencil = pdf.make_stream(bytes([0xF0, 0x0F] * 4), Dictionary(
            Type=Name.XObject, Subtype=Name.Image, Width=8, Height=8, BitsPerComponent=1,
            ImageMask=True))
        def picture(**entries):
            return pdf.make_stream(jpeg(), Dictionary(
                Type=Name.XObject, Subtype=Name.Image, Width=60, Height=40, BitsPerComponent=8,
                ColorSpace=Name.DeviceRGB, Filter=Name.DCTDecode, **entries))
        return Dictionary(
            XObject=Dictionary(A=picture(SMask=grey), B=picture(Mask=stencil), C=stencil),
            ExtGState=Dictionary(
                L=Dictionary(SMask=Dictionary(S=Name.Luminosity, G=light, BC=Array([0.5]))),
                M=Dictionary(SMask=Dictionary(S=Name.Alpha, G=alpha))))

    return raw("q /L gs 0 0 1 rg 10 205 280 80 re f Q q /M gs 0.8 0 0 rg 10 115 280 80 re f Q "
               "q 90 0 0 60 20 30 cm /A Do Q q 60 20 -20 60 150 20 cm /B Do Q "
               "q 0 0.5 0 rg 60 0 0 60 220 30 cm /C Do Q", resources)


def tiles():
    """Tilings: with gaps, turned, with tiles that reach into their neighbours, and in one colour."""
    def resources(pdf):
        def tile(content, step, matrix=(1, 0, 0, 1, 0, 0), size=10, paint=1):
            return pdf.make_stream(content, Dictionary(
                Type=Name.Pattern, PatternType=1, PaintType=paint, TilingType=1,
                BBox=Array([0, 0, size, size]), XStep=step, YStep=step, Resources=Dictionary(),
                Matrix=Array(matrix)))
        return Dictionary(
            ColorSpace=Dictionary(U=Array([Name.Pattern, Name.DeviceRGB])),
            Pattern=Dictionary(
                A=tile(b"0 0.6 0 rg 2 2 6 6 re f 1 0 0 rg 6 6 9 9 re f", 12),
                B=tile(b"0 0 0.8 RG 2 w 0 5 m 10 5 l S", 10, (1, 1, -1, 1, 7, 0)),
                C=tile(b"0.9 0.5 0 RG 1 1 18 18 re S", 12, size=20),
                D=tile(b"5 5 m 9 1 l 1 1 l f", 10, paint=2)))

    return raw("q /Pattern cs /A scn 20 170 120 110 re f Q q /Pattern cs /B scn 160 170 120 110 re f Q "
               "q /Pattern cs /C scn 20 20 m 140 20 l 80 150 l f Q "
               "q /U cs 0.6 0 0.6 /D scn 160 20 120 60 re f 0 0.5 0.5 /D scn 160 90 120 60 re f Q",
               resources)


def pens():
    """Strokes whose pen is no circle."""
    return raw("q 4 0 0 1 0 0 cm 4 w 1 J 20 200 m 40 260 l 60 200 l S Q "
               "q 1 0 1.5 1 0 0 cm 6 w [10 8] 0 d 30 40 60 100 re S Q")


def mesh():
    """Triangles between colours, behind a clip."""
    def resources(pdf):
        def corner(flag, x, y, *colour):
            return bytes([flag, *x.to_bytes(2, "big"), *y.to_bytes(2, "big"), *colour])
        data = (corner(0, 0, 0, 255, 0, 0) + corner(0, 65535, 0, 0, 255, 0)
                + corner(0, 30000, 65535, 0, 0, 255))
        return Dictionary(Shading=Dictionary(S=pdf.make_stream(data, Dictionary(
            ShadingType=4, ColorSpace=Name.DeviceRGB, BitsPerCoordinate=16, BitsPerComponent=8,
            BitsPerFlag=8, Decode=Array([40, 260, 40, 260, 0, 1, 0, 1, 0, 1])))))

    return raw("q 40 40 m 260 40 l 150 200 l W n /S sh Q", resources)


def encrypted():
    with pikepdf.open(io.BytesIO(drawn(shapes))) as pdf:
        return saved(pdf, encryption=pikepdf.Encryption(owner="owner", user="open sesame"))


def no_pages():
    return saved(pikepdf.new())


def broken_page():
    """Three pages, the second of which is none."""
    def change(pdf):
        pdf.pages[1].obj.MediaBox = Array([0, 0, 0, 0])
        pdf.pages[1].obj.UserUnit = 0

    return changed(drawn(shapes, clips, text), change)


def endless_page(content=b"q Q"):
    """Three pages, the second of which draws this a thousand billion times: forms in forms."""
    def change(pdf):
        def form_of(data, **values):
            return pdf.make_stream(data, Type=Name.XObject, Subtype=Name.Form,
                                   BBox=Array([0, 0, 300, 300]), **values)

        form = form_of(content)
        for _ in range(12):
            form = form_of(b"/X Do " * 10, Resources=Dictionary(XObject=Dictionary(X=form)))
        pdf.pages[1].Resources.XObject = Dictionary(X=form)
        pdf.pages[1].Contents = pdf.make_stream(b"/X Do")

    return changed(drawn(shapes, clips, text), change)


def book():
    """Many different pages."""
    return drawn(*(6 * [shapes, joins, clips, text, pictures]))


def faces():
    """Pages with different letters of two faces."""
    def page(face, words):
        def draw(c):
            c.setFont(face, 20)
            c.drawString(20, 200, words)
        return draw

    return drawn(page("Times-Roman", "quick"), page("Times-Roman", "brown fox"), page("Helvetica", "fox"))


def handbook():
    """Forty pages, with a link, a form and a signature on the first."""
    def first(c):
        c.drawString(20, 260, "To chapter nine")
        c.linkRect("", "nine", (20, 256, 140, 274))
        c.acroForm.textfield(name="name", x=20, y=200, width=120, height=20, value="Ada")
        c.acroForm.checkbox(name="yes", x=20, y=160)

    def chapter(c):
        c.drawString(20, 200, "Chapter nine begins here")
        c.bookmarkPage("nine", fit="XYZ", left=20, top=212)

    return changed(drawn(first, *(15 * [text, pictures]), chapter, *(8 * [shapes])), add_signature)


FEATURES = {
    "shapes": drawn(shapes), "joins": drawn(joins), "clips": drawn(clips), "text": drawn(text),
    "type3": type3(), "forms": forms(), "scripts": scripts(), "large": large(),
    "pictures": drawn(pictures), "links": links(), "form": form(),
    "effects": effects(), "gradients": gradients(), "masks": masks(), "tiles": tiles(),
    "pens": pens(), "mesh": mesh(), "leaflet": drawn(leaflet)}
