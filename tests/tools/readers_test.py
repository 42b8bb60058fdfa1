"""What lint says of browsers holds in one: the bad page is drawn otherwise than the one as advised,
or refused. All pages are measured in one run of Chromium.

    readers_test.py PROGRAM REPOSITORY RECORDINGS CHROMIUM
"""
import base64
import html
import json
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

import lint_pages as pages
import tool

CHROMIUM = tool.MORE[0]

# Lost or refused: seen as fewer pixels, or none. Of the others another picture is seen.
LESS = {'xml-character', 'font-family', 'path-start', 'path-curves', 'line-without-stroke',
        'stroke-width-0', 'invisible-shape', 'invert-flat-line', 'picture-bounds', 'picture-format',
        'svg-broken', 'svg-not-found', 'block-no-character', 'block-reference', 'block-parts',
        'block-outline', 'block-relative'}
OTHER = {'negative-x', 'crlf-in-run', 'surrogate-in-run', 'no-font', 'font-size', 'rtl-forward',
         'path-after-close', 'rounded-corners', 'reversed-rectangle', 'filled-line', 'clip-lost',
         'clip-cut-overlap', 'clip-in-group', 'invert-late', 'block-origin'}

SCRIPT = '''<!DOCTYPE html><meta charset="utf-8"><pre id="result"></pre><script>
const documents = DOCUMENTS;
const measure = source => new Promise(done => {
  const image = new Image();
  image.onerror = () => done({count: 0});
  image.onload = () => {
    const canvas = document.createElement('canvas');
    canvas.width = canvas.height = 1000;
    const context = canvas.getContext('2d');
    context.drawImage(image, 0, 0);
    const data = context.getImageData(0, 0, 1000, 1000).data;
    let count = 0, sum = 0;
    for (let i = 3; i < data.length; i += 4)
      if (data[i] > 0) { ++count; sum += (i >> 2) % 1000 + (i >> 2) / 1000 + data[i - 3] / 255; }
    done({count, sum: Math.round(sum)});
  };
  image.src = 'data:image/svg+xml;base64,' + source;
});
(async () => {
  const all = [];
  for (const each of documents) all.push(await measure(each));
  document.getElementById('result').textContent = JSON.stringify(all);
})();
</script>'''


def measure(documents):
    with tempfile.TemporaryDirectory() as folder:
        page = pathlib.Path(folder, 'page.html')
        sources = json.dumps([base64.b64encode(each).decode() for each in documents])
        page.write_text(SCRIPT.replace('DOCUMENTS', sources))
        options = ['--headless', '--disable-gpu', '--no-first-run', '--virtual-time-budget=60000',
                   f'--user-data-dir={folder}/profile', *(['--no-sandbox'] * (os.getuid() == 0))]
        result = subprocess.run([CHROMIUM, *options, '--dump-dom', page.as_uri()], timeout=60,
                                capture_output=True, encoding='utf-8')
        found = re.search('<pre id="result">(.+?)</pre>', result.stdout)
        assert found, result.stderr
        return json.loads(html.unescape(found[1]))


class Readers(tool.InFolder):
    def document(self, lines):
        self.write('page.jsonl', '\n'.join(filter(None, [tool.CREATE, lines])))
        return tool.run('replay', 'page.jsonl', cwd=self.folder).stdout

    def test_pairs(self):
        tested = [(rule, bad, advised) for rule, bad, _, advised in pages.PAIRS
                  if rule in LESS | OTHER]
        family = [(pages.call('SetFont', f'{q}{name}{q}', 80, 0, 0) + '\n' +
                   pages.call('DrawText', 'name', [100, 500], None, 100))
                  for q in ('', '"') for name in ['Univers 55']]
        tested.append(('font-family', *family))
        self.assertEqual({rule for rule, *_ in tested}, LESS | OTHER)
        seen = measure([self.document(page) for _, *both in tested for page in both])
        for (rule, bad, _), wrong, right in zip(tested, seen[::2], seen[1::2]):
            with self.subTest(rule=rule, bad=bad, wrong=wrong, right=right):
                if rule in LESS:
                    self.assertLess(wrong['count'], 0.9 * right['count'])
                else:
                    self.assertNotEqual(wrong, right)
        print(f'{len(tested)} pairs measured')


unittest.main()
