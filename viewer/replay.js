// Recordings become pages by the project's replay tool, which is named here alone.
import { execFileSync } from 'node:child_process';
import { fileURLToPath } from 'node:url';

const TOOL = [fileURLToPath(new URL('../build/release/tools/replay/qzsvggen-replay', import.meta.url))];

/**
 * Replays a recording into a document. Returns the document's path.
 * @param {string} recording @param {string} document
 */
export function replay(recording, document) {
  const [program, ...verb] = TOOL;
  execFileSync(program, [...verb, recording, '-o', document]);
  return document;
}
