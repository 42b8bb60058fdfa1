"""Replays whole pages. Each must give a well-formed document as large as the page, in which every
reference of the generator's own resolves; a document stored beside its recording must be equal."""
import json
import pathlib
import re
import subprocess
import sys
import xml.etree.ElementTree

tool, *directories = sys.argv[1:]


def check(recording):
    result = subprocess.run([tool, recording], capture_output=True, timeout=60)
    assert result.returncode == 0, result.stderr.decode()
    root = xml.etree.ElementTree.fromstring(result.stdout)
    left, top, right, bottom = json.loads(recording.open(encoding='utf-8').readline())[1]
    assert (root.get('width'), root.get('height')) == (str(right - left), str(bottom - top)), 'size'
    references = set(re.findall(rb'(?:xlink:href="|url\()#(QZ_\w+(?:\.\d+)?)', result.stdout))
    dangling = references - set(re.findall(rb' id="([^"]*)"', result.stdout))
    assert not dangling, f'nothing has the ids {dangling}'
    stored = recording.with_suffix('.svg')
    assert not stored.exists() or stored.read_bytes() == result.stdout, \
        f'{stored.name} differs; if that is meant, record it anew with qzsvggen-replay'


failures = 0
missing = [name for name in directories if not pathlib.Path(name).is_dir()]
for directory in directories:
    for recording in sorted(pathlib.Path(directory).glob('*.jsonl')):
        try:
            check(recording)
        except (AssertionError, xml.etree.ElementTree.ParseError) as error:
            print(f'{recording}: {error}')
            failures += 1
for name in missing:
    print(f'{name} does not exist: its pages were not replayed')
sys.exit(1 if failures else 77 if missing else 0)
