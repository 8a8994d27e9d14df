// @ts-check
import { Browser } from './browser.js';
import { Connection } from './connection.js';
import { Cover } from './cover.js';
import { Details, makeSplitter } from './details.js';
import { $, $$, drawing, press, setText } from './dom.js';
import { DriverPanel } from './driver.js';
import { nearest } from './nearest.js';
import { Player } from './player.js';
import { RecordQueue } from './queue.js';
import { caseOf, sessionOf } from './record.js';
import { Resume } from './resume.js';
import { Answers, SendLine } from './send.js';
import { recordsIn, save } from './session.js';
import { Store } from './store.js';
import { visible } from './text.js';
import { Timeline } from './timeline.js';

const TICK_MS = 250;
const QUERY = 'QUERY_CURRENT_SETTINGS';

const store = new Store();
const resume = new Resume();
const answers = new Answers();
const queue = new RecordQueue(take, count => timeline.add({ missing: count }, JSON.stringify({ missing: count })));
const timeline = new Timeline({ select: entry => details.show(entry), open: entry => details.open(entry), reason });
const details = new Details(timeline, inWords);
const cover = new Cover($('#cover'));
const sendLine = new SendLine(store, send, showStep);
const views = {
  driver: new DriverPanel(store, { show: showStep, fill: (verb, name) => sendLine.fill(verb, name) }),
  player: new Player(store, say),
  browse: new Browser(store, say),
};
const connection = new Connection({ opened, line: text => { for (const line of text.split('\n')) if (line) queue.push(line); }, lost });
let isConnected = null;
let hasChosen = false;

// Why nothing came of an input.
function reason({ verb, name }) {
  const isTaken = ['bind', 'unbind', 'rooms', 'persist', 'restart', 'start'].includes(verb) || !store.knowsRegistered || store.handles(verb, name);
  return isTaken ? 'nothing came of it' : 'nothing came of it: no handler';
}

function inWords(entry) {
  const meant = nearest(entry.name, [...store.names.values()].filter(each => each.isRegistered && each.verb === entry.verb).map(each => each.name));
  return reason(entry) + (store.handles(entry.verb, entry.name) || !meant ? '' : ` – did you mean ${meant}?`);
}

function showConnection(text, state) {
  setText($('#connection'), text);
  document.body.dataset.connection = state;
}

function opened() {
  isConnected = true;
  showConnection('Connected', 'on');
}

function lost() {
  if (isConnected !== false && !store.ended) timeline.say('the connection is lost');
  isConnected = false;
  resume.lost();
  showConnection(store.ended ? 'Ended' : 'The program is gone. Trying again…', store.ended ? 'ended' : 'off');
}

function isKnown(line) {
  for (const entry of timeline.steps.entries()) if (entry.line === line) return true;
  return !timeline.steps.size;
}

function take(line) {
  const record = JSON.parse(line);
  const verdict = record.registered ? 'take' : resume.judge(record, line, isKnown);
  if (verdict === 'skip') return null;
  if (verdict === 'anew') startAnew();
  const rest = store.take(record, performance.now());
  if (!record.registered) answers.take(record, timeline.add(record, line));
  if (record.ended) showConnection('Ended', 'ended');
  redraw();
  return rest && finishing(rest);
}

// What is registered came before, and stays.
function startAnew() {
  store.forget();
  cover.announce('');
  timeline.say('connected to another program');
  timeline.steps.beginAnew();
}

function* finishing(rest) {
  yield* rest;
  redraw();
}

// Views are drawn once a frame, however many records came meanwhile. One that fails does not stop the others.
const redraw = drawing(draw);

function draw() {
  if (!store.stale.size) return;
  const focused = document.activeElement;
  if (store.cover && store.stale.has('player')) {
    cover.announce(store.cover.path);
    store.cover = null;
  }
  for (const part of [...store.stale]) {
    if (part === 'driver' && !$('#driver').checkVisibility()) continue;  // until somebody looks
    store.stale.delete(part);
    attempt(() => views[part].render());
  }
  attempt(() => sendLine.render());
  const name = store.file.split('/').at(-1) || 'Driver';
  setText($('h1'), name);
  document.title = $('#track').textContent ? `${store.media.playing ? '▶ ' : ''}${$('#track').textContent}` : name;
  document.body.classList.toggle('media', store.speaksMedia);
  document.body.classList.toggle('browses', store.speaksMedia && views.browse.isUseful);
  for (const each of $$('[data-ask]')) each.hidden = !store.handles('command', QUERY);
  const { panel } = document.body.dataset;
  if (store.speaksMedia && !hasChosen && panel === 'driver') showPanel('player');
  if (!store.speaksMedia && (panel === 'player' || panel === 'browse')) showPanel('driver');
  if (focused instanceof HTMLElement && focused !== document.body && !focused.checkVisibility()) keepFocus(focused);
}

// The focus of what is gone goes to what is beside it.
function keepFocus(gone) {
  const section = gone.closest('section');
  const beside = section?.checkVisibility() ? $$('[tabindex="0"]', section).find(each => each.checkVisibility()) || section : $('#rows');
  beside.focus();
}

function attempt(work) {
  try {
    work();
  } catch (error) {
    reportError(error);
  }
}

// Resolves to what came of the line; rejects with what is wrong.
async function send(line) {
  if (!connection.send(line)) throw new Error('the program does not answer');
  return answers.expect(line);
}

// For the buttons of the player: what happened is said in words.
async function say(command, params) {
  let words;
  try {
    const { records, words: nothing } = await send(params ? { command, params } : { command });
    const call = records.find(entry => entry.kind === 'device');
    const isHeard = !call || store.isBound(JSON.parse(call.line).binding);
    words = call ? (isHeard ? `${command} sent to the player` : `${command}: no player is bound, nobody listens`) : records.length ? '' : `${command}: ${nothing}`;
    $('#notice').classList.toggle('warning', !isHeard || !records.length);
  } catch (error) {
    words = `${command}: ${error.message}`;
    $('#notice').classList.add('warning');
  }
  setText($('#notice'), visible(words, 300));
}

function showStep(step) {
  showPanel('timeline', false);
  timeline.show(step);
}

function showPanel(name, isChoice = true) {
  if (name === 'timeline' && !isChoice && getComputedStyle($('nav [data-panel=timeline]')).display === 'none') return;
  document.body.dataset.panel = name;
  redraw();
  for (const each of $$('nav button')) press(each, each.dataset.panel === name);
}

function fileName(kind) { return `${(store.file.split('/').at(-1) || 'driver').replace(/\.so$/, '')}-${kind}.ndjson`; }

async function openFile(file) {
  connection.close();
  queue.clear();
  timeline.clear();
  store.restart();
  showConnection(`${visible(file.name, 60)} – load the page again to go on live`, 'file');
  for (const line of recordsIn(await file.text())) queue.push(line);
}

const KEYS = {
  '?': () => $('#keys').showModal(),
  '/': () => { showPanel('timeline', false); timeline.focusSearch(); },
  '>': () => { showPanel('timeline', false); sendLine.focus(); },
  n: () => timeline.find(1),
  N: () => timeline.find(-1),
  Escape: () => details.close(),
};

document.addEventListener('keydown', event => {
  const isTyping = /** @type {HTMLElement} */ (event.target).matches('input:not([type=range]), select, textarea');
  const action = KEYS[event.key];
  if (!action || event.defaultPrevented || event.ctrlKey || event.metaKey || event.altKey || $('dialog[open]') || (isTyping && event.key !== 'Escape')) return;
  if (event.key !== 'Escape') event.preventDefault();
  action();
});

for (const each of $$('nav [data-panel]')) each.onclick = () => { hasChosen = true; showPanel(each.dataset.panel); };
for (const each of $$('[data-ask]')) each.onclick = () => say(QUERY);
$('#help').onclick = () => $('#keys').showModal();
$('#keys button').onclick = () => $('#keys').close();
$('#clear').onclick = () => timeline.clear();
$('#save-session').onclick = () => save(fileName('session'), sessionOf([...timeline.steps.entries()]));
$('#save-case').onclick = () => save(fileName('case'), caseOf([...timeline.steps.entries()]));
$('#open').onclick = () => $('#file').click();
$('#file').onchange = () => { if ($('#file').files[0]) openFile($('#file').files[0]); };
makeSplitter($('#work'), $('#splitter'));
setInterval(() => { if (store.media.playing && !document.hidden) views.player.tick(); }, TICK_MS);
redraw();
