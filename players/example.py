#!/usr/bin/env python3
"""The smallest useful player: an invented album, PLAY, PAUSE and SKIP_FWD. Copy it; docs/players.md says the rest."""
import json
import select
import sys

ALBUM, ARTIST = "Harbour Lights", "The Paper Lanterns"
SONGS = [("Leading Out", 21), ("Half Tide", 17), ("Closing Time", 24)]  # title, seconds
song, elapsed, playing = 0, 0, False


def notify(name, **params):
    print(json.dumps({"notify": name, "params": params}), flush=True)


def clock(seconds):
    return f"{seconds // 60}:{seconds % 60:02}"


def tell_time():
    notify("PLAY_TIME_CHANGED", elapsed=clock(elapsed), remaining=clock(SONGS[song][1] - elapsed))


def tell_song():
    for name in "UPDATE_MEDIA_INFO", "MEDIA_INFO_CHANGED":
        notify(name, media_info_1=SONGS[song][0], media_info_2=ARTIST, media_info_3=ALBUM)
    notify("QUEUE_PROGRESS_CHANGED", current=str(song + 1), total=str(len(SONGS)))
    tell_time()


able = {"has_" + what: what in ("play", "pause", "skip_fwd") for what in
        "shuffle repeat play pause stop skip_fwd skip_rev scan_fwd scan_rev menu search browse".split()}
print(json.dumps({"bind": 5001, "class": "MUSIC_PLAYER", "capabilities": {**able, "media_labels": "Title,Artist,Album"}}))
notify("ONLINE_STATUS_CHANGED", online_status="True")
notify("PLAY_STATUS_CHANGED", play_status="Stopped")
tell_song()
while True:
    if not select.select([sys.stdin], [], [], 1 if playing else None)[0]:  # a second has passed
        elapsed += 1
        if elapsed < SONGS[song][1]:
            tell_time()
            continue
        command = "SKIP_FWD"
    elif line := sys.stdin.buffer.raw.readline():  # not buffered, so that select knows of the next one
        command = json.loads(line)["command"]
    else:
        break
    if command == "SKIP_FWD":
        song, elapsed = (song + 1) % len(SONGS), 0
        tell_song()
    elif command in ("PLAY", "PAUSE"):
        playing = command == "PLAY"
        notify("PLAY_STATUS_CHANGED", play_status="Playing" if playing else "Paused")
