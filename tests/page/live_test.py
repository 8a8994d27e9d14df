#!/usr/bin/python3
"""The page with the real program: live_test.py DRIVERHOST MPD_PLAYER LIGHT [TEST...]"""

import os
import pathlib
import subprocess
import sys
import tempfile

from browser import until
from page_case import TOP, PageCase, both, run
from timeline_test import TAKEN

sys.path.insert(1, str(TOP / 'tests'))
from players_test import Mpd  # noqa: E402
from served import Program  # noqa: E402

DRIVERHOST, MPD_PLAYER, LIGHT = (os.path.abspath(sys.argv.pop(1)) for _ in range(3))
Program.driverhost = DRIVERHOST
LAMP = str(TOP / 'tests' / 'page' / 'lamp.py')


@both
class Live(PageCase):
    def program(self, *options):
        program = Program(0, *options)
        self.addCleanup(program.stop)
        self.page.open(program.url)
        self.page.shows('#connection', 'Connected')
        self.addCleanup(lambda: self.assertEqual(self.page.errors, []))
        return program

    def test_a_light_that_does_nothing(self):
        """Why a misspelt notification did nothing; TOGGLE, the variable, and a case of all that passes."""
        self.program('--driver', LIGHT, '--', LAMP)
        until('the reason', lambda: any('LIGHT_LEVL_CHANGED' in row and 'nothing came of it: no handler' in row for row in self.page.texts('#rows .head .what')))
        self.page.shows('#variables td:nth-child(2)', '40')
        self.page.run('document.querySelector("#line").focus()')
        self.page.write('TOGGLE')
        self.page.press('Escape', 'Enter')
        self.page.shows('#variables td:nth-child(2)', '0')
        until('the call', lambda: 'SET_LEVEL LEVEL=0' in self.page.texts('#answer')[0])
        self.page.run(TAKEN)
        self.page.click('#save-session')
        said = subprocess.run([DRIVERHOST, 'replay', '--driver', LIGHT, '-'], input=self.page.run('return saved.text()'), capture_output=True, text=True, check=False)
        self.assertIn('5 lines', said.stderr)
        self.page.click('#save-case')
        with tempfile.NamedTemporaryFile('w', suffix='.ndjson') as case:
            case.write(self.page.run('return saved.text()'))
            case.flush()
            said = subprocess.run([DRIVERHOST, 'check', '--driver', LIGHT, case.name], stdout=subprocess.PIPE, text=True, check=False)
            self.assertEqual((said.returncode, said.stdout.split('(')[1]), (0, '5 lines, 8 records)\n'), said.stdout)

    def test_what_is_wrong_is_said(self):
        self.program('--driver', LIGHT)
        self.page.run('document.querySelector("#line").focus()')
        self.page.write('TOGGLE A=5')
        self.page.press('Escape', 'Enter')
        until('the call', lambda: 'SET_LEVEL' in self.page.texts('#answer')[0])

    def test_after_the_program_has_ended(self):
        program = self.program('--driver', LIGHT, '--', LAMP)
        until('the reason', lambda: self.page.texts('#rows .nothing'))
        rows = len(self.page.texts('#rows .row'))
        program.stop()
        until('the end', lambda: self.page.texts('#connection')[0] != 'Connected')
        self.assertGreaterEqual(len(self.page.texts('#rows .row')), rows)

    def test_what_mpd_says(self):
        with tempfile.TemporaryDirectory() as top:
            mpd = Mpd(pathlib.Path(top))
            self.addCleanup(mpd.stop)
            self.program('--', MPD_PLAYER, '--host', str(mpd.host))
            says = lambda *words: subprocess.run(['mpc', '--host', mpd.host, *words], stdout=subprocess.PIPE, text=True, check=True).stdout.strip()
            status = lambda: says('status', '%state% %songpos% %random% %repeat% %single%')
            self.page.shows('#queue', '0 of 4')
            self.page.click('[data-ask]')
            for what, act, expected, css, *texts in [
                    ('lists', lambda: self.page.click('nav [data-panel=browse]'), 'paused 0 off off off', 'nav [aria-pressed=true]', 'Browse'),
                    ('menu', lambda: self.page.click('#no-list button'), 'paused 0 off off off', '#list-title', 'Music player'),
                    ('queue', lambda: self.click_item('Queue'), 'paused 0 off off off', '#list-title', 'Queue'),
                    ('song', lambda: self.click_item('くらげ – 水無瀬'), 'playing 3 off off off', '#list .playing .text', 'くらげ – 水無瀬'),
                    ('player', lambda: self.page.click('nav [data-panel=player]'), 'playing 3 off off off', '#info dd', 'くらげ', '水無瀬', '夜'),
                    ('pause', lambda: self.page.click('#play'), 'paused 3 off off off', '#play-status', 'Paused'),
                    ('previous', lambda: self.page.click('[data-command=SKIP_REV]'), 'playing 2 off off off', '#queue', '2 of 4'),
                    ('shuffle', lambda: self.page.click('[data-command=SET_SHUFFLE]'), 'playing 2 on off off', '#info dd', '"B" \\ <&>', 'Élodie', 'Café'),
                    ('stop', lambda: self.page.click('[data-command=STOP]'), 'paused 2 on off off', '#play-status', 'Stopped')]:
                with self.subTest(what):
                    act()
                    self.page.shows(css, *texts)
                    until(lambda: f'{expected}, but {status()}', lambda: status() == expected)
            says('play', '1')
            self.page.shows('#info dd', 'Où ?', 'Élodie; A/C 5%', 'Café')
            until('its picture', lambda: self.page.run('return document.querySelector("#cover img")?.naturalHeight') == 64)
            self.page.click('#seek')
            until('the middle', lambda: says('status', '%currenttime%').startswith('2:'))
            until('it here', lambda: self.page.texts('#elapsed')[0].startswith('2:'))
            mpd.stop()
            self.page.shows('#online', 'Offline')

    def click_item(self, text):
        until(text, lambda: text in self.page.texts('#list .text'))
        self.page.click('#list .item', self.page.texts('#list .text').index(text))


if __name__ == '__main__':
    run()
