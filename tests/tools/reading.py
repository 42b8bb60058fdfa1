"""Pictures as readers show them, measured in one run of Chromium: SVG documents, and PNG files of
other readers."""
import base64
import html
import json
import os
import pathlib
import re
import subprocess
import tempfile

# count, sum: of pixels that are painted, and of their places and colours. box: what they lie in,
# left top right bottom. colour: in the middle of it.
SCRIPT = '''<!DOCTYPE html><meta charset="utf-8"><pre id="result"></pre><script>
const pictures = PICTURES;
const measure = source => new Promise(done => {
  const image = new Image();
  image.onerror = () => done({count: 0, sum: 0, box: [0, 0, 0, 0]});
  image.onload = () => {
    const canvas = document.createElement('canvas');
    canvas.width = canvas.height = 1000;
    const context = canvas.getContext('2d', {willReadFrequently: true});
    context.drawImage(image, 0, 0);
    const data = context.getImageData(0, 0, 1000, 1000).data;
    let count = 0, sum = 0, left = 1000, top = 1000, right = 0, bottom = 0;
    for (let i = 3; i < data.length; i += 4)
      if (data[i] > 0) {
        const x = (i >> 2) % 1000, y = Math.floor((i >> 2) / 1000);
        ++count;
        sum += x + (i >> 2) / 1000 + data[i - 3] / 255;
        left = Math.min(left, x);
        top = Math.min(top, y);
        right = Math.max(right, x + 1);
        bottom = y + 1;
      }
    const colour = context.getImageData((left + right) / 2, (top + bottom) / 2, 1, 1).data;
    done({count, sum: Math.round(sum), box: [left, top, right, bottom],
          colour: [...colour].slice(0, 3)});
  };
  image.src = source;
});
(async () => {
  const all = [];
  for (const each of pictures) all.push(await measure(each));
  document.getElementById('result').textContent = JSON.stringify(all);
})();
</script>'''


def open_page(chromium, folder, page, *options):
    options = ['--headless', '--disable-gpu', '--no-first-run', '--hide-scrollbars',
               f'--user-data-dir={folder}/profile', *(['--no-sandbox'] * (os.getuid() == 0)),
               *options, page.as_uri()]
    return subprocess.run([chromium, *options], timeout=60, capture_output=True, encoding='utf-8')


def result_of(chromium, script):
    """What a script writes into the element `result`, as JSON."""
    with tempfile.TemporaryDirectory() as folder:
        page = pathlib.Path(folder, 'page.html')
        page.write_text(script, 'utf-8')
        result = open_page(chromium, folder, page, '--virtual-time-budget=60000', '--dump-dom')
        found = re.search('<pre id="result">(.+?)</pre>', result.stdout)
        assert found, result.stderr
        return json.loads(html.unescape(found[1]))


def measure(chromium, pictures):
    sources = [f'data:image/{"png" if each[1:4] == b"PNG" else "svg+xml"};base64,' +
               base64.b64encode(each).decode() for each in pictures]
    return result_of(chromium, SCRIPT.replace('PICTURES', json.dumps(sources)))


def screenshot(chromium, document):
    """A PNG file of the document as it is when opened, in a window of 500 by 500."""
    with tempfile.TemporaryDirectory() as folder:
        page, picture = pathlib.Path(folder, 'page.svg'), pathlib.Path(folder, 'page.png')
        page.write_bytes(document)
        result = open_page(chromium, folder, page, '--window-size=500,500',
                           '--default-background-color=00000000', f'--screenshot={picture}')
        assert picture.exists(), result.stderr
        return picture.read_bytes()
