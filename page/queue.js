// @ts-check

const TURN_MS = 8;
const HIDDEN_TURN_MS = 40;
const MOST_CHARACTERS = 134217728;
const MOST_LINES = 400000;

// Records that came and wait for their turn. Each turn takes as many as a part of a frame allows; the rest of the
// time is the page's and the person's.
export class RecordQueue {
  #take;
  #lost;
  #lines = [];
  #at = 0;
  #characters = 0;
  #rest = null;
  #isScheduled = false;
  #channel = new MessageChannel();

  // take(line) does the work or returns the rest of it, as steps; lost(count) tells what did not fit.
  constructor(take, lost) {
    this.#take = take;
    this.#lost = lost;
    this.#channel.port1.onmessage = () => this.#turn();
  }

  push(line) {
    this.#lines.push(line);
    this.#characters += line.length;
    if (this.#lines.length - this.#at > MOST_LINES || this.#characters > MOST_CHARACTERS) this.#loseHalf();
    this.#schedule();
  }

  clear() {
    this.#lines = [];
    this.#at = this.#characters = 0;
    this.#rest = null;
  }

  get isEmpty() { return this.#at === this.#lines.length && !this.#rest; }

  #loseHalf() {
    const gone = Math.ceil((this.#lines.length - this.#at) / 2);
    for (const line of this.#lines.splice(0, this.#at + gone).slice(this.#at)) this.#characters -= line.length;
    this.#at = 0;
    this.#lost(gone);
  }

  // A message to itself comes after what the browser has to do before.
  #schedule() {
    if (this.#isScheduled) return;
    this.#isScheduled = true;
    this.#channel.port2.postMessage(null);
  }

  #turn() {
    this.#isScheduled = false;
    const end = performance.now() + (document.hidden ? HIDDEN_TURN_MS : TURN_MS);
    while (!this.isEmpty && performance.now() < end) this.#one();
    if (this.#at > 5000 || this.#at === this.#lines.length) {
      this.#lines.splice(0, this.#at);
      this.#at = 0;
    }
    if (!this.isEmpty) this.#schedule();
  }

  #one() {
    try {
      if (this.#rest) {
        if (this.#rest.next().done) this.#rest = null;
        return;
      }
      const line = this.#lines[this.#at];
      this.#lines[this.#at++] = '';
      this.#characters -= line.length;
      this.#rest = this.#take(line) || null;
    } catch (error) {
      this.#rest = null;
      reportError(error);  // what comes after it must come all the same
    }
  }
}
