"""hostile.py MPD_PLAYER [NAME...]: an MPD that stalls, closes the connection, or sends what it should not."""
import base64
import os
import subprocess
import sys
import time

sys.path.insert(0, __file__.rpartition("/players/")[0])
from players_test import BOUND, PICTURE, SONG, Device, FalseMpd, piece, png, run


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
            ("keeps a command too long", {"status": [b"state: pause\nplaylistlength: 1\nfile: " + b"x" * 5000 + b"\nOK\n"]}, None, none, False),
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


def silence(_):
    """Who is silent too long is away, even when there is nothing to say; what was under way is told, and done again."""
    found, gone = b"Artist: A\nOK\n", "it is done when MPD is back"
    for command, params, answers, complaint, answer in (
            ("BROWSE", {"ID": "artists"}, {"list": [b"", found]}, gone, ("NEW_LIST", "Artists", "1")),
            ("BROWSE", {"ID": "artists"}, {"list": [b"Artist: A\nArt", found]}, gone, ("NEW_LIST", "Artists", "1")),
            ("BROWSE", {"ID": "artists"}, {"list": [None, found]}, gone, ("NEW_LIST", "Artists", "1")),
            ("BROWSE", {"ID": "artists"}, {"list": [None]}, gone, ("NEW_LIST", "", "0")),
            ("SEARCH", {"TEXT": "a"}, {"search": [b"file: x\n" * 10 + b"\0", b"OK\n"]}, gone, ("NEW_LIST", "a", "0")),
            ("PAUSE", {}, {"pause": [None, b"ACK [5@0] {pause} no\n"]}, gone, ("PLAYER_ERROR", "PAUSE", 'MPD says "no"')),
            ("SKIP_FWD", {}, {"next": [None, b"OK\n"]}, "perhaps it is not done", ("PLAYER_ERROR", "SKIP_FWD")),
            ("PLAY", {"ID": "next:song:a"}, {"addid": [None]}, "perhaps it is not done", ("PLAYER_ERROR", "PLAY"))):
        with FalseMpd(**answers) as mpd, Device(*mpd.where, patience=2) as d:
            d.next("NEW_COVERART")
            d.say(command, **params)
            d.wait("ONLINE_STATUS_CHANGED", "False")
            while complaint not in (line := d.complaint()):
                assert "MPD is away" in line, (command, answers, line)
            while (said := d.next(answer[0]))[1:] == ["", ""]:
                pass
            assert said[1:len(answer)] == list(answer[1:]), (command, answers, said)
    with FalseMpd(status=[b"state: pause\n" + SONG + b"OK\n", b"", b"state: play\n" + SONG + b"OK\n"]) as mpd, Device(*mpd.where, patience=1) as d:
        d.wait("ONLINE_STATUS_CHANGED", "True")
        start = time.monotonic()
        d.wait("ONLINE_STATUS_CHANGED", "False")
        assert time.monotonic() - start < 15
        d.wait("PLAY_STATUS_CHANGED", "Playing")


def time_that_stands(_):
    """The time shown is MPD's, whatever the clock says."""
    at = lambda elapsed: b"state: play\ntime: 5:60\nelapsed: %s\n%sOK\n" % (elapsed, SONG)
    with FalseMpd(status=[at(b"5.0")] * 3 + [at(b"5.3"), at(b"9.9"), at(b"2.0")]) as mpd, Device(*mpd.where) as d:
        shown = [d.next("PLAY_TIME_CHANGED")[1:] for _ in range(3)]
        assert shown == [["0:05", "0:55"], ["0:09", "0:51"], ["0:02", "0:58"]], shown


def endless_list(_):
    """A list that has no end is cut off; a long one takes no memory that grows with it."""
    items = b"".join(b"file: folder/%06d.flac\nTitle: Song %d\nArtist: Somebody\nAlbum: Some album\nTime: 200\nduration: 200.000\n" % (n, n)
                     for n in range(100000))
    with FalseMpd(lsinfo=[items + b"OK\n"] * 5 + [items * 10 + b"OK\n"]) as mpd, Device(*mpd.where) as d:
        for first in ("0", "50000", "99999", "100001"):
            header, listed = d.list("BROWSE", ID="folder:x", FIRST=first)
            assert header[1:3] == ["100001", str(min(100, max(0, 100001 - int(first))))], header
            assert len(listed) == int(header[2]) and (first == "0" or not listed or listed[0][0] == f"song:folder/{int(first) - 1:06}.flac")
        with open(f"/proc/{d.process.pid}/status", encoding="utf-8") as status:
            peak = int(next(line for line in status if line.startswith("VmHWM")).split()[1])
        assert peak < 30000 or "asan" in sys.argv[1], peak
        d.say("BROWSE", ID="folder:x")
        d.say("BROWSE", ID="folder:x")
        d.wait("ONLINE_STATUS_CHANGED", "False")
        assert "too long" in d.complaint()


def slow_names(_):
    """A name server that does not answer holds nothing up, and the player ends all the same."""
    names = os.environ.get("SLOW_NAMES")
    with Device("--host", "music.example", patience=1, LD_PRELOAD=names, ASAN_OPTIONS="verify_asan_link_order=0:intercept_tls_get_addr=0") as d:
        d.write("{")
        assert "no command" in d.complaint()
        assert "the name server does not answer" in d.complaint()
        start = time.monotonic()
    assert time.monotonic() - start < 5
    for name, value in (("MPD_PORT", "abc"), ("MPD_PORT", "0"), ("MPD_PORT", "65536"), ("MPD_TIMEOUT", "1e3")):
        wrong = subprocess.run([sys.argv[1]], env={**os.environ, name: value}, capture_output=True, text=True, check=False)
        assert (wrong.returncode, wrong.stderr) == (2, f'mpd-player: {name} is "{value}", not a number from 1 to {65535 if name == "MPD_PORT" else 3600}\n'), wrong


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



if __name__ == "__main__":
    run(hostile_answers, silence, time_that_stands, endless_list, slow_names, unread_output, real=False)
