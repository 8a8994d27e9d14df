// @ts-check

/** @type {(css: string, within?: ParentNode) => any} */
export const $ = (css, within = document) => within.querySelector(css);

/** @type {(css: string, within?: ParentNode) => any[]} */
export const $$ = (css, within = document) => [...within.querySelectorAll(css)];

/** @type {(tag: string, className?: string, ...content: (string | Node)[]) => any} */
export function make(tag, className = '', ...content) {
  const made = document.createElement(tag);
  if (className) made.className = className;
  made.append(...content);
  return made;
}

// What has not changed is left alone, so that nothing is announced or laid out again.
export function setText(target, text) {
  if (target.textContent !== text) target.textContent = text;
}

const REST = 4;
const LONGEST_REST_MS = 200;

// A function that has the work done with the next frame, once however often it is called. After work that took
// long there is a longer rest, so that a flood leaves time for everything else.
export function drawing(work) {
  let frame = 0;
  let free = 0;
  const turn = () => {
    const began = performance.now();
    frame = began < free ? requestAnimationFrame(turn) : 0;
    if (frame) return;
    work();
    free = performance.now() + Math.min(REST * (performance.now() - began), LONGEST_REST_MS);
  };
  return () => { frame ||= requestAnimationFrame(turn); };
}

export function press(target, isPressed) { target.setAttribute('aria-pressed', isPressed); }

export function button(text, action, className = '') {
  const made = make('button', className, text);
  made.type = 'button';
  made.onclick = action;
  return made;
}

// Keeps one child for each item, in the items' order: those that stay are the same elements, with their focus.
export function keyed(parent, items, keyOf, makeOne, update) {
  const had = new Map([...parent.children].map(child => [child.dataset.key, child]));
  let next = parent.firstElementChild;
  for (const item of items) {
    const key = String(keyOf(item));
    const child = had.get(key) || makeOne(item);
    child.dataset.key = key;
    had.delete(key);
    if (child === next) next = next.nextElementSibling;
    else parent.insertBefore(child, next);
    update(child, item);
  }
  for (const gone of had.values()) gone.remove();
}

export async function copy(text) {
  try {
    await navigator.clipboard.writeText(text);
  } catch {  // only a page from a secure origin has a clipboard
    const area = make('textarea', 'unseen', text);
    const before = document.activeElement;
    document.body.append(area);
    area.select();
    document.execCommand('copy');
    area.remove();
    if (before instanceof HTMLElement) before.focus();
  }
}
