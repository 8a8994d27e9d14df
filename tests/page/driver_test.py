#!/usr/bin/python3
"""What the page says of a driver, and the line that sends."""

from browser import until
from page_case import LIGHT, PageCase, both, run, ui

CELLS = 'return [...document.querySelectorAll(args[0] + " tbody tr")].map(row => [...row.children].map(cell => cell.textContent.trim()))'


@both
class Driver(PageCase):
    def table(self, css, *rows):
        until(lambda: f'{rows}, but {self.page.run(CELLS, css)}', lambda: self.page.run(CELLS, css) == [list(row) for row in rows])

    def typed(self, text, *keys):
        self.page.run('document.querySelector("#line").focus()')
        self.page.write(text)
        self.page.press(*keys)

    def line(self):
        return self.page.run('return [document.querySelector("#verb").value, document.querySelector("#line").value]')

    def test_what_the_driver_is(self):
        self.light()
        self.page.shows('h1', 'light.so')
        self.page.shows('#driver-file', '/home/me/light.so')
        self.page.shows('#devices', 'Bound: LIGHT at 5001')
        self.page.shows('nav button')  # a light has one panel
        self.table('#variables', ['LIGHT_LEVEL 1000', '40', 'step 2'])
        self.table('#events', ['On 0', '1×', 'step 2'])
        self.table('#documents', ['LIGHT_LEVEL_CHANGED', '1×', 'step 2'])
        self.table('#names', ['LIGHT_LEVEL_CHANGED notification', '1×', 'step 2'], ['TOGGLE command', '0×', ''], ['GET_LIGHT_LEVEL request', '0×', ''],
                   ['LIGHT_LEVL_CHANGED notification', '1× unknown', 'step 3'])
        self.page.run('document.querySelector("#variables .link").focus()')
        self.say(*self.traffic.level(0), {**LIGHT, 'registered': LIGHT['registered'][:-1] + ['request NEW'], 'file': '/home/me/new.so'})
        self.table('#variables', ['LIGHT_LEVEL 1000', '0', 'step 4'])
        self.page.shows('h1', 'new.so')
        self.assertEqual(self.page.run('return document.activeElement.textContent'), 'step 4')
        self.page.press('Enter')
        self.page.shows('#rows .active .text', 'LIGHT_LEVEL_CHANGED level=0')

    def test_send(self):
        self.light()
        self.typed('tog')
        self.page.shows('#offers li', 'TOGGLE command')
        self.page.press('ArrowDown', 'Enter')
        self.page.shows('#offers li', 'TOGGLE SPEED= parameter', 'TOGGLE ROOM_ID= parameter')
        self.typed('SPEED=5 TEXT="a b" ROOM_ID="5"', 'Enter')
        self.heard({'command': 'TOGGLE', 'params': {'SPEED': 5, 'TEXT': 'a b', 'ROOM_ID': '5'}})
        self.say(*self.traffic.caused(self.served.heard[0], {'to': 'device', 'binding': 5001, 'command': 'SET_LEVEL', 'params': []}, sender='page'))
        self.page.shows('#answer .device', 'device SET_LEVEL')
        self.typed('GET_LIGHT_LEVEL')
        self.assertEqual(self.line(), ['request', 'GET_LIGHT_LEVEL'])
        self.page.press('Escape', 'Enter')
        until('the second', lambda: len(self.served.heard) == 2)
        self.say(*self.traffic.caused(self.served.heard[1], sender='page'))
        until('nothing', lambda: 'nothing came of it' in self.page.texts('#answer')[0])
        self.page.press('ArrowUp', 'ArrowUp')
        self.assertEqual(self.line(), ['command', 'TOGGLE SPEED=5 TEXT="a b" ROOM_ID="5"'])
        self.page.press('ArrowDown')
        self.assertEqual(self.line(), ['request', 'GET_LIGHT_LEVEL'])
        self.page.press('ArrowDown')
        for typed, text in [('A B', 'B is no NAME=VALUE'), ('', 'What is its name?')]:
            self.page.run('document.querySelector("#line").value = ""')
            self.typed(typed, 'Escape', 'Enter')
            self.page.shows('#answer', text)
        self.page.run('document.querySelector("#line").value = ""')
        self.typed('WRONG', 'Enter')
        until('the third', lambda: len(self.served.heard) == 3)
        self.say({'error': 'the line is wrong'})
        self.page.shows('#answer', 'the line is wrong')
        verbs = lambda: self.page.run('return [...document.querySelector("#verb").options].map(option => option.value)')
        self.assertEqual(verbs(), ['command', 'request'])
        self.say({**LIGHT, 'notify': True})
        until('notifications', lambda: verbs() == ['command', 'request', 'notify'])
        self.page.click('#names .link')
        self.assertEqual(self.line(), ['notify', 'LIGHT_LEVEL_CHANGED'])

    def test_nothing_is_sent_without_a_person(self):
        self.serve({'registered': ['command QUERY_CURRENT_SETTINGS']}, *self.traffic.caused({'bind': 5001, 'capabilities': {'has_play': True}}, ui('<online_status>True</online_status>')))
        self.page.shows('#online', 'Online')
        self.served.stop()
        self.served.start()
        until('the page again', lambda: len(self.served.clients) == 2)
        self.page.shows('#connection', 'Connected')
        self.heard()
        self.page.click('[data-ask]')
        self.heard({'command': 'QUERY_CURRENT_SETTINGS'})


if __name__ == '__main__':
    run()
