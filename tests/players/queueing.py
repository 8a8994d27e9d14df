"""queueing.py MPD_PLAYER [NAME...]: putting music into the queue, and changing the queue."""
import sys

sys.path.insert(0, __file__.rpartition("/players/")[0])
from players_test import Device, run


def queue_of(mpd):
    """Which songs are queued, by the letter of their file, and which of them MPD plays."""
    songs = "".join(line[-6] for line in mpd.ask("playlistinfo") if line.startswith("file: "))
    said = dict(line.split(": ", 1) for line in mpd.ask("status"))
    return songs, songs[int(said["song"])] if said["state"] == "play" else ""


def queueing(mpd):
    mpd.ask("clear", f'add "{mpd.D[5:]}"', f'add "{mpd.E[5:]}"')
    queued = {letter: f"queue:{place}:{getattr(mpd, letter)[5:]}" for place, letter in enumerate("DE")}
    with Device("--host", mpd.host) as d:
        for command, params, *expected in (
                ("PLAY", {"ID": queued["D"]}, "DE", "D"),
                ("ADD", {"ID": "album-of:Élodie/Café", "WHERE": "Next"}, "DABE", "D"),
                ("ADD", {"ID": "artist:水無瀬"}, "DABEC", "D"),
                ("ADD", {"ID": "genre:Fado", "WHERE": "Now"}, "DCABEC", "C"),
                ("ADD", {"ID": "queue:3:" + mpd.B[5:], "WHERE": "Next"}, "DCBAEC", "C"),
                ("ADD", {"ID": "queue:0:" + mpd.D[5:], "WHERE": "Next"}, "CDBAEC", "C"),
                ("ADD", {"ID": "queue:0:" + mpd.C[5:], "WHERE": "End"}, "DBAECC", "C"),
                ("REMOVE", {"ID": "queue:4:" + mpd.C[5:]}, "DBAEC", "C"),
                ("MOVE", {"ID": "queue:9:" + mpd.E[5:], "TO": "0"}, "EDBAC", "C"),
                ("PLAY", {"ID": "remove:queue:1:" + mpd.D[5:]}, "EBAC", "C"),
                ("BROWSE", {"ID": "next:" + mpd.D}, "EBACD", "C"),
                ("PLAY", {"ID": "folder:Élodie"}, "EBACABD", "A"),
                ("PLAY", {"ID": mpd.D}, "EBACABD", "D"),
                ("PLAY", {"ID": "queue:0:" + mpd.E[5:]}, "EBACABD", "E"),
                ("ADD", {"ID": "playlist:Liste", "WHERE": "Now"}, "ECBACABD", "C"),
                ("ADD", {"ID": "search:くら"}, "ECBACABDC", "C"),
                ("ADD", {"ID": "all:year:1999", "WHERE": "Next"}, "ECCBACABDC", "C"),
                ("CLEAR_QUEUE", {}, "", ""),
                ("ADD", {"ID": "album:Café", "WHERE": "Next"}, "AB", ""),
                ("PLAY", {"ID": "now:" + mpd.E}, "ABE", "E"),
                ("PLAY", {"ID": "clear:queue"}, "", "")):
            d.say(command, **params)
            d.say("SEARCH", TEXT="nichts")  # its answer comes when the command has been carried out
            d.wait("NEW_LIST", "nichts", "0", "0", "0", "True")
            assert queue_of(mpd) == tuple(expected), (command, params, queue_of(mpd))
        header, items = d.list("BROWSE", ID="end:album-of:Élodie/Café")
        assert header[:2] == ["Queue", "3"] and len(items) == 3, (header, items)
        d.say("SAVE_QUEUE", NAME="Kept")
        d.wait("LIST_CHANGED", "playlist")
        assert (mpd.top / "lists/Kept.m3u").read_text().split() == [mpd.A[5:], mpd.B[5:]]


def refusals(mpd):
    """What is not done is told to the person and on standard error, in one line that a terminal can show."""
    with Device("--host", mpd.host) as d:
        d.wait("PLAYER_ERROR", "", "")
        for command, params, complaint in (
                ("JUMP", {}, "unknown command"), ("SEEK", {}, "POSITION is missing"),
                ("SEEK", {"POSITION": "-1"}, 'POSITION is "-1", not a number from 0 to 1000000'),
                ("SEEK", {"POSITION": "1e3"}, "not a number"), ("SCAN_FWD", {}, 'MPD says "Not playing"'),
                ("SET_SHUFFLE", {"MODE": "on"}, "MODE is none of Off,On"), ("SET_REPEAT", {}, "MODE is missing"),
                ("SET_REPEAT", {"MODE": "Ever"}, "MODE is none of Off,All,One,Single,Oneshot"),
                ("SET_VOLUME", {"VOLUME": "101"}, "from 0 to 100"), ("SET_MUTE", {"MODE": "True"}, "MODE is none of"),
                ("SET_OUTPUT", {"ID": "queue", "MODE": "On"}, "ID must be an output's"), ("SET_OUTPUT", {"ID": "output:7", "MODE": "On"}, "MPD says"),
                ("PLAY", {"ID": "artists"}, "ID names no songs"), ("PLAY", {"ID": "song:no\nclear"}, "must be one line"),
                ("PLAY", {"ID": "song:nowhere"}, "MPD says"), ("PLAY", {"ID": "track:9:Liste"}, "the playlist has changed"),
                ("PLAY", {"ID": "track:x:Liste"}, "ID names nothing"), ("PLAY", {"ID": "album:Nothing"}, "there are no songs in it"),
                ("ADD", {"ID": mpd.A, "WHERE": "Here"}, "WHERE is none of Now,Next,End"), ("ADD", {}, "ID is missing"),
                ("REMOVE", {"ID": "queue:0:gone"}, "no longer in the queue"), ("REMOVE", {"ID": mpd.A}, "ID must be an item of the queue"),
                ("MOVE", {"ID": "queue:0:" + mpd.A[5:], "TO": "77"}, "MPD says"), ("MOVE", {"ID": "queue:x", "TO": "7"}, "ID names nothing"),
                ("PLAY", {"ID": "queue:0@0.0-1.0:" + mpd.A[5:]}, "no longer in the queue"), ("SAVE_QUEUE", {"NAME": "a/b"}, "MPD says"),
                ("\x1b[2J", {}, '"\\u001b[2J": unknown command')):
            d.say(command, **params)
            line, (_, refused, why) = d.complaint(), d.next("PLAYER_ERROR")
            assert complaint in line and "\x1b" not in line and refused == command and why in line, (command, params, line, why)
        for line in ("{", "[1]", '{"to":"ui"}', '{"to":"device","binding":5001,"command":1,"params":[]}', "[" * 100000):
            d.write(line)
            assert "no command" in d.complaint(), line
        d.write("x" * 3000000)
        assert "longer than 1 MiB" in d.complaint()
        d.say("MENU")
        d.next("NEW_MENU")


if __name__ == "__main__":
    run(queueing, refusals)
