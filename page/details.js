// @ts-check
import { $, button, copy, make, setText } from './dom.js';
import { difference } from './difference.js';
import { bare, caseOf, isDocument } from './record.js';
import { duration, plural, valueText, visible } from './text.js';
import { indented, looksLikeDocument, parse, childText, pieces } from './xml.js';
import { imageUrl } from './cover.js';

const PART = 20000;
const MOST_COMPARED = 200000;

// A long text a part at a time, as nobody reads more at once.
function longText(text, shownAs) {
  const box = make('div', 'long');
  const more = button('', () => add());
  let from = 0;
  const add = () => {
    const part = text.slice(from, from += PART);
    const shown = make('pre');
    shown.dir = 'auto';
    shown.append(...shownAs(visible(part, PART, true)));
    more.before(shown);
    setText(more, `More (${plural(text.length - from, 'character')} left)`);
    more.hidden = from >= text.length;
  };
  box.append(more);
  add();
  return box;
}

const plainly = text => [text];
const asDocument = text => [...pieces(text)].map(([piece, isText]) => (isText ? piece : make('span', 'tag', piece)));

function valueBox(value) {
  const text = value === null ? 'nobody answered' : valueText(value);
  return looksLikeDocument(text) ? longText(indented(text, text.length > 1e6 ? PART * 10 : Infinity), asDocument) : longText(text, plainly);
}

function section(title, ...content) {
  return make('section', '', make('h3', '', title), ...content);
}

// Everything about one record, and what one can take away of it.
export class Details {
  #timeline;
  #reason;
  #entry = null;
  #pane = $('#details');
  #body = $('#details .content');

  constructor(timeline, reason) {
    this.#timeline = timeline;
    this.#reason = reason;
    const copies = { json: () => this.#entry.line, xml: () => JSON.parse(this.#entry.line).xml, line: () => bare(this.#entry.group.input.line),
      case: () => caseOf([...timeline.steps.entries(timeline.selectedGroups())]) };
    for (const [name, textOf] of Object.entries(copies)) {
      const target = $(`#details [data-copy=${name}]`);
      target.onclick = async () => {
        await copy(textOf());
        setText($('#copied'), `${target.textContent} copied`);
      };
    }
    $('#close').onclick = () => this.close();
  }

  get isOpen() { return !this.#pane.hidden; }

  open(entry) {
    this.#pane.hidden = $('#splitter').hidden = false;
    this.show(entry);
  }

  // Returns whether it was open.
  close() {
    if (!this.isOpen) return false;
    this.#pane.hidden = $('#splitter').hidden = true;
    $('#rows').focus();
    return true;
  }

  show(entry) {
    if (!this.isOpen || entry === this.#entry) return this.#offer();
    this.#entry = entry;
    setText($('#copied'), '');
    this.#body.scrollTop = 0;
    this.#body.replaceChildren(...(entry ? this.#sections(entry) : []));
    return this.#offer();
  }

  #offer() {
    const entry = this.#entry;
    if (!this.isOpen || !entry) return;
    const groups = this.#timeline.selectedGroups();
    const [first, last] = [groups[0], groups.at(-1)];
    setText($('#details h2'), groups.length > 1 ? `Steps ${first.step} to ${last.step}` : `Step ${entry.step}, ${entry.verb || entry.label}`);
    const record = entry.line ? JSON.parse(entry.line) : {};
    const can = { json: Boolean(entry.line), xml: typeof record.xml === 'string', line: Boolean(entry.group.input), case: groups.some(group => group.input) };
    for (const [name, isThere] of Object.entries(can)) $(`#details [data-copy=${name}]`).hidden = !isThere;
  }

  #sections(entry) {
    const record = entry.line ? JSON.parse(entry.line) : {};
    return [this.#facts(entry), ...this.#fields(record), ...this.#picture(record), ...this.#difference(entry, record),
      ...(entry.line ? [section('As it came', longText(entry.line, plainly))] : [])];
  }

  #facts(entry) {
    const { group, at } = entry;
    const isHead = entry === group.head;
    const facts = [at !== null && `at ${at.toFixed(6)} s`, isHead && group.since !== null && `${duration(group.since)} after the step before`,
      !isHead && at !== null && group.at !== null && `${duration(at - group.at)} after the input`,
      isHead && group.took !== null && `the driver took ${duration(group.took)}`,
      isHead && group.traffic > 0 && `${plural(group.traffic, 'record')} came of it`];
    const isNothing = isHead && this.#timeline.steps.isNothing(group);
    return make('p', 'facts', facts.filter(Boolean).join(' · '), ...(isNothing ? [' · ', make('b', '', this.#reason(entry))] : []));
  }

  #fields(record) {
    const own = Object.entries(record).filter(([name]) => !['step', 'at', 'from', 'to', 'params', 'capabilities'].includes(name));
    const params = Array.isArray(record.params) ? record.params.map(each => [`${each.name} (${each.type})`, each.value]) : Object.entries(record.params || {});
    const fields = [...own, ...params, ...Object.entries(record.capabilities || {})];
    if (!fields.length) return [];
    const list = make('dl');
    for (const [name, value] of fields.slice(0, 200)) list.append(make('dt', '', visible(name)), make('dd', '', valueBox(value)));
    return [list];
  }

  // The picture that a record speaks of, as it is now.
  #picture(record) {
    const root = isDocument(record) && record.xml.length < PART ? parse(record.xml) : null;
    const url = imageUrl(record.to === 'file' ? record.path : root ? childText(root, 'image_path') : '');
    if (!url) return [];
    const picture = make('img');
    picture.alt = 'The picture as it is now';
    picture.src = `${url}?${Date.now()}`;
    const shown = section('The picture, as it is now', picture);
    picture.onerror = () => shown.remove();
    return [shown];
  }

  #difference(entry, record) {
    const before = isDocument(record) && this.#timeline.steps.documentBefore(entry);
    if (!before) return [];
    const lines = [JSON.parse(before.line).xml, record.xml].map(xml => indented(xml, MOST_COMPARED).split('\n'));
    const changed = difference(lines[0], lines[1]).filter(([mark]) => mark !== ' ').slice(0, 500);
    const shown = make('pre', 'difference');
    for (const [mark, line] of changed) shown.append(make(mark === '+' ? 'ins' : 'del', '', `${mark} ${visible(line)}\n`));
    const from = button(`step ${before.step}`, () => this.#timeline.select(before));
    const title = make('h3', '', changed.length ? 'Changed since ' : 'The same as in ', from);
    return [make('section', '', title, ...(changed.length ? [shown] : []))];
  }
}

// The splitter between the rows and the details: dragged, or moved with the arrow keys.
export function makeSplitter(work, splitter) {
  let share = 45;
  const set = value => {
    share = Math.min(Math.max(value, 15), 85);
    work.style.setProperty('--share', `${share}%`);
    splitter.setAttribute('aria-valuenow', Math.round(share));
  };
  splitter.onpointerdown = event => splitter.setPointerCapture(event.pointerId);
  splitter.onpointermove = event => {
    if (!splitter.hasPointerCapture(event.pointerId)) return;
    const box = work.getBoundingClientRect();
    set(100 * (work.classList.contains('beside') ? (box.right - event.clientX) / box.width : (box.bottom - event.clientY) / box.height));
  };
  splitter.onkeydown = event => {
    const by = { ArrowUp: 5, ArrowLeft: 5, ArrowDown: -5, ArrowRight: -5 }[event.key];
    if (!by) return;
    event.preventDefault();
    set(share + by);
  };
  new ResizeObserver(([{ contentRect }]) => {
    const isBeside = contentRect.width > 62 * parseFloat(getComputedStyle(document.documentElement).fontSize);
    work.classList.toggle('beside', isBeside);
    splitter.setAttribute('aria-orientation', isBeside ? 'vertical' : 'horizontal');
  }).observe(work);
  set(share);
}
