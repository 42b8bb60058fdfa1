// Serves a document and the viewer on this machine: serve.js FILE..., recordings or pages.
import { readFileSync } from 'node:fs';
import { createServer } from 'node:http';
import { basename, extname } from 'node:path';
import { replayText } from '../replay.js';

const types = { '.js': 'text/javascript', '.css': 'text/css', '.svg': 'image/svg+xml', '.html': 'text/html', '.json': 'application/json' };

/** @param {string} file */
function read(file) {
  try {
    return extname(file) === '.jsonl' ? replayText(file) : readFileSync(file);
  } catch (error) {
    console.error(error.status ? `${file}: cannot be replayed` : `${file}: ${error.message}`);
    process.exit(1);
  }
}

const pages = process.argv.slice(2).map(file => ({ name: basename(file, extname(file)), content: read(file) }));

/** What stands at a path: the demonstration, the viewer's modules, the pages. @param {string} path */
function contentOf(path) {
  const page = /^\/page-(\d+)\.svg$/.exec(path);
  if (page) return pages[Number(page[1]) - 1]?.content;
  if (path === '/pages.json') return JSON.stringify(pages.map(({ name }) => name));
  const file = { '/': 'index.html', '/app.js': 'app.js', '/style.css': 'style.css' }[path];
  const module = /^\/src\/(\w+\.js)$/.exec(path);
  if (!file && !module) return undefined;
  return readFileSync(new URL(file ?? `../src/${module?.[1]}`, import.meta.url));
}

const escaped = text => text.replace(/[&<>"]/g, each => `&#${each.charCodeAt(0)};`);

/** What a form sent, to be read. @param {string} body */
function echo(body) {
  const rows = [...new URLSearchParams(body)].map(([name, value]) => `<tr><th>${escaped(name)}<td>${escaped(value)}`);
  return `<!DOCTYPE html><html lang="en"><meta charset="utf-8"><title>Sent</title><link rel="stylesheet" href="style.css">
    <main class="echo"><h1>The server got</h1><table>${rows.join('')}</table><a href="/">Back</a></main>`;
}

const server = createServer(async (request, response) => {
  const path = (request.url ?? '/').split('?')[0];
  let body = '';
  for await (const chunk of request) body += chunk;
  const content = request.method === 'POST' && path === '/echo' ? echo(body) : contentOf(path);
  response.writeHead(content === undefined ? 404 : 200, { 'content-type': `${types[extname(path)] ?? 'text/html'}; charset=utf-8` });
  response.end(content);
});

server.on('error', () => server.listen(0, '127.0.0.1'));  // another one has the usual port
server.on('listening', () => console.log(`http://127.0.0.1:${server.address().port}/  (Ctrl+C ends it)`));
server.listen(8000, '127.0.0.1');
