"""What tests of the page and of its server stand on: the program with a page, and a WebSocket client."""

import base64
import contextlib
import http.client
import json
import os
import queue
import re
import socket
import struct
import subprocess
import tempfile
import threading
import time
import unittest


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


class Program:
    """driverhost, fed by its player, if any, and through its standard input."""
    driverhost = None

    def __init__(self, port=0, *player, mode='live'):
        self.root = tempfile.TemporaryDirectory()
        self.process = subprocess.Popen(
            [self.driverhost, mode, '--json', '--http', str(port), '--image-root', self.root.name, *player],
            env={**os.environ, 'ASAN_OPTIONS': os.environ.get('ASAN_OPTIONS', '') + ':quarantine_size_mb=8'},
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.records = queue.Queue()
        self.told = []
        for take in (self.read_records, self.read_told):
            threading.Thread(target=take, daemon=True).start()
        self.url = until('the address', lambda: next(iter(re.findall('http://[^ \n]+', ''.join(self.told))), None))
        self.host = re.search('//([^/]*)', self.url)[1]
        address, _, port = self.host.rpartition(':')
        self.address, self.port = (address.strip('[]'), int(port))

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
        connection = http.client.HTTPConnection(self.address, self.port, timeout=60)
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

    def memory(self, which='VmRSS'):
        """What it takes, in MB, or with VmHWM what it took at most; a third of it with a sanitizer, which takes the rest."""
        with open(f'/proc/{self.process.pid}/status', encoding='ascii') as status, open(f'/proc/{self.process.pid}/maps') as maps:
            return int(re.search(rf'{which}:\s*(\d+)', status.read())[1]) / 1000 / (3 if 'libasan' in maps.read() else 1)

    def stop(self):
        self.process.terminate()
        status = self.process.wait(60)
        for pipe in (self.process.stdin, self.process.stdout, self.process.stderr):
            with contextlib.suppress(OSError):
                pipe.close()
        self.root.cleanup()
        return status


class WebSocket:
    """A client of the traffic that does no more than it is told."""

    def __init__(self, program, path='/traffic', buffer=0, **headers):
        self.socket = socket.socket()
        if buffer:
            self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, buffer)
        self.socket.settimeout(90)
        self.socket.connect((program.address, program.port))
        fields = {'Host': program.host, 'Connection': 'Upgrade', 'Upgrade': 'websocket', 'Sec-WebSocket-Version': '13',
                  'Sec-WebSocket-Key': base64.b64encode(os.urandom(16)).decode(), **headers}
        self.socket.sendall(f'GET {path} HTTP/1.1\r\n{"".join(f"{name}: {value}" + chr(13) + chr(10) for name, value in fields.items())}\r\n'.encode())
        self.stream = self.socket.makefile('rb')
        head = list(iter(self.stream.readline, b'\r\n'))
        self.status, self.head = int(head[0].split()[1]), b''.join(head).decode()

    @staticmethod
    def frame(opcode, payload=b'', final=True):
        size = struct.pack('!BH', 0x80 | 126, len(payload)) if 125 < len(payload) < 65536 else struct.pack('!BQ', 0x80 | 127, len(payload)) if len(payload) > 125 else struct.pack('!B', 0x80 | len(payload))
        return bytes([opcode | 0x80 * final]) + size + bytes(4) + payload

    def send(self, line):
        self.socket.sendall(self.frame(1, line if isinstance(line, bytes) else json.dumps(line).encode()))

    def read_frame(self):
        first, size = self.stream.read(2)
        if size > 125:
            size = int.from_bytes(self.stream.read({126: 2, 127: 8}[size]), 'big')
        return first & 15, bool(first & 0x80), self.stream.read(size)

    def receive(self):
        """The next object. A ping is answered; the end is an EOFError with its code."""
        text = b''
        while True:
            opcode, final, payload = self.read_frame()
            if opcode == 8:
                raise EOFError(int.from_bytes(payload[:2], 'big'))
            if opcode == 9:
                self.socket.sendall(self.frame(10, payload))
                continue
            text += payload
            if final:
                return json.loads(text)

    def until(self, check):
        """The objects that come, to the first that passes the check."""
        came = []
        while not came or not check(came[-1]):
            came.append(self.receive())
        return came

    def until_answer(self, request):
        return self.until(lambda each: each.get('request') == request and 'to' in each)

    def close(self):
        self.stream.close()
        self.socket.close()

    def reset(self):
        """Ends the connection in the middle of everything."""
        self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack('ii', 1, 0))
        self.close()


class Served(unittest.TestCase):
    status = 0

    def setUp(self):
        self.program = Program()
        self.addCleanup(lambda: self.assertEqual(self.program.stop(), self.status))


