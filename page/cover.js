import { element } from './document.js';

// The URL below the image root; null for a path that names no file there.
export function coverUrl(path) {
  const parts = path.split('/').filter(Boolean);
  if (!parts.length || parts.some(part => part === '.' || part === '..')) return null;
  return '/images/' + parts.map(encodeURIComponent).join('/');
}

// Shows the picture announced last. The next one is loaded out of sight and takes the other's place
// when it is whole; announcements that come meanwhile lead to one more load, of the newest.
export class Cover {
  #frame;
  #path = '';
  #wanted = 0;
  #loading = false;

  constructor(frame) { this.#frame = frame; }

  announce(path) {
    this.#path = path;
    this.reload();
  }

  reload() {
    this.#wanted += 1;
    if (!this.#loading) this.#load();
  }

  describe(text) {
    const picture = this.#frame.querySelector('img');
    if (picture) picture.alt = text;
  }

  async #load() {
    this.#loading = true;
    for (let loaded = -1; loaded !== this.#wanted;) {
      loaded = this.#wanted;
      this.#show(await this.#fetch(coverUrl(this.#path), loaded));
    }
    this.#loading = false;
  }

  async #fetch(url, number) {
    if (!url) return null;
    const picture = element('img');
    picture.alt = 'Cover';
    picture.src = `${url}?${Date.now()}.${number}`;
    try {
      await picture.decode();
      return picture;
    } catch {
      return null;
    }
  }

  #show(picture) {
    const old = this.#frame.querySelector('img');
    if (old) old.remove();
    if (picture) this.#frame.append(picture);
  }
}
