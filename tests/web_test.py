#!/usr/bin/python3
"""The page's server, and clients that mean it no good: web_test.py DRIVERHOST [TEST...]"""

import contextlib
import json
import os
import random
import signal
import socket
import struct
import sys
import tempfile
import threading
import unittest

from served import Program, Served, WebSocket, notify, until

Program.driverhost = os.path.abspath(sys.argv.pop(1))
JSON = {'Content_Type': 'application/json'}
QUERY = b'{"command":"QUERY_CURRENT_SETTINGS"}'


class Requests(Served):
    def test_what_is_served_and_refused(self):
        host = f'127.0.0.1:{self.program.port}'
        root = self.program.root.name
        outside = tempfile.NamedTemporaryFile(suffix='.jpg')
        self.addCleanup(outside.close)
        for name, text in (('in.jpg', 'inside'), ('ö &.jpg', 'named'), ('page.html', '<script>'), ('run.js', '1'), ('a.svg', '<svg/>')):
            with open(f'{root}/{name}', 'w', encoding='utf-8') as file:
                file.write(text)
        os.symlink('in.jpg', f'{root}/link.jpg')
        os.symlink(outside.name, f'{root}/out.jpg')
        os.symlink('/', f'{root}/slash')
        os.mkfifo(f'{root}/pipe.jpg')
        get, post = 'GET', 'POST'
        picture, other = ('Content-Type', 'image/jpeg'), ('Content-Type', 'application/octet-stream')
        cases = [
            (get, '/', None, {}, 200, ('Content-Type', 'text/html; charset=utf-8')),
            (get, '/?x', None, {}, 200),
            (get, '/style.css', None, {}, 200),
            (get, '/', None, {'Host': host.replace('127.0.0.1', 'localhost')}, 200),
            (get, '/', None, {'Host': 'evil.example'}, 403),
            (get, '/', None, {'Host': host + '0'}, 403),
            (get, '/', None, {'Host': '127.0.0.1'}, 403),
            (get, '/', None, {'Origin': f'http://{host}'}, 200),
            (get, '/', None, {'Origin': 'http://evil.example'}, 403),
            (get, '/traffic', None, {'Origin': 'null'}, 403),
            (get, '/traffic', None, {}, 426, ('Upgrade', 'websocket')),
            (get, '/images/in.jpg', None, {}, 200, picture),
            (get, '/images/in.jpg?7', None, {}, 200, picture),
            (get, '/images/%C3%B6%20%26.jpg', None, {}, 200, picture),
            (get, '/images/link.jpg', None, {}, 200, picture),
            (get, '/images/page.html', None, {}, 200, other),
            (get, '/images/run.js', None, {}, 200, other),
            (get, '/images/a.svg', None, {}, 200, other),
            (get, '/images/out.jpg', None, {}, 404),
            (get, '/images/slash/etc/passwd', None, {}, 404),
            (get, '/images/pipe.jpg', None, {}, 404),
            (get, '/images/', None, {}, 404),
            (get, '/images/../' + os.path.basename(root) + '/in.jpg', None, {}, 200),
            (get, '/images/..%2f' + os.path.basename(outside.name), None, {}, 404),
            (get, '/images//' + outside.name, None, {}, 404),
            (get, '/images/in.jpg%00', None, {}, 404),
            (get, '/images/in.jpg%', None, {}, 404),
            (get, '/../page/app.js', None, {}, 404),
            (get, '/session', None, {}, 405, ('Allow', 'POST')),
            (post, '/', QUERY, JSON, 405, ('Allow', 'GET, HEAD')),
            ('DELETE', '/nowhere', None, {}, 405, ('Allow', 'GET, HEAD')),
            ('HEAD', '/session', None, {}, 405),
            ('HEAD', '/style.css', None, {}, 200),
            ('HEAD', '/images/in.jpg', None, {}, 200, ('Content-Length', '6')),
            ('HEAD', '/traffic', None, {}, 426),
            ('HEAD', '/nowhere', None, {}, 404),
            (get, '/' + 9000 * 'x', None, {}, 431),
            (get, '/' + 5000 * 'x', None, {'X': 5000 * 'y'}, 431),
            (get, '/', None, {'X': 7000 * 'y'}, 200),
            (post, '/session', QUERY, JSON, 200, ('Content-Type', 'application/json')),
            (post, '/session', QUERY, {'Content_Type': 'Application/JSON; charset=utf-8'}, 200),
            (post, '/session', QUERY, {}, 415),
            (post, '/session', QUERY, {'Content_Type': 'text/plain'}, 415),
            (post, '/session', QUERY, {**JSON, 'Origin': 'https://' + host}, 403),
            (post, '/session', QUERY + (1048576 - len(QUERY)) * b' ', JSON, 200),
            (post, '/session', QUERY + (1048577 - len(QUERY)) * b' ', JSON, 413),
            (post, '/session', b'', {**JSON, 'Content_Length': '1048577'}, 413),
        ]
        for method, path, body, headers, status, *field in cases:
            with self.subTest(method=method, path=path[:60], headers=str(headers)[:60]):
                got, fields, answer = self.program.ask(method, path, body, **headers)
                self.assertEqual(got, status, answer)
                self.assertIn("default-src 'none'", fields['Content-Security-Policy'])
                self.assertEqual((fields['X-Content-Type-Options'], fields['Cache-Control']), ('nosniff', 'no-store'))
                for name, value in field:
                    self.assertEqual(fields[name], value)
                if method == 'HEAD':
                    self.assertEqual(answer, b'')
                elif field == [picture]:
                    self.assertIn(answer, (b'inside', b'named'))

    def test_requests_in_pieces(self):
        chunked = f'POST /session HTTP/1.1\r\nHost: 127.0.0.1:{self.program.port}\r\nContent-Type: application/json\r\nTransfer-Encoding: chunked\r\n\r\n'.encode()
        body = b'%x;a=b\r\n%s\r\n0\r\nA: b\r\n\r\n' % (len(QUERY), QUERY)
        for name, request, expected in [
                ('chunks', chunked + body, b'200'),
                ('nothing', chunked + b'0\r\n\r\n', b'400'),
                ('no size', chunked + b'x\r\n', b'400'),
                ('a long extension', chunked + b'5;' + 70000 * b'a', b'413'),
                ('long trailers', chunked + b'0\r\n' + 7000 * b'Abc: defg\r\n', b'413'),
                ('not HTTP', b'\x16\x03\x01\r\n\r\n', b'400'),
                ('no Host', b'GET / HTTP/1.1\r\n\r\n', b'403'),
                ('two Hosts', chunked[:-2] + chunked.splitlines(True)[1] + b'\r\n', b'403')]:
            for piece in (1, len(request)) if len(request) < 1000 else (len(request),):
                with self.subTest(name, piece=piece), socket.create_connection(('127.0.0.1', self.program.port), 60) as client:
                    client.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
                    for at in range(0, len(request), piece):
                        client.sendall(request[at:at + piece])
                    self.assertEqual(client.makefile('rb').readline().split()[1], expected)

    def test_lines(self):
        secret = tempfile.NamedTemporaryFile()
        self.addCleanup(secret.close)
        client = WebSocket(self.program)
        self.addCleanup(client.close)
        for line, status, text in [
                ({'command': 'QUERY_CURRENT_SETTINGS'}, 200, '"to":"ui","xml":"<CURRENT_SETTINGS>'),
                ({'request': 'GET_PLAY_STATUS'}, 200, '<play_status>Stopped</play_status>'),
                (b'{"command":"MENU"}\n', 200, '"command":"MENU"'),
                ({'command': 'PLAY', 'params': {'ID': '\u2028\n"</script>'}}, 200, '</script>'),
                (notify('PLAY_STATUS_CHANGED', play_status='Playing'), 403, 'only commands and requests'),
                ({'bind': 5001}, 403, ''),
                ({'persist': True}, 403, ''),
                ({'command': 'PLAY', 'params': {'ID': {'base64_of_file': secret.name}}}, 400, 'may not be named'),
                (b'', 400, ''),
                (b'{"command":', 400, ''),
                (b'{"command":"A"}\n{"command":"B"}', 400, ''),
                ({'command': 'PLAY', 'parms': {}}, 400, 'parms')]:
            with self.subTest(line=line):
                got, _, answer = self.program.post(line)
                self.assertEqual(got, status, answer)
                self.assertIn(text, answer.decode())
                client.send(line)
                if status == 200:
                    for _ in range(2):  # the posted one and its own
                        *_, told = client.until(lambda each: each.get('from') == 'page')
                        self.assertEqual(list(told)[:4], ['step', 'at', 'from', *json.loads(line if isinstance(line, bytes) else json.dumps(line))][:4])
                    for record in json.loads(answer):
                        record['step'] += 1
                        told = client.receive()
                        self.assertEqual({key: value for key, value in told.items() if key != 'at'}, record)
                else:
                    self.assertEqual(client.receive(), {'error': answer.decode().rstrip('\n')})

    def test_notifications_where_they_are_let_in(self):
        program = Program(0, '--http-notify')
        self.addCleanup(program.stop)
        answer = program.post(notify('PLAY_STATUS_CHANGED', play_status='Playing'))
        self.assertEqual((answer[0], json.loads(answer[2])[-1]['to']), (200, 'ui'))
        self.assertEqual(program.post({'persist': True})[0], 403)

    def test_addresses_that_others_can_reach(self):
        program = Program('0.0.0.0:0')
        self.addCleanup(program.stop)
        path = program.url[program.url.index('/?'):]
        cookie = program.ask('GET', path)[1]['Set-Cookie']
        self.assertRegex(cookie, '; HttpOnly; SameSite=Strict$')
        cookie = cookie.split(';')[0]
        for asked, headers, status in [
                (path, {}, 200), ('/', {}, 403), (path[:-1], {}, 403), ('/?token=', {}, 403), ('/', {'Cookie': cookie}, 200),
                ('/style.css', {'Cookie': f'a=b; {cookie}; c=d'}, 200), ('/', {'Cookie': cookie[:-1]}, 403),
                ('/', {'Cookie': cookie + '0'}, 403), (path, {'Origin': 'http://evil.example'}, 403), (path, {'Host': 'evil.example'}, 403)]:
            with self.subTest(path=asked, headers=headers):
                self.assertEqual(program.ask('GET', asked, **headers)[0], status)
        self.assertEqual(program.post(QUERY)[0], 403)
        self.assertEqual(program.post(QUERY, Cookie=cookie)[0], 200)
        for headers, status in (({}, 403), ({'Cookie': cookie}, 101), ({'Cookie': cookie, 'Origin': f'http://{program.host}'}, 101)):
            client = WebSocket(program, **headers)
            client.close()
            self.assertEqual(client.status, status)


class Traffic(Served):
    def listen(self, **options):
        client = WebSocket(self.program, **options)
        self.addCleanup(client.close)
        return client

    def test_who_may_listen(self):
        host = f'127.0.0.1:{self.program.port}'
        for headers, status in [
                ({}, 101), ({'Origin': f'http://{host}'}, 101), ({'Origin': 'http://evil.example'}, 403), ({'Origin': 'null'}, 403),
                ({'Origin': f'https://{host}'}, 403), ({'Host': 'evil.example'}, 403), ({'Sec-WebSocket-Version': '7'}, 426),
                ({'Upgrade': 'h2c'}, 426), ({'Sec-WebSocket-Protocol': 'any'}, 101)]:
            with self.subTest(headers=headers):
                client = self.listen(**headers)
                self.assertEqual(client.status, status)
                self.assertIn("default-src 'none'", client.head)
                self.assertNotIn('Sec-WebSocket-Protocol', client.head)

    def test_history_and_what_comes(self):
        first = self.listen()
        before = first.until(lambda each: each.get('registered'))
        self.assertEqual(before.pop()['registered'][:1], ['binding 5001'])
        self.program.say({'notify': 'VOLUME_CHANGED', 'at': 2.5, 'params': {'volume': '7'}}, {'request': 'GET_PLAY_STATUS'})
        live = before[1:] + first.until(lambda each: each.get('to') == 'answer')
        self.assertEqual([{**each, 'at': 0} for each in live if each['step'] == 1],
                         [{'step': 1, 'at': 0, 'from': 'stdin', **notify('VOLUME_CHANGED', volume='7')},
                          {'step': 1, 'at': 0, 'to': 'ui', 'xml': '<VOLUME_CHANGED><volume>7</volume></VOLUME_CHANGED>'}])
        times = [each['at'] for each in live]
        self.assertEqual(times, sorted(times))
        self.assertLess(times[-1], 60)
        later = self.listen()
        self.assertEqual(later.receive()['registered'][:1], ['binding 5001'])
        self.assertEqual([later.receive() for _ in live], live)
        self.program.say(*[{'request': f'R{number}'} for number in range(6000)])
        first.until_answer('R5999')
        last = self.listen()
        last.receive()
        newest = last.until_answer('R5999')
        self.assertEqual([len(newest), newest[0]['request']], [10000, 'R1000'])
        client = self.listen()
        self.program.process.stdin.close()
        self.program.process.terminate()
        with self.assertRaisesRegex(EOFError, '1001'):
            client.until(lambda each: False)
        self.program.process.wait(60)

    def test_what_the_driver_is_and_how_it_ended(self):
        client = self.listen()
        self.program.say(notify('PLAY_STATUS_CHANGED', play_status='Playing'))
        *_, about = client.until(lambda each: each.get('reads'))
        self.assertEqual((os.path.basename(about['file']), about['notify'], about['reads']),
                         ('media.so', False, {'notify PLAY_STATUS_CHANGED': ['play_status']}))
        with open(f'/proc/{self.program.process.pid}/task/{self.program.process.pid}/children', encoding='ascii') as children:
            for child in children.read().split():
                if 'driverprocess' in os.readlink(f'/proc/{child}/exe'):
                    os.kill(int(child), signal.SIGKILL)
        self.assertEqual(client.until(lambda each: 'ended' in each)[-1],
                         {'ended': 'driver', 'text': 'the driver ended its process (SIGKILL) between two steps'})
        self.status = self.program.process.wait(60)
        self.assertEqual(self.status, 1)

    def test_one_that_is_slower_hears_what_it_has_missed(self):
        for count, size in ((25000, 1000), (8, 8000000)):
            with self.subTest(size=size):
                slow, fast = self.listen(buffer=16384), self.listen()
                last = f'LAST {size}'
                heard = []
                reader = threading.Thread(target=lambda: heard.extend(fast.until_answer(last)))
                reader.start()
                for _ in range(0, count, 1000):
                    self.program.say(*[{'request': size * 'x'}] * min(count, 1000))
                self.program.say({'request': last})
                reader.join()
                came = slow.until_answer(last)
                self.assertGreater(sum(each.get('missing', 0) for each in came), count / 5)
                self.assertEqual(*[sum(each.get('missing', 1) for each in told) for told in (came, heard)])
                self.assertLess(self.program.memory(), 160)

    def test_a_burst_arrives_whole(self):
        client = self.listen()
        client.receive()
        heard = []
        reader = threading.Thread(target=lambda: heard.extend(client.until_answer('LAST')))
        reader.start()
        for start in range(0, 50000, 1000):
            self.program.say(*[{'request': str(number)} for number in range(start, start + 1000)])
        self.program.say({'request': 'LAST'})
        reader.join()
        self.assertEqual([each['request'] for each in heard if 'to' in each and each['to'] == 'answer'],
                         [str(number) for number in range(50000)] + ['LAST'])


class Attacks(Served):
    def connect(self, sent=b'', buffer=0):
        client = socket.socket()
        if buffer:
            client.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, buffer)
        client.settimeout(60)
        client.connect((self.program.address, self.program.port))
        client.sendall(sent)
        return client

    def keep(self, *sent, **options):
        client = self.connect(*sent, **options)
        self.addCleanup(client.close)
        return client

    def listen(self, **options):
        client = WebSocket(self.program, **options)
        self.addCleanup(client.close)
        return client

    def head(self, request, *fields):
        return '\r\n'.join((f'{request} HTTP/1.1', f'Host: {self.program.host}', *fields, '', '')).encode()

    def post(self, *fields):
        return self.head('POST /session', 'Content-Type: application/json', *fields)

    def picture(self, size=50000000):
        with open(f'{self.program.root.name}/large.jpg', 'wb') as file:
            file.truncate(size)
        return self.head('GET /images/large.jpg')

    def test_crowd(self):
        half = self.keep(b'POST /session HTTP/1.1\r\nHost: 127')
        crowd = [self.listen() for _ in range(100)]
        self.assertEqual([client.status for client in crowd], 63 * [101] + 37 * [503])
        for client in crowd:
            client.reset()
        until('a place', lambda: self.program.ask('GET', '/')[0] == 200)
        self.assertEqual(half.recv(100), b'')  # the half request has run out of time

    def test_frames(self):
        frame = WebSocket.frame
        part = b'{"request":"A'
        for name, sent, *expected in [
                ('a ping', frame(9, b'abc'), (10, b'abc')),
                ('a line in parts', frame(1, part, False) + frame(9) + frame(0, b'', False) + frame(0, b'"}'), (10, b''), (1, b'"request":"A"}'), (1, b'"to":"answer"')),
                ('an answer before the next line', frame(1, b'1') + frame(1, b'{"persist":true}'), (1, b'object'), (1, b'only')),
                ('bytes', frame(2, part + b'"}'), (1, b'"request":"A"}'), (1, b'"to":"answer"')),
                ('the end', frame(8, b'\x03\xe8'), (8, b'\x03\xe8')),
                ('no mask', b'\x81\x01a', (8, b'\x03\xea')),
                ('compressed', b'\xc1\x80' + bytes(4), (8, b'\x03\xea')),
                ('a long ping', frame(9, 126 * b'a'), (8, b'\x03\xea')),
                ('a part of nothing', frame(0, b'a'), (8, b'\x03\xea')),
                ('no UTF-8', frame(1, b'\xff'), (8, b'\x03\xef')),
                ('a giant frame', b'\x81\xff\x7f' + 7 * b'\xff' + bytes(4), (8, b'\x03\xf1')),
                ('a giant line', frame(1, part, False) + 70 * frame(0, 16384 * b'a', False), (8, b'\x03\xf1'))]:
            with self.subTest(name):
                client = self.listen()
                self.program.say({'request': name})
                client.until_answer(name)
                client.socket.sendall(sent)
                for opcode, text in expected:
                    got = client.read_frame()
                    self.assertEqual(got[0], opcode, got)
                    self.assertIn(text, got[2])

    def test_pictures(self):
        request = self.picture()
        path = f'{self.program.root.name}/large.jpg'
        slow = self.keep(request, buffer=4096)
        slow.recv(1000)
        os.truncate(path, 1000000)
        size = len(b''.join(iter(lambda: slow.recv(1 << 20), b'')))
        self.assertLess(size, 50000000)
        half = self.keep(request)
        half.shutdown(socket.SHUT_WR)
        self.assertGreater(len(b''.join(iter(lambda: half.recv(1 << 20), b''))), 1000000)
        os.remove(path)
        self.assertEqual(self.program.ask('GET', '/images/large.jpg')[0], 404)

    def attackers(self, over):
        """How each begins, and what it does then, until it fails or the test is over."""
        chunked = self.post('Transfer-Encoding: chunked')
        request, query = self.picture(), self.post(f'Content-Length: {len(QUERY)}') + QUERY
        frame = WebSocket.frame

        def sends(piece, pause=0.0):
            return lambda client: any(client.sendall(piece) or over.wait(pause) for _ in iter(over.is_set, True))

        def reads(client):
            return any(client.recv(2000) and over.wait(0.01) for _ in iter(over.is_set, True))

        def resets(client):
            client.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack('ii', 1, 0))

        waits = lambda client: over.wait(3)
        opens = lambda sent, **options: lambda: self.connect(sent, **options)
        listens = lambda **options: lambda: WebSocket(self.program, **options)
        return [
            (opens(chunked + b'5;'), sends(65536 * b'a')),
            (opens(chunked), sends(b'1;' + 60000 * b'a' + b'\r\nx\r\n')),
            (opens(chunked + b'0\r\n'), sends(6000 * b'Abc: def\r\n')),
            (opens(b'GET / HTTP/1.1\r\n'), sends(b'X: y\r\n', 0.1)),
            (opens(self.post('Content-Length: 1048576') + 1000000 * b' '), sends(b' ', 0.1)),
            (opens(self.post('Content-Length: 1000000') + 50000 * b' '), resets),
            (opens(request, buffer=4096), reads),
            (opens(request), resets),
            (opens(query, buffer=4096), reads),
            (opens(query, buffer=4096), waits),
            (opens(query), resets),
            (opens(random.randbytes(3000)), waits),
            (listens(buffer=4096), waits),
            (listens(buffer=4096), reads),
            (listens(buffer=4096), sends(1000 * frame(9, 125 * b'p'))),
            (listens(), resets),
            (listens(), sends(10000 * frame(10))),
            (listens(), sends(10000 * frame(1, b'', False))),
            (listens(), sends(frame(1, b'"', False) + 10000 * frame(0, b'a', False))),
            (listens(), sends(b'\x81\xff\x7f' + 7 * b'\xff' + 65536 * b'a')),
            (listens(), sends(frame(1, b'{"command":"' + 1000000 * b'x'))),
            (listens(), sends(1000 * frame(1, b'{}'))),
        ]

    def test_all_at_once(self):
        over = threading.Event()
        large = notify('MEDIA_INFO_CHANGED', media_info_1=8000000 * 'v')

        def lines(names):
            for name in names:
                self.program.say(large, {'request': name})
                until('the answer', lambda: self.program.records.get(timeout=60).get('request') == name)

        def attack(opens, acts):
            while not over.is_set():
                with contextlib.suppress(OSError, IndexError, ValueError), contextlib.closing(opens()) as client:
                    acts(getattr(client, 'socket', client))

        lines('ABCDE')
        alone = self.program.memory()
        attackers = [threading.Thread(target=attack, args=each) for each in 4 * self.attackers(over)]
        for thread in attackers:
            thread.start()
        lines('FGHIJKLMNO')
        peak = self.program.memory('VmHWM')
        over.set()
        for thread in attackers:
            thread.join()
        self.assertLess(peak - alone, 100)
        until('a place', lambda: self.program.ask('GET', '/')[0] == 200)


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
        client = WebSocket(program)
        self.addCleanup(client.close)
        self.assertIn('session', [each.get('from') for each in client.until(lambda each: each.get('step') == 2 and 'to' in each)])
        self.assertEqual(program.stop(), 0)

    def test_ends_early_by_the_signal(self):
        program = Program(0, '-', mode='replay')
        self.assertEqual(program.stop(), -15)


class ZSilence(unittest.TestCase):
    """Silent clients, which are dropped after a minute: the other tests run meanwhile."""

    @classmethod
    def begin(cls):
        cls.program = Program()
        cls.silent, cls.alive = WebSocket(cls.program), WebSocket(cls.program)
        cls.frames = []
        cls.threads = [threading.Thread(target=each, daemon=True) for each in (cls.read_frames, lambda: cls.alive.until(lambda each: each.get('request') == 'LAST'))]
        for thread in cls.threads:
            thread.start()

    @classmethod
    def read_frames(cls):
        with contextlib.suppress(OSError, ValueError):
            while True:
                cls.frames.append(cls.silent.read_frame()[0])

    def test_is_asked_about_and_ended(self):
        self.threads[0].join(90)
        self.assertEqual([each for each in self.frames if each not in (0, 1)], [9])
        self.program.say({'request': 'LAST'})
        self.threads[1].join(60)
        self.assertFalse(any(each.is_alive() for each in self.threads))
        self.alive.close()
        self.silent.close()
        self.assertEqual(self.program.stop(), 0)


setUpModule = ZSilence.begin

if __name__ == '__main__':
    unittest.main()
