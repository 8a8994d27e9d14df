// What a user interface knows of the player, from the driver's documents alone.

// Documents that report the player's state. Each value in them has a name of its own, so that it does
// not matter in which document it comes.
const REPORTS = new Set([
  'CURRENT_SETTINGS', 'MEDIA_INFO_CHANGED', 'PLAY_TIME_CHANGED', 'QUEUE_PROGRESS_CHANGED',
  'SHUFFLE_MODES_CHANGED', 'REPEAT_MODES_CHANGED', 'MEDIA_LABELS_CHANGED', 'SHUFFLE_CHANGED', 'REPEAT_CHANGED',
  'play_status', 'online_status', 'online', 'shuffle_modes', 'repeat_modes',
]);

// Seconds out of "65", "1:05" or "1:01:05"; null out of any other text.
export function seconds(text) {
  if (!/^\d{1,9}(:\d{1,2}){0,2}(\.\d+)?$/.test(text)) return null;
  return text.split(':').reduce((sum, part) => sum * 60 + Number(part), 0);
}

export function timeText(time) {
  const whole = Math.floor(time);
  const two = number => String(number).padStart(2, '0');
  const hours = Math.floor(whole / 3600);
  const minutes = Math.floor(whole / 60) % 60;
  return (hours ? `${hours}:${two(minutes)}` : String(minutes)) + ':' + two(whole % 60);
}

export function listOf(text) {
  return (text || '').split(',').map(each => each.trim()).filter(Boolean);
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

export class State {
  values = {};
  clock = new Clock();

  get playing() { return this.values.play_status === 'Playing'; }
  can(flag) { return this.values[flag] === 'True'; }

  // Returns whether the document was one about the player's state. Names of values begin with a small
  // letter.
  apply(root, now) {
    if (!REPORTS.has(root.nodeName)) return false;
    const wasPlaying = this.playing;
    const changed = {};
    this.#take(root, changed);
    if ('play_status' in changed) this.clock.settle(now, wasPlaying);
    Object.assign(this.values, changed);
    if ('elapsed' in changed) this.clock.report(changed.elapsed, changed.remaining || '', now, this.playing);
    return true;
  }

  #take(element, changed) {
    if (element.children.length) {
      for (const child of element.children) this.#take(child, changed);
    } else if (/^[a-z]/.test(element.nodeName)) {
      changed[element.nodeName === 'online_status' ? 'online' : element.nodeName] = element.textContent;
    }
  }
}
