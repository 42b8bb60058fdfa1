// Pages that a test writes down as calls, drawn by the library.
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after } from 'node:test';
import { replayText } from '../replay.js';

const out = mkdtempSync(join(tmpdir(), 'viewer-'));
after(() => rmSync(out, { recursive: true }));

/** The document of a page of 1000 by 1000 units, from calls without their prefix. */
export function draw(calls, size = [0, 0, 1000, 1000]) {
  const recording = join(out, 'page.jsonl');
  const lines = [['Create', size], ['SetFont', 'Liberation Sans', 40, 0, 0], ...calls];
  writeFileSync(recording, lines.map(([name, ...rest]) => JSON.stringify([`SVG_${name}`, ...rest])).join('\n'));
  return replayText(recording);
}

export const text = (string, x, y, advances = null, scaling = 100) => ['DrawText', string, [x, y], advances, scaling];
export const every = (width, count) => Array(count).fill(width);
export const rectangle = (...bounds) => ['DrawRectangle', bounds];
export const picture = (markup, bounds = [0, 0, 1000, 1000]) => ['DrawImage', 8, bounds, markup, 100];
export const link = (type, target, ...drawn) => [['BeginLink', type, target], ...drawn, ['EndLink']];
export const [CHECKBOX, COMBOBOX, TEXT, DATE] = [14, 15, 16, 17];
export const field = (type, name, data, bounds, ...drawn) =>
  [['BeginFormField', type, 0, 0, bounds, name, data], ...drawn, ['EndFormField']];
/** The type data of a date field: a number and a pattern. */
export const dated = pattern => ({ base64: Buffer.concat([Buffer.alloc(8, 1), Buffer.from(pattern, 'utf16le')]).toString('base64') });
