// @ts-check
import { $, $$, button, drawing, keyed, make, press, setText } from './dom.js';
import { labelOf } from './record.js';
import { Rows } from './rows.js';
import { Steps } from './steps.js';
import { counted, duration, plural, visible } from './text.js';
import { pieces } from './xml.js';

const MOST_SHOWN = 400;
const SETTLED_MS = 400;
const WORK_MS = 8;

// The parts of a text that lie between `from` and `from` plus the piece's length, and whether each is a place found.
function* parts(piece, from, places) {
  let at = 0;
  for (const [start, end] of places) {
    const [first, last] = [Math.max(start - from, at), Math.min(end - from, piece.length)];
    if (first >= last) continue;
    if (first > at) yield [piece.slice(at, first), false];
    yield [piece.slice(first, last), true];
    at = last;
  }
  if (at < piece.length) yield [piece.slice(at), false];
}

// A text on one line: documents with colours, what a search has found marked.
function painted(whole, search) {
  const text = visible(whole, MOST_SHOWN);
  const places = search.places(text);
  const line = make('span', 'text');
  let from = 0;
  for (const [piece, isText] of /<[^>]+>/.test(text) ? pieces(text) : [[text, true]]) {
    for (const [part, isFound] of parts(piece, from, places)) line.append(isFound ? make('mark', '', part) : isText ? part : make('span', 'tag', part));
    from += piece.length;
  }
  return line;
}

const timeText = seconds => (seconds === null ? '' : seconds < 1000 ? seconds.toFixed(3) : String(Math.round(seconds)));

// The time line: every step with its input and, below it, the traffic that came of it.
export class Timeline {
  steps = new Steps();
  selected = null;
  #on;
  #rows;
  #first = null;
  #active = -1;
  #range = [-1, -1];
  #settle = 0;
  #widths = [];
  #grid = $('#rows');

  // on: select(entry), open(entry), reason(entry): why nothing came of an input
  constructor(on) {
    this.#on = on;
    this.#rows = new Rows(this.#grid, $('#rows .body'), this, true);
    this.#grid.addEventListener('keydown', event => this.#key(event));
    $('#rows .body').onclick = event => this.#clicked(event);
    $('#search').oninput = () => this.#searched();
    $('#search').onkeydown = event => this.#searchKey(event);
    $('#only').onclick = () => this.#toggled($('#only'), isPressed => this.steps.showOnlyMatches(isPressed));
    $('#fold').onclick = () => this.#toggled($('#fold'), isPressed => this.steps.foldAll(isPressed));
    $('#previous').onclick = () => this.find(-1);
    $('#next').onclick = () => this.find(1);
    $('#newest').onclick = () => this.toEnd();
  }

  add(record, line) {
    const entry = this.steps.add(record, line);
    clearTimeout(this.#settle);
    this.#settle = setTimeout(() => { this.steps.isSettled = true; this.refresh(); }, SETTLED_MS);
    this.refresh();
    return entry;
  }

  say(text) { this.add({ page: text }, JSON.stringify({ page: text })); }

  clear() {
    this.steps.clear();
    this.selected = this.#first = null;
    this.#on.select(null);
    this.refresh();
  }

  refresh = drawing(() => this.#draw());

  // Brings the rows up to date, as far as there is time.
  #work() {
    const end = performance.now() + WORK_MS;
    const isLeft = this.steps.work(() => performance.now() > end);
    this.#locate();
    if (isLeft) this.refresh();
  }

  // After what a person did: what comes next is done to the new rows.
  #changed() {
    this.#work();
    this.refresh();
  }

  #draw() {
    this.#rows.gone(this.steps.trim());
    this.#work();
    this.#tell();
    this.#rows.render();
  }

  // What Rows asks for.
  count() { return this.steps.rows.length; }
  active() { return this.#active; }
  key(index) {
    const entry = this.steps.rows[index];
    const { group } = entry;
    if (group.head !== entry) return entry.number;
    return `${entry.number} ${group.took} ${this.steps.isNothing(group)} ${group.entries.length > 0}`;
  }
  resized() { this.#rows.reveal(this.active()); }

  move(index, event) {
    this.select(this.steps.rows[index], event.shiftKey ? this.#first || this.selected : null);
  }

  mark(row, index) {
    const entry = this.steps.rows[index];
    const [from, upTo] = this.#range;
    row.setAttribute('aria-rowindex', index + 2);
    row.setAttribute('aria-selected', index >= from && index <= upTo);
    row.classList.toggle('dim', !entry.matches);
    if (entry === entry.group.head && entry.group.entries.length) row.setAttribute('aria-expanded', !entry.group.isFolded);
    if (row.search === this.steps.search) return;
    row.search = this.steps.search;
    $('.text', row).replaceWith(painted(entry.text, row.search));
  }

  draw(index) {
    const entry = this.steps.rows[index];
    const isHead = entry === entry.group.head;
    const row = make('div', `row ${entry.kind}${isHead ? ' head' : ''}`);
    row.id = `row-${entry.number}`.replace('.', '-');
    row.role = 'row';
    row.setAttribute('aria-level', isHead ? 1 : 2);
    for (const [name, content] of isHead ? this.#headCells(entry) : this.#cells(entry)) {
      const cell = make('span', name, ...[content].flat());
      cell.role = 'gridcell';
      row.append(cell);
    }
    return row;
  }

  #cells({ group, at, label }) {
    const since = at === null || group.at === null ? '' : `+${duration(at - group.at)}`;
    return [['step', ''], ['at', ''], ['since', since], ['took', ''], ['kind', [make('i', 'out'), label]], ['what', make('span', 'text')]];
  }

  #headCells(entry) {
    const { group, verb, label, step, at } = entry;
    const what = [...(verb ? [make('b', 'verb', verb)] : []), make('span', 'text')];
    if (this.steps.isNothing(group)) what.push(make('span', 'nothing', this.#on.reason(entry)));
    return [['step', [make('i', 'fold'), entry.kind === 'input' ? String(step) : '']], ['at', timeText(at)], ['since', group.since === null ? '' : `+${duration(group.since)}`],
      ['took', !group.took ? '' : duration(group.took)], ['kind', [make('i', entry.kind === 'input' ? 'in' : 'out'), label]], ['what', what]];
  }

  // Where the selected rows are now: the active one, and the first and the last.
  #locate() {
    const to = this.#indexOf(this.selected);
    const from = this.#first ? this.#indexOf(this.#first) : to;
    this.#active = to;
    this.#range = [Math.min(from < 0 ? to : from, to), Math.max(from, to)];
  }

  selectedGroups() {
    const [from, upTo] = this.#range;
    return from < 0 ? [] : [...new Set(this.steps.rows.slice(from, upTo + 1).map(entry => entry.group))];
  }

  // With `first`, all from there are selected.
  select(entry, first = null) {
    if (!entry) return;
    this.selected = entry;
    this.#first = first;
    this.#locate();
    this.#rows.follow(this.#active === this.count() - 1 && this.#rows.isFollowing);
    this.#on.select(entry);
    this.#rows.reveal(this.active());
    this.refresh();
  }

  // Shows the first record of a step, or the newest with the text.
  show(step) {
    const group = this.steps.groups.findLast(each => each.step === step);
    if (group) this.select(group.isShown ? group.head : this.steps.rows.find(entry => entry.step >= step));
    this.#grid.focus();
  }

  toEnd() {
    this.#grid.focus();
    this.#rows.follow();
    this.refresh();
  }

  find(direction) {
    const { rows, search } = this.steps;
    const from = this.active();
    for (let at = 1; at <= rows.length; at += 1) {
      const index = (from + direction * at + rows.length * 2) % rows.length;
      if (rows[index].matches && !search.isEmpty) return this.select(rows[index]);
    }
    return undefined;
  }

  focusSearch() {
    $('#search').focus();
    $('#search').select();
  }

  #indexOf(entry) { return entry ? this.steps.rows.indexOf(entry) : -1; }

  #searched() {
    this.steps.searchFor($('#search').value);
    this.#rows.follow();
    this.#changed();
  }

  #searchKey(event) {
    if (event.key === 'Enter') this.find(event.shiftKey ? -1 : 1);
    else if (event.key === 'Escape' && $('#search').value) {
      $('#search').value = '';
      this.#searched();
    } else return;
    event.preventDefault();
    event.stopPropagation();
  }

  #toggled(target, act) {
    const isPressed = target.getAttribute('aria-pressed') !== 'true';
    press(target, isPressed);
    act(isPressed);
    this.#changed();
  }

  #key(event) {
    if (event.target !== this.#grid || event.ctrlKey || event.altKey || event.metaKey) return;
    const group = this.selected?.group;
    const isHead = group?.head === this.selected;
    if (event.key === 'Enter' && this.selected) this.#on.open(this.selected);
    else if (event.key === 'ArrowLeft' && isHead) this.#fold(group, true);
    else if (event.key === 'ArrowLeft' && group) this.select(group.head);
    else if (event.key === 'ArrowRight' && isHead) this.#fold(group, false);
    else return;
    event.preventDefault();
  }

  #fold(group, isFolded) {
    this.steps.fold(group, isFolded);
    this.#rows.follow(false);
    this.#changed();
  }

  #clicked(event) {
    const row = event.target.closest('.row');
    const entry = row && this.steps.rows[row.dataset.index];
    if (!entry) return;
    if (event.target.closest('.step') && entry === entry.group.head) this.#fold(entry.group, !entry.group.isFolded);
    else {
      this.select(entry, event.shiftKey ? this.#first || this.selected : null);
      this.#on.open(entry);
    }
  }

  // Counts, kinds, and columns as wide as their widest number.
  #tell() {
    const { steps } = this;
    const found = steps.search.isEmpty ? 0 : steps.rows.reduce((sum, entry) => sum + Number(entry.matches), 0);
    setText($('#counts'), steps.search.isEmpty ? plural(steps.size, 'record') : `${counted(found)} found of ${counted(steps.size)}`);
    for (const each of $$('#previous, #next, #only')) each.hidden = steps.search.isEmpty;
    for (const each of $$('#previous, #next')) each.disabled = !found;
    $('#newest').hidden = this.#rows.isFollowing;
    this.#grid.setAttribute('aria-rowcount', steps.rows.length + 1);
    $('#nothing').hidden = steps.rows.length > 0;
    setText($('#nothing'), steps.size ? 'No record matches.' : 'Nothing has happened yet.');
    this.#showKinds([...steps.counts].filter(([, count]) => count > 0));
    const last = steps.groups.at(-1);
    if (last) this.#widen([`${last.step}`.length, timeText(last.at).length]);
  }

  #widen(widths) {
    if (widths.every((width, at) => width <= (this.#widths[at] || 0))) return;
    this.#widths = widths.map((width, at) => Math.max(width, this.#widths[at] || 0));
    ['--step', '--at'].forEach((name, at) => $('#timeline').style.setProperty(name, `${this.#widths[at]}ch`));
  }

  #showKinds(counts) {
    keyed($('#kinds'), counts, ([kind]) => kind, ([kind]) => {
      const made = button('', () => this.#toggled(made, isPressed => this.steps.showKind(kind, isPressed)), `kind ${kind}`);
      press(made, true);
      made.append(make('span', '', labelOf(kind)), ' ', make('b'));
      return made;
    }, (made, [, count]) => setText(made.lastChild, counted(count)));
  }
}
