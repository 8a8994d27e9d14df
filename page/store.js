// @ts-check
import { Lists, readingList } from './lists.js';
import { Media, REPORTS } from './media.js';
import { INPUT_VERBS, isDocument } from './record.js';
import { valueText } from './text.js';
import { childText, parse, reading, rootName } from './xml.js';

const MOST_NAMES = 1000;
const AT_ONCE = 20000;

// A map that a stranger's names cannot fill without end.
function entryOf(map, key, fresh) {
  if (!map.has(key)) {
    if (map.size >= MOST_NAMES) return fresh();
    map.set(key, fresh());
  }
  return map.get(key);
}

// All that is known of the driver, folded from the records as they come. `stale` holds which parts have changed:
// "driver", "player", "browse".
export class Store {
  stale = new Set();

  constructor() { this.restart(); }

  restart() {
    this.file = '';
    this.mayNotify = false;
    this.bindings = [];
    this.names = new Map();
    this.labels = {};
    this.forget();
  }

  // Forgets all but what is registered.
  forget() {
    for (const each of this.names.values()) Object.assign(each, { count: 0, last: null });
    this.devices = new Map();
    this.variables = new Map();
    this.events = new Map();
    this.documents = new Map();
    this.media = new Media();
    this.lists = new Lists();
    this.cover = null;
    this.speaksMedia = false;
    this.ended = null;
    for (const part of ['driver', 'player', 'browse']) this.stale.add(part);
  }

  // Takes one record. A long document is not read at once: then the rest of the work is returned, as steps.
  take(record, now) {
    if (record.registered) this.#register(record);
    else if (record.ended !== undefined) this.ended = record;
    else if (record.to === 'variable') this.#variable(record);
    else if (record.to === 'event') this.#event(record);
    else if (isDocument(record)) return this.#document(record, now);
    else if (record.to === undefined) this.#input(record);
    return null;
  }

  #register(record) {
    const { registered, reads = {}, labels = {} } = record;
    if (typeof record.file === 'string') this.file = record.file;
    this.mayNotify = record.notify === true;
    this.bindings = [];
    for (const each of this.names.values()) each.isRegistered = false;
    for (const line of registered) this.#registered(String(line));
    for (const [key, params] of Object.entries(reads)) for (const each of params) this.#nameOf(key).params.add(each);
    this.labels = labels;
    this.stale.add('driver');
  }

  #registered(line) {
    const [, what, rest] = /^(\S+) ?(.*)$/s.exec(line) || [];
    if (what === 'binding') this.bindings.push(rest.split(' ')[0]);
    else if (what === 'variable') {
      const [id, name = ''] = rest.split(' ');
      this.#variableOf(Number(id)).name ||= name;
    } else this.#nameOf(what === 'notification' ? `notify ${rest}` : line).isRegistered = true;
  }

  #nameOf(key) {
    return entryOf(this.names, key, () => ({ key, verb: key.split(' ', 1)[0], name: key.slice(key.indexOf(' ') + 1), isRegistered: false, count: 0, last: null, params: new Set() }));
  }
  #variableOf(id) { return entryOf(this.variables, id, () => ({ id, name: '', value: null, count: 0, last: null })); }
  #eventOf(id) { return entryOf(this.events, id, () => ({ id, label: String(this.labels[id] || ''), count: 0, last: null })); }

  // Whether something in the driver takes a message of this name.
  handles(verb, name) {
    return Boolean(this.names.get(`${verb} ${name}`)?.isRegistered || (verb === 'notify' && this.names.get('default notification')?.isRegistered));
  }

  get knowsRegistered() { return [...this.names.values()].some(each => each.isRegistered); }

  isBound(binding) { return this.devices.has(Number(binding)); }

  #input(record) {
    const verb = INPUT_VERBS.find(key => key in record);
    if (verb === 'bind') {
      this.devices.set(record.bind, record);
      if (Object.keys(record.capabilities || {}).some(each => each.startsWith('has_'))) this.#speaks();
    } else if (verb === 'unbind') this.devices.delete(record.unbind);
    else if (typeof record[verb] === 'string') this.#delivered(verb, record);
    this.stale.add('driver');
  }

  #delivered(verb, record) {
    const known = this.names.get(`${verb} ${record[verb]}`);
    const taken = known?.isRegistered || !this.handles(verb, record[verb]) ? this.#nameOf(`${verb} ${record[verb]}`) : this.#nameOf('default notification');
    taken.count += 1;
    taken.last = record;
    for (const each of Object.keys(record.params || {}).slice(0, 50)) if (taken.params.size < 50) taken.params.add(each);
  }

  #variable(record) {
    const kept = this.#variableOf(record.id);
    Object.assign(kept, { name: record.name, value: record.action === 'removed' ? null : valueText(record.value), last: record, count: kept.count + (record.action === 'changed' ? 1 : 0) });
    this.stale.add('driver');
  }

  #event(record) {
    const kept = this.#eventOf(record.id);
    kept.count += 1;
    kept.last = record;
    if (record.label) kept.label = valueText(record.label);
    this.stale.add('driver');
  }

  #speaks() {
    if (!this.speaksMedia) this.stale.add('player').add('browse');
    this.speaksMedia = true;
  }

  #document(record, now) {
    const { xml } = record;
    const name = rootName(xml);
    const kept = entryOf(this.documents, name, () => ({ name, count: 0, last: null }));
    kept.count += 1;
    kept.last = { step: record.step, at: record.at };
    this.stale.add('driver');
    if (name === 'list' || name === 'menu_list') return this.#list(xml, now);
    if (name === 'NEW_COVER_ART') this.#cover(childText(parse(xml) || { children: [] }, 'image_path'));
    return REPORTS.has(name) ? this.#report(xml, now) : null;
  }

  #cover(path) {
    this.#speaks();
    this.cover = { path };
    this.stale.add('player');
  }

  // Does it at once where that takes no time.
  #atOnce(xml, work) {
    if (xml.length > AT_ONCE) return work;
    while (!work.next().done);
    return null;
  }

  #list(xml, now) {
    const store = this;
    return this.#atOnce(xml, function* work() {
      const list = yield* readingList(xml);
      store.#speaks();
      store.lists.take(list, now);
      store.stale.add('browse');
    }());
  }

  #report(xml, now) {
    const store = this;
    return this.#atOnce(xml, function* work() {
      const root = yield* reading(xml);
      if (!root) return;
      store.#speaks();
      store.media.apply(root, now);
      store.stale.add('player').add('browse');
    }());
  }
}
