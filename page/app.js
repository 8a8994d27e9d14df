import { Browse } from './browse.js';
import { Connection } from './connection.js';
import { Cover } from './cover.js';
import { childText, parse, valueText } from './document.js';
import { Player } from './player.js';
import { State } from './state.js';
import { Traffic } from './traffic.js';

const $ = selector => document.querySelector(selector);
const TICK_MS = 250;
const SEEK_SECONDS = 10;
const TURN_MS = 40;
const TAKING_MS = 20;
const MOST_WAITING = 100000;

const state = new State();
const cover = new Cover($('#cover'));
const traffic = new Traffic();
const player = new Player(state, send);
const browse = new Browse(state, send);
const connection = new Connection({ opened, line: arrived, lost });
const stale = new Set();
const waiting = [];
let turnEnds = 0;
let taking = 0;
let connected = null;

function notice(text, isWarning = false) {
  $('#notice').textContent = text.slice(0, 1000);
  $('#notice').classList.toggle('warning', isWarning);
}

function showConnection(isConnected) {
  connected = isConnected;
  $('#connection').textContent = isConnected ? 'Connected' : 'The program is gone. Trying again…';
  document.body.classList.toggle('lost', !isConnected);
}

function opened() {
  if (connected === false) {
    traffic.say('connected again; records may be missing');
    cover.reload();
  }
  showConnection(true);
  send('QUERY_CURRENT_SETTINGS');
}

function lost() {
  if (connected !== false) traffic.say('the connection is lost');
  showConnection(false);
}

async function send(command, params) {
  try {
    const records = await connection.send(command, params);
    if (records.some(record => record.to === 'device')) notice(`${command} sent to the player`);
  } catch (error) {
    notice(`${command}: ${error.message}`, true);
  }
}

// Views are drawn once a frame, however many records came meanwhile.
function redraw(view) {
  if (!stale.size) requestAnimationFrame(() => { for (const each of stale) each.render(); stale.clear(); });
  stale.add(view);
}

// A flood of records gets a part of each turn, in the order in which they came; the rest is for
// drawing and for the person at the page.
function arrived(line) {
  if (!waiting.length && takeInTurn(line)) return;
  waiting.push(line);
  if (waiting.length === 1) setTimeout(takeWaiting, TURN_MS - TAKING_MS);
  if (waiting.length < MOST_WAITING) return;
  waiting.length = 1;
  traffic.say('more records came than the page could take; some are missing');
  send('QUERY_CURRENT_SETTINGS');
}

function takeWaiting() {
  let taken = 0;
  while (taken < waiting.length && takeInTurn(waiting[taken])) taken += 1;
  waiting.splice(0, taken);
  if (waiting.length) setTimeout(takeWaiting, TURN_MS - TAKING_MS);
}

// Returns whether there was time left for it.
function takeInTurn(line) {
  const began = performance.now();
  if (began > turnEnds) [turnEnds, taking] = [began + TURN_MS, 0];
  if (taking > TAKING_MS) return false;
  try {
    receive(JSON.parse(line), line);
  } catch (error) {
    console.error(error);  // the records after it must come all the same
  }
  taking += performance.now() - began;
  return true;
}

function receive(record, line) {
  traffic.add(record, line);
  if (record.to === 'log') notice(valueText(record.text), true);
  if (record.to !== 'ui' && record.to !== 'answer') return;
  const root = parse(record.xml);
  if (root) take(root);
}

function take(root) {
  const wasOnline = state.values.online;
  if (root.nodeName === 'NEW_COVER_ART') cover.announce(childText(root, 'image_path'));
  else if (browse.take(root)) redraw(browse);
  else if (state.apply(root, performance.now())) {
    redraw(player);
    if (root.nodeName === 'CURRENT_SETTINGS') redraw(browse);
    // Only the report says what a player can do, which may have changed when it is back.
    if (root.nodeName === 'online_status' && state.can('online') && wasOnline !== 'True') send('QUERY_CURRENT_SETTINGS');
  } else notice(`${root.nodeName} ${[...root.querySelectorAll('*')].filter(each => !each.children.length).map(each => each.textContent).join(' ')}`);
}

function showPanel(name) {
  document.body.dataset.panel = name;
  for (const button of document.querySelectorAll('nav button')) {
    button.setAttribute('aria-pressed', button.dataset.panel === name);
  }
}

const KEYS = {
  ' ': () => player.toggle(),
  ArrowLeft: () => player.seekBy(-SEEK_SECONDS),
  ArrowRight: () => player.seekBy(SEEK_SECONDS),
  ArrowDown: () => browse.focusFirst(),
  '/': () => { if (!browse.focusSearch()) traffic.focusFilter(); else showPanel('browse'); },
  Escape: () => { if (!traffic.closeRecord()) browse.back(); },
};

// Returns whether the key belongs to the element that has the focus.
function isTaken(event) {
  if (event.defaultPrevented || event.ctrlKey || event.metaKey || event.altKey) return true;
  if (event.target.matches('input:not([type=range]), select')) return event.key !== 'Escape';
  if (event.key === ' ') return event.target.matches('button, .full');
  return event.key.startsWith('Arrow') && event.target.matches('input, .full');
}

document.addEventListener('keydown', event => {
  const action = KEYS[event.key];
  if (!action || isTaken(event)) return;
  event.preventDefault();
  if (event.key === 'Escape' && event.target.matches('input')) event.target.blur();
  else action();
});

for (const button of document.querySelectorAll('nav button')) button.onclick = () => showPanel(button.dataset.panel);
setInterval(() => { if (state.playing && !document.hidden) player.tick(); }, TICK_MS);
player.render();
browse.render();
