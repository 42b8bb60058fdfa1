"""The tracing library before hosts, those that misbehave included."""
import json
import os
import pathlib
import shutil
import subprocess
import sys
import unittest

import sequences
import tool

HOST, LIBRARY, TRACER = map(pathlib.Path, tool.MORE[:3])
# A sanitizer wants to be loaded before the tracing library.
os.environ['ASAN_OPTIONS'] = 'verify_asan_link_order=0'
CLEAN = {name: value for name, value in os.environ.items() if not name.startswith('QZSVGGEN_')}


def meaning(line, folder):
    """A line with its data as bytes and count, whatever form it has."""
    def plain(value):
        if isinstance(value, str):
            return ('data', value.encode('utf-16-le', 'surrogatepass').hex(), None)
        if isinstance(value, dict):
            if 'file' in value:
                data = (folder / value['file']).read_bytes()
            elif 'base64' in value:
                import base64
                data = base64.b64decode(value['base64'])
            else:
                data = value['text'].encode('utf-16-le')
            return ('data', data.hex(), value.get('count'))
        return value
    name, *arguments = json.loads(line)
    return [name, *map(plain, arguments)]


class Trace(tool.InFolder):
    def trace(self, *command, **options):
        return subprocess.run([tool.PROGRAM, 'trace', '--tracer', TRACER, '-o', 'out', '--', *command],
                              cwd=self.folder, capture_output=True, encoding='utf-8', timeout=60,
                              env=CLEAN, **options)

    def traces(self, folder='out'):
        return sorted((self.folder / folder).glob('*.jsonl'))

    def calls_and_note(self, path):
        lines = path.read_text('utf-8').splitlines()
        return lines[:-1], json.loads(lines[-1])

    def test_recordings(self):
        """A trace of a replay has the lines that were replayed, and the document is the same."""
        pages = tool.recordings()
        for page in pages:
            with self.subTest(page=page):
                shutil.rmtree(self.folder / 'out', ignore_errors=True)
                result = self.trace(tool.PROGRAM, 'replay', page, '-o', 'page.svg')
                self.assertEqual((result.returncode, result.stderr[:7]), (0, '1 page '))
                tool.run('replay', page, '-o', self.folder / 'bare.svg')
                self.assertEqual((self.folder / 'page.svg').read_bytes(),
                                 (self.folder / 'bare.svg').read_bytes())
                [path] = self.traces()
                lines, note = self.calls_and_note(path)
                expected = [line for line in page.read_text('utf-8').splitlines()
                            if line.startswith('[')]
                self.assertEqual(len(lines), len(expected))
                for line, original in zip(lines, expected):
                    self.assertEqual(meaning(line, path.parent), meaning(original, page.parent))
                self.assertEqual(note['problems'], [])
                verified = self.run_tool('replay', '--verify', path)
                self.assertEqual(verified.returncode, 0, verified.stderr)
        self.assertGreater(len(pages), 1)

    def test_sequences(self):
        for seed, text in enumerate(sequences.sequences(tool.SEQUENCES // 3)):
            self.write('page.jsonl', text)
            self.trace(tool.PROGRAM, 'replay', 'page.jsonl', '-o', 'page.svg')
            [path] = self.traces()
            lines, _ = self.calls_and_note(path)
            self.assertEqual([meaning(line, path.parent) for line in lines],
                             [meaning(line, self.folder) for line in text.splitlines()], seed)
            path.unlink()

    def test_odd_arguments(self):
        """Counts that differ from the data, half surrogates, short and odd data come out as given."""
        text = '{"base64":"%s","count":%d}'
        lines = [tool.CREATE, '["SVG_DrawText",%s,[1,2],null,100]' % (text % ('YQBiAA==', -3)),
                 '["SVG_DrawText",{"base64":"ANhhAA=="},[1,2],[3,4],100]',
                 '["SVG_BeginFormField",17,1,2,[0,0,9,9],"a",%s]' % (text % ('AQAAAAAAAAA=', 3)),
                 '["SVG_BeginSignatureField",[0,0,9,9],"a",{"base64":"YQBi"}]',
                 '["SVG_DrawText","\\u0000\\u001f\\"\\\\\U0001f600",[-2147483648,2],null,0]',
                 '["SVG_DrawImage",4,[0,0,9,9],{"base64":"","count":-1},1]', '["SVG_Close"]',
                 '["SVG_DrawLine",[0,0],[1,1]]']
        self.write('odd.jsonl', '\n'.join(lines))
        self.trace(tool.PROGRAM, 'replay', 'odd.jsonl', '-o', 'odd.svg')
        traced, _ = self.calls_and_note(self.traces()[0])
        lines[1] = lines[1].replace('YQBiAA==', '')  # what a negative count leaves unread
        self.assertEqual([meaning(line, self.folder) for line in traced],
                         [meaning(line, self.folder) for line in lines])

    def test_hosts(self):
        result = self.trace(HOST, 'page')
        self.assertEqual((result.returncode, result.stderr), (0, '1 page recorded in out\n'))
        [path] = self.traces()
        self.assertRegex(path.name, r'^trace_host-\d+-0001.jsonl$')
        self.assertEqual(path.stat().st_mode & 0o777, 0o600)

    def test_crashes(self):
        result = self.trace(HOST, 'abort')
        self.assertEqual(result.returncode, 134)
        self.assertEqual(self.traces()[0].read_text().rstrip('\0'),
                         '["SVG_Create",[0,0,1000,1000]]\n["SVG_DrawRectangle",[10,10,90,90]]\n')
        shutil.rmtree(self.folder / 'out')
        if tool.MORE[3] != 'plain':
            return  # a sanitizer ends the host elsewhere
        self.assertEqual(self.trace(HOST, 'count').returncode, 139)
        [path] = self.traces()
        self.assertTrue(path.read_text().rstrip('\0').endswith('\n["SVG_DrawText","read'))
        told = self.run_tool('replay', path, '-o', 'page.svg').stderr
        self.assertIn(':3: warning: SVG_DrawText was cut off', told)

    def test_full_disk(self):
        disk = self.folder / 'out'
        disk.mkdir()
        if subprocess.run(['mount', '-t', 'tmpfs', '-o', 'size=1m', 'none', disk],
                          capture_output=True).returncode != 0:
            self.skipTest('no small disk can be made here')
        try:
            result = self.trace(HOST, 'many')
            self.assertEqual(result.returncode, 0)
            self.assertIn('come to its end', result.stdout)
            self.assertEqual(result.stderr.count('disk is full'), 1)
            self.assertEqual(self.run_tool('replay', self.traces()[0], '-o', 'page.svg').stderr, '')
        finally:
            subprocess.run(['umount', disk], check=True)

    def test_fork_and_threads(self):
        self.trace(HOST, 'fork')
        [path] = self.traces()
        self.assertEqual(len(path.read_text().splitlines()), 2)
        path.unlink()
        result = self.trace(HOST, 'threads')
        self.assertEqual(result.stderr, '400 pages recorded in out\n')
        for path in self.traces():
            lines, note = self.calls_and_note(path)
            self.assertEqual((len(lines), note['problems']), (21, []))

    def test_misuse(self):
        self.trace(HOST, 'race')
        [path] = self.traces()
        lines, note = self.calls_and_note(path)
        self.assertEqual(len(lines), 200001)
        self.assertIn('two threads at once', note['problems'][0])
        self.assertEqual(self.run_tool('replay', '--verify', path).returncode, 0)
        path.unlink()
        self.trace(HOST, 'misuse')
        first, second = [self.calls_and_note(path) for path in self.traces()]
        self.assertIn('nothing was copied', first[1]['problems'][0])
        self.assertEqual(first[0][1:], ['["SVG_Close"]', '["SVG_DrawRectangle",[10,10,90,90]]'])
        self.assertIn('the generator was never deleted', second[1]['problems'])

    @unittest.skipIf(tool.MORE[3] != 'plain', 'not for interpreters')
    def test_host_that_loads_by_path(self):
        page = tool.REPOSITORY / 'examples/page.py'
        expected = (tool.REPOSITORY / 'examples/page.svg').read_text('utf-8')
        result = self.trace(sys.executable, page, LIBRARY, 'page.svg')
        self.assertEqual(result.returncode, 1)
        self.assertIn('Nothing was recorded', result.stderr)
        # The tracing library, under the real one's name on the library path, or in its place.
        place = self.folder / 'lib'
        place.mkdir()
        shutil.copy(TRACER, place / 'libqzsvggen.so.1')
        ways = [('libqzsvggen.so.1', {'QZSVGGEN_TRACE_LIBRARY': str(LIBRARY)}),
                (place / 'libqzsvggen.so.1', {})]
        for name, more in ways:
            if not more:
                shutil.copy(LIBRARY, place / 'libqzsvggen-real.so.1')
            subprocess.run([sys.executable, page, name, 'page.svg'], cwd=self.folder, check=True,
                           env={**CLEAN, 'LD_LIBRARY_PATH': str(place), **more}, timeout=60)
            self.assertEqual((self.folder / 'page.svg').read_bytes().decode('utf-16'), expected)
            [path] = self.traces('.')
            self.assertEqual(self.run_tool('replay', '--verify', path).returncode, 0)
            path.unlink()


unittest.main()
