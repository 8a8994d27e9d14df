#!/usr/bin/python3
"""The page in a real browser, and its server over plain HTTP: page_test.py DRIVERHOST MPD_PLAYER [TEST...]"""

import base64
import contextlib
import http.client
import json
import os
import pathlib
import queue
import re
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest

from selenium import webdriver
from selenium.common.exceptions import WebDriverException
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

from players_test import Mpd

DRIVERHOST, MPD_PLAYER = (os.path.abspath(sys.argv.pop(1)) for _ in range(2))
SESSIONS = os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', 'sessions')
CHROMIUM = ('--headless=new --no-sandbox --disable-gpu --disable-quic --no-first-run --disable-dev-shm-usage '
            '--disable-background-networking --disable-component-update --disable-sync --window-size=1280,800').split()
FLAGS = [f'has_{each}' for each in 'shuffle repeat play pause stop skip_fwd skip_rev scan_fwd scan_rev menu search browse'.split()]


def until(what, check):
    """Repeats the check until its answer is true, and returns that; fails after a generous time."""
    end = time.monotonic() + 60
    while True:
        answer = check()
        if answer:
            return answer
        assert time.monotonic() < end, f'never came: {what() if callable(what) else what}'
        time.sleep(0.01)


def notify(name, **params):
    return {'notify': name, 'params': params}


def bind(**capabilities):
    return {'bind': 5001, 'class': 'MUSIC_PLAYER', 'capabilities': {**dict.fromkeys(FLAGS, True), **capabilities}}


def menu_or_list(kind, items, **header):
    count = str(len(items))
    sizes = {'num_items': count} if kind == 'MENU' else {'total_items': count, 'num_items': count, 'first': '0', 'clear': 'True'}
    yield notify(f'NEW_{kind}', **{**sizes, **header})
    for number, (ident, sort, text) in enumerate(items, 1):
        yield notify(f'ADD_{kind}_ITEM', id=ident, type=sort, text=text, last=str(number == len(items)))


class Program:
    """driverhost, fed by its player, if any, and through its standard input."""

    def __init__(self, port=0, *player, mode='live'):
        self.root = tempfile.TemporaryDirectory()
        self.process = subprocess.Popen(
            [DRIVERHOST, mode, '--json', '--http', str(port), '--image-root', self.root.name, *player],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.records = queue.Queue()
        self.told = []
        for take in (self.read_records, self.read_told):
            threading.Thread(target=take, daemon=True).start()
        self.url = until('the address', lambda: next(iter(re.findall('http://[^ \n]+', ''.join(self.told))), None))
        self.port = int(re.search(r':(\d+)/', self.url)[1])

    def read_records(self):
        for line in self.process.stdout:
            self.records.put(json.loads(line))

    def read_told(self):
        for line in self.process.stderr:
            self.told.append(line.decode())

    def say(self, *lines):
        self.process.stdin.write(''.join(json.dumps(line) + '\n' for line in lines).encode())
        self.process.stdin.flush()

    def device(self):
        """The next call to the player: its name and its parameters."""
        while True:
            record = self.records.get(timeout=60)
            if record['to'] == 'device':
                return record['command'], {each['name']: each['value'] for each in record['params']}

    def ask(self, method, path, body=None, **headers):
        connection = http.client.HTTPConnection('127.0.0.1', self.port, timeout=60)
        with contextlib.closing(connection):
            connection.putrequest(method, path, skip_host='Host' in headers)
            if body is not None:
                headers.setdefault('Content_Length', str(len(body)))
            for name, value in headers.items():
                connection.putheader(name.replace('_', '-'), value)
            connection.endheaders(body)
            answer = connection.getresponse()
            return answer.status, answer.headers, answer.read()

    def post(self, line, **headers):
        body = line if isinstance(line, bytes) else json.dumps(line).encode()
        return self.ask('POST', '/session', body, **{'Content_Type': 'application/json', **headers})

    def listen(self):
        """A connection that hears the traffic, and the status of the answer."""
        client = socket.create_connection(('127.0.0.1', self.port), 60)
        client.sendall(f'GET /traffic HTTP/1.1\r\nHost: 127.0.0.1:{self.port}\r\n\r\n'.encode())
        stream = client.makefile('rb')
        return client, stream, int(stream.readline().split()[1])

    def stop(self):
        self.process.terminate()
        status = self.process.wait(60)
        for pipe in (self.process.stdin, self.process.stdout, self.process.stderr):
            with contextlib.suppress(OSError):
                pipe.close()
        self.root.cleanup()
        return status


class Served(unittest.TestCase):
    status = 0

    def setUp(self):
        self.program = Program()
        self.addCleanup(lambda: self.assertEqual(self.program.stop(), self.status))


class Http(Served):
    def test_requests(self):
        host = f'127.0.0.1:{self.program.port}'
        root = self.program.root.name
        outside = tempfile.NamedTemporaryFile(suffix='.jpg')
        self.addCleanup(outside.close)
        for name, text in (('in.jpg', 'inside'), ('ö &.jpg', 'named')):
            with open(f'{root}/{name}', 'w', encoding='utf-8') as file:
                file.write(text)
        os.symlink('in.jpg', f'{root}/link.jpg')
        os.symlink(outside.name, f'{root}/out.jpg')
        os.symlink('/', f'{root}/slash')
        os.mkfifo(f'{root}/pipe.jpg')
        json_type = {'Content_Type': 'application/json'}
        query = b'{"command":"QUERY_CURRENT_SETTINGS"}'
        cases = [
            ('GET', '/', None, {}, 200),
            ('GET', '/?x', None, {}, 200),
            ('GET', '/style.css', None, {}, 200),
            ('GET', '/', None, {'Host': host.replace('127.0.0.1', 'localhost')}, 200),
            ('GET', '/', None, {'Host': 'evil.example'}, 403),
            ('GET', '/', None, {'Host': host + '0'}, 403),
            ('GET', '/', None, {'Host': '127.0.0.1'}, 403),
            ('GET', '/', None, {'Origin': f'http://{host}'}, 200),
            ('GET', '/', None, {'Origin': 'http://evil.example'}, 403),
            ('GET', '/traffic', None, {'Origin': 'null'}, 403),
            ('GET', '/images/in.jpg', None, {}, 200),
            ('GET', '/images/in.jpg?7', None, {}, 200),
            ('GET', '/images/%C3%B6%20%26.jpg', None, {}, 200),
            ('GET', '/images/link.jpg', None, {}, 200),
            ('GET', '/images/out.jpg', None, {}, 404),
            ('GET', '/images/slash/etc/passwd', None, {}, 404),
            ('GET', '/images/pipe.jpg', None, {}, 404),
            ('GET', '/images/', None, {}, 404),
            ('GET', '/images/../' + os.path.basename(root) + '/in.jpg', None, {}, 200),
            ('GET', '/images/..%2f' + os.path.basename(outside.name), None, {}, 404),
            ('GET', '/images//' + outside.name, None, {}, 404),
            ('GET', '/images/in.jpg%00', None, {}, 404),
            ('GET', '/images/in.jpg%', None, {}, 404),
            ('GET', '/../page/app.js', None, {}, 404),
            ('GET', '/session', None, {}, 405),
            ('POST', '/', query, json_type, 405),
            ('GET', '/' + 9000 * 'x', None, {}, 431),
            ('POST', '/session', query, json_type, 200),
            ('POST', '/session', query, {'Content_Type': 'Application/JSON; charset=utf-8'}, 200),
            ('POST', '/session', query, {}, 415),
            ('POST', '/session', query, {'Content_Type': 'text/plain'}, 415),
            ('POST', '/session', query, {**json_type, 'Origin': 'https://' + host}, 403),
            ('POST', '/session', query + (1048576 - len(query)) * b' ', json_type, 200),
            ('POST', '/session', query + (1048577 - len(query)) * b' ', json_type, 413),
            ('POST', '/session', b'', {**json_type, 'Content_Length': '1048577'}, 413),
        ]
        for method, path, body, headers, status in cases:
            with self.subTest(method=method, path=path[:60], headers=headers):
                got, fields, answer = self.program.ask(method, path, body, **headers)
                self.assertEqual(got, status, answer)
                self.assertIn("default-src 'none'", fields['Content-Security-Policy'])
                if status == 200 and path.startswith('/images/'):
                    self.assertEqual(fields['Cache-Control'], 'no-store')
                    self.assertIn(answer, (b'inside', b'named'))

    def test_lines(self):
        secret = tempfile.NamedTemporaryFile()
        self.addCleanup(secret.close)
        cases = [
            ({'command': 'QUERY_CURRENT_SETTINGS'}, 200, '"to":"ui","xml":"<CURRENT_SETTINGS>'),
            ({'request': 'GET_PLAY_STATUS'}, 200, '<play_status>Stopped</play_status>'),
            (b'{"command":"MENU"}\n', 200, '"command":"MENU"'),
            ({'command': 'PLAY', 'params': {'ID': '\u2028\n"</script>'}}, 200, '</script>'),
            (notify('PLAY_STATUS_CHANGED', play_status='Playing'), 403, ''),
            (bind(), 403, ''),
            ({'persist': True}, 403, ''),
            ({'command': 'PLAY', 'params': {'ID': {'base64_of_file': secret.name}}}, 400, 'may not be named'),
            (b'', 400, ''),
            (b'{"command":', 400, ''),
            (b'{"command":"A"}\n{"command":"B"}', 400, ''),
            ({'command': 'PLAY', 'parms': {}}, 400, 'parms'),
        ]
        for line, status, text in cases:
            with self.subTest(line=line):
                got, _, answer = self.program.post(line)
                self.assertEqual(got, status, answer)
                self.assertIn(text, answer.decode())
        self.status = 2
        client, stream, _ = self.program.listen()
        self.addCleanup(client.close)
        answer = json.loads(self.program.post({'command': 'MENU'})[2])
        heard = next(line for line in stream if line.startswith(b'data: '))
        self.assertEqual(answer, [json.loads(heard[6:])])

    def test_crowd(self):
        half = socket.create_connection(('127.0.0.1', self.program.port), 60)
        self.addCleanup(half.close)
        half.sendall(b'POST /session HTTP/1.1\r\nHost: 127')
        crowd = [self.program.listen() for _ in range(100)]
        self.assertEqual([status for _, _, status in crowd], 63 * [200] + 37 * [503])
        for client, stream, _ in crowd:
            stream.close()
            client.close()
        until('a place', lambda: self.program.ask('GET', '/')[0] == 200)
        self.assertEqual(half.recv(100), b'')  # the half request has run out of time

    def test_client_that_does_not_read(self):
        deaf, _, _ = self.program.listen()
        self.addCleanup(deaf.close)
        hearing, stream, _ = self.program.listen()
        self.addCleanup(hearing.close)
        heard = 0
        for number in range(3000):
            self.program.say(notify('VOLUME_CHANGED', volume=f'{number} ' + 10000 * 'x'))
            while heard <= number:
                heard += stream.readline().startswith(b'data: ')
        got = b'.'
        with contextlib.suppress(ConnectionResetError):
            while got:
                got = deaf.recv(1 << 20)  # ends because the program has hung up


class Replayed(unittest.TestCase):
    def test_serves_before_during_and_after_the_session(self):
        program = Program(0, '-', mode='replay')
        asked = {'request': 'GET_PLAY_STATUS'}
        for number, status in enumerate(('Playing', 'Paused'), 1):
            self.assertEqual(program.ask('GET', '/')[0], 200)
            program.say(notify('PLAY_STATUS_CHANGED', play_status=status))
            until(status, lambda: [{'step': number, 'to': 'answer', **asked, 'xml': f'<play_status>{status}</play_status>'}]
                  == json.loads(program.post(asked)[2]))
        program.process.stdin.close()
        self.assertEqual(program.post(asked)[0], 200)
        self.assertEqual(program.stop(), 0)

    def test_ends_early_by_the_signal(self):
        program = Program(0, '-', mode='replay')
        self.assertEqual(program.stop(), -15)


class Page(Served):
    @classmethod
    def setUpClass(cls):
        options = webdriver.ChromeOptions()
        cls.profile = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        for argument in [*CHROMIUM, f'--user-data-dir={cls.profile.name}']:
            options.add_argument(argument)
        try:
            cls.browser = webdriver.Chrome(options=options)
        except WebDriverException as error:
            raise AssertionError(f'Chromium cannot start; "tools/install browser" installs it: {error}') from error

    @classmethod
    def tearDownClass(cls):
        cls.browser.quit()
        cls.profile.cleanup()

    def open(self, *lines):
        self.program.say(bind(shuffle_modes='Off,On', repeat_modes='Off,All,One', media_labels='Title,Artist,Album'),
                         notify('ONLINE_STATUS_CHANGED', online_status='True'), *lines)
        self.program.say({'persist': True})
        until('the lines', lambda: self.program.records.get(timeout=60)['to'] == 'state')
        self.browser.get(self.program.url)
        self.shows('#online', 'Online')

    def find(self, css):
        return self.browser.find_elements(By.CSS_SELECTOR, css)

    def texts(self, css):
        return self.browser.execute_script(
            'return [...document.querySelectorAll(arguments[0])].filter(e => e.checkVisibility()).map(e => e.textContent)', css)

    def shows(self, css, *texts):
        until(lambda: f'{css}: {texts}, but {self.texts(css)}', lambda: self.texts(css) == list(texts))

    def click(self, css, number=0):
        until(css, lambda: [each.is_displayed() for each in self.find(css)[number:number + 1]] == [True])
        self.find(css)[number].click()

    def click_text(self, text):
        until(text, lambda: text in self.texts('#list .text'))
        self.click('#list li button', self.texts('#list .text').index(text))

    def choose(self, command, mode):
        self.browser.execute_script('const s = document.querySelector(`[data-command=${arguments[0]}]`); s.value = arguments[1];'
                                    's.dispatchEvent(new Event("change"))', command, mode)

    def press(self, keys):
        webdriver.ActionChains(self.browser).send_keys(keys).perform()

    def test_report_and_changes(self):
        info = {'media_info_1': ' "Où" <i>vont</i> & les nuages ?', 'media_info_2': 'くらげ', 'media_info_3': ''}
        self.open(notify('UPDATE_MEDIA_INFO', **info), notify('PLAY_STATUS_CHANGED', play_status='Paused'),
                  notify('PLAY_TIME_CHANGED', elapsed='1:05', remaining='2:30'), notify('SHUFFLE_CHANGED', shuffle_mode='On'),
                  notify('REPEAT_CHANGED', repeat_mode='Some'), notify('QUEUE_PROGRESS_CHANGED', current='3', total='12'))
        self.shows('#play-status', 'Paused')
        self.shows('#info dd', *info.values())
        self.shows('#info dt', 'Title', 'Artist', 'Album')
        self.shows('.time span', '1:05', '-2:30')
        self.shows('#queue', '3 of 12')
        self.shows('#modes select', 'OffOn', 'SomeOffAllOne')
        for line, css, texts in [
                (notify('MEDIA_INFO_CHANGED', media_info_1='A', media_info_2='B', media_info_3='C'), '#info dd', 'ABC'),
                (notify('SET_MEDIA_LABELS', media_labels='X,Y'), '#info dt', ['X', 'Y', '']),
                (notify('PLAY_TIME_CHANGED', elapsed='3661', remaining='59'), '.time span', ['1:01:01', '-0:59']),
                (notify('PLAY_TIME_CHANGED', elapsed='0:07', remaining=''), '.time span', ['0:07', '']),
                (notify('PLAY_TIME_CHANGED', elapsed='soon', remaining='later'), '.time span', ['soon', 'later']),
                (notify('PLAY_STATUS_CHANGED', play_status='Reading disc'), '#play-status', ['Reading disc']),
                (notify('ONLINE_STATUS_CHANGED', online_status='False'), '#online', ['Offline']),
                (notify('VOLUME_CHANGED', volume='35'), '#notice', ['VOLUME_CHANGED 35']),
                (notify('NEW_COVERART', format='GIF'), '#notice', ['ipod::OnNtfCoverArt: invalid format GIF'])]:
            with self.subTest(line=line):
                self.program.say(line)
                self.shows(css, *texts)
        self.program.say(notify('PLAY_STATUS_CHANGED', play_status='Playing'), notify('PLAY_TIME_CHANGED', elapsed='0:10', remaining='0:20'))
        self.shows('#elapsed', '0:12')  # no report said so: the bar moves by itself

    def test_controls(self):
        self.open(notify('PLAY_STATUS_CHANGED', play_status='Playing'), notify('PLAY_TIME_CHANGED', elapsed='0:00', remaining='16:40'),
                  notify('PLAY_STATUS_CHANGED', play_status='Paused'), notify('PLAY_TIME_CHANGED', elapsed='1:40', remaining='15:00'))
        self.shows('#elapsed', '1:40')
        script = self.browser.execute_script
        for act, *expected in [
                (lambda: self.click('[data-command=PLAY]'), 'PLAY', {}),
                (lambda: self.click('[data-command=STOP]'), 'STOP', {}),
                (lambda: self.click('[data-command=SKIP_FWD]'), 'SKIP_FWD', {}),
                (lambda: self.click('[data-command=SKIP_REV]'), 'SKIP_REV', {}),
                (lambda: self.click('[data-command=SCAN_FWD]'), 'SCAN_FWD', {}),
                (lambda: self.click('[data-command=SCAN_REV]'), 'SCAN_REV', {}),
                (lambda: self.choose('SET_SHUFFLE', 'On'), 'SET_SHUFFLE', {'MODE': 'On'}),
                (lambda: self.choose('SET_REPEAT', 'One'), 'SET_REPEAT', {'MODE': 'One'}),
                (lambda: script('document.activeElement.blur()') or self.press(' '), 'PLAY', {}),
                (lambda: self.press(Keys.ARROW_RIGHT), 'SEEK', {'POSITION': '110'}),
                (lambda: self.press(Keys.ARROW_LEFT), 'SEEK', {'POSITION': '90'}),
                (lambda: self.press('/') or self.press(' a/ b' + Keys.ENTER), 'SEARCH', {'TEXT': 'a/ b', 'FIRST': '0', 'COUNT': '100'})]:
            with self.subTest(expected=expected):
                act()
                self.assertEqual(self.program.device(), tuple(expected))
        self.shows('#notice', 'SEARCH sent to the player')
        self.click('#seek')  # in its middle
        self.assertAlmostEqual(int(self.program.device()[1]['POSITION']), 500, delta=20)
        for key, position in ((Keys.ARROW_LEFT, '0'), (Keys.ARROW_RIGHT, '8')):
            self.program.say(notify('PLAY_TIME_CHANGED', elapsed='0:03', remaining='0:05'))
            self.shows('.time span', '0:03', '-0:05')
            script('document.activeElement.blur()')
            self.press(key)
            self.assertEqual(self.program.device(), ('SEEK', {'POSITION': position}))
        self.program.say(notify('PLAY_STATUS_CHANGED', play_status='Playing'))
        self.click('[data-command=PAUSE]')
        self.assertEqual(self.program.device(), ('PAUSE', {}))
        script('document.activeElement.blur()')
        self.press(' ')
        self.assertEqual(self.program.device(), ('PAUSE', {}))

    def test_only_what_the_player_can_do(self):
        self.open()
        can = ['has_play', 'has_skip_fwd', 'has_repeat']
        self.program.say(bind(**{flag: flag in can for flag in FLAGS}), {'command': 'QUERY_CURRENT_SETTINGS'})
        until('the report', lambda: not self.texts('#browse'))
        visible = self.browser.execute_script('return [...document.querySelectorAll("[data-command]")].filter(e => e.checkVisibility()).map(e => e.dataset.command)')
        self.assertEqual(visible, ['PLAY', 'SKIP_FWD', 'SET_REPEAT'])

    def test_browsing(self):
        self.open()
        self.click('#no-list button')
        self.assertEqual(self.program.device(), ('MENU', {}))
        self.program.say(*menu_or_list('MENU', [('al', 'menu', 'Albums'), ('se', 'search', 'Search')], title='Top'))
        self.shows('#list-title', 'Top')
        self.click('#list li button')
        self.assertEqual(self.program.device(), ('BROWSE', {'ID': 'al', 'FIRST': '0', 'COUNT': '100'}))
        songs = [(f's{i}', 'song', f'Song {i} <b>') for i in range(5)]
        self.program.say(*menu_or_list('LIST', songs[:2], title='Albums', total_items='5'))
        self.shows('#list .text', 'Song 0 <b>', 'Song 1 <b>')
        self.click('#more')
        self.assertEqual(self.program.device(), ('BROWSE', {'ID': 'al', 'FIRST': '2', 'COUNT': '100'}))
        self.program.say(*menu_or_list('LIST', songs[2:], title='Albums', total_items='5', first='2', clear='False'))
        self.shows('#list .text', *[text for _, _, text in songs])
        self.assertEqual(self.texts('#more'), [])
        self.click('#list li button', 4)
        self.assertEqual(self.program.device(), ('PLAY', {'ID': 's4'}))
        self.click('#back')
        self.shows('#list .text', 'Albums', 'Search')
        self.assertEqual(self.program.device(), ('MENU', {}))
        self.click('#list li button', 1)
        self.press('é' + Keys.ENTER)
        self.assertEqual(self.program.device(), ('SEARCH', {'TEXT': 'é', 'FIRST': '0', 'COUNT': '100'}))
        self.program.say(*menu_or_list('LIST', [(str(i), 'song', str(i)) for i in range(300)], title='é'))
        until('the first part', lambda: len(self.texts('#list li')) == 200)
        self.click('#more')
        until('all', lambda: len(self.texts('#list li')) == 300)

    def test_cover(self):
        self.open()
        width = 'const i = document.querySelector("#cover img"); return i ? i.naturalWidth : 0'
        with open(os.path.join(SESSIONS, 'pictures', 'record-96x96.jpg'), 'rb') as file:
            jpeg = base64.b64encode(file.read()).decode()
        pixels = base64.b64encode(bytes(2 * 20 * 10)).decode()
        for line, expected in [
                (notify('NEW_COVERART', cover_art=jpeg, width='96', height='96', format='JPEG', size='2387'), 96),
                (notify('NEW_COVERART', cover_art=pixels, width='20', height='10', format='RGB565'), 20),
                (notify('COVERART_PATH_CHANGED', image_path='', width='0', height='0'), 0),
                (notify('COVERART_PATH_CHANGED', image_path='ipod/1/coverart.jpg', width='20', height='10'), 20),
                (notify('COVERART_PATH_CHANGED', image_path='../traffic', width='20', height='10'), 0)]:
            with self.subTest(expected=expected):
                self.program.say(line)
                until(f'a cover of {expected}', lambda: self.browser.execute_script(width) == expected)

    def test_traffic(self):
        self.open()
        self.program.say({'request': 'GET_PLAY_STATUS'}, {'request': 'NOBODY'}, notify('PLAY_STATUS_CHANGED', play_status='Playing'),
                         {'command': 'HOP', 'params': {'X': '<a b="1">&lt;t&gt;</a>'}}, {'persist': True})
        self.shows('#rows .state .what', '<State/>')
        rows = dict(zip(self.texts('#rows .kind'), self.texts('#rows .what')))
        self.assertEqual(rows, {'document': '<play_status>Playing</play_status>', 'answer': 'NOBODY nobody answered', 'event': 'event 0',
                                'variable': 'PLAY_STATUS = Playing', 'device': 'HOP X=<a b="1">&lt;t&gt;</a>', 'state': '<State/>'})
        self.click('#rows .device')
        self.shows('#record pre', '5001', 'HOP', '<a b="1">&lt;t&gt;</a>')
        self.click('#rows .ui')
        self.assertIn('\n  <has_play>True</has_play>\n', self.texts('#record pre')[0])
        self.press(Keys.ESCAPE)
        self.shows('#record pre')
        for typed, expected in [('hop', ['device']), ('PLAY_status -xml', ['variable']), ('- ', list(rows))]:
            with self.subTest(typed=typed):
                self.find('#filter')[0].clear()
                self.find('#filter')[0].send_keys(typed)
                until(lambda: self.texts('#rows .kind'), lambda: list(dict.fromkeys(self.texts('#rows .kind'))) == expected)
        self.click('#kinds .device')
        until('no call', lambda: not self.texts('#rows .device'))
        self.click('#pause')
        self.program.say({'command': 'QUERY_CURRENT_SETTINGS'}, {'request': 'LATER'})
        until('waiting', lambda: '2 waiting' in self.texts('#traffic-count')[0])
        self.click('#pause')
        until('what waited', lambda: 'LATER nobody answered' in self.texts('#rows .answer .what'))
        self.click('#clear')
        self.shows('#rows .row')

    def test_ten_thousand_records(self):
        self.open()
        for start in range(0, 12000, 100):
            self.program.say(*[{'request': f'R{number}'} for number in range(start, start + 100)])
            last = f'R{start + 99} nobody answered'
            until(last, lambda: last in self.texts('#rows .what'))
        self.shows('#traffic-count', '10,000')
        self.assertLess(len(self.find('#rows .row')), 60)
        self.browser.execute_script('document.querySelector("#rows").scrollTop = 0')
        until('the oldest', lambda: 'R2000 nobody answered' in self.texts('#rows .what'))

    def test_foreign_texts(self):
        long = 'W' * 300
        self.open(notify('MEDIA_INFO_CHANGED', media_info_1=long, media_info_2='<img src=x onerror=alert(1)>', media_info_3='قنديل الميناء'),
                  *menu_or_list('LIST', [(long, long, '<script>alert(1)</script>' + long)], title=long))
        lines = [notify('MEDIA_INFO_CHANGED', media_info_1='<script>alert(1)</script>' + long, media_info_2='<b>', media_info_3='قنديل'),
                 *menu_or_list('LIST', [(long, long, '<img src=x onerror=alert(1)>' + long)], title=long),
                 notify('VOLUME_CHANGED', volume=long), notify('PLAY_STATUS_CHANGED', play_status=long),
                 notify('PLAY_TIME_CHANGED', elapsed=long, remaining=long), notify('SHUFFLE_CHANGED', shuffle_mode=long),
                 notify('SET_MEDIA_LABELS', media_labels=f'{long},{long}'), notify('QUEUE_PROGRESS_CHANGED', current=long, total='5'),
                 notify('X', x=1000000 * 'y')]
        self.program.say(*lines)
        self.shows('#notice', 'X ' + 998 * 'y')
        self.shows('#list .text', '<img src=x onerror=alert(1)>' + long)
        script = self.browser.execute_script
        self.assertEqual(script('return document.querySelectorAll("script:not([src]), dd *, .text *").length'), 0)
        self.assertEqual(script('return getComputedStyle(document.querySelectorAll("#info dd")[2]).direction'), 'rtl')
        for width in (360, 800, 1280, 1920):
            self.browser.execute_cdp_cmd('Emulation.setDeviceMetricsOverride', {'width': width, 'height': 740, 'deviceScaleFactor': 1, 'mobile': False})
            for panel in ('player', 'browse', 'traffic'):
                script('document.querySelector(`nav [data-panel=${arguments[0]}]`).click()', panel)
                wide = script('return [...document.querySelectorAll("body, main, section, .bar, .time, #modes, .status")].filter(e => e.scrollWidth > e.clientWidth && e.checkVisibility()).map(e => e.id || e.className || e.tagName)')
                self.assertEqual([each for each in wide if each != 'status'], [], (width, panel))
        self.browser.execute_cdp_cmd('Emulation.clearDeviceMetricsOverride', {})

    def test_second_window_and_restart(self):
        self.open()
        until('its report', lambda: len(self.texts('#rows .row')) == 1)
        first = self.browser.current_window_handle
        self.browser.switch_to.new_window('window')
        self.browser.get(self.program.url)
        self.shows('#online', 'Online')
        self.browser.close()
        self.browser.switch_to.window(first)
        until('the other report', lambda: len(self.texts('#rows .row')) == 2)
        self.assertEqual(len(set(self.texts('#rows .what'))), 1)
        port = self.program.port
        self.assertEqual(self.program.stop(), 0)
        self.shows('#connection', 'The program is gone. Trying again…')
        self.program = Program(port)
        self.shows('#connection', 'Connected')
        self.shows('#online', 'Offline')

    def test_what_mpd_says(self):
        with tempfile.TemporaryDirectory() as top:
            mpd = Mpd(pathlib.Path(top))
            self.addCleanup(mpd.stop)
            self.assertEqual(self.program.stop(), 0)
            self.program = Program(0, '--', MPD_PLAYER, '--host', str(mpd.host))
            self.browser.get(self.program.url)
            says = lambda *words: subprocess.run(['mpc', '--host', mpd.host, *words], stdout=subprocess.PIPE, text=True, check=True).stdout.strip()
            status = lambda: says('status', '%state% %songpos% %random% %repeat% %single%')
            self.shows('#queue', '0 of 4')
            for what, act, expected, css, *texts in [
                    ('queue', lambda: self.click('#no-list button') or self.click_text('Queue'), 'paused 0 off off off', '#list-title', 'Queue'),
                    ('song', lambda: self.click_text('くらげ'), 'playing 3 off off off', '#info dd', 'くらげ', '水無瀬', '夜'),
                    ('pause', lambda: self.click('[data-command=PAUSE]'), 'paused 3 off off off', '#play-status', 'Paused'),
                    ('previous', lambda: self.click('[data-command=SKIP_REV]'), 'playing 2 off off off', '#queue', '2 of 4'),
                    ('shuffle', lambda: self.choose('SET_SHUFFLE', 'On'), 'playing 2 on off off', '#info dd', '"B" \\ <&>', 'Élodie', 'Café'),
                    ('repeat', lambda: self.choose('SET_REPEAT', 'One'), 'playing 2 on on on', '#play-status', 'Playing'),
                    ('stop', lambda: self.click('[data-command=STOP]'), 'paused 2 on on on', '#play-status', 'Stopped')]:
                with self.subTest(what):
                    act()
                    self.shows(css, *texts)
                    until(lambda: f'{expected}, but {status()}', lambda: status() == expected)
            says('play', '1')
            self.shows('#info dd', 'Où ?', 'Élodie; A/C 5%', 'Café')
            until('its picture', lambda: self.browser.execute_script('return document.querySelector("#cover img")?.naturalHeight') == 64)
            self.click('#seek')
            until('the middle', lambda: says('status', '%currenttime%').startswith('2:'))
            until('it here', lambda: self.texts('#elapsed')[0].startswith('2:'))
            mpd.stop()
            self.shows('#online', 'Offline')
            self.assertEqual(self.program.stop(), 0)
            self.program = Program()


if __name__ == '__main__':
    unittest.main()
