// @ts-check
import { make } from './dom.js';

// Files that the page writes and reads.
export function save(name, text) {
  const link = make('a');
  link.href = URL.createObjectURL(new Blob([text], { type: 'application/x-ndjson' }));
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10000);
}

// The lines of a session, a case or recorded traffic as records with steps. What is no object is told.
export function* recordsIn(text) {
  let number = 0;
  let step = 0;
  for (const line of text.split('\n')) {
    number += 1;
    if (!line.trim() || line.startsWith('#')) continue;
    let record = null;
    try {
      record = JSON.parse(line);
    } catch { /* told below */ }
    if (typeof record !== 'object' || !record || Array.isArray(record)) {
      yield JSON.stringify({ page: `line ${number} is no JSON object` });
    } else if (record.step !== undefined) {
      step = record.step;
      yield line;
    } else {
      if (record.to === undefined) step = record.start ? 0 : number;
      yield line.replace(/^\s*\{/, `{"step":${step},`);
    }
  }
}
