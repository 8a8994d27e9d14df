import { childText, element } from './document.js';

const $ = selector => document.querySelector(selector);
const PLAYABLE = new Set(['song', 'track', 'title', 'file', 'stream', 'station']);
const COUNT = 100;
const SHOWN_AT_ONCE = 200;
const DEEPEST = 50;
const MOST_SHOWN = 2000;
const ANSWER_MS = 10000;

// A list without items comes with one empty item, because a document is sent with its last item.
function itemsOf(root) {
  const items = [...root.children].find(child => child.nodeName === 'items');
  return [...(items ? items.children : [])].map(item => ({
    id: childText(item, 'id'), type: childText(item, 'type'), text: childText(item, 'text'),
  })).filter(item => item.id || item.text);
}

// Menus and lists as they come. A document does not say what it answers, so the page remembers what it
// asked for last; what it did not ask for is shown all the same.
export class Browse {
  #state;
  #send;
  #pages = [];
  #asked = null;
  #shown = SHOWN_AT_ONCE;
  #search = $('#search input');

  constructor(state, send) {
    this.#state = state;
    this.#send = send;
    $('#back').onclick = () => this.back();
    $('#menu').onclick = $('#no-list button').onclick = () => this.#ask({ command: 'MENU' }, 'first');
    $('#more').onclick = () => this.#more();
    $('#list ul').onclick = event => this.#open(event.target.closest('button'));
    $('#search').onsubmit = event => this.#submit(event);
    $('#list').onkeydown = event => this.#move(event);
  }

  // Returns whether the document was a menu or a list.
  take(root) {
    const isList = root.nodeName === 'list';
    if (!isList && root.nodeName !== 'menu_list') return false;
    const items = itemsOf(root);
    const title = childText(root, 'title');
    const total = Number(childText(root, isList ? 'total_items' : 'num_items')) || items.length;
    const first = Number(childText(root, 'first_item')) || 0;
    const page = this.#pages.at(-1);
    if (page && isList && first > 0 && first <= page.items.length && page.title === title && childText(root, 'clear') !== 'True') {
      page.items.splice(first, items.length, ...items);
      page.total = total;
    } else {
      this.#place({ title, items, total, request: null });
      this.#shown = SHOWN_AT_ONCE;
      $('#list').scrollTop = 0;
    }
    return true;
  }

  render() {
    const page = this.#pages.at(-1);
    const any = ['has_menu', 'has_browse', 'has_search'].some(flag => this.#state.can(flag));
    document.body.classList.toggle('no-browse', !any && !page);
    $('#menu').hidden = $('#no-list button').hidden = !this.#state.can('has_menu');
    $('#search').hidden = !this.#state.can('has_search');
    $('#back').disabled = this.#pages.length < 2;
    $('#no-list').hidden = Boolean(page);
    $('#empty').hidden = !page || page.items.length > 0;
    $('#list-title').textContent = page ? page.title || 'Untitled' : 'Menu';
    $('#list-count').textContent = page ? page.total : '';
    this.#renderItems(page ? page.items.slice(0, this.#shown) : []);
    this.#renderMore(page);
  }

  back() {
    if (this.#pages.length < 2) return;
    this.#pages.pop();
    this.#shown = SHOWN_AT_ONCE;
    const { request } = this.#pages.at(-1);
    this.render();
    if (request) this.#ask(request, 'again');
  }

  focusSearch() {
    if (!this.#state.can('has_search')) return false;
    this.#search.focus();
    this.#search.select();
    return true;
  }

  focusFirst() {
    const first = $('#list ul button');
    if (first) first.focus();
  }

  #place(page) {
    const asked = this.#asked && performance.now() < this.#asked.until ? this.#asked : null;
    const top = this.#pages.at(-1);
    this.#asked = null;
    if (asked) page.request = asked.request;
    if (asked && asked.how === 'first') this.#pages = [];
    else if (top && (asked ? asked.how === 'again' : top.title === page.title)) {
      page.request = page.request || top.request;
      this.#pages.pop();
    }
    this.#pages.push(page);
    if (this.#pages.length > DEEPEST) this.#pages.shift();
  }

  // how: 'first' begins anew, 'deeper' goes one further, 'again' renews what is shown.
  #ask(request, how) {
    this.#asked = { request, how, until: performance.now() + ANSWER_MS };
    this.#send(request.command, request.params);
  }

  #more() {
    const page = this.#pages.at(-1);
    if (this.#shown < page.items.length) {
      this.#shown += SHOWN_AT_ONCE;
      this.render();
      return;
    }
    this.#shown += COUNT;
    const { command, params } = page.request;
    this.#send(command, { ...params, FIRST: page.items.length, COUNT });
  }

  #open(button) {
    if (!button) return;
    const item = this.#pages.at(-1).items[Number(button.dataset.index)];
    if (PLAYABLE.has(item.type)) this.#send('PLAY', { ID: item.id });
    else if (item.type !== 'search' || !this.focusSearch()) {
      this.#ask({ command: 'BROWSE', params: { ID: item.id, FIRST: 0, COUNT } }, 'deeper');
    }
  }

  #submit(event) {
    event.preventDefault();
    const TEXT = this.#search.value.trim();
    const page = this.#pages.at(-1);
    const again = page && page.request && page.request.command === 'SEARCH';
    if (TEXT) this.#ask({ command: 'SEARCH', params: { TEXT, FIRST: 0, COUNT } }, again ? 'again' : 'deeper');
  }

  #move(event) {
    const step = { ArrowDown: 1, ArrowUp: -1 }[event.key];
    if (!step) return;
    const buttons = [...$('#list').querySelectorAll('button:not([hidden])')];
    const next = buttons[buttons.indexOf(document.activeElement) + step];
    if (next) next.focus();
    event.preventDefault();
  }

  #renderItems(items) {
    const list = $('#list ul');
    const focused = list.contains(document.activeElement) ? Number(document.activeElement.dataset.index) : -1;
    list.replaceChildren(...items.map((item, index) => {
      const button = element('button');
      button.dataset.index = index;
      button.classList.toggle('plays', PLAYABLE.has(item.type));
      button.append(element('span', 'text', (item.text || item.id || '–').slice(0, MOST_SHOWN)), element('span', 'type', item.type));
      button.firstChild.dir = 'auto';
      const row = element('li');
      row.append(button);
      return row;
    }));
    if (focused >= 0) list.querySelectorAll('button')[Math.min(focused, items.length - 1)]?.focus();
  }

  #renderMore(page) {
    const held = page ? page.items.length : 0;
    const askable = page && page.request && held < page.total;
    $('#more').hidden = !page || (this.#shown >= held && !askable);
    if (page) $('#more').textContent = `More (${Math.max(page.total, held) - Math.min(this.#shown, held)})`;
  }
}
