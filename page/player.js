import { listOf, timeText } from './state.js';
import { element } from './document.js';

const $ = selector => document.querySelector(selector);
const MOST_SHOWN = 2000;
const MODES = [['has_shuffle', 'shuffle_modes', 'shuffle_mode'], ['has_repeat', 'repeat_modes', 'repeat_mode']];

function setText(target, text) {
  if (target.textContent !== text) target.textContent = text;
}

// Now playing, and its controls.
export class Player {
  #state;
  #send;
  #seek = $('#seek');
  #dragging = false;

  constructor(state, send) {
    this.#state = state;
    this.#send = send;
    for (const button of document.querySelectorAll('#transport button')) {
      button.onclick = () => send(button.dataset.command);
    }
    for (const select of document.querySelectorAll('#modes select')) {
      select.onchange = () => send(select.dataset.command, { MODE: select.value });
    }
    this.#seek.oninput = () => { this.#dragging = true; this.#showTime(Number(this.#seek.value)); };
    this.#seek.onchange = () => { this.#dragging = false; this.seekTo(Number(this.#seek.value)); };
  }

  render() {
    this.#renderStatus();
    this.#renderInfo();
    this.#renderControls();
    this.#renderModes();
    this.tick();
  }

  // Moves the bar between two reports.
  tick() {
    const { clock, playing } = this.#state;
    const position = clock.at(performance.now(), playing);
    this.#seek.disabled = clock.total === null;
    if (clock.total !== null) this.#seek.max = Math.ceil(clock.total);
    if (!this.#dragging) this.#showTime(position);
  }

  toggle() {
    const command = this.#state.playing && this.#state.can('has_pause') ? 'PAUSE' : 'PLAY';
    if (this.#state.can(`has_${command.toLowerCase()}`)) this.#send(command);
  }

  seekBy(step) {
    const { clock, playing } = this.#state;
    if (clock.total !== null) this.seekTo(clock.at(performance.now(), playing) + step);
  }

  seekTo(position) {
    this.#send('SEEK', { POSITION: Math.round(Math.min(Math.max(position, 0), this.#state.clock.total)) });
  }

  #renderStatus() {
    const { values } = this.#state;
    const online = { True: 'Online', False: 'Offline' }[values.online] || values.online || '';
    setText($('#online'), online);
    $('#online').classList.toggle('good', values.online === 'True');
    setText($('#play-status'), values.play_status || '');
    $('#play-status').classList.toggle('good', this.#state.playing);
    const total = Number(values.total_songs);
    setText($('#queue'), total > 0 ? `${values.current_song} of ${values.total_songs}` : '');
  }

  #renderInfo() {
    const { values } = this.#state;
    const labels = listOf(values.media_labels);
    document.querySelectorAll('#info > div').forEach((line, index) => {
      const text = (values[`media_info_${index + 1}`] || '').slice(0, MOST_SHOWN);
      setText(line.querySelector('dt'), labels[index] || '');
      setText(line.querySelector('dd'), text);
      line.title = text;
    });
    const title = [values.media_info_1, values.media_info_2].filter(Boolean).join(' – ').slice(0, 200);
    document.title = title ? `${this.#state.playing ? '▶ ' : ''}${title}` : 'Media proxy driver';
  }

  #renderControls() {
    const pauses = this.#state.playing && this.#state.can('has_pause');
    for (const target of document.querySelectorAll('[data-needs]')) {
      target.hidden = !this.#state.can(target.dataset.needs)
        || (target.dataset.command === 'PLAY' && pauses)
        || (target.dataset.command === 'PAUSE' && !pauses);
    }
  }

  #renderModes() {
    const { values } = this.#state;
    document.querySelectorAll('#modes select').forEach((select, index) => {
      const [, list, current] = MODES[index];
      const modes = listOf(values[list]);
      const mode = values[current] || '';
      if (!modes.includes(mode)) modes.unshift(mode);
      const key = JSON.stringify(modes);
      if (select.dataset.modes !== key) {
        select.dataset.modes = key;
        select.replaceChildren(...modes.map(each => Object.assign(element('option', '', each || '–'), { value: each })));
      }
      select.value = mode;
      select.parentElement.classList.toggle('on', mode !== '' && mode !== 'Off');
    });
  }

  #showTime(position) {
    const { clock, values } = this.#state;
    const known = position !== null && clock.total !== null;
    const share = known ? position / clock.total : 0;
    setText($('#elapsed'), position === null ? (values.elapsed || '').slice(0, 20) : timeText(position));
    setText($('#remaining'), known ? `-${timeText(Math.ceil(clock.total - Math.floor(position)))}` : (values.remaining || '').slice(0, 20));
    if (!this.#dragging) this.#seek.value = known ? position : 0;
    this.#seek.style.setProperty('--share', `${(share * 100).toFixed(2)}%`);
    this.#seek.setAttribute('aria-valuetext', known ? `${timeText(position)} of ${timeText(clock.total)}` : 'unknown');
  }
}
