// @ts-check
// What a user interface knows of the player, from the driver's documents alone.
import { clock } from './text.js';

// Documents that report the player's state. Each value in them has a name of its own, so that it does
// not matter in which document it comes.
export const REPORTS = new Set([
  'CURRENT_SETTINGS', 'MEDIA_INFO_CHANGED', 'PLAY_TIME_CHANGED', 'QUEUE_PROGRESS_CHANGED',
  'SHUFFLE_MODES_CHANGED', 'REPEAT_MODES_CHANGED', 'MEDIA_LABELS_CHANGED', 'SHUFFLE_CHANGED', 'REPEAT_CHANGED',
  'play_status', 'online_status', 'online', 'shuffle_modes', 'repeat_modes',
]);

// Seconds out of "65", "1:05" or "1:01:05"; null out of any other text.
export function seconds(text) {
  if (!/^\d{1,9}(:\d{1,2}){0,2}(\.\d+)?$/.test(text)) return null;
  return text.split(':').reduce((sum, part) => sum * 60 + Number(part), 0);
}

const MOST_LISTED = 300;

// The first of the texts between commas; nobody chooses among more.
export function listOf(text) {
  return (text || '').split(',', MOST_LISTED).map(each => each.trim()).filter(Boolean);
}

// Where playback stands between two reports.
export class Clock {
  elapsed = null;
  total = null;
  #since = 0;

  report(elapsed, remaining, now, playing) {
    const before = this.at(now, playing);
    const reported = seconds(elapsed);
    const left = seconds(remaining);
    // A report is cut to whole seconds: one that differs by less must not move the bar back.
    const goesOn = playing && reported !== null && before !== null && before >= reported && before < reported + 1.2;
    this.elapsed = goesOn ? before : reported;
    this.total = reported === null || left === null || reported + left === 0 ? null : reported + left;
    this.#since = now;
  }

  // Keeps the position up to now; called before the play status changes.
  settle(now, playing) {
    this.elapsed = this.at(now, playing);
    this.#since = now;
  }

  at(now, playing) {
    if (this.elapsed === null) return null;
    const position = this.elapsed + (playing ? (now - this.#since) / 1000 : 0);
    return this.total === null ? position : Math.min(position, this.total);
  }
}

export class Media {
  values = Object.create(null);
  clock = new Clock();

  get playing() { return this.values.play_status === 'Playing'; }
  can(flag) { return this.values[flag] === 'True'; }

  // The elapsed time, the time left and the share of it, as texts to show.
  times(position) {
    const { values, clock: { total } } = this;
    const known = position !== null && total !== null;
    return {
      elapsed: position === null ? (values.elapsed || '').slice(0, 20) : clock(position),
      remaining: known ? `-${clock(Math.ceil(total - Math.floor(position)))}` : (values.remaining || '').slice(0, 20),
      share: known ? position / total : 0,
      words: known ? `${clock(position)} of ${clock(total)}` : 'unknown',
    };
  }

  apply(root, now) {
    const wasPlaying = this.playing;
    const changed = Object.create(null);
    this.#take(root, changed);
    if ('play_status' in changed) this.clock.settle(now, wasPlaying);
    Object.assign(this.values, changed);
    if ('elapsed' in changed) this.clock.report(changed.elapsed, changed.remaining || '', now, this.playing);
  }

  // Names of values begin with a small letter.
  #take(root, changed) {
    const waiting = [root];
    while (waiting.length) {
      const node = waiting.pop();
      if (node.children.length) waiting.push(...node.children.slice(0, 1000));
      else if (/^[a-z]/.test(node.name)) changed[node.name === 'online_status' ? 'online' : node.name] = node.text;
    }
  }
}
