// What the tests share: a server for the viewer and the pages, the browsers, the replayed pages.
import { execFileSync } from 'node:child_process';
import { existsSync, readFileSync, readdirSync, realpathSync } from 'node:fs';
import { mkdtemp, readFile } from 'node:fs/promises';
import { createServer } from 'node:http';
import { tmpdir } from 'node:os';
import { basename, extname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';
import puppeteer from 'puppeteer-core';
import { replay } from '../replay.js';

export const folder = fileURLToPath(new URL('..', import.meta.url));
export const repository = resolve(folder, '..');

const TYPES = { '.js': 'text/javascript', '.html': 'text/html', '.svg': 'image/svg+xml', '.css': 'text/css' };

/** Serves the package's files and what a test adds; remembers what was asked for. */
export async function serve() {
  const extra = new Map();
  const requests = [];
  const server = createServer(async (request, response) => {
    const { pathname } = new URL(request.url, 'http://localhost');
    let body = '';
    for await (const chunk of request) body += chunk;
    requests.push({ path: request.url, method: request.method, body });
    const { content, headers = {} } = extra.get(pathname) ?? {};
    const type = TYPES[extname(pathname)] ?? 'text/html';
    const data = content ?? await readFile(join(folder, pathname)).catch(() => null);
    response.writeHead(data === null ? 404 : 200, { 'content-type': `${type}; charset=utf-8`, ...headers });
    response.end(data ?? '');
  });
  await new Promise(done => server.listen(0, '127.0.0.1', done));
  return { url: `http://127.0.0.1:${server.address().port}`, extra, requests, close: () => server.close() };
}

/** The pages of the recordings: this package's, the sample, and real ones where they are at hand. */
export async function pages(folders = [join(folder, 'test/pages'), join(repository, 'samples'), join(repository, '../shared/recordings')]) {
  const out = await mkdtemp(join(tmpdir(), 'viewer-'));
  const recordings = folders.filter(existsSync).flatMap(each =>
    readdirSync(each).filter(name => name.endsWith('.jsonl')).map(name => join(each, name)));
  return Object.fromEntries(recordings.map(recording => {
    const name = basename(recording, '.jsonl');
    return [name, readFileSync(replay(recording, join(out, `${name}.svg`)), 'utf8')];
  }));
}

const EXECUTABLES = { chrome: ['chromium'], firefox: ['firefox-esr', 'firefox'] };

function executable(names) {
  for (const name of names) {
    for (const directory of process.env.PATH.split(':')) {
      const path = join(directory, name);
      if (existsSync(path) && !realpathSync(path).includes('snap')) return path;
    }
  }
}

/** The browsers that are there; of those that are not a sentence says so. */
export function browsers() {
  return Object.entries(EXECUTABLES).flatMap(([browser, names]) => {
    const path = executable(names);
    if (!path) console.log(`There is no ${names[0]} on this machine, it is not tested.`);
    return path ? [{ browser, path }] : [];
  });
}

export function launch({ browser, path }) {
  return puppeteer.launch({
    browser,
    executablePath: path,
    headless: true,
    args: browser === 'chrome' && process.getuid() === 0 ? ['--no-sandbox'] : [],
    defaultViewport: { width: 900, height: 1200 },
    protocolTimeout: 60_000,
  });
}
