"""Replays whole pages. Each must give a well-formed document as large as the page, in which every
reference of the generator's own resolves; a document stored beside its recording must be equal.
The C program of each page must give the same document. On every machine each page and some random
sequences of calls give the same code units: those of which document_hashes.json has the hash."""
import hashlib
import json
import re
import subprocess
import unittest
import xml.etree.ElementTree

import sequences
import tool

COMPILER = tool.MORE  # of C, with its options; nothing when programs of its cannot be run


class Pages(tool.InFolder):
    maxDiff = None

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

    def test_documents_are_the_same_everywhere(self):
        stored = json.loads((tool.REPOSITORY / 'tests/tools/document_hashes.json').read_text())
        pages = {page.stem: page for page in tool.recordings()
                 if page.stem in stored or tool.REPOSITORY in page.parents}
        for seed, text in enumerate(sequences.sequences(20)):
            self.write(f'sequence {seed}.jsonl', text)
            pages[f'sequence {seed}'] = f'sequence {seed}.jsonl'
        actual = {name: self.hash_of(page) for name, page in pages.items()}
        self.assertEqual(actual, {name: stored.get(name) for name in actual})

    def hash_of(self, page):
        document = tool.run('replay', '--utf16', page, cwd=self.folder, check=True).stdout
        return hashlib.sha256(document).hexdigest()[:16]

    @unittest.skipUnless(COMPILER, 'no programs can be compiled and run')
    def test_emit(self):
        for page in tool.recordings():
            with self.subTest(page=page):
                program, document = self.folder / 'p', self.folder / 'p.svg'
                self.assertEqual(tool.run('emit', page, '-o', self.folder / 'p.c').returncode, 0)
                subprocess.run([COMPILER[0], self.folder / 'p.c', '-o', program, *COMPILER[1:]],
                               check=True, timeout=60)
                subprocess.run([program, document], check=True, timeout=60)
                expected = tool.run('replay', '--utf16', page).stdout
                self.assertTrue(document.read_bytes() == expected)


unittest.main()
