"""The Python package draws the sample page, and refuses what the C interface leaves undefined.
usage: python_test.py REPOSITORY LIBRARY"""
import base64
import ctypes
import json
import os
import pathlib
import re
import sys
import unittest

REPOSITORY, os.environ['QZSVGGEN_LIBRARY'] = pathlib.Path(sys.argv[1]), sys.argv[2]
del sys.argv[1:]
sys.path.insert(0, str(REPOSITORY / 'packaging/python'))
sys.dont_write_bytecode = True

import qzsvggen  # noqa: E402
from qzsvggen import Page  # noqa: E402


def argument(folder, value):
    """Bytes in their recorded form; everything else is what the methods take."""
    if not isinstance(value, dict):
        return value
    return (folder / value['file']).read_bytes() if 'file' in value else base64.b64decode(
        value['base64'])


def replay(recording):
    create, *calls = map(json.loads, recording.read_text('utf-8').splitlines())
    with Page(create[1]) as page:
        for name, *arguments in calls:
            method = re.sub('(?<!^)(?=[A-Z])', '_', name.removeprefix('SVG_')).lower()
            call = qzsvggen.version if method == 'get_version' else getattr(page, method)
            call(*(argument(recording.parent, each) for each in arguments))
        return page.close()


class Python(unittest.TestCase):
    def test_sample(self):
        expected = (REPOSITORY / 'samples/invoice.svg').read_text('utf-8')
        self.assertTrue(replay(REPOSITORY / 'samples/invoice.jsonl') == expected)

    def test_refused(self):
        cases = [
            (ValueError, lambda page: page.draw_path([(1, 2)], [6, 2])),
            (ValueError, lambda page: page.draw_text('\U0001F600', (0, 0), [5])),
            (ValueError, lambda page: page.begin_form_field(17, 0, 0, (0, 0, 1, 1), '', 'abc')),
            (ctypes.ArgumentError, lambda page: page.set_fill(256, 0, 0, 0)),
            (ctypes.ArgumentError, lambda page: page.draw_line((0, 2**31), (0, 0))),
            (ctypes.ArgumentError, lambda page: page.draw_rectangle((0, 0, 1))),
            (ctypes.ArgumentError, lambda page: page.draw_polyline([(1, 2), (3,)])),
        ]
        with Page((0, 0, 9, 9)) as page:
            empty = page.close()
        for error, call in cases:
            with self.subTest(error=error), Page((0, 0, 9, 9)) as page:
                self.assertRaises(error, call, page)
                self.assertEqual(page.close(), empty)

    def test_scopes_end_and_text_passes(self):
        with Page((0, 0, 9, 9)) as page:
            with page.begin_link(qzsvggen.LinkType.EXTERNAL, 'a\ud800'):
                page.draw_line((1, 2), (3, 4))
            page.set_document_target((5, 6), '\U0001F600')
            self.assertRegex(page.close(), 'href="a\ud800"><line [^>]*/></a><velumark:target [^>]*'
                             'name="\U0001F600"')
        with self.assertRaises(ValueError):
            page.clear_font()


unittest.main()
