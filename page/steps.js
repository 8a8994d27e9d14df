// @ts-check
import { describe, isDocument, isTraffic, labelOf } from './record.js';
import { Search } from './search.js';

const MOST_RECORDS = 200000;
const MOST_CHARACTERS = 33554432;
const SLACK = 1.05;
const AT_ONCE = 300;
const ALONE = ['ended', 'missing', 'error', 'page'];

// The time line as data: groups, each an input (or what the host does by itself) with the traffic that came of
// it, and the rows that are shown of them. Keeps the newest records.
export class Steps {
  groups = [];
  rows = [];
  counts = new Map();
  size = 0;
  search = new Search();
  isSettled = true;
  #hidden = new Set();
  #onlyMatches = true;
  #folds = false;
  #characters = 0;
  #number = 0;
  #anew = 0;
  #work = null;
  #searchAgain = false;

  add(record, line) {
    const { step = '', at = null } = record;
    /** @type {any} */
    const entry = { number: this.#number += 1, from: '', verb: '', ...describe(record), step, at, line, matches: true };
    entry.label = entry.kind === 'input' ? entry.from : labelOf(entry.kind);
    this.size += 1;
    this.#characters += line.length;
    this.#count(entry, 1);
    this.isSettled = false;
    this.#place(entry);
    return entry;
  }

  // What comes from now on is another program's: its steps are counted anew.
  beginAnew() { this.#anew = this.#number; }

  #place(entry) {
    const last = this.groups.at(-1);
    if (entry.kind === 'input' || ALONE.includes(entry.kind)) this.#begin(entry, entry.kind === 'input' ? entry : null);
    else {
      if (!this.#groupOf(entry) || (isTraffic(entry.kind) && entry.step > last.step)) this.#begin(this.#ownHead(entry), null);
      this.#join(entry, this.#groupOf(entry));
    }
    this.#show(entry);
  }

  #begin(head, input) {
    const before = this.groups.findLast(group => group.at !== null);
    if (head.step === '' && before) head.step = before.step;
    const { step, at } = head;
    const group = { id: head.number, step, at, head, input, entries: [], traffic: 0, took: null, isFolded: this.#folds, isShown: false,
      since: before && at !== null ? at - before.at : null };
    head.group = group;
    this.groups.push(group);
  }

  // The row over what the host does without an input.
  #ownHead({ step, at }) {
    const text = step === 0 ? 'create, initialize' : this.groups.some(group => group.id > this.#anew) ? 'destroy' : 'what came of an earlier line';
    return { number: this.#number + 0.5, kind: 'input', from: 'host', label: 'host', verb: '', name: '', text, step, at, line: '', matches: this.search.isEmpty };
  }

  // What comes late belongs to its own step.
  #groupOf(entry) {
    const last = this.groups.findLast(group => group.head.kind === 'input');
    if (!last || last.id < this.#anew) return null;
    if (entry.step === '' || entry.step >= last.step) return last;
    return this.groups.findLast(group => group.step === entry.step && group.head.kind === 'input' && group.id > this.#anew) || last;
  }

  #join(entry, group) {
    entry.group = group;
    if (entry.step === '') entry.step = group.step;
    group.entries.push(entry);
    if (!isTraffic(entry.kind)) return;
    group.traffic += 1;
    if (entry.at !== null && group.at !== null) group.took = entry.at - group.at;
  }

  // Whether an input has caused no traffic, as far as one can know.
  isNothing(group) {
    return Boolean(group.input && !group.traffic && (this.isSettled || group !== this.groups.at(-1)));
  }

  get #isFiltering() { return this.#onlyMatches && !this.search.isEmpty; }

  #shows(entry) { return !this.#hidden.has(entry.kind) && (!this.#isFiltering || entry.matches); }

  #show(entry) {
    entry.matches = this.search.isEmpty || this.search.matches(entry);
    const { group } = entry;
    if (this.#work) return;
    if (group !== this.groups.at(-1)) this.#refresh(false);
    else if (this.#shows(entry) && (entry === group.head || !group.isFolded || this.#isFiltering)) {
      if (!group.isShown && !this.#hidden.has(group.head.kind)) this.rows.push(group.head);
      group.isShown = true;
      if (entry !== group.head) this.rows.push(entry);
    } else if (entry !== group.head && !group.isShown) this.#showHead(group);
  }

  #showHead(group) {
    if (!this.#shows(group.head)) return;
    group.isShown = true;
    this.rows.push(group.head);
  }

  #rowsOf(group, rows) {
    const own = group.entries.filter(entry => this.#shows(entry));
    group.isShown = this.#shows(group.head) || own.length > 0;
    if (group.isShown && !this.#hidden.has(group.head.kind)) rows.push(group.head);
    if (!group.isFolded || this.#isFiltering) for (const entry of own) rows.push(entry);
  }

  *#rebuilding(again) {
    const rows = [];
    let left = AT_ONCE;
    for (let at = 0; at < this.groups.length; at += 1) {
      const group = this.groups[at];
      if ((left -= 1 + group.entries.length) < 0) {
        left = AT_ONCE;
        yield;
      }
      if (again) for (const entry of [group.head, ...group.entries]) entry.matches = this.search.isEmpty || this.search.matches(entry);
      this.#rowsOf(group, rows);
    }
    this.rows = rows;
    this.#searchAgain = false;
  }

  #refresh(again) {
    this.#searchAgain ||= again;
    this.#work = this.#rebuilding(this.#searchAgain);
  }

  // Goes on with what a search or a fold has begun, until the time is over; returns whether anything is left.
  work(isOver) {
    while (this.#work) {
      if (this.#work.next().done) this.#work = null;
      else if (isOver()) return true;
    }
    return false;
  }

  searchFor(typed) {
    this.search = new Search(typed);
    this.#refresh(true);
  }

  showOnlyMatches(only) {
    this.#onlyMatches = only;
    this.#refresh(false);
  }

  showKind(kind, shown) {
    if (shown) this.#hidden.delete(kind);
    else this.#hidden.add(kind);
    this.#refresh(false);
  }

  fold(group, isFolded) {
    group.isFolded = isFolded;
    this.#refresh(false);
  }

  foldAll(isFolded) {
    this.#folds = isFolded;
    for (const group of this.groups) group.isFolded = isFolded;
    this.#refresh(false);
  }

  // Drops the oldest where there are too many, and returns how many rows went with them.
  trim() {
    if (this.#work || (this.size <= MOST_RECORDS * SLACK && this.#characters <= MOST_CHARACTERS * SLACK)) return 0;
    let gone = 0;
    while (gone < this.groups.length - 1 && this.#isTooMuch()) this.#forget(this.groups[gone++]);
    this.groups.splice(0, gone);
    const [first] = this.groups;
    if (this.#isTooMuch()) this.#shorten(first);
    const kept = this.rows.findIndex(entry => entry.group.id >= first.id);
    this.rows.splice(0, kept);
    return Math.max(kept, 0);
  }

  #isTooMuch() { return this.size > MOST_RECORDS || this.#characters > MOST_CHARACTERS; }

  // A single step that is too long loses its beginning.
  #shorten(group) {
    let gone = 0;
    while (gone < group.entries.length - 1 && this.#isTooMuch()) this.#drop(group.entries[gone++]);
    group.entries.splice(0, gone);
    this.#refresh(false);
  }

  #forget(group) {
    for (const entry of [group.head, ...group.entries]) if (entry.line) this.#drop(entry);
  }

  #drop(entry) {
    this.size -= 1;
    this.#characters -= entry.line.length;
    this.#count(entry, -1);
  }

  #count({ kind }, by) { this.counts.set(kind, (this.counts.get(kind) || 0) + by); }

  clear() {
    this.groups = [];
    this.rows = [];
    this.counts.clear();
    this.size = this.#characters = 0;
    this.#work = null;
  }

  *entries(groups = this.groups) {
    for (const group of groups) {
      if (group.head.line) yield group.head;
      yield* group.entries;
    }
  }

  // The document of that name before this one.
  documentBefore(entry) {
    const isSame = other => other !== entry && other.kind === entry.kind && other.name === entry.name && isDocument(JSON.parse(other.line));
    const { group } = entry;
    const inGroup = group.entries.slice(0, group.entries.indexOf(entry)).findLast(isSame);
    for (let at = this.groups.indexOf(group) - 1, found = inGroup; ; at -= 1) {
      if (found || at < 0) return found || null;
      found = this.groups[at].entries.findLast(isSame);
    }
  }
}
