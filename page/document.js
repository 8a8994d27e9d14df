// XML documents as the driver sends them. They are shown as text and never become part of the page.

const PIECES = /<(?:"[^"]*"|'[^']*'|[^'">])*>|[^<]+|</g;
const MOST_COLOURED = 200000;
const DEEPEST_INDENT = 40;

// The root element, or null where the text is no document.
export function parse(xml) {
  if (typeof xml !== 'string') return null;
  const parsed = new DOMParser().parseFromString(xml, 'application/xml');
  return parsed.querySelector('parsererror') ? null : parsed.documentElement;
}

export function childText(element, name) {
  for (const child of element.children) {
    if (child.nodeName === name) return child.textContent;
  }
  return '';
}

// A value of a record: text, or bytes that are no UTF-8.
export function valueText(value) {
  if (value === null || value === undefined) return '';
  return typeof value === 'object' && 'bytes' in value ? `bytes ${value.bytes}` : String(value);
}

export function looksLikeDocument(text) {
  return text.startsWith('<') && text.endsWith('>');
}

export function element(tag, className, text) {
  const made = document.createElement(tag);
  if (className) made.className = className;
  if (text !== undefined) made.textContent = text;
  return made;
}

function kindOf(piece) {
  if (!piece.startsWith('<')) return 'text';
  if (piece.startsWith('</')) return 'close';
  return piece.endsWith('/>') ? 'empty' : 'open';
}

function coloured(piece) {
  return element('span', kindOf(piece) === 'text' ? 'xml-text' : 'xml-tag', piece);
}

// On one line, as much as a row of a table can show.
export function colouredLine(xml) {
  const line = document.createDocumentFragment();
  for (const [piece] of xml.slice(0, 400).matchAll(PIECES)) line.append(coloured(piece));
  return line;
}

// The whole document, an element a line. Very long ones are left without colours.
export function indented(xml) {
  const colour = xml.length <= MOST_COLOURED;
  const out = [];
  let depth = 0;
  let previous = 'close';
  for (const [piece] of xml.matchAll(PIECES)) {
    const kind = kindOf(piece);
    if (kind === 'close') depth -= 1;
    const stays = kind === 'text' || (kind === 'close' && (previous === 'text' || previous === 'open'));
    if (!stays && out.length) out.push('\n' + '  '.repeat(Math.min(Math.max(depth, 0), DEEPEST_INDENT)));
    out.push(colour ? coloured(piece) : piece);
    if (kind === 'open') depth += 1;
    previous = kind;
  }
  const whole = document.createDocumentFragment();
  whole.append(...(colour ? out : [out.join('')]));
  return whole;
}
