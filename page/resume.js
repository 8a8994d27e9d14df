// @ts-check

// After a lost connection the program tells its newest records again. This knows which of them were taken before,
// by their times, and whether it is another program.
export class Resume {
  #newest = null;
  #tail = [];
  #state = 'live';

  lost() { if (this.#newest) this.#state = 'lost'; }

  // What to do with a record: 'take' or 'skip' it, or 'anew': take it as the first of another program.
  // isKnown(line) says whether it has been taken before.
  judge(record, line, isKnown) {
    const isTimed = typeof record.at === 'number';
    if (this.#state === 'lost' && isTimed) this.#state = this.#compared(record, line, isKnown);
    const verdict = this.#state === 'anew' ? 'anew' : this.#isOld(record, line, isTimed) ? 'skip' : 'take';
    if (verdict === 'anew') this.#state = 'live';
    if (verdict !== 'skip') this.#keep(record, line, isTimed);
    return verdict;
  }

  #compared(record, line, isKnown) {
    if (record.at > this.#newest.at) return 'live';
    return line === this.#newest.line || isKnown(line) ? 'same' : 'anew';
  }

  #isOld(record, line, isTimed) {
    if (this.#state === 'live') return false;
    if (isTimed && (record.at > this.#newest.at)) this.#state = 'live';
    else if (line === this.#newest.line) this.#state = 'tail';
    else if (this.#state === 'tail') {
      if (this.#tail[0] !== line) this.#state = 'live';
      else this.#tail.shift();
    }
    return this.#state !== 'live';
  }

  #keep(record, line, isTimed) {
    if (isTimed) {
      this.#newest = { at: record.at, line };
      this.#tail = [];
    } else if (this.#tail.length < 1000) this.#tail.push(line);
  }
}
