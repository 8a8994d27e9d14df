#!/usr/bin/python3
"""The time line: steps, search, details, what is copied, saved and opened, what comes after the end."""

import json

from browser import until
from page_case import LIGHT, PageCase, both, compact, run, ui

KINDS = 'return Object.fromEntries([...document.querySelectorAll("#kinds button")].map(e => [...e.children].map(c => c.textContent)))'
OPEN = '''const data = new DataTransfer(); data.items.add(new File([args[0]], 'it.ndjson'));
const input = document.querySelector('#file'); input.files = data.files; input.dispatchEvent(new Event('change'))'''
TAKEN = '''navigator.clipboard.writeText = async text => { window.copied = text };
URL.createObjectURL = blob => { window.saved = blob; return '#'; };
HTMLAnchorElement.prototype.click = function() { window.savedAs = this.download; }'''
WRONG = 'notify LIGHT_LEVL_CHANGED level=70 nothing came of it: no handler'
LEVEL_40 = ['notify LIGHT_LEVEL_CHANGED level=40', '0', 'LIGHT_LEVEL = 40', '<LIGHT_LEVEL_CHANGED><level>40</level></LIGHT_LEVEL_CHANGED>']
ROWS = ['create, initialize', 'LIGHT_LEVEL = 0 (added)', 'bind 5001 LIGHT nothing came of it', *LEVEL_40, WRONG, 'did you mean LIGHT_LEVEL_CHANGED?']


@both
class Timeline(PageCase):
    def rows(self):
        return self.page.run('return [...document.querySelectorAll("#rows .body .row .what")].map(e => [...e.children].map(c => c.textContent).join(" "))')

    def search(self, typed):
        self.page.run('const input = document.querySelector("#search"); input.value = args[0]; input.dispatchEvent(new Event("input"))', typed)

    def test_steps_and_what_came_of_them(self):
        self.light()
        self.until_rows(*ROWS)
        cells = self.page.run('return [...document.querySelectorAll("#rows .body .head")].map(e => ["step", "at", "since", "took", "kind"].map(c => e.querySelector("." + c).textContent))')
        self.assertEqual(cells, [['0', '0.010', '', '', 'host'], ['1', '0.510', '+500 ms', '', 'player'], ['2', '1.010', '+500 ms', '300 µs', 'player'],
                                 ['3', '1.511', '+500 ms', '', 'stdin']])
        self.assertEqual(self.page.run(KINDS), {'variable': '2', 'input': '3', 'event': '1', 'document': '1', 'hint': '1'})
        self.page.click('#rows .body .head .step', 2)
        self.until_rows(*ROWS[:4], *ROWS[7:])
        self.page.click('#fold')
        self.until_rows(ROWS[0], ROWS[2], ROWS[3], WRONG)
        self.page.click('#fold')
        self.page.click('#kinds .event')
        self.until_rows(*[row for row in ROWS if row != '0'])
        self.page.click('#clear')
        self.until_rows()
        self.page.shows('#nothing', 'Nothing has happened yet.')

    def test_search(self):
        self.light()
        for typed, found, rows in [('70', 1, [WRONG]), ('"light_level = 40"', 1, [LEVEL_40[0], LEVEL_40[2]]), ('kind:hint', 1, [WRONG, ROWS[-1]]),
                                   ('level -name:LIGHT_LEVEL_CHANGED step:1-', 3, [LEVEL_40[0], LEVEL_40[2], *ROWS[-2:]]), ('nowhere', 0, [])]:
            self.search(typed)
            self.until_rows(*rows)
            self.page.shows('#counts', f'{found} found of 8')
        self.page.shows('#nothing', 'No record matches.')
        self.search('level 40')
        self.page.shows('#rows mark', 'LEVEL', 'level', '40', 'LEVEL', '40', 'LEVEL', 'level', '40', 'level', 'LEVEL')
        self.page.click('#only')
        self.until_rows(*ROWS)
        for key, expected in [('Enter', LEVEL_40[0].removeprefix('notify ')), ('Enter', LEVEL_40[2]), ('Shift+Enter', LEVEL_40[0].removeprefix('notify ')), ('Shift+Enter', LEVEL_40[3])]:
            self.page.run('document.querySelector("#search").focus()')
            self.page.press(key)
            self.page.shows('#rows .active .text', expected)
        self.page.click('#only')
        self.page.press('/', 'Escape')
        self.page.shows('#counts', '8 records')

    def test_details_and_what_is_copied(self):
        self.light()
        self.page.run(TAKEN)
        more = self.traffic.level(60)
        self.say(*more)
        until('all rows', lambda: len(self.rows()) == len(ROWS) + len(more))
        self.page.click('#rows .body .what', 7)
        self.page.shows('#details .facts', 'at 1.510700 s · 500 ms after the step before · nothing came of it: no handler – did you mean LIGHT_LEVEL_CHANGED?')
        self.page.click('#rows .body .ui', 1)
        self.page.shows('#details h2', 'Step 4, document')
        self.page.shows('#details dd pre', '<LIGHT_LEVEL_CHANGED>\n  <level>60</level>\n</LIGHT_LEVEL_CHANGED>')
        self.page.shows('#details .difference > *', '-   <level>40</level>\n', '+   <level>60</level>\n')
        for what, expected in [('json', json.dumps(more[3])), ('xml', more[3]['xml']),
                               ('line', json.dumps({key: more[0][key] for key in ('notify', 'params')}).replace('{', '{ ', 1).replace('{ ', '{', 1))]:
            self.page.click(f'#details [data-copy={what}]')
            until('copied', lambda: self.page.texts('#copied')[0].endswith('copied'))
            self.assertEqual(json.loads(self.page.run('return copied')) if what != 'xml' else self.page.run('return copied'), json.loads(expected) if what != 'xml' else expected)
        self.page.press('ArrowUp')
        self.page.run('document.querySelector("#rows").focus()')
        self.page.press('ArrowUp', 'Shift+ArrowUp', 'Shift+ArrowUp', 'Shift+ArrowUp', 'Shift+ArrowUp')
        self.page.shows('#details h2', 'Steps 3 to 4')
        self.page.click('#details [data-copy=case]')
        until('a case', lambda: len((self.page.run('return window.copied') or '').split('\n')) == 6)
        self.assertNotIn('"step"', self.page.run('return copied'))
        self.page.press('Escape')
        for key, size in [('ArrowUp', 50), ('ArrowDown', 45)]:
            self.page.press('Escape')
            self.page.click('#rows .body .variable', 2)  # low, and not the newest
            self.page.run('document.querySelector("#splitter").focus()')
            self.page.press(key)
            self.assertEqual(self.page.run('return Number(document.querySelector("#splitter").ariaValueNow)'), size)
            seen = 'const row = document.querySelector("#rows .active").getBoundingClientRect(), box = document.querySelector("#rows").getBoundingClientRect(); return row.bottom <= box.bottom + 1'
            until('the row in sight', lambda: self.page.run(seen))

    def test_pictures_and_foreign_texts(self):
        long = '<' * (1 << 20)
        self.serve(LIGHT, *self.traffic.caused({'notify': 'P'}, {'to': 'file', 'path': 'ipod/1/x.jpg', 'bytes': 5}),
                   *self.traffic.caused({'notify': 'L', 'params': {'x': long}}, ui(f'<L><x>{"&lt;" * (1 << 20)}</x></L>')),
                   *self.traffic.caused({'notify': 'a\u202eb', 'params': {'<img src=x onerror=alert(1)>': '\u2066\n\u0000'}}, {'to': 'log', 'level': 3, 'text': {'bytes': '/w=='}}))
        self.page.shows('#rows .log .text', 'bytes:/w==')
        self.assertIn('notify a⟦RLO⟧b <img src=x onerror=alert(1)>=⟦LRI⟧↵␀', self.rows())
        self.assertEqual(self.page.run('return document.querySelectorAll("#rows img, #details img, body script").length'), 0)
        self.page.click('#rows .body .ui')
        until('its beginning', lambda: len(self.page.texts('#details pre')[0]) == 20000)
        self.page.click('#details .long button')
        until('more of it', lambda: len(self.page.texts('#details .long:first-child pre')) == 2)
        self.page.click('#rows .body .file')
        until('no picture there', lambda: self.page.texts('#details h2') == ['Step 1, file'] and not self.page.texts('#details img'))
        self.page.errors.clear()

    def test_saved_and_opened(self):
        self.light()
        self.page.run(TAKEN)
        self.page.click('#save-session')
        session = self.page.run('return saved.text()').splitlines()
        self.assertEqual([set(json.loads(line)) for line in session], [{'at', 'bind', 'class'}, {'at', 'notify', 'params'}, {'at', 'notify', 'params'}])
        self.page.click('#save-case')
        self.assertEqual(self.page.run('return savedAs'), 'light-case.ndjson')
        case = self.page.run('return saved.text()')
        self.assertEqual([next(iter(json.loads(line))) for line in case.splitlines()], ['to', 'bind', 'notify', 'to', 'to', 'to', 'notify'])
        self.page.run(OPEN, f'# a case\n{case}oh\n')
        self.until_rows('create, initialize', 'LIGHT_LEVEL = 0 (added)', 'bind 5001 LIGHT nothing came of it', *LEVEL_40, 'notify LIGHT_LEVL_CHANGED level=70 nothing came of it',
                        'line 9 is no JSON object')
        self.assertIn('it.ndjson', self.page.texts('#connection')[0])
        self.say(*self.traffic.level(90))
        self.page.shows('#kinds .event b', '1')

    def test_ten_thousand_rows_follow_the_newest(self):
        self.serve(LIGHT, *[each for number in range(5000) for each in self.traffic.caused({'notify': f'N{number}'}, {'to': 'event', 'id': number})])
        until('the newest', lambda: self.rows()[-1:] == ['4999'])
        self.page.shows('#counts', '10,000 records')
        self.assertLess(len(self.rows()), 70)
        self.page.run('document.querySelector("#rows").scrollTop = 0')
        until('the oldest', lambda: 'notify N0' in self.rows())
        self.say(*self.traffic.caused({'notify': 'LAST'}))
        self.page.shows('#counts', '10,001 records')
        self.assertIn('notify N0', self.rows())
        self.page.click('#newest')
        until('the last', lambda: self.rows()[-1].startswith('notify LAST'))

    def test_after_the_end_and_another_program(self):
        self.light()
        self.say({'ended': 'driver', 'text': 'the driver crashed (SIGSEGV) in step 3'})
        self.until_rows(*ROWS, 'the driver crashed (SIGSEGV) in step 3')
        self.page.shows('#connection', 'Ended')
        self.served.stop()
        self.assertEqual(self.rows()[-1], 'the driver crashed (SIGSEGV) in step 3')
        history = self.served.history
        self.served.history = [*history, *self.traffic.level(50)]
        self.served.start()
        self.page.shows('#connection', 'Connected')
        self.until_rows(*ROWS, 'the driver crashed (SIGSEGV) in step 3', *[row.replace('40', '50') for row in LEVEL_40])
        self.served.stop()
        self.traffic.at = 0.02
        self.served.history = [LIGHT, self.traffic.timed({'to': 'variable', 'action': 'added', 'id': 1000, 'name': 'LIGHT_LEVEL', 'value': '9'})]
        self.served.start()
        until('a new life', lambda: self.rows()[-3:] == ['connected to another program', 'create, initialize', 'LIGHT_LEVEL = 9 (added)'] or self.rows()[-1:] == ['LIGHT_LEVEL = 9 (added)'])
        self.page.shows('#variables td:nth-child(2)', '9')

    def test_records_that_are_no_objects_stop_nothing(self):
        self.serve(LIGHT)
        self.say('no json', '5', 'null', '{"to":"ui"}', '{"to":"ui","xml":5}', '{"registered":5}', '{"step":"x","to":"rooms","params":[null]}', compact({'unknown': 'kind'}),
                 *self.traffic.level(40))
        until('the level', lambda: self.rows()[-1:] == LEVEL_40[-1:])
        self.page.errors.clear()


if __name__ == '__main__':
    run()
