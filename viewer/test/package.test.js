import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { existsSync, readFileSync } from 'node:fs';
import { join } from 'node:path';
import { before, test } from 'node:test';
import { draw, folder, inBrowsers, out, text, url, write } from './support.js';

const installed = join(out, 'node_modules/velumark-viewer');
// The tests' folder becomes a user's, with the package as npm makes it.
before(() => {
  const npm = (cwd, ...rest) => execFileSync('npm', [...rest, '--silent', '--no-audit', '--no-fund'], { cwd, encoding: 'utf8' }).trim();
  const archive = npm(folder, 'pack', '--pack-destination', out).split('\n').at(-1);
  write('package.json', '{"type": "module"}');
  npm(out, 'install', '--offline', `./${archive}`);
});

test('the package has its licence, no dependencies, and types that a user can rely on', () => {
  assert.ok(existsSync(join(installed, 'LICENSE')));
  assert.equal(JSON.parse(readFileSync(join(installed, 'package.json'), 'utf8')).dependencies, undefined);
  const compile = line => {
    write('use.ts', `import { VelumarkViewer, type Field } from 'velumark-viewer';
      const viewer = document.querySelector<VelumarkViewer>('velumark-viewer')!;
      viewer.interpretation = (field: Field) => field.data ? { label: field.name } : null;
      ${line}`);
    execFileSync(join(folder, 'node_modules/.bin/tsc'), ['--noEmit', '--strict', '--target', 'es2022', '--module', 'es2022', '--moduleResolution', 'bundler', 'use.ts'], { cwd: out });
  };
  compile('const there: boolean = viewer.goTo("x"); viewer.values = { a: true }; viewer.show([new Uint8Array(3), "text"]);');
  assert.throws(() => compile('viewer.goTo(5);'));
});

inBrowsers('the three lines of its README show pages', async page => {
  write('readme.html', /```html\n([^]*?)```/.exec(readFileSync(join(installed, 'README.md'), 'utf8'))[1]);
  for (const i of [1, 2]) write(`page-${i}.svg`, draw([text('Page', 100, 100)]));
  await page.goto(`${url}/readme.html`);
  await page.waitForFunction(() => document.querySelector('velumark-viewer').shadowRoot.querySelectorAll('text').length === 2);
});
