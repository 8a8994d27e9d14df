"""players_test.py MPD_PLAYER EXAMPLE [NAME...]: players through their own door, at a real MPD and at one that misbehaves."""
import base64
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
BROWSING = ("NEW_MENU", "ADD_MENU_ITEM", "NEW_LIST", "ADD_LIST_ITEM")


class Device:
    """The program under test; what it says is taken in order, its complaints are kept apart."""

    def __init__(self, *options, program=sys.argv[1], patience=BOUND):
        self.process = subprocess.Popen([program, *options], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE, env={**os.environ, "MPD_TIMEOUT": str(patience)})
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
        items = [self.next("ADD_LIST_ITEM") for _ in range(max(int(header[1]), header[0] == "0"))]
        assert [i[4] for i in items] == ["False"] * (len(items) - 1) + ["True"] * bool(items), items
        return [title, *header], [(i[1], i[3]) for i in items]


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
        flac(top / "music/水/C.flac", 300, TITLE=["くらげ"], ARTIST=["水無瀬"], ALBUM=["夜"])
        flac(top / "music/水/E.flac", 300)
        (top / "music/水/cover.png").write_bytes(png(900, 450))
        (top / "music/Élodie/Café/cover.png").write_bytes(png(64, 64))
        flac(top / "music/ليلة/D.flac", 300)
        (top / "lists").mkdir()
        (top / "lists/Liste.m3u").write_text("水/C.flac\n")
        (top / "conf").write_text(
            f'music_directory "{top}/music"\nplaylist_directory "{top}/lists"\ndb_file "{top}/db"\n'
            f'state_file "{top}/state"\nbind_to_address "{self.host}"\n'
            'audio_output {\ntype "null"\nname "null"\n}\n')
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

    def mpc(self, *words):
        subprocess.run(["mpc", "-q", "--host", self.host, *words], check=True)


def first_report(d, status):
    bind = d.next("bind")
    assert bind[1:] == [True] * 12 + ["Off,On", "Off,All,One", "Title,Artist,Album"], bind
    d.wait("ONLINE_STATUS_CHANGED", "True")
    d.wait("SET_MEDIA_LABELS", "Title,Artist,Album")
    d.wait("PLAY_STATUS_CHANGED", status)


def transport(mpd):
    with Device("--host", mpd.host) as d:
        first_report(d, "Stopped")
        d.wait("PLAY_TIME_CHANGED", "0:00", "0:00")
        for command, params, *expected in (
                ("PLAY", {"ID": mpd.A}, "PLAY_STATUS_CHANGED", "Playing"),
                ("RESET", {}, "MEDIA_INFO_CHANGED", "Où ?", "Élodie; A/C 5%", "Café"),
                ("PAUSE", {}, "PLAY_STATUS_CHANGED", "Paused"),
                ("SEEK", {"POSITION": "250"}, "PLAY_TIME_CHANGED", "4:10", "0:50"),
                ("SCAN_FWD", {}, "PLAY_TIME_CHANGED", "4:20", "0:40"),
                ("SCAN_REV", {}, "PLAY_TIME_CHANGED", "4:10", "0:50"),
                ("PLAY", {}, "PLAY_STATUS_CHANGED", "Playing"),
                ("SKIP_FWD", {}, "UPDATE_MEDIA_INFO", '"B" \\ <&>', "Élodie", "Café"),
                ("SKIP_FWD", {}, "QUEUE_PROGRESS_CHANGED", "3", "4"),
                ("SKIP_REV", {}, "MEDIA_INFO_CHANGED", '"B" \\ <&>', "Élodie", "Café"),
                ("PLAY", {"ID": "queue:3:" + mpd.D[5:]}, "MEDIA_INFO_CHANGED", "D.flac", "", ""),
                ("SET_SHUFFLE", {"MODE": "On"}, "SHUFFLE_CHANGED", "On"),
                ("SET_SHUFFLE", {"MODE": "Off"}, "SHUFFLE_CHANGED", "Off"),
                ("SET_REPEAT", {"MODE": "One"}, "REPEAT_CHANGED", "One"),
                ("SET_REPEAT", {"MODE": "All"}, "REPEAT_CHANGED", "All"),
                ("SET_REPEAT", {"MODE": "Off"}, "REPEAT_CHANGED", "Off"),
                ("STOP", {}, "PLAY_STATUS_CHANGED", "Stopped")):
            d.say(command, **params)
            d.wait(*expected)
            if expected[1] == "Playing":
                assert d.next("PLAY_TIME_CHANGED") != d.next("PLAY_TIME_CHANGED")
        mpd.mpc("del", "4")
        d.wait("QUEUE_PROGRESS_CHANGED", "0", "3")
        d.say("PLAY", ID=mpd.D)
        d.wait("QUEUE_PROGRESS_CHANGED", "4", "4")
        mpd.mpc("stop")
        d.wait("PLAY_STATUS_CHANGED", "Stopped")
        twice = [(a, b) for a, b in zip(d.seen, d.seen[1:]) if a == b and a[0] not in BROWSING]
        assert not twice, twice
        mpd.stop()
        d.wait("ONLINE_STATUS_CHANGED", "False")
        mpd.start()
        first_report(d, "Stopped")
        d.wait("QUEUE_PROGRESS_CHANGED", "4", "4")


def browsing(mpd):
    menu = ["artists", "albums", "folders", "playlists", "queue", "search"]
    bare = ("song:ليلة/D.flac", "D.flac")
    a, b, c = (mpd.A, "Où ?"), (mpd.B, '"B" \\ <&>'), (mpd.C, "くらげ")
    with Device("--host", mpd.host) as d:
        d.say("MENU")
        assert d.next("NEW_MENU")[1:] == ["Music player", "6"]
        assert [d.next("ADD_MENU_ITEM")[1] for _ in menu] == menu
        for params, header, items in (
                ({"ID": "artists"}, ["Artists", "4", "4", "0", "True"],
                 [("artist:", "Unknown"), ("artist:A/C 5%", "A/C 5%"), ("artist:Élodie", "Élodie"), ("artist:水無瀬", "水無瀬")]),
                ({"ID": "artist:A/C 5%"}, ["A/C 5%", "1", "1", "0", "True"], [("album-of:A%2FC 5%25/Café", "Café")]),
                ({"ID": "album-of:A%2FC 5%25/Café"}, ["Café", "1", "1", "0", "True"], [a]),
                ({"ID": "albums", "FIRST": "1"}, ["Albums", "3", "2", "1", "False"], [("album:Café", "Café"), ("album:夜", "夜")]),
                ({"ID": "album:Café", "COUNT": "1"}, ["Café", "2", "1", "0", "True"], [a]),
                ({"ID": "album:"}, ["Unknown", "2", "2", "0", "True"], [bare, (mpd.E, "E.flac")]),
                ({"ID": "folders", "COUNT": "2"}, ["Folders", "4", "2", "0", "True"], [("folder:Élodie", "Élodie"), ("folder:ليلة", "ليلة")]),
                ({"ID": "folder:Élodie/Café"}, ["Café", "2", "2", "0", "True"], [a, b]),
                ({"ID": "playlists"}, ["Playlists", "1", "1", "0", "True"], [("playlist:Liste", "Liste")]),
                ({"ID": "playlist:Liste"}, ["Liste", "1", "1", "0", "True"], [c]),
                ({"ID": "queue", "FIRST": "1", "COUNT": "2"}, ["Queue", "4", "2", "1", "False"],
                 [(f"queue:{n}:{uri[5:]}", text) for n, (uri, text) in ((1, b), (2, c))]),
                ({"ID": "queue", "FIRST": "9"}, ["Queue", "4", "0", "9", "False"], []),
                ({"TEXT": "くら"}, ["くら", "1", "1", "0", "True"], [c]),
                ({"TEXT": '"b" \\'}, ['"b" \\', "1", "1", "0", "True"], [b]),
                ({"TEXT": "nichts"}, ["nichts", "0", "0", "0", "True"], [("", "Nothing found")])):
            answer = d.list("BROWSE" if "ID" in params else "SEARCH", **params)
            assert answer == (header, items), (params, answer)


def pictures(mpd):
    for kind, uri, *expected in (("jpeg", mpd.A, "96", "64", "JPEG"), ("jpeg", mpd.B, "200", "100", "JPEG"),
                                 ("jpeg", mpd.C, "200", "100", "JPEG"), ("rgb565", mpd.C, "200", "100", "RGB565"),
                                 ("rgb888", mpd.A, "96", "64", "RGB888"), ("rgb888", mpd.C, "200", "100", "RGB888")):
        with Device("--host", mpd.host, "--art", kind, "--art-size", "200") as d:
            d.say("PLAY", ID=uri)
            while (found := d.next("NEW_COVERART"))[2:5] != expected:
                pass
            data = base64.b64decode(found[1])
            width, height = map(int, expected[:2])
            if kind == "jpeg":
                assert len(data) == int(found[5]) and data[:2] == b"\xff\xd8", found[2:]
                assert (data == jpeg(96, 64)) == (uri == mpd.A)
            elif uri == mpd.C:
                one = {"rgb565": b"\x02\xfc", "rgb888": b"\x10\x80\xff\xff"}[kind]
                assert data == one * width * height, data[:8]
            if uri == mpd.C:
                d.say("PLAY", ID=mpd.E)
                d.wait("MEDIA_INFO_CHANGED", "E.flac", "", "")
                told = [d.list("BROWSE", ID="albums") and d.seen.count([*found[:1], *[v[:60] for v in found[1:]]]) for _ in "ab"]
                assert told == [1, 1], "the same picture is sent twice"
                mpd.mpc("del", "5")
            d.say("PLAY", ID=mpd.D)
            assert d.next("NEW_COVERART", "COVERART_PATH_CHANGED") == ["COVERART_PATH_CHANGED", "", "0", "0"]
    mpd.mpc("stop")


def wrong_commands(mpd):
    with Device("--host", mpd.host) as d:
        for command, params, complaint in (
                ("JUMP", {}, "unknown command"), ("SEEK", {}, "POSITION is missing"),
                ("SEEK", {"POSITION": "-1"}, 'POSITION is "-1", not a number from 0 to 1000000'),
                ("SEEK", {"POSITION": "1e3"}, "not a number"), ("SCAN_FWD", {}, 'MPD says "Not playing"'),
                ("SET_SHUFFLE", {"MODE": "on"}, "MODE is none of Off,On"), ("SET_REPEAT", {}, "MODE is missing"),
                ("PLAY", {"ID": "album:Café"}, "ID must be a song's"), ("PLAY", {"ID": "song:no\nclear"}, "must be one line"),
                ("PLAY", {"ID": "song:nowhere"}, "MPD says"), ("BROWSE", {"ID": "search"}, "ID names nothing"),
                ("BROWSE", {"ID": "folder:nowhere"}, 'MPD says "No such directory"'), ("SEARCH", {"TEXT": ""}, "TEXT is missing"),
                ("BROWSE", {"ID": "queue", "COUNT": "0"}, "COUNT"), ("BROWSE", {"ID": "queue", "FIRST": "x"}, "FIRST"),
                ("\x1b[2J", {}, '"\\u001b[2J": unknown command')):
            d.say(command, **params)
            line = d.complaint()
            assert complaint in line and "\x1b" not in line, (command, params, line)
        for line in ("{", "[1]", '{"to":"ui"}', '{"to":"device","binding":5001,"command":1,"params":[]}', "[" * 100000):
            d.write(line)
            assert "no command" in d.complaint(), line
        d.write("x" * 3000000)
        assert "longer than 1 MiB" in d.complaint()
        d.say("MENU")
        d.next("NEW_MENU")


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


def hostile_answers(_):
    art, none = ("NEW_COVERART", "8", "4"), ("COVERART_PATH_CHANGED", "0", "0")
    title = b"state: pause\nfile: a.flac\nTitle: "
    for case, answers, complaint, expected, again in (
            ("closes in a picture", {"readpicture": [piece(PICTURE)[:40], None, piece(PICTURE)]}, "stopped answering", art, True),
            ("closes instead of a picture", {"readpicture": [None, piece(PICTURE)]}, "closed the connection", art, True),
            ("closes at every picture", {"readpicture": [None]}, "closed the connection", none, True),
            ("refuses the embedded picture", {"readpicture": [b"ACK [5@0] {} no\n"], "albumart": [piece(PICTURE)]}, None, art, False),
            ("gives a picture in pieces", {"readpicture": [piece(PICTURE[:9], len(PICTURE)), piece(PICTURE[9:], len(PICTURE))]}, None, art, False),
            ("sends more than it says", {"readpicture": [piece(PICTURE, stated=4), piece(PICTURE)]}, "more bytes than", art, True),
            ("sends less than it says", {"readpicture": [piece(PICTURE, stated=5000), piece(PICTURE)]}, "stopped answering", art, True),
            ("says too large a piece", {"readpicture": [piece(PICTURE, stated=1 << 40), piece(PICTURE)]}, "announces a piece", art, True),
            ("says too large a picture", {"readpicture": [piece(PICTURE, size=1 << 40)]}, "left out", none, False),
            ("gives more than the picture", {"readpicture": [piece(PICTURE, size=9)]}, "left out", none, False),
            ("changes the size", {"readpicture": [piece(PICTURE[:9], 99), piece(PICTURE[9:])]}, "left out", none, False),
            ("has no picture in it", {"readpicture": [piece(b"GIF8no")]}, "left out", none, False),
            ("has another kind in it", {"readpicture": [piece(b"<svg/>")]}, "unknown kind", none, False),
            ("has a cut picture", {"readpicture": [piece(PICTURE[:40])]}, "left out", none, False),
            ("has too many pixels", {"readpicture": [piece(png(30000, 30000, b"\0\0\0" * 30000))]}, "too many pixels", none, False),
            ("is not MPD", {"greeting": [b"SSH-2.0\n", b"OK MPD 0.23.0\n"]}, "not MPD", art, False),
            ("never greets", {"greeting": [b"", b"OK MPD 0.23.0\n"]}, "stopped answering", art, False),
            ("refuses the password", {"password": [b"ACK [3@0] {password} no\n", b"OK\n"]}, "password is refused", art, False),
            ("refuses the status", {"status": [b"ACK [4@0] {status} no permission\n", b"state: pause\n" + SONG + b"OK\n"]}, "no permission", art, False),
            ("refuses to idle", {"idle": [b"ACK [4@0] {idle} no\n", b""]}, "refuses to idle", art, True),
            ("sends nonsense", {"status": [b"nonsense\n", b"state: pause\n" + SONG + b"OK\n"]}, "nonsense", art, False),
            ("sends an endless line", {"status": [b"x" * 400000, b"state: pause\n" + SONG + b"OK\n"]}, "too long", art, False),
            ("sends an endless answer", {"status": [(b"x: " + b"y" * 9999 + b"\n") * 7000, b"state: pause\n" + SONG + b"OK\n"]}, "too long", art, False),
            ("has odd numbers", {"status": [b"state: play\ntime: x:99999999999\nelapsed: -1e99\nsong: -7\nplaylistlength: -1\n" + SONG + b"OK\n"]}, None, art, False),
            ("has any bytes", {"status": [title + b"\xff\x01\0\xc3\x28\nOK\n"]}, None,
             ("MEDIA_INFO_CHANGED", {"bytes": base64.b64encode(b"\xff\x01\0\xc3\x28").decode()}), False),
            ("has a long tag", {"status": [title + b"x" * 200000 + b"\nOK\n"]}, None, ("MEDIA_INFO_CHANGED", "x" * 200000), False)):
        patience = 2 if complaint == "stopped answering" else BOUND
        with FalseMpd(**answers) as mpd, Device(*mpd.where, "--art", "rgb565", patience=patience) as d:
            if again:
                d.wait("ONLINE_STATUS_CHANGED", "False")
            found = d.next(expected[0])
            assert all(value in found for value in expected[1:]), (case, found)
            assert complaint is None or complaint in d.complaint(), case


def unread_output(_):
    """While nobody reads, nothing piles up; then what holds now is sent, and the end of the input is still seen."""
    busy = [b"changed: player\nOK\n"]
    titles = [b"state: pause\nfile: %d\nTitle: " % n + b"x" * 3000 + b"%d\nOK\n" % n for n in range(600)]
    with FalseMpd(idle=busy, status=titles, readpicture=[b"OK\n"]) as mpd:
        process = subprocess.Popen([sys.argv[1], *mpd.where], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        end = time.monotonic() + BOUND
        left = 601
        while len(titles) != left:  # until it asks no more
            assert time.monotonic() < end
            left = len(titles)
            time.sleep(0.2)
        assert left > 500, left
        read = b""
        while b"x599" not in read:
            read = read[-9:] + os.read(process.stdout.fileno(), 65536)
        process.stdin.close()
        assert process.wait(BOUND) == 0


def example(_):
    with Device(program=sys.argv[2]) as d:
        d.wait("PLAY_TIME_CHANGED", "0:00", "0:21")
        for command, *expected in (("PLAY", "PLAY_TIME_CHANGED", "0:01", "0:20"), ("PAUSE", "PLAY_STATUS_CHANGED", "Paused"),
                                   ("SKIP_FWD", "QUEUE_PROGRESS_CHANGED", "2", "3")):
            d.say(command, ROOM_ID="5")
            d.wait(*expected)


def main():
    real, hostile = (transport, browsing, pictures, wrong_commands), (hostile_answers, unread_output, example)
    names = sys.argv[3:] or [t.__name__ for t in real + hostile]
    with tempfile.TemporaryDirectory() as folder:
        top = pathlib.Path(folder)
        mpd = Mpd(top) if any(t.__name__ in names for t in real) else None
        try:
            for test in real + hostile:
                if test.__name__ in names:
                    start = time.monotonic()
                    test(mpd if test in real else top)
                    print(f"{test.__name__} {time.monotonic() - start:.1f} s", flush=True)
        finally:
            if mpd:
                mpd.stop()


if __name__ == "__main__":
    main()
