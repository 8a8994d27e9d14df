"""transport.py MPD_PLAYER [NAME...]: what plays, and how MPD is set."""
import sys

sys.path.insert(0, __file__.rpartition("/players/")[0])
from players_test import Device, run

BROWSING = ("NEW_MENU", "ADD_MENU_ITEM", "NEW_LIST", "ADD_LIST_ITEM", "LIST_CHANGED")


def first_report(d, status):
    bind = d.next("bind")
    assert bind[1:] == [True] * 12 + ["Off,On", "Off,All,One,Single,Oneshot", "Title,Artist,Album"], bind
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
                ("PLAY", {"ID": "queue:3:" + mpd.D[5:]}, "PLAYING_ITEM_CHANGED", mpd.D, "queue:3:" + mpd.D[5:]),
                ("STOP", {}, "PLAYING_ITEM_CHANGED", "", "")):
            d.say(command, **params)
            d.wait(*expected)
            if expected[1] == "Playing":
                assert d.next("PLAY_TIME_CHANGED") != d.next("PLAY_TIME_CHANGED")
        twice = [(a, b) for a, b in zip(d.seen, d.seen[1:]) if a == b and a[0] not in BROWSING]
        assert not twice, twice


def settings(mpd):
    modes = {"Off": "00", "All": "10", "One": "11", "Single": "01", "Oneshot": "0oneshot"}
    with Device("--host", mpd.host) as d:
        first_report(d, "Stopped")
        for command, params, *expected in (
                ("SET_SHUFFLE", {"MODE": "On"}, "SHUFFLE_CHANGED", "On"),
                ("SET_SHUFFLE", {"MODE": "Off"}, "SHUFFLE_CHANGED", "Off"),
                *(("SET_REPEAT", {"MODE": mode}, "REPEAT_CHANGED", mode) for mode in (*list(modes)[1:], "Off")),
                ("SET_CONSUME", {"MODE": "On"}, "CONSUME_CHANGED", "On"), ("SET_CONSUME", {"MODE": "Off"}, "CONSUME_CHANGED", "Off"),
                ("SET_CROSSFADE", {"SECONDS": "5"}, "CROSSFADE_CHANGED", "5"), ("SET_CROSSFADE", {"SECONDS": "0"}, "CROSSFADE_CHANGED", "0"),
                ("SET_VOLUME", {"VOLUME": "40"}, "VOLUME_CHANGED", "40", "False"),
                ("SET_MUTE", {"MODE": "On"}, "VOLUME_CHANGED", "40", "True"), ("SET_MUTE", {"MODE": "Off"}, "VOLUME_CHANGED", "40", "False"),
                ("SET_MUTE", {"MODE": "On"}, "VOLUME_CHANGED", "40", "True"), ("SET_VOLUME", {"VOLUME": "70"}, "VOLUME_CHANGED", "70", "False"),
                ("SET_VOLUME", {"VOLUME": "0"}, "VOLUME_CHANGED", "0", "False"), ("SET_VOLUME", {"VOLUME": "55"}, "VOLUME_CHANGED", "55", "False")):
            d.say(command, **params)
            d.wait(*expected)
            if command == "SET_REPEAT":
                said = dict(line.split(": ", 1) for line in mpd.ask("status"))
                assert said["repeat"] + said["single"] == modes[params["MODE"]], said
        d.say("SET_MUTE", MODE="On")
        d.wait("VOLUME_CHANGED", "55", "True")
        assert "volume: 0" in mpd.ask("status")
        mpd.ask("setvol 30")  # somebody else ends the mute
        d.wait("VOLUME_CHANGED", "30", "False")
        mpd.ask("single oneshot", "repeat 1")
        d.wait("REPEAT_CHANGED", "Oneshot")
        d.say("SET_OUTPUT", ID="output:0", MODE="Off")
        d.wait("LIST_CHANGED", "output")
        assert "outputenabled: 0" in mpd.ask("outputs")


def restarts(mpd):
    """While MPD is away nothing plays, and nothing is shown; then all is said again."""
    with Device("--host", mpd.host) as d:
        d.say("PLAY", ID=mpd.A)
        d.next("NEW_COVERART")
        mpd.stop()
        d.wait("PLAY_STATUS_CHANGED", "Stopped")
        for expected in (("MEDIA_INFO_CHANGED", "", "", ""), ("PLAYING_ITEM_CHANGED", "", ""), ("QUEUE_PROGRESS_CHANGED", "0", "0"),
                         ("PLAY_TIME_CHANGED", "0:00", "0:00"), ("VOLUME_CHANGED", "", "False"),
                         ("COVERART_PATH_CHANGED", "", "0", "0"), ("ONLINE_STATUS_CHANGED", "False")):
            d.wait(*expected)
        d.say("BROWSE", ID="queue")
        d.wait("PLAYER_ERROR", "BROWSE", "MPD is away")
        assert d.next("NEW_LIST")[2] == "0"
        mpd.start()
        first_report(d, "Playing")
        d.wait("MEDIA_INFO_CHANGED", "Où ?", "Élodie; A/C 5%", "Café")
        d.wait("LIST_CHANGED", "")
        d.next("NEW_COVERART")


def errors(mpd):
    """What MPD cannot play, and what it says of it, reaches the person; and so does that it is over."""
    (mpd.top / "music/ليلة/D.flac").write_bytes(b"no music at all")
    with Device("--host", mpd.host) as d:
        d.wait("PLAYER_ERROR", "", "")
        d.say("PLAY", ID=mpd.D)
        said = d.next("PLAYER_ERROR")
        assert said[1] == "" and "D.flac" in said[2], said
        d.say("PLAY", ID=mpd.A)
        d.wait("PLAYER_ERROR", "", "")


if __name__ == "__main__":
    run(transport, settings, restarts, errors)
