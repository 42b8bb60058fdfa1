import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, test } from 'node:test';
import { draw, text } from './draw.js';
import { files, folder, inBrowsers, url } from './support.js';

// A folder of a user's own, with the package as npm makes it.
const user = mkdtempSync(join(tmpdir(), 'viewer-'));
after(() => rmSync(user, { recursive: true }));
const npm = (cwd, ...rest) => execFileSync('npm', [...rest, '--silent', '--no-audit', '--no-fund'], { cwd, encoding: 'utf8' }).trim();
const [archive] = npm(folder, 'pack', '--pack-destination', user).split('\n').slice(-1);
writeFileSync(join(user, 'package.json'), '{"type": "module"}');
npm(user, 'install', '--offline', `./${archive}`);
const installed = join(user, 'node_modules/velumark-viewer');

test('the package has its licence, its README, and types that a user can rely on', () => {
  assert.match(readFileSync(join(installed, 'LICENSE'), 'utf8'), /MIT License/);
  assert.match(readFileSync(join(installed, 'README.md'), 'utf8'), /<velumark-viewer src=/);
  assert.deepEqual(JSON.parse(readFileSync(join(installed, 'package.json'), 'utf8')).dependencies, undefined);
  const compile = line => {
    writeFileSync(join(user, 'use.ts'), `import { VelumarkViewer, type Field } from 'velumark-viewer';
      const viewer = document.querySelector<VelumarkViewer>('velumark-viewer')!;
      viewer.interpretation = (field: Field) => field.data ? { label: field.name } : null;
      ${line}`);
    execFileSync(join(folder, 'node_modules/.bin/tsc'), ['--noEmit', '--strict', '--target', 'es2022', '--module', 'es2022', '--moduleResolution', 'bundler', 'use.ts'], { cwd: user });
  };
  compile('const there: boolean = viewer.goTo("x"); viewer.values = { a: true }; viewer.show([new Uint8Array(3), "text"]);');
  assert.throws(() => compile('viewer.goTo(5);'));
});

inBrowsers('the package shows a page', async browser => {
  const [, html] = /```html\n([^]*?)```/.exec(readFileSync(join(installed, 'README.md'), 'utf8'));
  for (const name of ['fields', 'read', 'repair', 'sanitize', 'semantics', 'style', 'text', 'viewer'])
    files.set(`/node_modules/velumark-viewer/src/${name}.js`, { content: readFileSync(join(installed, `src/${name}.js`)) });
  files.set('/index.html', { content: html });
  files.set('/page-1.svg', { content: draw([text('First', 100, 100)]) });
  files.set('/page-2.svg', { content: draw([text('Second', 100, 100)]) });
  await browser.goto(`${url}/index.html`);
  await browser.waitForFunction(() => document.querySelector('velumark-viewer').shadowRoot.querySelectorAll('text').length === 2);
});
