"""What the tests of players share: a player under test, a real MPD, one that misbehaves, and music for them."""
import itertools
import json
import os
import pathlib
import queue
import socket
import struct
import subprocess
import sys
import tempfile
import threading
import time
import zlib

BOUND = 60  # seconds until what is waited for counts as missing


class Device:
    """The program under test; what it says is taken in order, its complaints are kept apart."""

    def __init__(self, *options, program=sys.argv[1], patience=BOUND, **environment):
        self.process = subprocess.Popen([program, *options], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE, env={**os.environ, "MPD_TIMEOUT": str(patience), **environment})
        self.said, self.complaints, self.seen = queue.Queue(), queue.Queue(), []
        for source, sink in ((self.process.stdout, self.said), (self.process.stderr, self.complaints)):
            threading.Thread(target=lambda f=source, q=sink: [q.put(x.decode()) for x in f], daemon=True).start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.stdin.close()
        assert self.process.wait(BOUND) == 0, "the end of its input does not end it well"

    def say(self, command, **params):
        listed = [{"name": n, "type": "STRING", "value": v} for n, v in params.items()]
        self.write(json.dumps({"step": 1, "to": "device", "binding": 5001, "command": command, "params": listed}))

    def write(self, text):
        self.process.stdin.write(text.encode() + b"\n")
        self.process.stdin.flush()

    def next(self, *names):
        """The next message of one of these names: a list of the name and the parameters."""
        while True:
            try:
                message = json.loads(self.said.get(timeout=BOUND))
            except queue.Empty:
                raise AssertionError(f"no {names} after {self.seen[-20:]}") from None
            name = message.get("notify", "bind")
            values = list(message.get("params", message.get("capabilities", {})).values())
            self.seen.append([name, *[str(v)[:60] for v in values]])
            if name in names:
                return [name, *values]

    def wait(self, name, *values):
        while self.next(name)[1:] != list(values):
            pass

    def complaint(self):
        return self.complaints.get(timeout=BOUND)

    def list(self, command, **params):
        """What a request for a menu or list yields: the header's values, then (id, text) of each item."""
        self.say(command, **params)
        _, title, *header = self.next("NEW_LIST")
        items = [self.next("ADD_LIST_ITEM") for _ in range(max(int(header[1]), 1))]  # an empty list has an empty item
        assert [i[4] for i in items] == ["False"] * (len(items) - 1) + ["True"], items
        return [title, *header], [(i[1], i[3]) for i in items if any(i[1:4])]


def png(width, height, row=None):
    chunk = lambda kind, data: struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    rows = (b"\0" + (row or b"\xff\x80\x10" * width)) * (height if height < 2000 else 1)
    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b"")


def jpeg(width, height):
    pixels = b"P6 %d %d 255\n" % (width, height) + b"\xff\x80\x10" * width * height
    return subprocess.run(["cjpeg"], input=pixels, stdout=subprocess.PIPE, check=True).stdout


def flac(path, seconds, picture=None, **tags):
    path.parent.mkdir(parents=True, exist_ok=True)
    options = [o for name, values in tags.items() for v in values for o in ("-T", f"{name}={v}")]
    if picture:
        path.with_suffix(".picture").write_bytes(picture)
        options += ["--picture", path.with_suffix(".picture")]
    subprocess.run(["flac", "-s", "--force-raw-format", "--endian=little", "--channels=1", "--bps=16", "--sign=signed",
                    "--sample-rate=8000", *options, "-o", path, "-"], input=bytes(16000 * seconds), check=True)


class Mpd:
    """A real MPD: A embeds a JPEG that fits, B one that is too large, C and E lie beside a PNG, D is bare; E is not queued."""

    A, B, C, D, E = ("song:Élodie/Café/A.flac", "song:Élodie/Café/B.flac", "song:水/C.flac", "song:ليلة/D.flac", "song:水/E.flac")

    def __init__(self, top):
        self.top, self.host, self.process = top, top / "socket", None
        flac(top / "music/Élodie/Café/A.flac", 300, jpeg(96, 64), TITLE=["Où ?"], ARTIST=["Élodie", "A/C 5%"],
             ALBUM=["Café"])
        flac(top / "music/Élodie/Café/B.flac", 300, jpeg(900, 450), TITLE=['"B" \\ <&>'], ARTIST=["Élodie"], ALBUM=["Café"])
        flac(top / "music/水/C.flac", 300, TITLE=["くらげ"], ARTIST=["水無瀬"], ALBUM=["夜"],
             DATE=["1999-05-03"], GENRE=["Fado"])
        flac(top / "music/水/E.flac", 300)
        (top / "music/水/cover.png").write_bytes(png(900, 450))
        (top / "music/Élodie/Café/cover.png").write_bytes(png(64, 64))
        flac(top / "music/ليلة/D.flac", 300)
        (top / "lists").mkdir()
        (top / "lists/Liste.m3u").write_text("水/C.flac\n")
        (top / "conf").write_text(
            f'music_directory "{top}/music"\nplaylist_directory "{top}/lists"\ndb_file "{top}/db"\n'
            f'state_file "{top}/state"\nbind_to_address "{self.host}"\n'
            'audio_output {\ntype "null"\nname "null"\nmixer_type "software"\n}\n')
        self.start()
        self.mpc("update", "--wait")
        self.mpc("add", *[s[5:] for s in (self.A, self.B, self.C, self.D)])

    def start(self):
        self.process = subprocess.Popen(["mpd", "--no-daemon", self.top / "conf"], stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)
        end = time.monotonic() + BOUND
        while subprocess.run(["mpc", "-q", "--host", self.host], stderr=subprocess.DEVNULL, check=False).returncode:
            assert time.monotonic() < end and self.process.poll() is None, "MPD does not start"

    def stop(self):
        self.process.terminate()
        self.process.wait()

    def ask(self, *commands):
        """The lines of MPD's answers to them."""
        with socket.socket(socket.AF_UNIX) as peer:
            peer.connect(str(self.host))
            peer.sendall("\n".join(["command_list_begin", *commands, "command_list_end", ""]).encode())
            lines = (line.rstrip("\n") for line in peer.makefile(encoding="utf-8"))
            next(lines)  # the greeting
            return list(itertools.takewhile(lambda line: line != "OK" and not line.startswith("ACK "), lines))

    def mpc(self, *words):
        subprocess.run(["mpc", "-q", "--host", self.host, *words], check=True)



SONG = b"file: a.flac\nTitle: T\n"
PICTURE = png(8, 4)


def piece(data, size=None, stated=None):
    return b"size: %d\nbinary: %d\n" % (size or len(data), stated or len(data)) + data + b"\nOK\n"


class FalseMpd:
    """Answers by a table: for a command's first word, one answer for each time that it comes, then the last one again."""

    def __init__(self, **answers):
        self.answers = {"commands": [b"command: play\nOK\n"], "status": [b"state: pause\n" + SONG + b"OK\n"],
                        "greeting": [b"OK MPD 0.23.0\n"], "readpicture": [piece(PICTURE)], "idle": [b""],
                        "noidle": [b"OK\n"], **answers}
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.where = "--host", "word@localhost", "--port", str(self.listener.getsockname()[1])
        threading.Thread(target=self.serve, daemon=True).start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.listener.shutdown(socket.SHUT_RDWR)
        self.listener.close()

    def answer(self, connection, word):
        given = self.answers.get(word, [b"OK\n"])
        data = given.pop(0) if len(given) > 1 else given[0]
        if data is None:
            raise ConnectionError
        for part in (data[i:i + 1] for i in range(len(data))) if len(data) < 1000 else [data]:
            connection.sendall(part)

    def serve(self):
        while True:
            try:
                connection, _ = self.listener.accept()
            except OSError:
                return
            connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            try:
                with connection, connection.makefile("rb") as lines:
                    self.answer(connection, "greeting")
                    listed = None
                    for line in lines:
                        word = line.split()[0].decode()
                        if word == "command_list_begin":
                            listed = next(lines).split()[0].decode()
                        elif word == "command_list_end":
                            word, listed = listed, None
                        if not listed:
                            self.answer(connection, word)
            except OSError:
                pass



def run(*tests, real=True):
    """Runs the tests whose names the command line has, or all: each gets a real MPD, if it is to be one, else a folder."""
    names = sys.argv[2:] or [t.__name__ for t in tests]
    for test in (t for t in tests if t.__name__ in names):
        start = time.monotonic()
        with tempfile.TemporaryDirectory() as folder:
            mpd = Mpd(pathlib.Path(folder)) if real else None
            try:
                test(mpd or pathlib.Path(folder))
            finally:
                if mpd:
                    mpd.stop()
        print(f"{test.__name__} {time.monotonic() - start:.1f} s", flush=True)
