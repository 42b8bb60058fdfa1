// Pages that a test writes down as calls, drawn by the library.
import { mkdtempSync, readFileSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { replay } from '../replay.js';

const out = mkdtempSync(join(tmpdir(), 'viewer-'));

/** The document of a page of 1000 by 1000 units, from calls without their prefix. */
export function draw(calls, size = [0, 0, 1000, 1000]) {
  const recording = join(out, 'page.jsonl');
  const lines = [['Create', size], ['SetFont', 'Liberation Sans', 40, 0, 0], ...calls];
  writeFileSync(recording, lines.map(([name, ...rest]) => JSON.stringify([`SVG_${name}`, ...rest])).join('\n'));
  return readFileSync(replay(recording, join(out, 'page.svg')), 'utf8');
}

export const text = (string, x, y, advances = null, scaling = 100) => ['DrawText', string, [x, y], advances, scaling];
export const advances = (string, width) => Array.from({ length: string.length }, () => width);
export const field = (type, name, data, bounds, ...drawn) =>
  [['BeginFormField', type, 0, 0, bounds, name, data], ...drawn, ['EndFormField']];
export const picture = (markup, bounds = [0, 0, 1000, 1000]) => ['DrawImage', 8, bounds, markup, 100];
export const [CHECKBOX, COMBOBOX, TEXT, DATE] = [14, 15, 16, 17];
