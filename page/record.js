// @ts-check
import { rootName, looksLikeDocument } from './xml.js';
import { plural, valueText } from './text.js';

export const INPUT_VERBS = ['notify', 'command', 'request', 'bind', 'unbind', 'rooms', 'persist', 'restart', 'start'];

const assigned = params => Object.entries(params || {}).map(([name, value]) => ` ${name}=${valueText(value)}`).join('');
const listed = params => (params || []).map(each => ` ${each.name}=${valueText(each.value)}`).join('');
const called = record => [record.command, record.command + listed(record.params)];
const text = key => record => ['', valueText(record[key])];

// What the host and the page tell beside inputs and traffic, by its key.
const TOLD = {
  hint: text('hint'),
  driver: text('driver'),
  ended: record => [record.ended, record.text || `the ${record.ended} ended`],
  missing: record => ['', `${plural(record.missing, 'record')} before this are missing`],
  error: text('error'),
  page: text('page'),
};

// Traffic by where it goes: the name and the text of a record.
const TRAFFIC = {
  ui: record => [rootName(record.xml || ''), valueText(record.xml)],
  answer: record => [record.request, `${record.request} ${record.xml === null ? 'nobody answered' : valueText(record.xml)}`],
  event: record => [valueText(record.label), `${record.id}${record.label ? ` ${record.label}` : ''}`],
  variable: record => [record.name, `${record.name} = ${valueText(record.value)}${record.action === 'changed' ? '' : ` (${record.action})`}`],
  rooms: called,
  device: called,
  file: record => [record.path, `${record.path}, ${record.bytes} bytes${record.width ? `, ${record.width} × ${record.height}` : ''}`],
  log: text('text'),
  state: text('xml'),
};

const LABELS = { ui: 'document', missing: 'missing', driver: 'output', ended: 'end' };
export const labelOf = kind => LABELS[kind] || kind;

const INPUT_TEXTS = {
  bind: record => `${record.bind}${record.class ? ` ${record.class}` : ''}${assigned(record.capabilities)}`,
  unbind: record => `${record.unbind}`,
  rooms: record => assigned(record.rooms).trim(),
  persist: () => '',
  restart: () => '',
  start: record => valueText(record.config),
};

function inputText(record, verb) {
  if (INPUT_TEXTS[verb]) return INPUT_TEXTS[verb](record);
  return record[verb] + (record.xml === undefined ? assigned(record.params) : ` ${valueText(record.xml)}`);
}

// What a record is: {kind, name, text}, and of an input its verb and where it came from.
export function describe(record) {
  const traffic = TRAFFIC[record.to];
  if (traffic) {
    const [name, words] = traffic(record);
    return { kind: record.to, name: String(name), text: words };
  }
  const verb = record.to === undefined ? INPUT_VERBS.find(key => key in record) : undefined;
  if (verb) return { kind: 'input', verb, from: record.from || 'session', name: typeof record[verb] === 'string' ? record[verb] : '', text: inputText(record, verb) };
  const told = Object.keys(TOLD).find(key => key in record);
  const [name, words] = told ? TOLD[told](record) : ['', JSON.stringify(record)];
  return { kind: told || 'page', name, text: words };
}

export const isTraffic = kind => kind in TRAFFIC;
export const isDocument = record => (record.to === 'ui' || record.to === 'answer') && typeof record.xml === 'string' && looksLikeDocument(record.xml);

// A line as a session or a case holds it: without step, time and sender, everything else as it came.
export const bare = line => line.replace(/^\{"step": ?\d+, ?(?:"at": ?[\d.]+,? ?)?(?:"from": ?"\w*",? ?)?/, '{');
const timed = line => line.replace(/^\{"step": ?\d+, ?("at": ?[\d.]+, ?)?(?:"from": ?"\w*",? ?)?/, '{$1');

// Entries as a session with its times, or as a case. What came without an input (the driver's destruction) and
// what is no traffic belongs to neither.
export function sessionOf(entries) {
  return entries.filter(entry => entry.kind === 'input' && entry.line).map(entry => `${timed(entry.line)}\n`).join('');
}
export function caseOf(entries) {
  return entries.filter(entry => entry.line && (entry.kind === 'input' || (isTraffic(entry.kind) && (entry.group.input || entry.group.step === 0))))
    .map(entry => `${bare(entry.line)}\n`).join('');
}
