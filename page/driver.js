// @ts-check
import { $, button, keyed, make, setText } from './dom.js';
import { counted, plural, visible } from './text.js';

const MOST_ROWS = 500;
const MOST_VALUE = 300;
const VERBS = { notify: 'notification', command: 'command', request: 'request', default: 'notification' };

const since = last => (last ? `step ${last.step}` : '');

// What the driver is: what it has registered, its variables, events and documents. A press on a place in the
// time line goes there, one on a command or request puts it into the line to send.
export class DriverPanel {
  #store;
  #on;

  // on: show(step), fill(verb, name)
  constructor(store, on) {
    this.#store = store;
    this.#on = on;
  }

  render() {
    const { store } = { store: this.#store };
    const bound = [...store.devices.values()].map(each => `${each.class || 'a device'} at ${each.bind}`);
    setText($('#driver-file'), store.file);
    setText($('#bindings'), store.bindings.length ? `Binding ${store.bindings.join(', ')}` : '');
    setText($('#devices'), bound.length ? `Bound: ${bound.join(', ')}` : 'No device is bound.');
    this.#names();
    this.#table('#variables', [...store.variables.values()], each => each.id, each => [
      [visible(each.name || '?', 100), String(each.id)], each.value === null ? '–' : visible(each.value, MOST_VALUE), each.last]);
    this.#table('#events', [...store.events.values()], each => each.id, each => [
      [visible(each.label || `event ${each.id}`, 100), each.label ? String(each.id) : ''], `${counted(each.count)}×`, each.last]);
    this.#table('#documents', [...store.documents.values()], each => each.name, each => [[visible(each.name, 100), ''], `${counted(each.count)}×`, each.last]);
  }

  #names() {
    const known = [...this.#store.names.values()].sort((one, other) => Number(other.isRegistered) - Number(one.isRegistered));
    this.#table('#names', known, each => each.key, each => [
      [each.verb === 'default' ? 'any other' : visible(each.name, 100), VERBS[each.verb] || each.verb],
      each.isRegistered ? `${counted(each.count)}×` : `${counted(each.count)}× unknown`, each.last, each]);
  }

  #table(css, items, keyOf, cellsOf) {
    const place = $(css);
    const rest = items.length - MOST_ROWS;
    place.hidden = !items.length;
    setText($('.more', place), rest > 0 ? `and ${plural(rest, 'more', 'more')}` : '');
    keyed($('tbody', place), items.slice(0, MOST_ROWS), keyOf, item => this.#row(item, cellsOf), (row, item) => this.#update(row, cellsOf(item)));
  }

  #row(item, cellsOf) {
    const named = cellsOf(item)[3];
    const place = button('', () => this.#on.show(Number(place.dataset.step)), 'link');
    const name = make('th', '', named && named.verb !== 'default' ? button('', () => this.#on.fill(named.verb, named.name), 'link') : make('span'), ' ', make('small'));
    name.scope = 'row';
    return make('tr', '', name, make('td'), make('td', '', place));
  }

  #update(row, [[name, small], value, last, named]) {
    const [head, shown, place] = row.children;
    setText(head.firstChild, name);
    setText(head.lastChild, small);
    setText(shown, value);
    setText(place.firstChild, since(last));
    place.firstChild.hidden = !last;
    if (last) place.firstChild.dataset.step = last.step;
    row.classList.toggle('unknown', Boolean(named && !named.isRegistered));
  }
}
