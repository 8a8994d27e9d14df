import { colouredLine, element, indented, looksLikeDocument, valueText } from './document.js';

const $ = selector => document.querySelector(selector);
const MOST_RECORDS = 10000;
const MOST_CHARACTERS = 50e6;
const RENDER_EVERY_MS = 60;

const parameters = record => (record.params || []).map(each => [each.name, valueText(each.value)]);
const inWords = pairs => pairs.map(([name, value]) => ` ${name}=${value.slice(0, 300)}`).join('');

// How each kind of record is shown: its name, and its text in a row.
const KINDS = {
  ui: ['document', record => record.xml],
  answer: ['answer', record => `${record.request} ${record.xml === null ? 'nobody answered' : valueText(record.xml)}`],
  event: ['event', record => `event ${record.id}`],
  variable: ['variable', record => `${record.name} = ${valueText(record.value)}${record.action === 'changed' ? '' : ` (${record.action})`}`],
  rooms: ['rooms', record => record.command + inWords(parameters(record))],
  device: ['device', record => record.command + inWords(parameters(record))],
  file: ['file', record => `${record.path}, ${record.bytes} bytes${record.width ? `, ${record.width} × ${record.height}` : ''}`],
  log: ['log', record => valueText(record.text)],
  state: ['state', record => record.xml],
  page: ['page', record => record.text || JSON.stringify(record)],
};

// Keeps the newest records.
class Records {
  all = [];
  #characters = 0;

  add(entry) {
    this.all.push(entry);
    this.#characters += entry.line.length;
  }

  // Drops the oldest ones and returns how many.
  trim() {
    let gone = Math.max(0, this.all.length - MOST_RECORDS);
    for (let index = 0; index < gone; index += 1) this.#characters -= this.all[index].line.length;
    for (; this.#characters > MOST_CHARACTERS && gone < this.all.length - 1; gone += 1) {
      this.#characters -= this.all[gone].line.length;
    }
    this.all.splice(0, gone);
    return gone;
  }

  takeAll() {
    const taken = this.all;
    this.all = [];
    this.#characters = 0;
    return taken;
  }
}

// The table of records. Only the rows in sight exist, and each new one is drawn with the next frame.
export class Traffic {
  #kept = new Records();
  #waiting = new Records();
  #view = [];
  #rows = new Map();
  #number = 0;
  #hiddenKinds = new Set();
  #words = [];
  #paused = false;
  #following = true;
  #selected = null;
  #scheduled = false;
  #renderedAt = 0;
  #scroller = $('#rows');
  #body = $('#rows > div');
  #rowHeight = 1.75 * parseFloat(getComputedStyle(document.documentElement).fontSize);

  constructor() {
    this.#makeKinds();
    this.#scroller.onscroll = () => this.#scrolled();
    this.#scroller.onkeydown = event => this.#key(event);
    this.#body.onclick = event => this.#clicked(event);
    $('#filter').oninput = () => this.#refilter();
    $('#pause').onclick = () => this.#togglePause();
    $('#clear').onclick = () => this.#clear();
    $('#record button').onclick = () => this.closeRecord();
    new ResizeObserver(() => this.#resized()).observe(this.#scroller);
  }

  add(record, line) {
    const kind = KINDS[record.to] ? record.to : 'page';
    this.#number += 1;
    const entry = { number: this.#number, kind, line };
    if (this.#paused) {
      this.#waiting.add(entry);
      if (this.#waiting.all.length > MOST_RECORDS * 1.1) this.#waiting.trim();
    } else {
      this.#keep(entry);
    }
    this.#schedule();
  }

  // A line of the page's own among the records.
  say(text) {
    this.add({ to: 'page' }, JSON.stringify({ step: '', to: 'page', text }));
  }

  focusFilter() {
    $('#filter').focus();
    $('#filter').select();
  }

  // Returns whether one was open.
  closeRecord() {
    if ($('#record').hidden) return false;
    $('#record').hidden = true;
    this.#scroller.focus();
    return true;
  }

  #keep(entry) {
    this.#kept.add(entry);
    if (this.#matches(entry)) this.#view.push(entry);
    if (this.#kept.all.length > MOST_RECORDS * 1.1) this.#trim();
  }

  #trim() {
    if (!this.#kept.trim()) return;
    const oldest = this.#kept.all[0].number;
    const gone = this.#view.findIndex(entry => entry.number >= oldest);
    const went = gone < 0 ? this.#view.length : gone;
    this.#view.splice(0, went);
    if (!this.#following) this.#scroller.scrollTop -= went * this.#rowHeight;
  }

  #matches({ kind, line }) {
    if (this.#hiddenKinds.has(kind)) return false;
    if (!this.#words.length) return true;
    const text = line.toLowerCase();
    return this.#words.every(word => (word[0] === '-' ? !text.includes(word.slice(1)) : text.includes(word)));
  }

  #refilter() {
    // A lone "-" is the beginning of a word that is still being typed.
    this.#words = $('#filter').value.toLowerCase().split(/\s+/).filter(word => word && word !== '-');
    this.#view = this.#kept.all.filter(entry => this.#matches(entry));
    this.#following = true;
    this.#schedule();
  }

  #togglePause() {
    this.#paused = !this.#paused;
    $('#pause').setAttribute('aria-pressed', this.#paused);
    $('#pause').textContent = this.#paused ? 'Go on' : 'Pause';
    if (!this.#paused) for (const entry of this.#waiting.takeAll()) this.#keep(entry);
    this.#schedule();
  }

  #clear() {
    this.#kept.takeAll();
    this.#waiting.takeAll();
    this.#view = [];
    this.#selected = null;
    $('#record').hidden = true;
    this.#schedule();
  }

  #makeKinds() {
    for (const [kind, [name]] of Object.entries(KINDS)) {
      if (kind === 'page') continue;
      const button = element('button', `kind ${kind}`, name);
      button.setAttribute('aria-pressed', 'true');
      button.onclick = () => {
        const hide = !this.#hiddenKinds.delete(kind);
        if (hide) this.#hiddenKinds.add(kind);
        button.setAttribute('aria-pressed', !hide);
        this.#refilter();
      };
      $('#kinds').append(button);
    }
  }

  #schedule() {
    if (this.#scheduled) return;
    this.#scheduled = true;
    requestAnimationFrame(now => this.#frame(now));
  }

  #frame(now) {
    if (now - this.#renderedAt < RENDER_EVERY_MS) {
      requestAnimationFrame(later => this.#frame(later));
      return;
    }
    this.#scheduled = false;
    this.#renderedAt = now;
    this.#render();
  }

  #render() {
    this.#trim();
    const height = this.#rowHeight;
    this.#body.style.height = `${this.#view.length * height}px`;
    if (this.#following) this.#scroller.scrollTop = this.#scroller.scrollHeight;
    const from = Math.max(0, Math.floor(this.#scroller.scrollTop / height) - 3);
    const upTo = Math.min(this.#view.length, from + Math.ceil(this.#scroller.clientHeight / height) + 7);
    this.#drawRows(from, upTo);
    this.#scroller.setAttribute('aria-rowcount', this.#view.length);
    const [shown, all] = [this.#view.length, this.#kept.all.length].map(count => count.toLocaleString('en'));
    const waiting = this.#waiting.all.length ? `, ${Math.min(this.#waiting.all.length, MOST_RECORDS).toLocaleString('en')} waiting` : '';
    $('#traffic-count').textContent = (shown === all ? all : `${shown} of ${all}`) + waiting;
  }

  #drawRows(from, upTo) {
    const wanted = new Map();
    for (let index = from; index < upTo; index += 1) wanted.set(this.#view[index].number, index);
    for (const [number, row] of this.#rows) {
      if (wanted.has(number)) continue;
      row.remove();
      this.#rows.delete(number);
    }
    let next = this.#body.firstChild;
    for (const [number, index] of wanted) {
      const row = this.#rows.get(number) || this.#makeRow(this.#view[index]);
      this.#rows.set(number, row);
      if (row === next) next = next.nextSibling;
      else this.#body.insertBefore(row, next);
      row.style.transform = `translateY(${index * this.#rowHeight}px)`;
      row.setAttribute('aria-rowindex', index + 1);
      row.setAttribute('aria-selected', number === this.#selected);
    }
    const active = this.#rows.get(this.#selected);
    this.#scroller.setAttribute('aria-activedescendant', active ? active.id : '');
  }

  #makeRow({ number, kind, line }) {
    const record = JSON.parse(line);
    const [name, textOf] = KINDS[kind];
    const text = valueText(textOf(record));
    const row = element('div', `row ${kind}`);
    const what = element('span', 'what');
    what.append(/<[^>]+>/.test(text) ? colouredLine(text) : text.slice(0, 400));
    row.append(element('span', 'step', record.step), element('span', 'kind', name), what);
    for (const cell of row.children) cell.setAttribute('role', 'gridcell');
    row.setAttribute('role', 'row');
    row.id = `row-${number}`;
    row.dataset.number = number;
    return row;
  }

  #scrolled() {
    const { scrollTop, clientHeight, scrollHeight } = this.#scroller;
    this.#following = scrollTop + clientHeight >= scrollHeight - this.#rowHeight / 2;
    this.#schedule();
  }

  #resized() {
    if (this.#scroller.clientHeight) this.#schedule();
  }

  #clicked(event) {
    const row = event.target.closest('.row');
    if (row) this.#open(this.#view.find(entry => entry.number === Number(row.dataset.number)));
  }

  #key(event) {
    if (event.key === 'Enter') this.#open(this.#view.find(entry => entry.number === this.#selected));
    const step = { ArrowDown: 1, ArrowUp: -1 }[event.key];
    if (!step) return;
    event.preventDefault();
    const at = this.#view.findIndex(entry => entry.number === this.#selected);
    this.#select(at < 0 ? this.#view.length - 1 : Math.min(Math.max(at + step, 0), this.#view.length - 1));
  }

  #select(index) {
    const entry = this.#view[index];
    if (!entry) return;
    this.#selected = entry.number;
    const [top, height] = [index * this.#rowHeight, this.#scroller.clientHeight];
    this.#scroller.scrollTop = Math.min(Math.max(this.#scroller.scrollTop, top + this.#rowHeight - height), top);
    this.#following = index === this.#view.length - 1;
    if (!$('#record').hidden) this.#open(entry);
    this.#schedule();
  }

  #open(entry) {
    if (!entry) return;
    this.#selected = entry.number;
    this.#following = false;
    const record = JSON.parse(entry.line);
    $('#record h2').textContent = `Step ${record.step}, ${KINDS[entry.kind][0]}`;
    $('#record .full').replaceChildren(...this.#fields(record));
    $('#record .full').scrollTop = 0;
    $('#record').hidden = false;
    this.#schedule();
  }

  #fields(record) {
    const pairs = Object.entries(record).filter(([name]) => !['step', 'to', 'params'].includes(name));
    return [...pairs, ...parameters(record)].map(([name, value]) => {
      const text = value === null ? 'nobody answered' : valueText(value);
      const field = element('div');
      const shown = element('pre');
      shown.append(looksLikeDocument(text) ? indented(text) : text);
      field.append(element('h3', '', name), shown);
      return field;
    });
  }
}
