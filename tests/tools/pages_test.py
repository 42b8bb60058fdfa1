"""Replays whole pages. Each must give a well-formed document as large as the page, in which every
reference of the generator's own resolves; a document stored beside its recording must be equal.
The C program of each page must give the same document."""
import json
import pathlib
import re
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree

import tool

COMPILER = tool.MORE  # of C, with its options; nothing when programs of its cannot be run


class Pages(unittest.TestCase):
    def test_replay(self):
        for page in tool.recordings():
            with self.subTest(page=page):
                result = tool.run('replay', page)
                self.assertEqual(result.returncode, 0, result.stderr)
                self.check(page, result.stdout)

    def check(self, page, document):
        root = xml.etree.ElementTree.fromstring(document)
        left, top, right, bottom = json.loads(page.read_text('utf-8').split('\n')[0])[1]
        for name, size in [('width', right - left), ('height', bottom - top)]:
            self.assertEqual(root.get(name), str((size + 2**31) % 2**32 - 2**31))  # it wraps around
        references = set(re.findall(rb'(?:xlink:href="|url\()#(QZ_\w+(?:\.\d+)?)', document))
        self.assertLessEqual(references, set(re.findall(rb' id="([^"]*)"', document)))
        stored = page.with_suffix('.svg')
        if stored.exists():
            self.assertTrue(stored.read_bytes() == document, f'{stored.name} differs; if that is '
                            'meant, record it anew with `qzsvggen replay`')

    @unittest.skipUnless(COMPILER, 'no programs can be compiled and run')
    def test_emit(self):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            for page in tool.recordings():
                with self.subTest(page=page):
                    self.assertEqual(tool.run('emit', page, '-o', folder / 'p.c').returncode, 0)
                    subprocess.run([COMPILER[0], folder / 'p.c', '-o', folder / 'p', *COMPILER[1:]],
                                   check=True, timeout=60)
                    subprocess.run([folder / 'p', folder / 'p.svg'], check=True, timeout=60)
                    expected = tool.run('replay', '--utf16', page).stdout
                    self.assertTrue((folder / 'p.svg').read_bytes() == expected)


unittest.main()
