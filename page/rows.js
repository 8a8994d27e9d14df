// @ts-check
import { drawing, make } from './dom.js';

const OVER = 8;
const SLACK_PX = 4;

// Rows of one height, of which only those near sight exist. The scroller has the focus and names the active row.
//   source: count(), key(index), draw(index), mark(row, index), active(), move(index, event)
//   Rows with the same key are the same; draw makes one, mark brings what changes up to date.
export class Rows {
  #scroller;
  #body;
  #source;
  #pool = new Map();
  #height = 28;
  #probe = make('div', 'probe');
  follows = false;
  #isFollowing = true;
  #drawnAt = -1;

  constructor(scroller, body, source, follows = false) {
    this.#scroller = scroller;
    this.#body = body;
    this.#source = source;
    this.follows = follows;
    body.before(this.#probe);
    scroller.addEventListener('scroll', () => this.#scrolled(), { passive: true });
    scroller.addEventListener('keydown', event => this.#key(event));
    const observer = new ResizeObserver(() => this.#resized());
    for (const each of [scroller, this.#probe]) observer.observe(each);
  }

  get top() { return this.#scroller.scrollTop / this.#height; }
  set top(rows) { this.#scroller.scrollTop = rows * this.#height; }
  get seen() { return [Math.floor(this.top), Math.ceil(this.top + this.#scroller.clientHeight / this.#height)]; }

  // Rows in front are gone: what is in sight stays there.
  gone(count) { if (count && !(this.follows && this.#isFollowing)) this.top -= count; }

  follow(isFollowing = true) { this.#isFollowing = isFollowing; }
  get isFollowing() { return this.#isFollowing; }

  refresh = drawing(() => this.render());

  render() {
    const { clientHeight } = this.#scroller;
    if (!clientHeight) return;
    const count = this.#source.count();
    this.#body.style.height = `${count * this.#height}px`;
    if (this.follows && this.#isFollowing) this.#scroller.scrollTop = count * this.#height;
    this.#drawnAt = this.#scroller.scrollTop;
    const from = Math.max(0, Math.floor(this.top) - OVER);
    this.#draw(from, Math.min(count, Math.ceil(this.top + clientHeight / this.#height) + OVER));
  }

  reveal(index) {
    if (index < 0) return;
    const shown = this.#scroller.clientHeight - this.#body.offsetTop;
    const top = index * this.#height;
    const now = this.#scroller.scrollTop;
    this.#scroller.scrollTop = Math.min(Math.max(now, top + this.#height - shown), top);
    if (this.#scroller.scrollTop < now) this.#isFollowing = false;
  }

  #draw(from, upTo) {
    const before = this.#pool;
    this.#pool = new Map();
    let next = this.#body.firstChild;
    let named = '';
    for (let index = from; index < upTo; index += 1) {
      const key = this.#source.key(index);
      const row = before.get(key) || this.#source.draw(index);
      before.delete(key);
      this.#pool.set(key, row);
      if (row === next) next = next.nextSibling;
      else this.#body.insertBefore(row, next);
      row.style.transform = `translateY(${index * this.#height}px)`;
      row.dataset.index = index;
      const isActive = index === this.#source.active();
      row.classList.toggle('active', isActive);
      if (isActive) named = row.id;
      this.#source.mark(row, index);
    }
    for (const row of before.values()) row.remove();
    this.#scroller.setAttribute('aria-activedescendant', named);
  }

  #scrolled() {
    const { scrollTop, clientHeight, scrollHeight } = this.#scroller;
    if (scrollTop === this.#drawnAt) return;
    this.#isFollowing = scrollTop + clientHeight >= scrollHeight - SLACK_PX;
    this.refresh();
  }

  #resized() {
    const height = this.#probe.getBoundingClientRect().height;
    if (!height) return;
    const { top } = this;
    const changed = height !== this.#height;
    this.#height = height;
    if (changed) this.top = top;
    this.render();
    this.#source.resized?.();
  }

  #key(event) {
    if (event.target !== this.#scroller || event.altKey || event.metaKey) return;
    const page = Math.max(1, Math.floor(this.#scroller.clientHeight / this.#height) - 2);
    const count = this.#source.count();
    const now = this.#source.active();
    const to = { ArrowDown: now + 1, ArrowUp: now < 0 ? count - 1 : now - 1, PageDown: now + page, PageUp: now - page, Home: 0, End: count - 1 }[event.key];
    if (to === undefined || !count) return;
    event.preventDefault();
    this.#source.move(Math.min(Math.max(to, 0), count - 1), event);
  }
}
