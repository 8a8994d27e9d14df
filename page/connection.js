// @ts-check

const RETRY_MS = 1000;

// The connection to the program: lines come in, session lines go out.
export class Connection {
  #on;
  #socket = null;
  #isClosed = false;

  // on: opened(), line(text), lost()
  constructor(on) {
    this.#on = on;
    this.#open();
  }

  // Returns whether there was a connection to send it over.
  send(line) {
    if (this.#socket?.readyState !== WebSocket.OPEN) return false;
    this.#socket.send(JSON.stringify(line));
    return true;
  }

  close() {
    this.#isClosed = true;
    this.#socket.close();
  }

  #open() {
    const socket = new WebSocket(location.origin.replace(/^http/, 'ws') + '/traffic');
    this.#socket = socket;
    socket.onopen = () => this.#on.opened();
    socket.onmessage = event => this.#on.line(event.data);
    socket.onclose = () => {
      if (this.#isClosed) return;
      this.#on.lost();
      setTimeout(() => this.#open(), RETRY_MS);
    };
  }
}
