// @ts-check
import { XmlReader, childText, decoded, parse, rootName } from './xml.js';

const PLAYABLE = new Set(['song', 'track', 'title', 'file', 'stream', 'station']);
const DEEPEST = 50;
const MOST_ITEMS = 200000;
const PART = 100;
const ANSWER_MS = 10000;

const whole = (text, otherwise) => (/^\d{1,9}$/.test(text) ? Math.min(Number(text), MOST_ITEMS) : otherwise);

// An element's child elements, each as its own text. Yields often, as there can be very many.
function* childrenOf(reader, name) {
  const children = [];
  for (let count = 1; reader.next() && !(reader.kind === 'close' && reader.name === name); count += 1) {
    if (reader.kind === 'open') {
      const { from } = reader;
      if (!reader.skipTo(`</${reader.name}>`)) break;
      children.push(reader.text.slice(from, reader.to));
    }
    if (count % 500 === 0) yield;
  }
  return children;
}

// Reads a menu or a list; of its items the text alone, as few are ever looked at. A list without items comes with
// one empty item, because a document is sent with its last item.
export function* readingList(xml) {
  const reader = new XmlReader(xml);
  const head = { title: '', total_items: '', num_items: '', first_item: '', clear: '' };
  let items = [];
  for (let name = ''; reader.next();) {
    if (reader.kind === 'open') name = reader.name;
    else if (reader.kind === 'text' && Object.hasOwn(head, name)) head[name] = decoded(reader.piece);
    if (reader.kind === 'open' && name === 'items') items = yield* childrenOf(reader, name);
  }
  if (items.length === 1 && !Object.values(itemOf(items[0])).some(Boolean)) items = [];
  return { isList: rootName(xml) === 'list', title: head.title, clear: head.clear === 'True', items,
    total: items.length ? whole(head.total_items || head.num_items, items.length) : whole(head.first_item, 0), first: whole(head.first_item, 0) };
}

// What an item's text says.
export function itemOf(xml) {
  const node = parse(xml) || { name: '', text: '', children: [] };
  return { id: childText(node, 'id'), type: childText(node, 'type'), text: childText(node, 'text') };
}

export const isPlayable = item => PLAYABLE.has(item.type);

// Menus and lists as they come, and the way back. A document does not say what it answers, so what was asked for
// last is remembered; what nobody asked for is shown all the same.
export class Lists {
  pages = [];
  #asked = null;

  get page() { return this.pages.at(-1); }

  // how: 'first' begins anew, 'deeper' goes one further, 'again' renews what is shown, 'part' is more of it.
  asks(request, how, now) { this.#asked = { request, how, until: now + ANSWER_MS }; }

  isAsking(now) { return Boolean(this.#asked && now < this.#asked.until); }

  take(list, now) {
    const { page } = this;
    const asked = this.isAsking(now) ? this.#asked : null;
    this.#asked = null;
    const goesOn = page && list.isList && page.title === list.title && !list.clear && (list.first > 0 || asked?.how === 'part');
    if (goesOn) this.#join(page, list);
    else this.#place({ ...list, items: new Array(list.first).concat(list.items.slice(0, MOST_ITEMS)), request: null, top: 0, active: 0, version: 0 }, asked);
  }

  #join(page, { first, items, total }) {
    items.forEach((item, index) => { if (first + index < MOST_ITEMS) page.items[first + index] = item; });
    page.total = total;
    page.version += 1;
  }

  #place(page, asked) {
    const top = this.page;
    page.total = Math.max(page.total, page.items.length);
    if (asked && asked.how !== 'part') page.request = asked.request;
    if (asked?.how === 'first') this.pages = [];
    else if (top && (asked ? asked.how !== 'deeper' : top.title === page.title)) {
      page.request ||= top.request;
      this.pages.pop();
    }
    this.pages.push(page);
    if (this.pages.length > DEEPEST) this.pages.shift();
  }

  back() { return this.pages.length > 1 && Boolean(this.pages.pop()); }

  // The request for the first items that are not there between two places; null where all are, or nobody
  // knows how to ask.
  missing(from, upTo) {
    const { page } = this;
    for (let at = from; page?.request && at < Math.min(upTo, page.total); at += 1) {
      if (!page.items[at]) return { command: page.request.command, params: { ...page.request.params, FIRST: at, COUNT: PART } };
    }
    return null;
  }
}

export const firstPart = (command, params) => ({ command, params: { ...params, FIRST: 0, COUNT: PART } });
