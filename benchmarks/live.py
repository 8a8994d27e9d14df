#!/usr/bin/python3
"""live.py DRIVERHOST MPD_PLAYER SESSION OUT: measures live players, and writes to OUT, for each figure, what
it is, the figure, its goal, and whether that is met."""
import contextlib
import json
import os
import pathlib
import re
import socket
import statistics
import subprocess
import sys
import tempfile
import threading
import time

from figures import add, write

TESTS = pathlib.Path(__file__).resolve().parent.parent / "tests"
sys.path[1:1] = [str(TESTS), str(TESTS / "page")]
from browser import until  # noqa: E402
from players_test import FalseMpd, Mpd  # noqa: E402

DRIVERHOST, MPD_PLAYER = (os.path.abspath(sys.argv.pop(1)) for _ in range(2))

CHANGES = 1000
ROUNDS = 5
COPIES = 150
MILLION = 1_000_000
QUEUE = 3000
PAGES = 300
LIBRARY = 100_000
PLAIN = 60  # seconds

# Lines that hold the time at which they were written, in nanoseconds since 1970.
STEADY = """
import time
begin = time.time()
for each in range({count}):
    time.sleep(max(0, begin + (each + 1) * {pause} - time.time()))
    print('{{"notify":"CHANGE","params":{{"t":"%d"}}}}' % time.time_ns(), flush=True)
time.sleep(1000)
"""

def add_latency(what, took, median, worst=None):
    middle, late = statistics.median(took), sorted(took)[len(took) * 99 // 100]
    add(f"{what}, median", f"{middle:.3g} ms", f"≤ {median} ms", middle <= median)
    add(f"{what}, 99 of 100 within", f"{late:.3g} ms", *([f"≤ {worst} ms", late <= worst] if worst else []))


def steady(count, pause):
    return "python3", "-c", STEADY.format(count=count, pause=pause)


def run(*command):
    """The summary's messages a second, and the peak of the resident memory in kB."""
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE) as process:
        summary = process.stderr.read().decode()
        peak = os.wait4(process.pid, 0)[2].ru_maxrss
    return float(re.search(r"(\d+) messages/s", summary)[1]), peak


def lines_of_a_player():
    command = [DRIVERHOST, "live", "--json", "--", *steady(CHANGES, 0.005)]
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as process:
        took = []
        while len(took) < CHANGES:
            change = re.search(rb"<CHANGE><t>(\d+)", process.stdout.readline())
            if change:
                took.append((time.time_ns() - int(change[1])) / 1e6)
        process.terminate()
    add_latency("a player's line to its traffic", took, 5, 20)


class Tap:
    """A socket in front of MPD's; knows when MPD's last answer to `idle` passed."""

    def __init__(self, mpd, path):
        self.mpd, self.path, self.changed = str(mpd), str(path), 0
        self.server = socket.socket(socket.AF_UNIX)
        self.server.bind(self.path)
        self.server.listen()
        threading.Thread(target=self.accept, daemon=True).start()

    def accept(self):
        while True:
            client, peer = self.server.accept()[0], socket.socket(socket.AF_UNIX)
            peer.connect(self.mpd)
            for source, sink in ((client, peer), (peer, client)):
                threading.Thread(target=self.pump, args=(source, sink), daemon=True).start()

    def pump(self, source, sink):
        with contextlib.suppress(OSError):  # at the end, both sockets are closed
            while data := source.recv(65536):
                if b"changed: " in data:
                    self.changed = time.monotonic_ns()
                sink.sendall(data)


def changes_of_mpd(mpd, folder):
    tap = Tap(mpd.host, folder / "tap")
    control = socket.socket(socket.AF_UNIX)
    control.connect(str(mpd.host))
    replies = control.makefile("rb")
    replies.readline()
    command = [DRIVERHOST, "live", "--json", "--", MPD_PLAYER, "--host", tap.path]
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as process:
        while b"<NEW_COVER_ART" not in process.stdout.readline():
            pass
        took = []
        for each in range(CHANGES):
            control.sendall(b"random %d\n" % ((each + 1) % 2))
            replies.readline()
            while b"<SHUFFLE_CHANGED" not in process.stdout.readline():
                pass
            took.append((time.monotonic_ns() - tap.changed) / 1e6)
        process.terminate()
    add_latency("MPD's answer to `idle` to the traffic", took, 0.2, 20)


def page_of_the_queue(mpd):
    with open(mpd.top / "lists/Long.m3u", "w", encoding="utf-8") as long:
        long.writelines(each[5:] + "\n" for each in (mpd.A, mpd.B, mpd.C) for _ in range(QUEUE // 3))
    mpd.mpc("clear")
    mpd.mpc("load", "Long")
    command = [DRIVERHOST, "live", "--json", "--", MPD_PLAYER, "--host", mpd.host]
    with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as process:
        while b"<LIST_CHANGED" not in process.stdout.readline():
            pass
        took = []
        for each in range(PAGES):
            line = json.dumps({"command": "BROWSE", "params": {"ID": "queue", "FIRST": each * 100 % QUEUE, "COUNT": 100}})
            begin = time.monotonic_ns()
            process.stdin.write(line.encode() + b"\n")
            process.stdin.flush()
            while b"<list>" not in process.stdout.readline():
                pass
            took.append((time.monotonic_ns() - begin) / 1e6)
        process.terminate()
    add_latency("100 items of a queue of 3,000, from `BROWSE` to the list", took, 10)
    mpd.mpc("clear")
    mpd.mpc("add", *[each[5:] for each in (mpd.A, mpd.B, mpd.C, mpd.D)])


def large_library():
    song = "file: Folder/%06d.flac\nTitle: Song %d\nArtist: Somebody\nAlbum: An album\nTime: 200\nduration: 200.000\n"
    with FalseMpd(lsinfo=["".join(song % (n, n) for n in range(LIBRARY)).encode() + b"OK\n"]) as mpd:
        with subprocess.Popen([MPD_PLAYER, *mpd.where], stdin=subprocess.PIPE, stdout=subprocess.PIPE) as process:
            for first in range(0, LIBRARY, LIBRARY // 10):
                params = [{"name": name, "value": value} for name, value in (("ID", "folder:Folder"), ("FIRST", str(first)))]
                process.stdin.write(json.dumps({"to": "device", "binding": 5001, "command": "BROWSE", "params": params}).encode() + b"\n")
                process.stdin.flush()
                while b'"last":"True"' not in process.stdout.readline():
                    pass
            peak = int(re.search(r"VmHWM:\s*(\d+)", pathlib.Path(f"/proc/{process.pid}/status").read_text())[1])
            process.stdin.close()
    add("resident memory of mpd-player that browses 100,000 songs, at its peak", f"{peak / 1000:.1f} MB", "< 30 MB", peak < 30000)


def processor_time(pid):
    """Nanoseconds."""
    return sum(int(file.read_text().split()[0]) for file in pathlib.Path(f"/proc/{pid}/task").glob("*/schedstat"))


def plain_playing(mpd):
    mpd.mpc("random", "off")
    mpd.mpc("play")
    command = [DRIVERHOST, "live", "--quiet", "--", MPD_PLAYER, "--host", mpd.host]
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as process:
        player = until("the player", lambda: pathlib.Path(f"/proc/{process.pid}/task/{process.pid}/children").read_text().split())
        programs = {"driverhost": process.pid, "mpd-player": player[0], "mpd": mpd.process.pid}
        time.sleep(2)
        before = {name: processor_time(pid) for name, pid in programs.items()}
        time.sleep(PLAIN)
        shares = {name: (processor_time(pid) - before[name]) / PLAIN / 1e7 for name, pid in programs.items()}
        process.terminate()
    ours = shares["driverhost"] + shares["mpd-player"]
    add("a minute of plain playing, of a core: driverhost and mpd-player", f"{ours:.3f} %", "< 0.2 %", ours < 0.2)
    for name, share in shares.items():
        goal = ["< 0.1 %", share < 0.1] if name == "mpd-player" else []
        add(f"of it {name}" if name != "mpd" else "beside it mpd", f"{share:.3f} %", *goal)


def throughput(session, folder):
    with open(session) as file:
        lines = [line for line in file if line.strip() and not line.startswith("#")]
    path, options = f"{folder}/session.ndjson", ("--image-root", folder)
    with open(path, "w") as copies:
        copies.writelines(lines * COPIES)
    pairs = [(run(DRIVERHOST, "replay", "--json", *options, path)[0],
              run(DRIVERHOST, "live", "--json", *options, "--", "cat", path)[0]) for _ in range(ROUNDS)]
    ratio = statistics.median(live / replay for replay, live in pairs)
    add("messages a second of a player that writes as fast as it can", f"{statistics.median(live for _, live in pairs):,.0f}")
    add("the same, beside `replay` from a file", f"{ratio:.2f}", "≥ 0.8", ratio >= 0.8)
    for messages in (MILLION // 10, MILLION):
        times = messages // (len(lines) * COPIES) + 1
        loop = f"i=0; while [ $i -lt {times} ]; do cat {path}; i=$((i+1)); done"
        peak = run(DRIVERHOST, "live", "--quiet", *options, "--", "sh", "-c", loop)[1]
        add(f"resident memory after {times * len(lines) * COPIES:,} messages, at its peak", f"{peak / 1000:.1f} MB")


def main():
    session, out = sys.argv[1:]
    with tempfile.TemporaryDirectory(dir="/dev/shm") as folder:
        lines_of_a_player()
        throughput(session, folder)
        mpd = Mpd(pathlib.Path(folder))
        try:
            changes_of_mpd(mpd, pathlib.Path(folder))
            page_of_the_queue(mpd)
            plain_playing(mpd)
        finally:
            mpd.stop()
        large_library()
    write(out)


main()
