// Recordings become pages by the project's replay tool, which is named here alone.
import { execFileSync } from 'node:child_process';
import { readFileSync, rmSync, mkdtempSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { fileURLToPath } from 'node:url';

const tool = process.env.QZSVGGEN ?? fileURLToPath(new URL('../build/release/tools/qzsvggen/qzsvggen', import.meta.url));

/**
 * The document of a recording, as UTF-8 text.
 * @param {string} recording
 */
export function replayText(recording) {
  const out = mkdtempSync(join(tmpdir(), 'qzsvggen-'));
  try {
    const document = join(out, 'page.svg');
    execFileSync(tool, ['replay', recording, '-o', document], { stdio: ['ignore', 'ignore', 'inherit'] });
    return readFileSync(document, 'utf8');
  } finally {
    rmSync(out, { recursive: true });
  }
}
