#!/usr/bin/python3
"""Tests of qzsvggen-pdf: pdf_test.py PROGRAM."""

import base64
import concurrent.futures
import contextlib
import csv
import importlib.util
import io
import os
import pathlib
import random
import re
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import xml.etree.ElementTree as ElementTree

HERE = pathlib.Path(__file__).parent
sys.path[:0] = [str(HERE), str(HERE.parent)]

import compare  # noqa: E402
import make_pdfs  # noqa: E402
from PIL import Image  # noqa: E402
from fontTools.pens.recordingPen import RecordingPen  # noqa: E402
from fontTools.ttLib import TTFont  # noqa: E402

SVG = "{http://www.w3.org/2000/svg}"
XLINK = "{http://www.w3.org/1999/xlink}"
VELUMARK = "{urn:velumark:svg:1}"

# How far, in grey values, the browser's picture of a page is from the engine's own, when it was
# looked at and found right.
DIFFERENCES = {"shapes": 0.35, "joins": 0.15, "clips": 0.02, "text": 0.34, "type3": 0.02,
               "forms": 0, "scripts": 0, "large": 0.15,
               "pictures": 0.39, "links": 0.06, "form": 0.08, "effects": 0.18, "gradients": 0.47,
               "masks": 0.34, "tiles": 0.36, "pens": 0.05, "mesh": 0.08, "leaflet": 0.36}

MUTANTS = 1000


def fonts_of(root):
    """The font files of a page by their families."""
    style = "".join(e.text or "" for e in root.iter(SVG + "style"))
    return {family: base64.b64decode(data) for family, data in
            re.findall(r"font-family:(\w+);src:url\(data:font/otf;base64,([^)]*)\)", style)}


def classes_of(root):
    """Size and family by the name of the class."""
    style = "".join(e.text or "" for e in root.iter(SVG + "style"))
    return {name: (int(size), family) for name, size, family in
            re.findall(r"\.(\w+)\{font:(\d+)px ([\w-]+);\}", style)}


def letters_of(font):
    """The width and the outline of each character."""
    font = TTFont(io.BytesIO(font))
    glyphs, letters = font.getGlyphSet(), {}
    for code, name in font.getBestCmap().items():
        pen = RecordingPen()
        glyphs[name].draw(pen)
        letters[code] = font["hmtx"][name][0], pen.value
    return letters


def run(pdf, out, *options):
    done = subprocess.run([PROGRAM, pdf, "-o", out, *options], capture_output=True, text=True,
                          timeout=60)
    return done.returncode, done.stdout, done.stderr


class Folder(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)

    def file(self, data, name="test.pdf"):
        path = self.folder / name
        path.write_bytes(data)
        return path

    def draw(self, data, *options):
        """The pages of a PDF, as bytes."""
        out = self.folder / "out"
        status, _, errors = run(self.file(data), out, *options)
        self.assertEqual((status, errors), (0, ""))
        return [page.read_bytes() for page in sorted(out.glob("*.svg"))]

    def trees(self, data, *options):
        return [ElementTree.fromstring(page) for page in self.draw(data, *options)]

    def check_font(self, data, name):
        checked = subprocess.run(["ots-sanitize", self.file(data, "font.otf")],
                                 capture_output=True, text=True)
        self.assertEqual((checked.returncode, checked.stderr), (0, ""), name)


class Features(Folder):
    @unittest.skipUnless(compare.has_chromium(), "there is no chromium")
    def test_pictures_look_as_the_engine_draws_them(self):
        compare.WIDTH, compare.OVER = 600, 1
        pages = [self.draw(pdf, "--pages=1")[0] for pdf in make_pdfs.FEATURES.values()]
        pictures = compare.render(pages, [(600, 600)] * len(pages))
        for (name, pdf), picture in zip(make_pdfs.FEATURES.items(), pictures):
            wanted = compare.engine_picture(self.file(pdf), 1, (600, 600))
            with self.subTest(name):
                found = compare.difference(picture, wanted)
                self.assertLess(abs(found - DIFFERENCES[name]), 1, f"is {found:.2f}")

    def test_pictures_say_what_no_call_says(self):
        for name in ("joins", "clips", "pictures", "effects", "gradients", "masks", "tiles", "pens"):
            with self.subTest(name):
                page, = self.draw(make_pdfs.FEATURES[name])
                self.assertEqual(page.count(b'<symbol id="QZ_S'), 1, "neighbours share a picture")
                if name not in ("pictures", "masks"):
                    self.assertNotIn(b"image/png", page)
        root, = self.trees(make_pdfs.FEATURES["effects"])
        styles = [e.get("style") for e in root.iter() if "mix" in (e.get("style") or "")]
        self.assertEqual(styles, ["mix-blend-mode:multiply"])
        self.assertTrue(any(e.get("stroke-dasharray") == "240 120" for e in root.iter()))

    def test_only_what_svg_lacks_is_a_bitmap(self):
        page, = self.draw(make_pdfs.FEATURES["mesh"])
        self.assertEqual((page.count(b"image/png"), page.count(b"<clipPath")), (1, 1))

    def test_a_gradient_has_few_stops(self):
        root, = self.trees(make_pdfs.FEATURES["gradients"])
        stops = [len(e) for e in root.iter() if e.tag.endswith("Gradient")]
        self.assertEqual(sorted(stops), [2, 3, 4, 4, 5])  # with those where colours end

    def test_same_input_same_bytes(self):
        for name, pdf in make_pdfs.FEATURES.items():
            with self.subTest(name):
                self.assertEqual(self.draw(pdf), self.draw(pdf))

    def test_root_is_in_points_unless_exact(self):
        root, = self.trees(make_pdfs.FEATURES["shapes"])
        self.assertEqual([root.get(key) for key in ("width", "height", "viewBox")],
                         ["300.00pt", "300.00pt", "0 0 6000 6000"])
        root, = self.trees(make_pdfs.FEATURES["shapes"], "--exact")
        self.assertEqual([root.get(key) for key in ("width", "height", "viewBox")],
                         ["6000", "6000", None])

    def test_a_further_move_follows_a_closed_figure(self):
        root, = self.trees(make_pdfs.FEATURES["shapes"])
        paths = [e.get("d") for e in root.iter(SVG + "path")]
        self.assertTrue(any("zm" in path for path in paths))
        self.assertEqual([path for path in paths if re.search("[^z]m", path)], [])

    def test_clips(self):
        root, = self.trees(make_pdfs.FEATURES["clips"])
        clips = [e.find(SVG + "path").get("d") for e in root.iter(SVG + "clipPath")]
        self.assertEqual(clips[0], "M800 800h2000v2000h-2000z")
        self.assertNotIn("M400 3200h5200v2400h-5200z", clips)  # it cuts nothing

    def test_outlines_are_shared(self):
        root, = self.trees(make_pdfs.FEATURES["text"], "--text=outlines")
        self.assertEqual(list(root.iter(SVG + "text")), [])
        defined = [e.get("id") for e in root.iter(SVG + "path") if e.get("id")]
        used = [e.get(XLINK + "href")[1:] for e in root.iter(SVG + "use")]
        self.assertEqual(set(used), set(defined))
        self.assertGreater(len(used), 1.5 * len(defined))

    def lines(self, name, *options):
        root, = self.trees(make_pdfs.FEATURES[name], *options)
        return [e.text for e in root.iter(SVG + "text")]

    def test_text_is_found_in_lines(self):
        lines = self.lines("text", "--text=both")
        self.assertEqual(lines, ["The quick brown fox", "jumps over <the> lazy & dog",
                                 "first line of four", "second line of four", "third line",
                                 "fourth line", "Outline", "upwards"])
        self.assertEqual(self.lines("text"), lines)
        self.assertEqual(self.lines("type3"), ["XYZXY"])

    def test_scripts_are_in_reading_order(self):
        for options in ([], ["--text=both"]):
            self.assertEqual(self.lines("scripts", *options),
                             ["\u0645\u0627\u0644\u0633 12 \u0633\u0644\u0627\u0645",
                              "\u0915\u094d\u0924\u093f\u0915"])

    def test_fonts_have_the_letters_of_their_text(self):
        for name in ("text", "forms", "leaflet"):
            root, = self.trees(make_pdfs.FEATURES[name])
            fonts, classes = fonts_of(root), classes_of(root)
            self.assertTrue(fonts)
            runs = [e for e in root.iter(SVG + "text") if classes[e.get("class")][1] in fonts]
            for run in runs:
                size, family = classes[run.get("class")]
                letters = letters_of(fonts[family])
                self.assertLessEqual(set(map(ord, run.text)), set(letters), run.text)
                x = [int(part) for part in run.get("x").split()]
                for letter, here, there in zip(run.text, x, x[1:]):
                    if letter != " ":  # wide as the gap that it stands for
                        self.assertAlmostEqual(letters[ord(letter)][0] * size / 1000, there - here,
                                               delta=2.5, msg=run.text)

    def test_fonts_are_sound(self):
        for name in make_pdfs.FEATURES:
            for root in self.trees(make_pdfs.FEATURES[name]):
                for family, data in fonts_of(root).items():
                    self.check_font(data, (name, family))

    def test_a_second_font_has_the_second_shape_of_a_letter(self):
        root, = self.trees(make_pdfs.FEATURES["forms"])
        texts = [(e.text, e.get("class")) for e in root.iter(SVG + "text")]
        classes = dict(zip("012", [texts[i][1] for i in (2, 3, 4)]))
        self.assertEqual([text for text, _ in texts],
                         ["Stretched", "Slanted", "A", "A", "A", "A", "\ufb01", "fj"])
        self.assertEqual(classes["0"], classes["2"])
        self.assertNotEqual(classes["0"], classes["1"])

    @unittest.skipUnless(compare.has_chromium(), "there is no chromium")
    def test_a_selection_over_four_lines_copies_them_in_order(self):
        for mode in ("fonts", "both"):
            page, = self.draw(make_pdfs.FEATURES["text"], f"--text={mode}")
            html = self.file(b"<!DOCTYPE html><meta charset=utf-8><body style='margin:0'>"
                             + page[page.index(b"<svg"):] + b"""<script>
                const end = line => [...document.querySelectorAll("text")]
                  .find(e => e.textContent.includes(line)).getBoundingClientRect();
                const at = (x, y) => document.caretRangeFromPoint(x, y);
                const first = end("first"), last = end("fourth");
                const from = at(first.left + 1, (first.top + first.bottom) / 2);
                const to = at(last.right - 1, (last.top + last.bottom) / 2);
                getSelection().setBaseAndExtent(from.startContainer, from.startOffset,
                                                to.startContainer, to.startOffset);
                document.title = getSelection().toString().replace(/\\s+/g, " ");
                </script>""", "page.html")
            shown = compare.chromium("--dump-dom", html.as_uri()).decode()
            self.assertIn("<title>first line of four second line of four third line fourth lin",
                          shown, mode)

    def test_a_jpeg_keeps_its_bytes_and_is_stored_once(self):
        page, = self.draw(make_pdfs.FEATURES["pictures"])
        encoded = base64.b64encode(make_pdfs.jpeg())
        self.assertEqual(page.count(b'<image width="2400" height="1600" xlink:href='
                                    b'"data:image/jpeg;base64,' + encoded), 1)
        self.assertEqual(page.count(encoded), 2)  # the squeezed one is in an SVG picture
        self.assertEqual(page.count(b'href="#QZ_I0"'), 2)

    def test_a_masked_jpeg_keeps_its_bytes(self):
        root, = self.trees(make_pdfs.FEATURES["masks"])
        pictures = [e.get("href") for e in root.iter(SVG + "image")]
        jpeg = "data:image/jpeg;base64," + base64.b64encode(make_pdfs.jpeg()).decode()
        self.assertEqual(pictures.count(jpeg), 2)  # two images of the PDF with the same bytes
        self.assertEqual(len(list(root.iter(SVG + "mask"))), 4)

    def test_links_and_targets(self):
        first, second = self.trees(make_pdfs.FEATURES["links"], "--text=outlines")
        links = [(e.get(VELUMARK + "linkType"), e.get(XLINK + "href"),
                  len(list(e.iter(SVG + "use"))), len(list(e.iter(SVG + "path"))))
                 for e in first.iter(SVG + "a")]
        self.assertEqual(links, [
            ("FT_EXTERNALLINK", "https://example.org/?a=1&b=2", 7, 0),
            ("FT_EXTERNALLINK", "mailto:a@example.org", 4, 0),
            ("FT_INTERNALLINK", "#p2.1000.1760", 10, 0),
            ("FT_EXTERNALLINK", "http://example.org/empty", 0, 1)])
        target, = second.iter(VELUMARK + "target")
        self.assertEqual((target.get("name"), target.get("position")), ("p2.1000.1760", "1000 1760"))
        self.assertEqual(list(first.iter(VELUMARK + "target")), [])

    def test_fields_and_signature(self):
        root, = self.trees(make_pdfs.FEATURES["form"])
        fields = [[e.get(VELUMARK + key) for key in
                   ("formFieldType", "name", "fieldFlags", "exFieldFlags", "bounds", "typeData")]
                  for e in root.iter() if e.get(VELUMARK + "purpose") == "FormField"]
        self.assertEqual(fields, [
            ["FT_FORMTEXT", "name.first", "2", "16", "400 600 2800 1000",
             "Ada & <Co>\u2028Lovelace"],
            ["FT_DATE", "when", None, None, "3200 600 5600 1000", "45650 dd.mm.yyyy"],
            ["FT_COMBOBOX", "food", None, None, "400 1400 2800 1800", "Rice Rice Meat"],
            ["FT_CHECKBOX", "yes", "2", None, "400 2000 800 2400", "Yes"],
            ["FT_CHECKBOX", "no", "2", None, "1200 2000 1600 2400", "Off"]])
        for field in root.iter(SVG + "g"):
            if field.get(VELUMARK + "purpose") == "FormField":
                self.assertGreater(len(field), 0, "its appearance is drawn inside")
        signature, = [e for e in root.iter()
                      if e.get(VELUMARK + "purpose") == "SignatureField"]
        self.assertEqual([signature.get(VELUMARK + key) for key in ("name", "infoData", "bounds")],
                         ["Sign here", "Name=Edda Quill; Reason=Agreed; M=D:20241224120000Z",
                          "400 3600 2800 4800"])


class Input(Folder):
    def test_bad_input_is_refused_in_one_line(self):
        good = make_pdfs.FEATURES["shapes"]
        password = self.file(b"wrong\n", "password")
        cases = [
            (b"", [], "is not a PDF"),
            (b"GIF89a" + bytes(2000), [], "is not a PDF"),
            (good[:300], [], ""),
            (make_pdfs.encrypted(), [], "is encrypted"),
            (make_pdfs.encrypted(), ["--password-file", password], "the password is wrong"),
            (make_pdfs.no_pages(), [], "has no pages"),
            (good, ["--pages=2"], "there is no page 2"),
            (good, ["--pages=0"], "there is no page 0"),
            (good, ["--pages=x"], "no page number"),
            (good, ["--password-file", self.folder / "none"], "cannot be read"),
        ]
        for data, options, message in cases:
            with self.subTest(message, options=options):
                out = self.folder / "out"
                status, _, errors = run(self.file(data), out, *options)
                self.assertEqual(status, 2)
                self.assertIn(message, errors)
                self.assertEqual(errors.count("\n"), 1, errors)
                self.assertFalse(out.exists())
        self.assertIn("does not exist", run(self.folder / "none.pdf", self.folder / "out")[2])

    def test_output_that_cannot_be_written(self):
        taken = self.file(b"", "taken")
        status, _, errors = run(self.file(make_pdfs.FEATURES["shapes"]), taken)
        self.assertEqual((status, errors.count("\n")), (2, 1))
        self.assertEqual(taken.read_bytes(), b"")

    def test_password(self):
        password = self.file(b"open sesame\n", "password")
        page, = self.draw(make_pdfs.encrypted(), "--password-file", password)
        self.assertEqual(page, self.draw(make_pdfs.FEATURES["shapes"])[0])

    def test_a_broken_page_is_named_and_the_others_are_written(self):
        out = self.folder / "out"
        status, told, errors = run(self.file(make_pdfs.broken_page()), out)
        self.assertEqual(status, 2)
        self.assertIn("page 2", errors)
        self.assertIn("1 page failed", told)
        self.assertEqual(sorted(p.name for p in out.iterdir()),
                         ["index.html", "page-001.svg", "page-003.svg"])
        self.assertEqual((out / "index.html").read_text().count('<script type="image'), 2)

    def test_pages(self):
        out = self.folder / "out"
        run(self.file(make_pdfs.FEATURES["links"]), out, "--pages=2", "--no-index")
        self.assertEqual([p.name for p in out.iterdir()], ["page-002.svg"])


class Index(Folder):
    PUPPETEER = HERE.parents[2] / "viewer/node_modules/puppeteer-core"

    def index(self, pdf):
        self.draw(pdf)
        return self.folder / "out/index.html"

    def test_what_pages_share_is_there_once(self):
        index = self.index(make_pdfs.book()).read_bytes()
        image = compare.base64.b64encode(make_pdfs.jpeg())
        self.assertEqual(sum(page.count(image) for page in self.draw(make_pdfs.book())), 12)
        self.assertEqual(index.count(image), 1)

    def test_fonts_of_a_face_are_one(self):
        pages = self.trees(make_pdfs.faces())
        index = (self.folder / "out/index.html").read_text()
        shared = [base64.b64decode(data) for data in
                  re.findall(r'<script type="font/otf">data:font/otf;base64,([^<]*)<', index)]
        self.assertEqual(len(shared), 2, "the letters of two faces differ")
        for number, font in enumerate(shared):
            self.check_font(font, number)
        numbers = re.findall(r"src:url\(<@(\d)>\)", index)
        self.assertEqual(numbers, ["0", "0", "1"])
        for page, number in zip(pages, numbers):
            own, = fonts_of(page).values()
            self.assertLessEqual(letters_of(own).items(), letters_of(shared[int(number)]).items())

    def test_the_name_of_the_file_is_no_markup(self):
        run(self.file(make_pdfs.FEATURES["text"], "<b>&.pdf"), self.folder / "out")
        self.assertIn(b"<title>&lt;b>&amp;.pdf</title>", (self.folder / "out/index.html").read_bytes())

    @unittest.skipUnless(PUPPETEER.exists(), "there are no packages of the viewer")
    def test_in_browsers(self):
        index = self.index(make_pdfs.handbook())
        done = subprocess.run(["node", "--test", HERE / "index.test.mjs"], capture_output=True,
                              text=True, env={**os.environ, "INDEX": index.as_uri()})
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)


class Processes(Folder):
    WRITTEN = ["page-001.svg", "page-003.svg"]

    def names(self):
        return sorted(page.name for page in (self.folder / "out").iterdir()
                      if page.name != "index.html")

    def begin(self, pdf, *options):
        """A run that has drawn all pages but the second."""
        program = subprocess.Popen([PROGRAM, self.file(pdf), "-o", self.folder / "out", *options],
                                   stderr=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        while not set(self.WRITTEN) <= {p.name for p in self.folder.glob("out/*")}:
            time.sleep(0.01)
        time.sleep(0.1)
        return program

    def test_output_does_not_depend_on_their_number(self):
        one, *others = [self.draw(make_pdfs.book(), "--jobs", str(jobs)) for jobs in (1, 2, 4)]
        self.assertEqual(len(one), 30)
        for other in others:
            self.assertEqual(other, one)

    def test_a_page_over_a_limit_is_named_and_the_others_are_written(self):
        for pdf, limit, message in [
                (make_pdfs.endless_page(), "--seconds=1", "takes more than 1 s"),
                (make_pdfs.endless_page(b"0 0 1 1 re f"), "--memory=100", "")]:
            with self.subTest(limit):
                status, told, errors = run(self.file(pdf), self.folder / "out", limit)
                self.assertEqual(status, 2)
                self.assertRegex(errors, f"^.*test.pdf: page 2: .*{message}.*\n$")
                self.assertRegex(told, "^2 pages, .*1 page failed")
                self.assertEqual(self.names(), self.WRITTEN)

    def test_a_crash_costs_one_page(self):
        program = self.begin(make_pdfs.endless_page(), "--jobs=2")
        children = pathlib.Path(f"/proc/{program.pid}/task/{program.pid}/children").read_text()
        running = []
        while not running:  # the other one sleeps
            running = [pid for pid in children.split()
                       if " R " in pathlib.Path(f"/proc/{pid}/stat").read_text()]
        os.kill(int(running[0]), signal.SIGSEGV)
        told, errors = program.communicate(timeout=60)
        self.assertEqual(program.returncode, 2)
        self.assertRegex(errors, "^.*test.pdf: page 2: the engine crashed: .*\n$")
        self.assertRegex(told, "^2 pages, .*1 page failed")
        self.assertEqual(self.names(), self.WRITTEN)

    def test_an_interruption_leaves_whole_files_and_no_process(self):
        program = self.begin(make_pdfs.endless_page(), "--jobs=2")
        (self.folder / f"out/page-002.svg.{program.pid}.part").write_text("<svg")
        program.send_signal(signal.SIGINT)
        program.communicate(timeout=60)  # as long as a worker lives, its output is open
        self.assertEqual(program.returncode, -signal.SIGINT)
        self.assertEqual(self.names(), self.WRITTEN)


@unittest.skipUnless(importlib.util.find_spec("distributed"), "there is no python3-distributed")
class Cluster(Folder):
    def rows(self):
        table = self.folder / "drawn/results.csv"
        with contextlib.suppress(FileNotFoundError), table.open(newline="") as file:
            return list(csv.DictReader(file))
        return []

    def begin(self, cluster):
        return subprocess.Popen(
            [HERE.parent / "cluster.py", PROGRAM, self.folder / "pdfs", "-o", self.folder / "drawn",
             "--scheduler", cluster.scheduler_address, "--pages=1"],
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)

    def test_a_killed_worker_loses_nothing(self):
        import distributed
        (self.folder / "pdfs/sub").mkdir(parents=True)
        for name, data in [("book", make_pdfs.book()), ("sub/broken", make_pdfs.broken_page()),
                           ("none", b"")]:
            self.file(data, f"pdfs/{name}.pdf")
        with distributed.LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as \
                cluster, distributed.Client(cluster) as client:
            workers = list(client.run(os.getpid).values())
            program = self.begin(cluster)
            while len(self.rows()) < 3:
                time.sleep(0.01)
            os.kill(workers[0], signal.SIGKILL)
            self.assertLess(len(self.rows()), 34, "it was killed in the middle")
            told, errors = program.communicate(timeout=120)
            self.assertEqual(program.returncode, 2, errors)
            self.assertNotIn(workers[0], client.run(os.getpid).values())
            again = self.begin(cluster).communicate(timeout=120)[0]

        self.assertRegex(told, "^3 documents, 32 pages, .* 34 ranges in this run, 2 with faults")
        self.assertRegex(errors, "none.pdf: is not a PDF")
        self.assertRegex(errors, "sub/broken.pdf: .*page 2: ")
        self.assertRegex(again, "^3 documents, 32 pages, .* 0 ranges in this run, 2 with faults")
        done = sorted((pathlib.Path(row["document"]).stem, int(row["first"] or 0), row["status"])
                      for row in self.rows())
        self.assertEqual(done, [*(("book", i, "0") for i in range(1, 31)), ("broken", 1, "0"),
                                ("broken", 2, "2"), ("broken", 3, "0"), ("none", 0, "2")])
        pages = [page.read_bytes() for page in sorted(self.folder.glob("drawn/book/*"))]
        self.assertEqual(pages, self.draw(make_pdfs.book()))


def mutate(data, chance):
    data = bytearray(data)
    for _ in range(chance.randint(1, 20)):
        at = chance.randrange(len(data))
        kind = chance.randrange(4)
        if kind == 0:
            data[at] = chance.randrange(256)
        elif kind == 1:
            data[at:at + 1] = chance.choice([b"-", b"9", b"/", b"<<", b">>", b" 0 R", b"]", b"1e9"])
        elif kind == 2:
            del data[at:at + chance.randint(1, 30)]
        else:
            other = chance.randrange(len(data))
            data[at:at] = data[other:other + chance.randint(1, 200)]
    return bytes(data[:chance.randrange(len(data))] if chance.random() < 0.05 else data)


class Mutants(Folder):
    def examine(self, number):
        """What is wrong with drawing one mutant, or nothing."""
        chance = random.Random(number)
        data = mutate(chance.choice(list(make_pdfs.FEATURES.values())), chance)
        pdf = self.file(data, f"{number}.pdf")
        out = self.folder / str(number)
        try:
            status = run(pdf, out)[0]
        except subprocess.TimeoutExpired:
            status = "endless"
        if status not in (0, 2):
            own = subprocess.run(["mutool", "draw", "-q", "-F", "png", "-o", os.devnull, pdf],
                                 capture_output=True, timeout=60).returncode
            return None if own < 0 else f"mutant {number}: {status}"
        for page in out.glob("*.svg"):
            try:
                ElementTree.parse(page)
            except ElementTree.ParseError as wrong:
                return f"mutant {number}: {page.name}: {wrong}"
        return None

    def test_no_mutant_brings_anything_down(self):
        with concurrent.futures.ThreadPoolExecutor(2) as pool:
            wrong = [found for found in pool.map(self.examine, range(MUTANTS)) if found]
        self.assertEqual(wrong, [])


if __name__ == "__main__":
    PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main()
