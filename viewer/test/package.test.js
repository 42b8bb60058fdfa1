import { execFileSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { draw, folder, inBrowsers, out, text, url, write } from './support.js';

const run = (command, options, cwd = out) => execFileSync(command, options.split(' '), { cwd, encoding: 'utf8' });
const installed = name => readFileSync(join(out, 'node_modules/velumark-viewer', name), 'utf8');

// The tests' folder becomes a user's, with the package as npm makes it.
test('the package has its licence, no dependencies, and types that a user can rely on', () => {
  const archive = run('npm', `pack --silent --pack-destination ${out}`, folder).trim().split('\n').at(-1);
  write('package.json', '{"type": "module"}');
  run('npm', `install --silent --no-audit --no-fund --offline ./${archive}`);
  installed('LICENSE');
  if (JSON.parse(installed('package.json')).dependencies) throw new Error('There are dependencies');
  write('use.ts', `import { VelumarkViewer, type Field } from 'velumark-viewer';
    const viewer = document.querySelector<VelumarkViewer>('velumark-viewer')!;
    viewer.interpretation = (field: Field) => field.data ? { label: field.name } : null;
    viewer.values = { a: true };
    viewer.show([new Uint8Array(3), 'text']);
    const there: boolean = viewer.goTo('x');
    // @ts-expect-error
    viewer.goTo(5);`);
  run(join(folder, 'node_modules/.bin/tsc'),
    '--noEmit --strict --target es2022 --module es2022 --moduleResolution bundler use.ts');
});

inBrowsers('the three lines of its README show pages', async page => {
  write('readme.html', /```html\n([^]*?)```/.exec(installed('README.md'))[1]);
  for (const i of [1, 2]) write(`page-${i}.svg`, draw([text('Page', 100, 100)]));
  await page.goto(`${url}/readme.html`);
  await page.waitForFunction(() => document.querySelector('velumark-viewer').shadowRoot.querySelectorAll('text')[1]);
});
