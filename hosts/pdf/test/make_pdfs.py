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


def costly_page(change):
    """Three pages, the second of which holds what a function of the PDF and its page adds."""
    return changed(drawn(shapes, clips, text), lambda pdf: change(pdf, pdf.pages[1]))


def endless_page():
    """Forms in forms, a thousand billion that draw nothing."""
    def change(pdf, page):
        form = pdf.make_stream(b"q Q", Type=Name.XObject, Subtype=Name.Form,
                               BBox=Array([0, 0, 300, 300]))
        for _ in range(12):
            form = pdf.make_stream(b"/X Do " * 10, Type=Name.XObject, Subtype=Name.Form,
                                   BBox=Array([0, 0, 300, 300]),
                                   Resources=Dictionary(XObject=Dictionary(X=form)))
        page.Resources.XObject = Dictionary(X=form)
        page.Contents = pdf.make_stream(b"/X Do")

    return costly_page(change)


def huge_image():
    def change(pdf, page):
        page.Resources.XObject = Dictionary(X=pdf.make_stream(
            bytes(18_000_000), Type=Name.XObject, Subtype=Name.Image, Width=12000, Height=12000,
            ColorSpace=Name.DeviceGray, BitsPerComponent=1))
        page.Contents = pdf.make_stream(b"300 0 0 300 0 0 cm /X Do")

    return costly_page(change)


def book():
    """Many different pages."""
    return drawn(*(6 * [shapes, joins, clips, text, pictures]))


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
    "type3": type3(), "pictures": drawn(pictures), "links": links(), "form": form(),
    "effects": effects(), "leaflet": drawn(leaflet)}
