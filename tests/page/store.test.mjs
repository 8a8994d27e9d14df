// What the page makes of the records, without a browser: node --test
import assert from 'node:assert/strict';
import test from 'node:test';

import { difference } from '../../page/difference.js';
import { itemOf } from '../../page/lists.js';
import { Media } from '../../page/media.js';
import { nearest } from '../../page/nearest.js';
import { bare, caseOf, describe, sessionOf } from '../../page/record.js';
import { Resume } from '../../page/resume.js';
import { Search } from '../../page/search.js';
import { lineOf } from '../../page/send.js';
import { recordsIn } from '../../page/session.js';
import { Steps } from '../../page/steps.js';
import { Store } from '../../page/store.js';
import { duration, visible } from '../../page/text.js';
import { indented, parse, pieces } from '../../page/xml.js';

const REGISTERED = ['binding 5001', 'notification LEVEL_CHANGED', 'command TOGGLE', 'request GET_LEVEL', 'variable 1000 LEVEL Text 0 0 '];
const TRAFFIC = [
  { step: 0, at: 0.01, to: 'variable', action: 'added', id: 1000, name: 'LEVEL', value: '0' },
  { step: 1, at: 1, from: 'player', bind: 5001, class: 'LIGHT' },
  { step: 2, at: 2, from: 'player', notify: 'LEVEL_CHANGED', params: { level: '40' } },
  { step: 2, at: 2.00005, to: 'event', id: 0 },
  { step: 2, at: 2.0001, to: 'ui', xml: '<LEVEL_CHANGED><level>40</level></LEVEL_CHANGED>' },
  { step: 3, at: 5, from: 'stdin', notify: 'LEVL_CHANGED', params: { level: '7' } },
  { hint: 'did you mean LEVEL_CHANGED?', step: 3 },
  { driver: 'it speaks' },
  { step: 4, at: 6, from: 'page', command: 'TOGGLE' },
  { step: 4, at: 6.5, to: 'device', binding: 5001, command: 'SET_LEVEL', params: [{ name: 'LEVEL', type: 'INTEGER', value: '0' }] },
  { step: 5, at: 7, to: 'variable', action: 'removed', id: 1000, name: 'LEVEL', value: '0' },
  { ended: 'player', text: 'the player ended' },
];

function finished(steps) {
  while (steps?.next && !steps.next().done);
}

function stepsOf(records) {
  const steps = new Steps();
  for (const record of records) steps.add(record, JSON.stringify(record));
  return steps;
}

function shown(steps) {
  steps.work(() => false);
  return steps.rows.map(entry => `${entry === entry.group.head ? '' : '  '}${entry.step} ${entry.label} ${entry.text}`);
}

function storeOf(records) {
  const store = new Store();
  for (const record of records) finished(store.take(record, 0));
  return store;
}

const ALL = [
  '0 host create, initialize', '  0 variable LEVEL = 0 (added)', '1 player 5001 LIGHT', '2 player LEVEL_CHANGED level=40', '  2 event 0',
  '  2 document <LEVEL_CHANGED><level>40</level></LEVEL_CHANGED>', '3 stdin LEVL_CHANGED level=7', '  3 hint did you mean LEVEL_CHANGED?', '  3 output it speaks',
  '4 page TOGGLE', '  4 device SET_LEVEL LEVEL=0', '5 host destroy', '  5 variable LEVEL = 0 (removed)', '5 end the player ended'];

test('every step has its input, and below it its traffic', () => {
  const steps = stepsOf(TRAFFIC);
  assert.deepEqual(shown(steps), ALL);
  assert.deepEqual(steps.groups.map(({ since, took }) => [since, took]).map(pair => pair.map(each => each && Number(each.toFixed(5)))),
    [[null, 0], [0.99, null], [1, 0.0001], [3, null], [1, 0.5], [1, 0], [null, null]]);
  assert.deepEqual(steps.groups.filter(group => steps.isNothing(group)).map(group => group.step), [1, 3]);
});

test('what a search shows', () => {
  for (const [typed, expected] of [
    ['toggle', ['4 page TOGGLE']],
    ['level -removed kind:variable', ['0 host create, initialize', '  0 variable LEVEL = 0 (added)']],
    ['"LEVEL = 0 (r"', ALL.slice(11, 13)],
    ['step:3-4', ALL.slice(6, 11)],
    ['step:5-', ALL.slice(11)],
    ['kind:stdin', [ALL[6]]],
    ['kind:notify 40', [ALL[3]]],
    ['name:set_', ALL.slice(9, 11)],
    ['<level>40', [ALL[3], ALL[5]]],
    ['(a|b', []],
    [' - ', ALL]]) {
    const steps = stepsOf(TRAFFIC);
    steps.searchFor(typed);
    assert.deepEqual(shown(steps), expected, typed);
    const grown = new Steps();
    grown.searchFor(typed);
    grown.work(() => false);
    for (const record of TRAFFIC) grown.add(record, JSON.stringify(record));
    assert.deepEqual(shown(grown), expected, `${typed}, before the records`);
  }
  assert.deepEqual(new Search('le "e v" name:x').places('le le v xyz'), [[0, 2], [3, 7], [8, 9]]);
});

test('folds, kinds and a hint that comes late', () => {
  const steps = stepsOf(TRAFFIC);
  steps.fold(steps.groups[2], true);
  assert.deepEqual(shown(steps), ALL.filter((_, at) => at !== 4 && at !== 5));
  steps.foldAll(true);
  assert.deepEqual(shown(steps), ALL.filter(line => !line.startsWith(' ')));
  steps.foldAll(false);
  steps.showKind('input', false);
  assert.deepEqual(shown(steps), ALL.filter(line => line.startsWith(' ') || line.includes(' end ')));
  steps.showKind('input', true);
  steps.add({ hint: 'late', step: 1 }, '{}');
  assert.deepEqual(shown(steps).slice(2, 4), [ALL[2], '  1 hint late']);
});

test('the newest 200,000 records are kept', () => {
  const steps = new Steps();
  for (let step = 1; step <= 120000; step += 1) {
    steps.add({ step, at: step, from: 'player', notify: 'A' }, '{"notify":"A"}');
    steps.add({ step, at: step, to: 'event', id: 0 }, '{"to":"event"}');
    steps.trim();
  }
  assert.ok(steps.size >= 200000 && steps.size <= 210000, String(steps.size));
  assert.equal(steps.rows.length, steps.size);
  assert.equal(steps.rows[0], steps.groups[0].head);
  for (let id = 0; id < 250000; id += 1) steps.add({ step: 120001, at: 1, to: 'event', id }, '{"to":"event"}');
  steps.trim();
  assert.ok(steps.size <= 210000, 'one step alone is cut, too');
  assert.equal(shown(steps).length, steps.groups[0].entries.length + 1);
});

test('sessions and cases of what is shown', () => {
  const entries = [...stepsOf(TRAFFIC).entries()];
  assert.equal(sessionOf(entries), ['{"at":1,"bind":5001,"class":"LIGHT"}', '{"at":2,"notify":"LEVEL_CHANGED","params":{"level":"40"}}',
    '{"at":5,"notify":"LEVL_CHANGED","params":{"level":"7"}}', '{"at":6,"command":"TOGGLE"}', ''].join('\n'));
  const lines = caseOf(entries).trimEnd().split('\n');
  assert.deepEqual(lines.map(line => Object.keys(JSON.parse(line))[0]), ['to', 'bind', 'notify', 'to', 'to', 'notify', 'command', 'to']);
  assert.ok(lines.every(line => !/"(step|at|from)"/.test(line)));
  const again = [...recordsIn(`# a case\n\n${lines.join('\r\n')}\nwrong\n`)].map(line => JSON.parse(line));
  assert.deepEqual(again.map(record => record.step), [0, 4, 5, 5, 5, 8, 9, 9, undefined]);
  assert.equal(again.at(-1).page, 'line 11 is no JSON object');
  assert.equal(bare('{"step":3,"at":1.5,"from":"page","command":"A","params":{"step":1}}'), '{"command":"A","params":{"step":1}}');
});

test('what is known of the driver', () => {
  const store = storeOf([{ registered: REGISTERED, reads: { 'command TOGGLE': ['HOW'] }, labels: { 0: 'On' } }, ...TRAFFIC]);
  assert.deepEqual(store.bindings, ['5001']);
  assert.deepEqual([...store.names.values()].map(each => [each.key, each.isRegistered, each.count, [...each.params]]), [
    ['notify LEVEL_CHANGED', true, 1, ['level']], ['command TOGGLE', true, 1, ['HOW']], ['request GET_LEVEL', true, 0, []],
    ['notify LEVL_CHANGED', false, 1, ['level']]]);
  assert.deepEqual([...store.variables.values()].map(each => [each.name, each.value, each.last.step]), [['LEVEL', null, 5]]);
  assert.deepEqual([...store.events.values()].map(each => [each.label, each.count]), [['On', 1]]);
  assert.deepEqual([...store.documents.values()].map(each => [each.name, each.count, each.last.step]), [['LEVEL_CHANGED', 1, 2]]);
  assert.equal(store.ended.text, 'the player ended');
  assert.ok(!store.speaksMedia && !store.handles('notify', 'LEVL_CHANGED'));
  const taken = storeOf([{ registered: ['default notification'] }, { step: 1, notify: 'ANY' }]);
  assert.ok(taken.handles('notify', 'ANY') && taken.names.get('default notification').count === 1);
  const many = new Store();
  for (let id = 0; id < 3000; id += 1) many.take({ to: 'variable', action: 'changed', id, name: `__proto__${id}`, value: 'x' }, 0);
  assert.equal(many.variables.size, 1000);
});

const ui = xml => ({ to: 'ui', xml });
const list = (first, total, items, clear = 'False') => ui(`<list><title>All</title><total_items>${total}</total_items><num_items>${items.length}</num_items><first_item>${first}</first_item>`
  + `<clear>${clear}</clear><items>${items.map(text => `<item><id>${text}</id><type>song</type><text>${text} &amp; &#x263a;</text></item>`).join('')}</items></list>`);

test('what is known of the player', () => {
  const { media, speaksMedia } = storeOf([ui('<CURRENT_SETTINGS><has_play>True</has_play><MEDIA_INFO_CHANGED><media_info_1>&lt;A&gt;</media_info_1></MEDIA_INFO_CHANGED></CURRENT_SETTINGS>'),
    ui('<online_status>True</online_status>'), ui('<play_status>Playing</play_status>'), ui('<PLAY_TIME_CHANGED><elapsed>1:05</elapsed><remaining>0:55</remaining></PLAY_TIME_CHANGED>'),
    ui('<VOLUME><volume>5</volume></VOLUME>'), ui('<play_status>broken')]);
  assert.ok(speaksMedia && media.can('has_play') && media.playing);
  assert.deepEqual({ ...media.values }, { has_play: 'True', media_info_1: '<A>', online: 'True', play_status: 'Playing', elapsed: '1:05', remaining: '0:55' });
  assert.deepEqual(media.times(media.clock.at(10000, true)), { elapsed: '1:15', remaining: '-0:45', share: 0.625, words: '1:15 of 2:00' });
  assert.equal(new Media().times(null).words, 'unknown');
});

test('menus, lists in parts, and the way back', () => {
  const store = storeOf([ui('<menu_list><title>Top</title><num_items>1</num_items><items><item><id>al</id><type>list</type><text>Albums</text></item></items></menu_list>')]);
  const { lists } = store;
  const asks = (request, how) => lists.asks(request, how, 0);
  lists.page.top = 7;
  asks({ command: 'BROWSE', params: { ID: 'al', FIRST: 0, COUNT: 100 } }, 'deeper');
  store.take(list(0, 5, ['a', 'b'], 'True'), 1);
  assert.deepEqual(lists.page.items.map(item => itemOf(item).text), ['a & ☺', 'b & ☺']);
  assert.deepEqual(lists.missing(0, 10), { command: 'BROWSE', params: { ID: 'al', FIRST: 2, COUNT: 100 } });
  asks(lists.missing(3, 4), 'part');
  store.take(list(3, 5, ['d', 'e']), 2);
  assert.deepEqual([0, 1, 2, 3, 4].map(at => lists.page.items[at] && itemOf(lists.page.items[at]).id), ['a', 'b', undefined, 'd', 'e']);
  assert.equal(lists.missing(3, 5), null);
  store.take(ui('<list><title>Other</title><items><item><id/><type/><text/></item></items></list>'), 3);
  assert.deepEqual([lists.pages.length, lists.page.total, lists.page.items], [3, 0, []]);
  assert.ok(lists.back() && lists.back() && !lists.back());
  assert.equal(lists.page.top, 7);
});

test('long documents are read a part at a time, in time that grows with their length', () => {
  const items = Array.from({ length: 200000 }, (_, at) => `s${at}`);
  for (const record of [list(0, 200000, items), ui(`<CURRENT_SETTINGS><shuffle_modes>${'Mode of it,'.repeat(130000)}</shuffle_modes></CURRENT_SETTINGS>`),
    ui(`<CURRENT_SETTINGS><play_status>${'&lt;'.repeat(1 << 20)}</play_status></CURRENT_SETTINGS>`)]) {
    const store = new Store();
    const began = performance.now();
    let parts = 1;
    for (const rest = store.take(record, 0); !rest.next().done;) parts += 1;
    assert.ok(parts > 100 || record.xml.length < 1e7, 'in parts');
    assert.ok(performance.now() - began < 20000);
    assert.ok(store.speaksMedia);
  }
});

test('the name that is meant', () => {
  const names = ['LEVEL_CHANGED', 'LEVEL', 'TOGGLE'];
  for (const [word, expected] of [['LEVL_CHANGED', 'LEVEL_CHANGED'], ['toggle', 'TOGGLE'], ['LEVELS', 'LEVEL'], ['TOG', ''], ['', ''], ['x'.repeat(1e6), '']]) assert.equal(nearest(word, names), expected);
});

test('XML', () => {
  assert.deepEqual(parse('<?xml version="1.0"?><!-- c --><a b="1>2"><c/>x<![CDATA[<y>]]>&#65;&quot;</a>'), { name: 'a', text: 'x<y>A"', children: [{ name: 'c', text: '', children: [] }] });
  for (const wrong of ['', 'text', '<a>', '<a></b>', '<a/><b/>', '<a', '<'.repeat(1 << 20), '<a>'.repeat(1000), '</a>']) assert.equal(parse(wrong), null, wrong.slice(0, 20));
  assert.equal(indented('<a><b>t</b><c/><d></d></a>', 1e6), '<a>\n  <b>t</b>\n  <c/>\n  <d></d>\n</a>');
  assert.equal([...pieces('x <a>y')].map(([piece]) => piece).join('|'), 'x |<a>|y');
});

test('texts, lines to send, differences', () => {
  assert.equal(visible('a\u202eb\n\u0000\u2066'), 'a⟦RLO⟧b↵␀⟦LRI⟧');
  assert.equal(visible('a\n\tb', 9, true), 'a\n\tb');
  assert.deepEqual([0.0000741, 0.0123, 1.5, 75].map(duration), ['74 µs', '12.3 ms', '1.50 s', '75.00 s']);
  for (const [verb, typed, line] of [['command', 'A', { command: 'A' }], ['command', 'A N=-5 T="5" U="a \\"b\\"" V=', { command: 'A', params: { N: -5, T: '5', U: 'a "b"', V: '' } }],
    ['notify', 'A level=5', { notify: 'A', params: { level: '5' } }]]) assert.deepEqual(lineOf(verb, typed), line);
  for (const wrong of ['', 'A B', '=5']) assert.throws(() => lineOf('command', wrong), /name|NAME/);
  assert.equal(difference([...'abcde'], [...'abxdey']).map(pair => pair.join('')).join(' '), ' a  b -c +x  d  e +y');
  const records = [{ to: 'answer', request: 'R', xml: null }, { to: 'log', level: 3, text: { bytes: 'AA==' } }, { missing: 5 }, { other: 1 }, { rooms: { 5: 3 } }];
  assert.deepEqual(records.map(each => describe(each)).map(each => `${each.kind} ${each.text}`),
    ['answer R nobody answered', 'log bytes:AA==', 'missing 5 records before this are missing', 'page {"other":1}', 'input 5=3']);
});

test('after a lost connection nothing is taken twice', () => {
  const first = ['{"driver":"a"}', '{"at":1}', '{"at":2}', '{"hint":"h"}', '{"hint":"h"}'];
  for (const [again, verdicts] of [
    [first, 'skip skip skip skip skip'],
    [[...first.slice(2), '{"hint":"h"}', '{"at":3}'], 'skip skip skip take take'],
    [[...first.slice(1, 4), '{"at":3}', '{"hint":"h"}'], 'skip skip skip take take'],
    [['{"at":5}', '{"at":6}'], 'take take'],
    [['{"at":0.5}', '{"at":0.6}', '{"hint":"h"}'], 'anew take take']]) {
    const resume = new Resume();
    const judge = line => resume.judge(JSON.parse(line), line, each => first.includes(each));
    assert.deepEqual(first.map(judge), first.map(() => 'take'));
    resume.lost();
    assert.equal(again.map(judge).join(' '), verdicts, again.join());
  }
});
