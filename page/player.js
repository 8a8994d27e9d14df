// @ts-check
import { $, $$, setText } from './dom.js';
import { listOf } from './media.js';
import { visible } from './text.js';

const MOST_SHOWN = 1000;
const SEEK_SECONDS = 10;
const MODES = { SET_SHUFFLE: ['Shuffle', 'shuffle_modes', 'shuffle_mode'], SET_REPEAT: ['Repeat', 'repeat_modes', 'repeat_mode'] };

// Now playing, and its controls.
export class Player {
  #store;
  #send;
  #seek = $('#seek');
  #isDragging = false;
  #modes = { SET_SHUFFLE: [], SET_REPEAT: [] };

  // send(command, params, place): place is the element of the panel that what happened is shown in
  constructor(store, send) {
    this.#store = store;
    this.#send = send;
    for (const each of $$('#transport [data-command]')) each.onclick = () => send(each.dataset.command);
    $('#play').onclick = () => this.toggle();
    for (const each of $$('#modes [data-command]')) each.onclick = () => this.#nextMode(each.dataset.command);
    for (const each of $$('#modes select')) each.onchange = () => send(each.name, { MODE: this.#modes[each.name][each.value] });
    this.#seek.oninput = () => { this.#isDragging = true; this.#showTime(Number(this.#seek.value)); };
    this.#seek.onchange = () => { this.#isDragging = false; this.seekTo(Number(this.#seek.value)); };
    $('#player').addEventListener('keydown', event => this.#key(event));
  }

  get #media() { return this.#store.media; }

  render() {
    this.#renderStatus();
    this.#renderInfo();
    this.#renderControls();
    for (const command of Object.keys(MODES)) this.#renderMode(command);
    this.tick();
  }

  // Moves the bar between two reports.
  tick() {
    const { clock, playing } = this.#media;
    const position = clock.at(performance.now(), playing);
    this.#seek.disabled = clock.total === null;
    if (clock.total !== null) this.#seek.max = Math.ceil(clock.total);
    if (!this.#isDragging) this.#showTime(position);
  }

  toggle() {
    const command = this.#toggleCommand;
    if (command) this.#send(command);
  }

  get #toggleCommand() {
    const wanted = this.#media.playing && this.#media.can('has_pause') ? 'PAUSE' : 'PLAY';
    return this.#media.can(`has_${wanted.toLowerCase()}`) ? wanted : '';
  }

  seekTo(position) {
    this.#send('SEEK', { POSITION: Math.round(Math.min(Math.max(position, 0), this.#media.clock.total)) });
  }

  #key(event) {
    if (event.ctrlKey || event.metaKey || event.altKey || event.target.matches('select')) return;
    const step = { ArrowLeft: -SEEK_SECONDS, ArrowRight: SEEK_SECONDS }[event.key];
    if (event.key === ' ' && !event.target.matches('button')) this.toggle();
    else if (step && this.#media.clock.total !== null) this.seekTo(this.#media.clock.at(performance.now(), this.#media.playing) + step);
    else return;
    event.preventDefault();
  }

  #renderStatus() {
    const { values } = this.#media;
    const online = { True: 'Online', False: 'Offline' }[values.online] || values.online || '';
    setText($('#online'), visible(online, 100));
    $('#online').classList.toggle('good', values.online === 'True');
    setText($('#play-status'), visible(values.play_status || '', 100));
    $('#play-status').classList.toggle('good', this.#media.playing);
    const total = Number(values.total_songs);
    setText($('#queue'), total > 0 ? visible(`${values.current_song} of ${values.total_songs}`, 50) : '');
  }

  #renderInfo() {
    const { values } = this.#media;
    const labels = listOf((values.media_labels || '').slice(0, MOST_SHOWN));
    $$('#info > div').forEach((line, index) => {
      setText($('dt', line), visible(labels[index] || '', 100));
      setText($('dd', line), visible(values[`media_info_${index + 1}`] || '', MOST_SHOWN));
    });
    const title = [values.media_info_1, values.media_info_2].filter(Boolean).map(each => visible(each, 100)).join(' – ');
    setText($('#track'), title);
  }

  #renderControls() {
    for (const target of $$('[data-needs]')) target.hidden = !this.#media.can(target.dataset.needs);
    const command = this.#toggleCommand;
    $('#play').hidden = !command;
    $('#play').classList.toggle('pauses', command === 'PAUSE');
    $('#play').setAttribute('aria-label', command === 'PAUSE' ? 'Pause' : 'Play');
    $('#ask').hidden = 'has_play' in this.#media.values;
  }

  #renderMode(command) {
    const [name, list, current] = MODES[command];
    const { values } = this.#media;
    const [target, select] = [$(`#modes [data-command=${command}]`), $(`#modes [name=${command}]`)];
    if (select.known !== values[list]) {
      select.known = values[list];
      this.#modes[command] = listOf(values[list]);
      select.replaceChildren(...this.#modes[command].map((mode, index) => new Option(visible(mode, 100), String(index))));
    }
    const mode = values[current] || '';
    select.hidden = this.#modes[command].length < 3;
    select.value = this.#modes[command].indexOf(mode);
    setText($('span', target), `${name}: ${visible(mode, 60) || 'unknown'}`);
    target.classList.toggle('on', mode !== '' && mode !== 'Off');
  }

  #nextMode(command) {
    const modes = this.#modes[command];
    const now = modes.indexOf(this.#media.values[MODES[command][2]]);
    this.#send(command, { MODE: modes[(now + 1) % modes.length] || 'On' });
  }

  #showTime(position) {
    const { elapsed, remaining, share, words } = this.#media.times(position);
    setText($('#elapsed'), visible(elapsed, 30));
    setText($('#remaining'), visible(remaining, 30));
    if (!this.#isDragging) this.#seek.value = String(share * Number(this.#seek.max));
    this.#seek.style.setProperty('--share', `${(share * 100).toFixed(2)}%`);
    if (this.#seek.getAttribute('aria-valuetext') !== words) this.#seek.setAttribute('aria-valuetext', words);
  }
}
