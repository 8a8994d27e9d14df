"""The page's files and a traffic that a test writes, in place of the program."""

import contextlib
import json
import mimetypes
import pathlib
from http import HTTPStatus

import websockets

from browser import Loop

PAGE = pathlib.Path(__file__).resolve().parents[2] / 'page'
POLICY = "default-src 'none'; connect-src 'self'; img-src 'self'; script-src 'self'; style-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'"


def compact(record):
    return json.dumps(record, ensure_ascii=False, separators=(',', ':'))


class Scripted:
    """Sends `history` to each page that connects, and after that what `say` is given; keeps what pages send."""

    def __init__(self, *history):
        self.history = list(history)
        self.heard = []
        self.clients = set()
        self.images = {}
        self.loop = Loop()
        self.port = 0
        self.start()

    def start(self):
        self.server = self.loop.run(self.listening())
        self.port = self.server.sockets[0].getsockname()[1]
        self.url = f'http://127.0.0.1:{self.port}/'

    async def listening(self):
        return await websockets.serve(self.serve, '127.0.0.1', self.port, process_request=self.answer, max_size=None, compression=None,
                                      write_limit=1 << 26, ping_interval=None)

    async def answer(self, path, _headers):
        path = path.split('?')[0]
        if path == '/traffic':
            return None
        if path in self.images:
            return HTTPStatus.OK, [('Content-Type', 'image/jpeg'), ('Cache-Control', 'no-store')], self.images[path]
        file = PAGE / ('index.html' if path == '/' else path[1:])
        if file.parent != PAGE or not file.is_file():
            return HTTPStatus.NOT_FOUND, [], b''
        kind = 'text/javascript' if file.suffix == '.js' else mimetypes.guess_type(file.name)[0]
        return HTTPStatus.OK, [('Content-Type', f'{kind}; charset=utf-8'), ('Content-Security-Policy', POLICY)], file.read_bytes()

    async def serve(self, client, _path):
        self.clients.add(client)
        with contextlib.suppress(websockets.ConnectionClosed):
            for line in self.history:
                await client.send(line if isinstance(line, str) else compact(line))
            async for text in client:
                self.heard.append(json.loads(text))

    async def send(self, lines):
        for client in [each for each in self.clients if each.open]:
            for line in lines:
                await client.send(line)

    def say(self, *records):
        self.loop.run(self.send([each if isinstance(each, str) else compact(each) for each in records]))

    def stop(self):
        async def close():
            self.server.close()
            await self.server.wait_closed()
        self.loop.run(close())

    def quit(self):
        self.stop()
        self.loop.stop()
