// @ts-check
import { $, make } from './dom.js';

// The URL of a picture below the image root; null for a path that names no file there.
export function imageUrl(path) {
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
  #isLoading = false;

  constructor(frame) { this.#frame = frame; }

  announce(path) {
    this.#path = path;
    this.#wanted += 1;
    if (!this.#isLoading) this.#load();
  }

  async #load() {
    this.#isLoading = true;
    for (let loaded = -1; loaded !== this.#wanted;) {
      loaded = this.#wanted;
      this.#show(await this.#fetch(imageUrl(this.#path), loaded));
    }
    this.#isLoading = false;
  }

  async #fetch(url, number) {
    if (!url) return null;
    const picture = make('img');
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
    $('img', this.#frame)?.remove();
    if (picture) this.#frame.append(picture);
  }
}
