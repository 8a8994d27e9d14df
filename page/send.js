// @ts-check
import { $, button, make, setText } from './dom.js';
import { plural, visible } from './text.js';

const WORD = /([^\s="]+)=(?:"((?:[^"\\]|\\.)*)"?|(\S*))|(\S+)/g;
const ANSWER_MS = 3000;
const QUIET_MS = 300;
const MOST_OFFERED = 12;
const MOST_KEPT = 100;

// NAME A=1 B="two words" as a session line. A whole number without quotes is one, except in a notification.
export function lineOf(verb, typed) {
  const params = {};
  let name = '';
  for (const [whole, key, phrase, plain, word] of typed.matchAll(WORD)) {
    if (!name && word && !word.includes('=')) name = word;
    else if (!key) throw new Error(`${whole} is no NAME=VALUE`);
    else if (phrase !== undefined) params[key] = phrase.replace(/\\(.)/g, '$1');
    else params[key] = verb !== 'notify' && /^-?\d{1,9}$/.test(plain) ? Number(plain) : plain;
  }
  if (!name) throw new Error('What is its name?');
  return Object.keys(params).length ? { [verb]: name, params } : { [verb]: name };
}

// The line for sending, with what can be completed, what was sent before and what came of it.
export class SendLine {
  #store;
  #send;
  #input = $('#line');
  #verb = $('#verb');
  #sent = [];
  #back = 0;
  #offered = [];
  #active = -1;

  // send(line): resolves to what came of it; show(step) goes to a step
  constructor(store, send, show) {
    this.#store = store;
    this.#send = send;
    $('#send').onsubmit = event => { event.preventDefault(); this.#submit(); };
    this.#input.oninput = () => { this.#back = 0; this.#guessVerb(); this.#offer(); };
    this.#input.onkeydown = event => this.#key(event);
    this.#input.onblur = () => this.#close();
    $('#offers').onpointerdown = event => { event.preventDefault(); this.#choose([...$('#offers').children].indexOf(event.target.closest('li'))); };
    $('#answer').onclick = event => { if (event.target.dataset.step) show(Number(event.target.dataset.step)); };
  }

  render() {
    const { mayNotify } = this.#store;
    if (this.#verb.options.length === 2 && mayNotify) this.#verb.append(new Option('notify', 'notify'));
  }

  fill(verb, name) {
    if ([...this.#verb.options].some(option => option.value === verb)) this.#verb.value = verb;
    this.#input.value = name;
    this.focus();
  }

  focus() { this.#input.focus(); }

  async #submit() {
    const typed = this.#input.value.trim();
    this.#close();
    try {
      const line = lineOf(this.#verb.value, typed);
      this.#sent = [[this.#verb.value, typed], ...this.#sent.filter(([, each]) => each !== typed)].slice(0, MOST_KEPT);
      this.#back = 0;
      this.#input.value = '';
      this.#say(`${typed}: sent`);
      this.#tell(typed, await this.#send(line));
    } catch (error) {
      this.#say(error.message, true);
    }
  }

  #tell(typed, { step, records, words }) {
    const shown = records.slice(0, 3).map(entry => make('span', `kind ${entry.kind}`, `${entry.label} ${visible(entry.text, 200)}`));
    const more = records.length > 3 ? [`and ${plural(records.length - 3, 'more', 'more')}`] : [];
    const where = button(`step ${step}`, null, 'link');
    where.dataset.step = step;
    $('#answer').classList.remove('warning');
    $('#answer').replaceChildren(`${visible(typed, 100)}: `, ...(records.length ? shown : [words]), ...more, ' ', where);
  }

  #say(text, isWarning = false) {
    setText($('#answer'), visible(text, 300));
    $('#answer').classList.toggle('warning', isWarning);
  }

  // A name that is registered as one kind only says what it is.
  #guessVerb() {
    const [name] = this.#input.value.split(' ', 1);
    const kinds = [...this.#verb.options].map(option => option.value).filter(verb => this.#store.names.get(`${verb} ${name}`)?.isRegistered);
    if (kinds.length === 1) [this.#verb.value] = kinds;
  }

  // What may stand where the cursor is: {head: what stays, word: what is typed, all: [text, about]}.
  #candidates() {
    const before = this.#input.value.slice(0, this.#input.selectionStart);
    const [, head, word] = /^(.*?)(\S*)$/s.exec(before);
    const names = [...this.#store.names.values()];
    if (!head.trim()) {
      const verbs = [...this.#verb.options].map(option => option.value);
      return { head, word, all: names.filter(each => verbs.includes(each.verb)).map(each => [each.name, each.verb]) };
    }
    const known = this.#store.names.get(`${this.#verb.value} ${head.trim().split(' ', 1)[0]}`);
    return { head, word, all: [...(known?.params || [])].filter(each => !before.includes(` ${each}=`)).map(each => [`${each}=`, 'parameter']) };
  }

  #offer() {
    const { head, word, all } = this.#candidates();
    const wanted = word.toLowerCase();
    this.#offered = (word || head ? all : []).filter(([text]) => text.toLowerCase().includes(wanted) && text !== word)
      .slice(0, MOST_OFFERED).map(([text, about]) => ({ text: head + text, about }));
    this.#active = -1;
    this.#showOffers();
  }

  #showOffers() {
    $('#offers').replaceChildren(...this.#offered.map(({ text, about }, index) => {
      const option = make('li', '', visible(text, 100), ' ', make('small', '', about));
      option.role = 'option';
      option.id = `offer-${index}`;
      option.setAttribute('aria-selected', index === this.#active);
      return option;
    }));
    $('#offers').hidden = !this.#offered.length;
    this.#input.setAttribute('aria-expanded', this.#offered.length > 0);
    this.#input.setAttribute('aria-activedescendant', this.#active < 0 ? '' : `offer-${this.#active}`);
  }

  #close() {
    this.#offered = [];
    this.#showOffers();
  }

  #choose(index) {
    const offer = this.#offered[index];
    if (!offer) return;
    this.#input.value = offer.text.endsWith('=') ? offer.text : `${offer.text} `;
    this.#guessVerb();
    this.#offer();
  }

  #key(event) {
    const step = { ArrowDown: 1, ArrowUp: -1 }[event.key];
    if (step && this.#offered.length && !this.#back) {
      const count = this.#offered.length + 1;
      this.#active = (this.#active + 1 + step + count) % count - 1;
      this.#showOffers();
    } else if (step) this.#again(-step);
    else if (event.key === 'Enter' && this.#active >= 0) this.#choose(this.#active);
    else if (event.key === 'Escape' && this.#offered.length) this.#close();
    else return;
    event.preventDefault();
    event.stopPropagation();
  }

  // What was sent before, or after that.
  #again(step) {
    this.#back = Math.min(Math.max(this.#back + step, 0), this.#sent.length);
    const [verb, typed] = this.#sent[this.#back - 1] || [this.#verb.value, ''];
    this.#verb.value = verb;
    this.#input.value = typed;
  }
}

// Which of the inputs that come are this page's own, and what came of each.
export class Answers {
  #waiting = [];
  #current = null;

  // Resolves to {step, records, words}; rejects with what the program says is wrong.
  expect(line) {
    const key = Object.keys(line)[0];
    return new Promise((resolve, reject) => {
      const asked = { isIt: record => record[key] === line[key], resolve, reject, step: '', records: [], timer: 0 };
      asked.timer = setTimeout(() => { this.#forget(asked); reject(new Error(`${line[key]}: no answer from the program`)); }, ANSWER_MS);
      this.#waiting.push(asked);
    });
  }

  take(record, entry) {
    if (record.error !== undefined) this.#refused(record);
    else if (entry.kind === 'input') {
      this.#finish();
      const asked = record.from === 'page' && this.#waiting.find(each => each.isIt(record));
      if (!asked) return;
      this.#forget(asked);
      this.#current = Object.assign(asked, { step: record.step, timer: setTimeout(() => this.#finish(asked), QUIET_MS) });
    } else if (this.#current && entry.step === this.#current.step) this.#current.records.push(entry);
  }

  #refused(record) {
    const asked = this.#waiting[0];
    if (!asked) return;
    this.#forget(asked);
    asked.reject(new Error(String(record.error)));
  }

  #forget(asked) {
    clearTimeout(asked.timer);
    this.#waiting = this.#waiting.filter(each => each !== asked);
  }

  #finish(asked = this.#current) {
    if (!asked || asked !== this.#current) return;
    this.#current = null;
    clearTimeout(asked.timer);
    asked.resolve({ step: asked.step, records: asked.records, words: 'nothing came of it' });
  }
}
