#!/usr/bin/python3
"""Measures qzsvggen-pdf beside other converters, over a folder of PDFs.

usage: compare.py PROGRAM FOLDER [--samples 30] [--phrases 96] [--pages N]

For each converter: the seconds of processor time for all pages, the bytes, the files that are not well-formed XML;
and on sample pages how far the picture that Chromium makes is from pdftoppm's (the mean difference
of grey values, 0 to 255, after a blur of two of its 800 pixels), the share of pdftotext's words that the text
of the file has, and how many phrases of three words Chromium's own search finds. The row `engine`
is MuPDF's bitmap. It needs poppler-utils, pdf2svg, mupdf-tools, chromium, python3-pil and
python3-numpy; a converter that is missing is left out.
"""

import argparse
import base64
import collections
import html
import io
import os
import pathlib
import random
import re
import resource
import shutil
import subprocess
import tempfile
import unicodedata
import xml.etree.ElementTree as ElementTree

import numpy
from PIL import Image, ImageFilter

WIDTH = 800  # pixels of a page
OVER = 4     # Pictures are made so many times as large and reduced: engines widen lines and images to
             # whole pixels, and browsers do not.
SHEET = 2    # pages in one picture of the browser


def run(*command):
    return subprocess.run([str(part) for part in command], stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, check=False).stdout


def children_seconds():
    """Of processor time, which other work on the machine hardly changes."""
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def page_count(pdf):
    return int(re.search(rb"Pages:\s+(\d+)", run("pdfinfo", pdf)).group(1))


def converters(program):
    def ours(mode):
        return lambda pdf, out, pages: run(program, pdf, "-o", out, "--pages", f"1-{pages}",
                                           f"--text={mode}", "--no-index", "--jobs=1")

    def cairo(pdf, out, pages):
        for page in range(1, pages + 1):
            run("pdftocairo", "-svg", "-f", page, "-l", page, pdf, out / f"{page}.svg")

    def pdf2svg(pdf, out, pages):
        if pages == page_count(pdf):
            run("pdf2svg", pdf, out / "%d.svg", "all")
        else:
            for page in range(1, pages + 1):
                run("pdf2svg", pdf, out / f"{page}.svg", page)

    def mutool(mode):
        return lambda pdf, out, pages: run("mutool", "convert", "-F", "svg", "-O", f"text={mode}",
                                           "-o", out / "%d.svg", pdf, f"1-{pages}")

    found = {f"qzsvggen-pdf, {mode}": ours(mode) for mode in ("fonts", "both", "outlines")}
    if shutil.which("pdftocairo"):
        found["pdftocairo -svg"] = cairo
    if shutil.which("pdf2svg"):
        found["pdf2svg"] = pdf2svg
    if shutil.which("mutool"):
        found["mutool, text as paths"] = mutool("path")
        found["mutool, text as text"] = mutool("text")
    return found


def has_chromium():
    """Whether there is one that reads temporary files, which a snap's does not."""
    return not (shutil.which("chromium") or "/snap/").startswith("/snap/")


def chromium(*options):
    root = ["--no-sandbox"] if os.getuid() == 0 else []
    with tempfile.TemporaryDirectory() as profile:
        return run("chromium", "--headless", "--disable-gpu", "--no-first-run", "--disable-quic",
                   "--disable-background-networking", "--hide-scrollbars",
                   f"--user-data-dir={profile}", *root, *options)


def blurred(image):
    grey = image.convert("L").filter(ImageFilter.GaussianBlur(2))
    return numpy.asarray(grey, dtype=float)


def reference(pdf, page):
    png = run("pdftoppm", "-png", "-f", page, "-l", page, "-scale-to-x", OVER * WIDTH,
              "-scale-to-y", -1, pdf)
    return Image.open(io.BytesIO(png)).convert("RGB").reduce(OVER)


def engine_picture(pdf, page, size):
    png = run("mutool", "draw", "-q", "-F", "png", "-w", OVER * size[0], "-h", OVER * size[1],
              "-o", "-", pdf, page)
    picture = Image.new("RGB", size, "white")
    picture.paste(Image.open(io.BytesIO(png)).convert("RGB").reduce(OVER))
    return picture


def render(files, sizes):
    """The pictures that Chromium makes of SVG files, which begin at the top as those of engines do."""
    pictures = []
    files = [re.sub(rb"<svg\b", b'<svg preserveAspectRatio="xMinYMin"', file, count=1)
             for file in files]
    for first in range(0, len(files), SHEET):
        part = range(first, min(first + SHEET, len(files)))
        body = "".join(
            f'<img width={sizes[i][0]} height={sizes[i][1]} style="display:block;background:white" '
            f'src="data:image/svg+xml;base64,{base64.b64encode(files[i]).decode()}">' for i in part)
        with tempfile.TemporaryDirectory() as folder:
            page, shot = pathlib.Path(folder, "page.html"), pathlib.Path(folder, "shot.png")
            page.write_text(f'<!DOCTYPE html><body style="margin:0">{body}')
            width, height = max(sizes[i][0] for i in part), sum(sizes[i][1] for i in part)
            chromium(f"--window-size={width},{height}", f"--force-device-scale-factor={OVER}",
                     f"--screenshot={shot}", page.as_uri())
            sheet = Image.open(shot).convert("RGB").reduce(OVER)
        top = 0
        for i in part:
            pictures.append(sheet.crop((0, top, sizes[i][0], top + sizes[i][1])))
            top += sizes[i][1]
    return pictures


def difference(picture, wanted):
    return numpy.abs(blurred(picture) - blurred(wanted)).mean()


def words(text):
    text = unicodedata.normalize("NFKC", text).replace("\u00ad", "")
    return collections.Counter(re.findall(r"\w+", text))


def text_of(svg):
    try:
        tree = ElementTree.fromstring(svg)
    except ElementTree.ParseError:
        return ""
    return "\n".join("".join(element.itertext()) for element in tree.iter()
                     if element.tag.endswith("}text"))


def is_left_to_right(text):
    letters = [unicodedata.bidirectional(c) for c in text]
    return letters.count("R") + letters.count("AL") < letters.count("L") / 10


def find_phrases(svg, phrases):
    """How many of them the browser's search finds in a page."""
    svg = re.sub(r"^<\?xml[^>]*>|<!DOCTYPE[^>]*>", "", svg.decode("utf-8", "replace"))
    searches = ",".join('"' + "".join(f"\\u{ord(c):04x}" for c in p) + '"' for p in phrases)
    with tempfile.TemporaryDirectory() as folder:
        page = pathlib.Path(folder, "page.html")
        page.write_text(
            f'<!DOCTYPE html><meta charset="utf-8"><title>none</title><body>{svg}<script>'
            f"document.title = [{searches}].filter(p => {{getSelection().removeAllRanges();"
            "return find(p, false, false, true)}).length</script>")
        shown = chromium("--dump-dom", page.as_uri()).decode("utf-8", "replace")
    found = re.search(r"<title>(\d+)</title>", shown)
    return int(found.group(1)) if found else 0


class Sample:
    """A page on which pictures and texts are compared."""

    def __init__(self, pdf, page):
        self.pdf, self.page = pdf, page
        self.picture = reference(pdf, page)
        self.text = run("pdftotext", "-f", page, "-l", page, pdf, "-").decode("utf-8", "replace")
        self.phrases = []


def choose(samples, count):
    """Phrases of three words that stand on one line each, spread over the samples."""
    chance = random.Random(1)
    readable = [s for s in samples if is_left_to_right(s.text)]
    for sample in readable:
        lines = [re.findall(r"[A-Za-z]{2,}", line) for line in sample.text.splitlines()
                 if re.fullmatch(r"[A-Za-z ,.]+", line)]
        options = [" ".join(line[i:i + 3]) for line in lines for i in range(len(line) - 2)]
        options = [o for o in options if any(o in line for line in sample.text.splitlines())]
        sample.phrases = chance.sample(options, min(len(options), -(-count // len(readable)) + 1))
    left = count
    for sample in readable:
        sample.phrases = sample.phrases[:left]
        left -= len(sample.phrases)


def measure(convert, documents, samples):
    seconds = size = ill_formed = 0
    files = {}
    for pdf, pages in documents:
        with tempfile.TemporaryDirectory() as folder:
            out = pathlib.Path(folder)
            started = children_seconds()
            convert(pdf, out, pages)
            seconds += children_seconds() - started
            made = {int(re.findall(r"\d+", f.name)[-1]): f for f in out.glob("*.svg")}
            for page, file in made.items():
                data = file.read_bytes()
                size += len(data)
                try:
                    ElementTree.fromstring(data)
                except ElementTree.ParseError:
                    ill_formed += 1
                files.update({(s.pdf, s.page): data for s in samples
                              if (s.pdf, s.page) == (pdf, page)})
    return seconds, size, ill_formed, files


def compare(files, samples):
    svgs = [files.get((s.pdf, s.page), b"<svg xmlns='http://www.w3.org/2000/svg'/>")
            for s in samples]
    pictures = render(svgs, [s.picture.size for s in samples])
    grey = numpy.mean([difference(p, s.picture) for p, s in zip(pictures, samples)])
    wanted = found = phrases = 0
    for sample, svg in zip(samples, svgs):
        if is_left_to_right(sample.text):
            there = words(sample.text)
            wanted += sum(there.values())
            found += sum((there & words(text_of(svg))).values())
        if sample.phrases and b"<text" in svg:
            phrases += find_phrases(svg, sample.phrases)
    return grey, found / max(wanted, 1), phrases


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--samples", type=int, default=30, help="pages that are looked at")
    parser.add_argument("--phrases", type=int, default=96, help="phrases that are searched")
    parser.add_argument("--pages", type=int, default=10**6, help="at most so many of a document")
    parser.add_argument("--quick", action="store_true", help="seconds, bytes and files only")
    options = parser.parse_args()

    documents = [(pdf, min(page_count(pdf), options.pages))
                 for pdf in sorted(options.folder.glob("*.pdf"))]
    if not documents:
        parser.error(f"there is no PDF in {options.folder}")
    samples = []
    if not options.quick:
        share = max(1, options.samples // len(documents))
        samples = [Sample(pdf, 1 + (2 * i + 1) * pages // (2 * min(share, pages)))
                   for pdf, pages in documents for i in range(min(share, pages))]
        choose(samples, options.phrases)
    total = sum(pages for _, pages in documents)
    searched = sum(len(s.phrases) for s in samples)
    print(f"{total} pages of {len(documents)} documents, {len(samples)} samples\n")
    print("| | seconds | MB | ill-formed | grey difference | words | phrases |")
    print("|---|--:|--:|--:|--:|--:|--:|")
    if samples and shutil.which("mutool"):
        grey = numpy.mean([difference(engine_picture(s.pdf, s.page, s.picture.size), s.picture)
                           for s in samples])
        print(f"| engine | | | | {grey:.2f} | | |")
    for name, convert in converters(options.program.resolve()).items():
        seconds, size, ill_formed, files = measure(convert, documents, samples)
        row = f"| {html.escape(name)} | {seconds:.1f} | {size / 1e6:.1f} | {ill_formed} |"
        if samples:
            grey, share, phrases = compare(files, samples)
            row += f" {grey:.2f} | {share:.3f} | {phrases} of {searched} |"
        print(row, flush=True)


if __name__ == "__main__":
    main()
