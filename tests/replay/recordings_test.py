"""Replays whole pages: each must give a well-formed document that is as large as the page."""
import json
import pathlib
import subprocess
import sys
import xml.etree.ElementTree

tool, *directories = sys.argv[1:]
failures = 0
missing = [name for name in directories if not pathlib.Path(name).is_dir()]
for directory in directories:
    for recording in sorted(pathlib.Path(directory).glob('*.jsonl')):
        result = subprocess.run([tool, recording], capture_output=True, timeout=60)
        try:
            assert result.returncode == 0, result.stderr.decode()
            root = xml.etree.ElementTree.fromstring(result.stdout)
            left, top, right, bottom = json.loads(recording.open(encoding='utf-8').readline())[1]
            size = (str(right - left), str(bottom - top))
            assert (root.get('width'), root.get('height')) == size, 'wrong size'
        except (AssertionError, xml.etree.ElementTree.ParseError) as error:
            print(f'{recording}: {error}')
            failures += 1
for name in missing:
    print(f'{name} does not exist: its pages were not replayed')
sys.exit(1 if failures else 77 if missing else 0)
