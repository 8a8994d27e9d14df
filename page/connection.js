// The connection to the program: records come in, commands go out.

const RETRY_MS = 1000;

export class Connection {
  #on;
  #source = null;

  // on: opened(), line(text), lost()
  constructor(on) {
    this.#on = on;
    this.#open();
  }

  // The records that the command caused; throws an Error that says in words why there are none.
  async send(command, params) {
    let answer;
    try {
      answer = await fetch('/session', {
        method: 'POST',
        headers: { 'Content-Type': 'application/json' },
        body: JSON.stringify(params ? { command, params } : { command }),
      });
    } catch {
      throw new Error('the program does not answer');
    }
    if (!answer.ok) throw new Error((await answer.text()).trim() || `status ${answer.status}`);
    return answer.json();
  }

  #open() {
    this.#source = new EventSource('/traffic');
    this.#source.onopen = () => this.#on.opened();
    this.#source.onmessage = event => this.#on.line(event.data);
    this.#source.onerror = () => this.#failed();
  }

  // The browser tries again by itself, but not after a refusal.
  #failed() {
    this.#on.lost();
    if (this.#source.readyState !== EventSource.CLOSED) return;
    this.#source.onerror = null;
    setTimeout(() => this.#open(), RETRY_MS);
  }
}
