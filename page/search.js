// @ts-check
// What a person types to find records: words, "phrases", -without, kind:, name:, step:120-140.

const TERM = /(-?)(?:(kind|name|step):)?(?:"([^"]*)"?|(\S+))/g;

const pattern = word => new RegExp(word.replace(/[\\^$.*+?()[\]{}|]/g, '\\$&'), 'giu');

function within(range) {
  const [from, to = from] = range.split('-');
  const [first, last] = [Number(from || 0), to === '' ? Infinity : Number(to)];
  return entry => entry.step >= first && entry.step <= last;
}

function tester(field, word) {
  const found = pattern(word);
  const test = text => { found.lastIndex = 0; return found.test(text); };
  if (field === 'step') return within(word);
  if (field === 'name') return entry => test(entry.name);
  if (field === 'kind') return entry => [entry.label, entry.verb, entry.from].some(each => each?.startsWith(word.toLowerCase()));
  return entry => test(entry.text) || test(entry.label) || (entry.verb ? test(entry.verb) : false);
}

export class Search {
  #tests = [];
  #shown = [];

  constructor(typed = '') {
    for (const [, minus, field, phrase, plain] of typed.matchAll(TERM)) {
      const word = phrase ?? plain;
      if (!word || word === '-') continue;  // a lone "-" is the beginning of a word
      const test = tester(field, word);
      this.#tests.push(minus ? entry => !test(entry) : test);
      if (!minus && field !== 'step' && field !== 'kind') this.#shown.push(pattern(word));
    }
  }

  get isEmpty() { return !this.#tests.length; }

  matches(entry) { return this.#tests.every(test => test(entry)); }

  // The places in a short text to be marked, as [from, to], in order and apart.
  places(text) {
    const found = this.#shown.flatMap(each => [...text.matchAll(each)].map(match => [match.index, match.index + match[0].length]));
    found.sort((one, other) => one[0] - other[0]);
    return found.reduce((kept, [from, to]) => {
      const last = kept.at(-1);
      if (last && from <= last[1]) last[1] = Math.max(last[1], to);
      else kept.push([from, to]);
      return kept;
    }, /** @type {number[][]} */ ([]));
  }
}
