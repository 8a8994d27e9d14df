// @ts-check
import { $, make, setText } from './dom.js';
import { firstPart, isPlayable, itemOf } from './lists.js';
import { Rows } from './rows.js';
import { counted, visible } from './text.js';

const STILL_MS = 120;
const MORE_MS = 10500;

// The player's menus and lists.
export class Browser {
  #store;
  #send;
  #rows;
  #timer = 0;
  #shown = null;
  #number = 0;
  #list = $('#list');
  #search = $('#find input');

  constructor(store, send) {
    this.#store = store;
    this.#send = send;
    this.#rows = new Rows(this.#list, $('#list .body'), this);
    $('#back').onclick = () => this.back();
    $('#menu').onclick = $('#no-list button').onclick = () => this.#ask({ command: 'MENU' }, 'first');
    $('#find').onsubmit = event => this.#submit(event);
    $('#list .body').onclick = event => this.#clicked(event.target.closest('.item'));
    this.#list.addEventListener('keydown', event => this.#key(event));
    this.#list.addEventListener('scroll', () => this.#scrolled(), { passive: true });
  }

  get #lists() { return this.#store.lists; }

  #itemAt(index) {
    const xml = this.#lists.page.items[index];
    return xml && itemOf(xml);
  }

  render() {
    const { media } = this.#store;
    const { page, pages } = this.#lists;
    $('#menu').hidden = $('#no-list button').hidden = !media.can('has_menu');
    $('#find').hidden = !media.can('has_search');
    if (pages.length < 2 && document.activeElement === $('#back')) this.#list.focus();
    $('#back').disabled = pages.length < 2;
    $('#no-list').hidden = Boolean(page);
    $('#empty').hidden = !page || page.total > 0;
    this.#list.hidden = !page || !page.total;
    setText($('#list-title'), page ? visible(page.title, 200) || 'Untitled' : 'Menu');
    setText($('#list-count'), page ? counted(page.total) : '');
    if (page !== this.#shown) {
      this.#shown = page;
      this.#number += 1;
      this.#rows.render();
      this.#rows.top = page?.top || 0;
    }
    this.#rows.render();
    this.#scrolled();
  }
  get isUseful() { return Boolean(this.#lists.page) || ['has_menu', 'has_browse', 'has_search'].some(flag => this.#store.media.can(flag)); }

  // What Rows asks for.
  count() { return this.#lists.page?.total || 0; }
  active() { return this.#lists.page ? this.#lists.page.active : -1; }
  key(index) { return `${this.#number} ${this.#lists.page.version} ${index}`; }
  draw(index) {
    const item = this.#itemAt(index);
    const row = make('div', `item ${item && !isPlayable(item) ? 'opens' : ''}`);
    row.role = 'option';
    row.id = `item-${index}`;
    row.item = item;
    const text = make('span', 'text', item ? visible(item.text || item.id, 500) : '…');
    text.dir = 'auto';
    row.append(text, make('small', '', item ? visible(item.type, 50) : ''));
    return row;
  }
  mark(row, index) {
    const { page } = this.#lists;
    const { item } = row;
    const { media_info_1: title, media_info_2: artist } = this.#store.media.values;
    const isPlaying = Boolean(item && isPlayable(item) && item.text && [title, `${title} – ${artist}`].includes(item.text));
    row.classList.toggle('playing', isPlaying);
    if (isPlaying) row.setAttribute('aria-current', 'true');
    else row.removeAttribute('aria-current');
    row.setAttribute('aria-selected', index === page.active);
    row.setAttribute('aria-setsize', page.total);
    row.setAttribute('aria-posinset', index + 1);
  }
  move(index) {
    this.#lists.page.active = index;
    this.#rows.reveal(index);
    this.#rows.refresh();
  }

  // Returns whether there was a way back.
  back() {
    if (!this.#lists.back()) return false;
    this.render();
    return true;
  }

  focusSearch() {
    this.#search.focus();
    this.#search.select();
  }

  #ask(request, how) {
    this.#lists.asks(request, how, performance.now());
    this.#send(request.command, request.params);
  }

  // Where one stays, what is missing is asked for.
  #scrolled() {
    const { page } = this.#lists;
    if (!page || this.#shown !== page) return;
    if (this.#list.clientHeight) page.top = this.#rows.top;
    clearTimeout(this.#timer);
    const [from, upTo] = this.#rows.seen;
    const request = this.#lists.missing(from, upTo);
    if (!request) return;
    const isAsking = this.#lists.isAsking(performance.now());
    this.#timer = setTimeout(() => (isAsking ? this.#scrolled() : this.#ask(request, 'part')), isAsking ? MORE_MS : STILL_MS);
  }

  #submit(event) {
    event.preventDefault();
    const TEXT = this.#search.value.trim();
    if (TEXT) this.#ask(firstPart('SEARCH', { TEXT }), this.#lists.page?.request?.command === 'SEARCH' ? 'again' : 'deeper');
  }

  #clicked(row) {
    if (!row) return;
    this.move(Number(row.dataset.index));
    this.#open(Number(row.dataset.index));
  }

  #open(index) {
    const item = this.#lists.page && this.#itemAt(index);
    if (!item) return;
    if (isPlayable(item)) this.#send('PLAY', { ID: item.id });
    else if (item.type === 'search' && this.#store.media.can('has_search')) this.focusSearch();
    else this.#ask(firstPart('BROWSE', { ID: item.id }), 'deeper');
  }

  #key(event) {
    if (event.key === 'Enter' || event.key === ' ' || event.key === 'ArrowRight') this.#open(this.active());
    else if (!['Backspace', 'ArrowLeft'].includes(event.key) || !this.back()) return;
    event.preventDefault();
  }
}
