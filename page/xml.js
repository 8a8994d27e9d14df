// @ts-check
// XML documents as the driver sends them, read in time that grows with their length alone.

const ENTITIES = { lt: '<', gt: '>', amp: '&', quot: '"', apos: "'" };
const MOST_DECODED = 50000;
const DEEPEST_INDENT = 40;

function after(text, mark, from) {
  const at = text.indexOf(mark, from);
  return at < 0 ? -1 : at + mark.length;
}

// Goes through a document piece by piece. What is no XML is one last piece, "bad".
export class XmlReader {
  kind = '';
  from = 0;
  to = 0;
  #nameEnd = 0;

  constructor(text) { this.text = text; }

  get piece() { return this.text.slice(this.from, this.to); }

  // The element's name, in a tag.
  get name() { return this.text.slice(this.from + (this.kind === 'close' ? 2 : 1), this.#nameEnd); }

  next() {
    const { text } = this;
    this.from = this.to;
    if (this.from >= text.length) return false;
    if (text.charCodeAt(this.from) !== 60) {
      const end = text.indexOf('<', this.from);
      this.#found('text', end < 0 ? text.length : end);
    } else this.#tag(text, this.from);
    return true;
  }

  // Goes on behind the next place of that text; returns whether there is one.
  skipTo(mark) {
    const to = after(this.text, mark, this.to);
    if (to < 0) return false;
    this.to = to;
    return true;
  }

  #found(kind, to) {
    this.kind = to < 0 ? 'bad' : kind;
    this.to = to < 0 ? this.text.length : to;
  }

  #tag(text, from) {
    const second = text.charCodeAt(from + 1);
    if (second === 33 && text.startsWith('<!--', from)) this.#found('other', after(text, '-->', from));
    else if (second === 33 && text.startsWith('<![CDATA[', from)) this.#found('cdata', after(text, ']]>', from));
    else if (second === 33 || second === 63) this.#found('other', after(text, '>', from));
    else {
      const to = this.#endOfTag(text, from + 1 + Number(second === 47));
      this.#found(second === 47 ? 'close' : text.charCodeAt(to - 2) === 47 ? 'empty' : 'open', to);
    }
  }

  // Where the tag ends; -1 for what is no tag.
  #endOfTag(text, from) {
    this.#nameEnd = 0;
    for (let at = from; at < text.length; at += 1) {
      const code = text.charCodeAt(at);
      if (!this.#nameEnd && (code <= 32 || code === 47 || code === 62)) this.#nameEnd = at;
      if (code === 62) return at + 1;
      if (code === 60) return -1;
      if (code === 34 || code === 39) at = text.indexOf(text[at], at + 1);
      if (at < 0) return -1;
    }
    return -1;
  }
}

function entity(whole, hex, decimal, name) {
  const code = hex ? parseInt(hex, 16) : Number(decimal);
  if (name) return ENTITIES[name] || whole;
  return code <= 0x10ffff ? String.fromCodePoint(code) : whole;
}

// The characters that the text between two tags stands for; of a long one with many entities, its beginning.
export function decoded(raw) {
  const at = raw.indexOf('&');
  if (at < 0) return raw;
  const some = raw.length > MOST_DECODED ? `${raw.slice(0, MOST_DECODED)}…` : raw;
  return some.replace(/&(?:#x([\da-f]+)|#(\d+)|(\w+));/gi, entity);
}

function addText(node, reader) {
  const piece = reader.piece;
  if (node) node.text += reader.kind === 'cdata' ? piece.slice(9, -3) : decoded(piece);
}

// Reads a document into elements {name, text, children}; null for what is none. Yields often: what reads a
// long one goes on when it wants to.
export function* reading(xml) {
  const reader = new XmlReader(xml);
  const open = [];
  let root = null;
  for (let count = 0; reader.next(); count += 1) {
    if (count % 500 === 499) yield;
    const top = open.at(-1);
    if (reader.kind === 'bad') return null;
    if (reader.kind === 'text' || reader.kind === 'cdata') addText(top, reader);
    else if (reader.kind === 'close') {
      if (!top || top.name !== reader.name) return null;
      open.pop();
    } else if (reader.kind !== 'other') {
      const node = { name: reader.name, text: '', children: [] };
      if (top) top.children.push(node);
      else if (root) return null;
      else root = node;
      if (reader.kind === 'open') open.push(node);
    }
  }
  return open.length ? null : root;
}

// The same at once.
export function parse(xml) {
  if (typeof xml !== 'string') return null;
  const steps = reading(xml);
  let step = steps.next();
  while (!step.done) step = steps.next();
  return step.value;
}

export const childText = (node, name) => node.children.find(child => child.name === name)?.text || '';

// The name of a document's root element.
export function rootName(xml) {
  const reader = new XmlReader(xml);
  while (reader.next() && reader.kind !== 'bad') if (reader.kind === 'open' || reader.kind === 'empty') return reader.name;
  return '';
}

export const looksLikeDocument = text => text.startsWith('<') && text.endsWith('>');

// [piece, whether it is text] for each piece; of what is no XML the rest is text.
export function* pieces(xml) {
  const reader = new XmlReader(xml);
  while (reader.next()) yield [reader.piece, ['text', 'cdata', 'bad'].includes(reader.kind)];
}

// The document with an element a line; of a long one as much as `most` characters.
export function indented(xml, most) {
  const reader = new XmlReader(xml.slice(0, most));
  let out = '';
  let depth = 0;
  let before = 'close';
  while (reader.next()) {
    const { kind } = reader;
    if (kind === 'close') depth -= 1;
    const stays = ['text', 'cdata', 'bad'].includes(kind) || (kind === 'close' && before !== 'close' && before !== 'empty');
    if (!stays && out) out += `\n${'  '.repeat(Math.min(Math.max(depth, 0), DEEPEST_INDENT))}`;
    out += reader.piece;
    if (kind === 'open') depth += 1;
    before = kind;
  }
  return out;
}
