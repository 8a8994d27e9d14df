"""browsing.py MPD_PLAYER [NAME...]: menus, lists and searches, and what is answered when there is nothing to list."""
import sys

sys.path.insert(0, __file__.rpartition("/players/")[0])
from players_test import Device, flac, run


def actions(subject):
    return (f"actions:{subject}", "Play or add all")


def lists(mpd):
    menu = ["artists", "album-artists", "albums", "genres", "years", "recent", "folders", "playlists", "queue", "outputs", "search"]
    bare, e = (mpd.D, "D.flac"), (mpd.E, "E.flac")
    a, b, c = (mpd.A, "Où ? – Élodie; A/C 5%"), (mpd.B, '"B" \\ <&> – Élodie'), (mpd.C, "くらげ – 水無瀬")
    ac, café, night = "A%2FC 5%25/Café", "album-of:Élodie/Café", "album-of:水無瀬/夜"
    with Device("--host", mpd.host) as d:
        d.say("MENU")
        assert d.next("NEW_MENU")[1:] == ["Music player", "11"]
        assert [d.next("ADD_MENU_ITEM")[1] for _ in menu] == menu
        for params, header, items in (
                ({"ID": "artists"}, ["Artists", "4", "4", "0", "True"],
                 [("artist:", "Unknown"), ("artist:A/C 5%", "A/C 5%"), ("artist:Élodie", "Élodie"), ("artist:水無瀬", "水無瀬")]),
                ({"ID": "artist:水無瀬"}, ["水無瀬", "3", "3", "0", "True"],
                 [actions("artist:水無瀬"), ("all:artist:水無瀬", "All songs"), (night, "夜")]),
                ({"ID": "artist:水無瀬", "FIRST": "1", "COUNT": "1"}, ["水無瀬", "3", "1", "1", "False"], [("all:artist:水無瀬", "All songs")]),
                ({"ID": "all:artist:水無瀬"}, ["水無瀬", "2", "2", "0", "True"], [actions("all:artist:水無瀬"), (mpd.C, "くらげ")]),
                ({"ID": f"album-of:{ac}"}, ["Café", "2", "2", "0", "True"], [actions(f"album-of:{ac}"), a]),
                ({"ID": café, "FIRST": "1"}, ["Café", "3", "2", "1", "False"], [a, (mpd.B, '"B" \\ <&>')]),
                ({"ID": "albums", "FIRST": "2"}, ["Albums", "4", "2", "2", "False"], [(café, "Café – Élodie"), (night, "夜 – 水無瀬")]),
                ({"ID": "album:Café", "COUNT": "2"}, ["Café", "3", "2", "0", "True"], [actions("album:Café"), a]),
                ({"ID": "album:", "FIRST": "1"}, ["Unknown", "3", "2", "1", "False"], [bare, e]),
                ({"ID": "genres"}, ["Genres", "2", "2", "0", "True"], [("genre:", "Unknown"), ("genre:Fado", "Fado")]),
                ({"ID": "genre:Fado", "FIRST": "2"}, ["Fado", "3", "1", "2", "False"], [(night, "夜 – 水無瀬")]),
                ({"ID": "years"}, ["Years", "2", "2", "0", "True"], [("year:", "Unknown"), ("year:1999", "1999")]),
                ({"ID": "all:year:1999", "FIRST": "1"}, ["1999", "2", "1", "1", "False"], [c]),
                ({"ID": "folders", "COUNT": "2"}, ["Folders", "4", "2", "0", "True"], [("folder:Élodie", "Élodie"), ("folder:ليلة", "ليلة")]),
                ({"ID": "folder:Élodie/Café"}, ["Café", "3", "3", "0", "True"], [actions("folder:Élodie/Café"), a, b]),
                ({"ID": "playlists"}, ["Playlists", "1", "1", "0", "True"], [("playlist:Liste", "Liste")]),
                ({"ID": "playlist:Liste"}, ["Liste", "2", "2", "0", "True"], [actions("playlist:Liste"), c]),
                ({"ID": "outputs"}, ["Outputs", "1", "1", "0", "True"], [("output:0", "null (on)")]),
                ({"ID": "queue", "FIRST": "2", "COUNT": "2"}, ["Queue", "5", "2", "2", "False"],
                 [(f"queue:{n}:{uri[5:]}", text) for n, (uri, text) in ((1, b), (2, c))]),
                ({"ID": "queue", "COUNT": "2"}, ["Queue", "5", "2", "0", "True"],
                 [("actions:queue", "Change the queue"), ("queue:0:" + mpd.A[5:], a[1])]),
                ({"ID": "actions:queue"}, ["Queue", "1", "1", "0", "True"], [("clear:queue", "Clear the queue")]),
                ({"ID": mpd.D}, ["D.flac", "3", "3", "0", "True"],
                 [("now:" + mpd.D, "Play now"), ("next:" + mpd.D, "Play next"), ("end:" + mpd.D, "Add to the queue")]),
                ({"TEXT": "くら"}, ["くら", "2", "2", "0", "True"], [actions("search:くら"), c]),
                ({"TEXT": '\\ "b"', "FIRST": "1"}, ['\\ "b"', "2", "1", "1", "False"], [b]),
                ({"TEXT": "CAFÉ a/c Où", "FIRST": "1"}, ["CAFÉ a/c Où", "2", "1", "1", "False"], [a]),
                ({"TEXT": "水 e.FL", "FIRST": "1"}, ["水 e.FL", "2", "1", "1", "False"], [e]),
                ({"TEXT": "flac", "FIRST": "1"}, ["flac", "3", "2", "1", "False"], [bare, e]),
                ({"TEXT": "nichts"}, ["nichts", "0", "0", "0", "True"], [])):
            answer = d.list("BROWSE" if "ID" in params else "SEARCH", **params)
            assert answer == (header, items), (params, answer)
        first = d.list("BROWSE", ID="recent")
        assert first[0][:2] == ["Recently added", "5"] and {i[0] for i in first[1]} == {mpd.A, mpd.B, mpd.C, mpd.D, mpd.E}, first


def nothing_to_list(mpd):
    """Each gets a list, if need be an empty one, and is told why."""
    with Device("--host", mpd.host) as d:
        for command, params, total, why in (
                ("BROWSE", {"ID": "queue", "FIRST": "9"}, "5", None), ("BROWSE", {"ID": "queue", "COUNT": "0"}, "5", None),
                ("BROWSE", {"ID": "all:artist:", "FIRST": "70"}, "3", None), ("BROWSE", {"ID": "artists", "FIRST": "4"}, "4", None),
                ("BROWSE", {"ID": "artists", "COUNT": "0"}, "4", None), ("BROWSE", {"ID": mpd.A, "FIRST": "9"}, "3", None),
                ("BROWSE", {"ID": "album-of:/nothing"}, "0", None), ("BROWSE", {"ID": "artist:Nobody"}, "0", None),
                ("SEARCH", {"TEXT": "くら", "FIRST": "5"}, "2", None), ("SEARCH", {"TEXT": "くら", "COUNT": "0"}, "2", None),
                ("BROWSE", {"ID": "folder:nowhere"}, "0", 'MPD says "No such directory"'),
                ("BROWSE", {"ID": "playlist:gone"}, "0", 'MPD says "No such playlist"'),
                ("BROWSE", {"ID": "search"}, "0", "ID names nothing that is here"), ("BROWSE", {"ID": "nosuch:x"}, "0", "ID names nothing that is here"),
                ("BROWSE", {"ID": "all:folder:x"}, "0", "ID names nothing that is here"), ("BROWSE", {}, "0", "ID is missing"),
                ("BROWSE", {"ID": "queue", "COUNT": "x"}, "0", 'COUNT is "x", not a number from 0 to 10000'),
                ("BROWSE", {"ID": "queue", "FIRST": "x"}, "0", 'FIRST is "x", not a number from 0 to 1000000000'),
                ("BROWSE", {"ID": "artist:" + "x" * 5000}, "0", "must be one line, and shorter"),
                ("BROWSE", {"ID": "folder:a\nclear"}, "0", "must be one line, and shorter"),
                ("SEARCH", {"TEXT": " "}, "0", "TEXT has no word"), ("SEARCH", {"TEXT": ""}, "0", "TEXT is missing")):
            header, items = d.list(command, **params)
            first = params.get("FIRST", "0").replace("x", "0")
            assert header[1:] == [total, "0", first, "True" if first == "0" else "False"] and items == [], (command, params, header, items)
            said = [s for s in d.seen if s[0] == "PLAYER_ERROR" and s[1]]
            assert said == ([["PLAYER_ERROR", command, why]] if why else []), (command, params, said)
            d.seen.clear()


def sheets(mpd):
    """Tracks of one file are told apart wherever they are listed."""
    flac(mpd.top / "music/Disc/disc.flac", 60)
    (mpd.top / "music/Disc/disc.cue").write_text('FILE "disc.flac" WAVE\n' + "".join(
        f'TRACK 0{n} AUDIO\nTITLE "{title}"\nINDEX 01 00:{20 * n - 20:02}:00\n' for n, title in ((1, "First"), (2, "Second"), (3, "Third"))))
    mpd.mpc("update", "--wait")
    with Device("--host", mpd.host) as d:
        listed = d.list("BROWSE", ID="playlist:Disc/disc.cue", FIRST="1")[1]
        assert listed == [(f"track:{n}:Disc/disc.cue", t) for n, t in enumerate(("First", "Second", "Third"))], listed
        assert ("playlist:Disc/disc.cue", "disc.cue") in d.list("BROWSE", ID="folder:Disc")[1]
        for title, item, place, total in (("Second", listed[1][0], "5", "5"), ("First", listed[0][0], "6", "6"), ("Second", listed[1][0], "5", "6"),
                                          ("First", "queue:0@0.000-20.000:Disc/disc.flac", "6", "6")):
            d.say("PLAY", ID=item)
            d.wait("PLAY_STATUS_CHANGED", "Playing") if title == "Second" and total == "5" else None
            d.wait("QUEUE_PROGRESS_CHANGED", place, total)
            assert any(f"Title: {title}" == line for line in mpd.ask("currentsong")), title
        d.say("BROWSE", ID="queue", FIRST="5")
        assert [d.next("ADD_LIST_ITEM")[1] for _ in "ab"] == [f"queue:{p}@{r}:Disc/disc.flac" for p, r in ((4, "20.000-40.000"), (5, "0.000-20.000"))]


def changes(mpd):
    with Device("--host", mpd.host) as d:
        d.wait("LIST_CHANGED", "")
        for commands, changed in ((["move 0 1"], "queue"), (["clear", *[f'add "{mpd.E[5:]}"'] * 4], "queue"), (["save New"], "playlist"),
                                  (["rm New"], "playlist"), (["toggleoutput 0"], "output")):
            mpd.ask(*commands)
            d.wait("LIST_CHANGED", changed)
        flac(mpd.top / "music/new.flac", 1)
        mpd.mpc("update", "--wait")
        d.wait("LIST_CHANGED", "")


if __name__ == "__main__":
    run(lists, nothing_to_list, sheets, changes)
