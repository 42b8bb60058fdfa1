"""What the tests of the tools share: `qzsvggen_test.py PROGRAM REPOSITORY RECORDINGS [MORE...]`."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

PROGRAM, REPOSITORY, RECORDINGS, *MORE = sys.argv[1:]
del sys.argv[1:]
REPOSITORY = pathlib.Path(REPOSITORY)
# Random sequences of calls: under an emulator starting a program takes long.
IS_NATIVE = pathlib.Path(PROGRAM).read_bytes()[:4] == b'\x7fELF'
SEQUENCES = 150 if IS_NATIVE else 10
CREATE = '["SVG_Create",[0,0,1000,1000]]'


def recordings():
    """All pages there are; tells how many."""
    folders = [REPOSITORY / 'samples', REPOSITORY / 'tests/reliability/pages']
    if RECORDINGS:
        folders.append(pathlib.Path(RECORDINGS))
    pages = [page for folder in folders for page in sorted(folder.glob('*.jsonl'))]
    print(f'{len(pages)} recordings', '' if RECORDINGS else '(no folder of further ones is given)')
    return pages


def run(*arguments, **options):
    return subprocess.run([PROGRAM, *arguments], capture_output=True, timeout=60, **options)


class InFolder(unittest.TestCase):
    """Each test has a folder of its own."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def write(self, name, text):
        (self.folder / name).write_text(text, 'utf-8', newline='')

    def run_tool(self, *arguments):
        return run(*arguments, cwd=self.folder, encoding='utf-8')

    def document(self, lines, create=CREATE):
        self.write('page.jsonl', '\n'.join(filter(None, [create, lines])))
        return run('replay', 'page.jsonl', cwd=self.folder, check=True).stdout
