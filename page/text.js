// @ts-check
// Texts as people read them: no character unseen, numbers short.

const UNSEEN = /[\0-\x1f\x7f-\x9f\xad\u061c\u200b\u200e\u200f\u2028-\u202e\u2060-\u206f\ufeff\ufff9-\ufffb]/g;
const MARKS = { 9: '⇥', 10: '↵', 13: '␍', 0x61c: '⟦ALM⟧', 0x200e: '⟦LRM⟧', 0x200f: '⟦RLM⟧', 0x202a: '⟦LRE⟧', 0x202b: '⟦RLE⟧',
  0x202c: '⟦PDF⟧', 0x202d: '⟦LRO⟧', 0x202e: '⟦RLO⟧', 0x2066: '⟦LRI⟧', 0x2067: '⟦RLI⟧', 0x2068: '⟦FSI⟧', 0x2069: '⟦PDI⟧' };

function markOf(/** @type {string} */ character) {
  const code = character.charCodeAt(0);
  return MARKS[code] || (code < 32 ? String.fromCharCode(0x2400 + code) : `⟦${code.toString(16).toUpperCase()}⟧`);
}

// As much of the text as fits, with a mark for each character that shows nothing or turns others around.
// Where lines are kept, tabs and line breaks stay.
export function visible(text, most = 2000, keepLines = false) {
  const cut = text.length > most ? `${text.slice(0, most)}…` : text;
  return cut.replace(UNSEEN, each => (keepLines && (each === '\n' || each === '\t') ? each : markOf(each)));
}

// A value of a record: a text, or bytes that are no UTF-8, or the text of a file.
export function valueText(value) {
  if (value === null || value === undefined) return '';
  if (typeof value !== 'object') return String(value);
  return Object.entries(value).map(([name, inner]) => `${name}:${typeof inner === 'object' ? JSON.stringify(inner) : inner}`).join(' ');
}

export const counted = number => Number(number).toLocaleString('en');
export const plural = (number, one, more = `${one}s`) => `${counted(number)} ${number === 1 ? one : more}`;

// A duration in three to four digits.
export function duration(seconds) {
  if (seconds < 0.0009995) return `${Math.round(seconds * 1e6)} µs`;
  if (seconds < 0.9995) return `${Number((seconds * 1e3).toPrecision(3))} ms`;
  return seconds < 100 ? `${seconds.toFixed(2)} s` : clock(seconds);
}

// 65 as "1:05".
export function clock(seconds) {
  const whole = Math.floor(seconds);
  const two = number => String(number).padStart(2, '0');
  const hours = Math.floor(whole / 3600);
  return (hours ? `${hours}:${two(Math.floor(whole / 60) % 60)}` : String(Math.floor(whole / 60))) + `:${two(whole % 60)}`;
}
