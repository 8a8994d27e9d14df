#!/usr/bin/python3
"""live_test.py DRIVERHOST: the program with players that are hard to live with, and its sense of time."""

import os
import signal
import subprocess
import sys
import tempfile
import time
import unittest

DRIVERHOST = os.path.abspath(sys.argv.pop(1))
LINE = """'{"notify":"A"}'"""
BIND = """echo '{"bind":5001}'"""
CALL = """'{"command":"X"}'"""
# None of these ends by itself; each prints its process id.
STUBBORN = {
    'waits': 'echo $$ >&2; exec sleep 1000',
    'ignores SIGTERM': 'trap "" TERM; echo $$ >&2; while :; do sleep 1000; done',
    'is stopped': 'echo $$ >&2; kill -STOP $$',
    'writes for ever': f'echo $$ >&2; exec yes {LINE}',
    'causes calls for ever and reads none': f'trap "" TERM; {BIND}; echo $$ >&2; exec yes {CALL}',
    'writes a line for ever': 'echo $$ >&2; exec cat /dev/zero',
    'has closed its output': 'echo $$ >&2; exec sleep 1000 >&-',
    'has closed its input': f'{BIND}; echo $$ >&2; exec yes {CALL} <&-',
    'has a child that ignores SIGTERM': '(trap "" TERM; echo $$ >&2; exec sleep 1000) & exec sleep 1000',
}
# What a player writes, and the most memory in kB that it may cost.
HEAVY = {
    'head -c 1000000000 /dev/zero': 400000,
    f'yes "$(printf %s {LINE}; head -c 20000 /dev/zero | tr "\\0" " ")" | head -4000': 100000,
    f'{BIND}; yes {CALL} | head -19999': 100000,
}


def live(player, **options):
    command = [DRIVERHOST, 'live', '--quiet', '--', 'sh', '-c', player]
    environment = {**os.environ, 'ASAN_OPTIONS': 'quarantine_size_mb=1'}
    return subprocess.Popen(command, stderr=subprocess.PIPE, bufsize=0, env=environment, **options)


class Live(unittest.TestCase):

    def test_an_interrupt_ends_it(self):
        for number, (what, player) in enumerate(STUBBORN.items()):
            with self.subTest(what):
                ours, theirs = os.pipe()
                with live(player, stdin=ours) as process:
                    player_id = int(process.stderr.readline())
                    self.assertTrue(os.get_blocking(ours))
                    process.send_signal((signal.SIGINT, signal.SIGTERM)[number % 2])
                    began = time.monotonic()
                    error = process.stderr.read().decode()
                    self.assertEqual(process.wait(), 0, error)
                    self.assertLess(time.monotonic() - began, 30)
                    self.assertRegex(error, r'\d+ lines?, ')
                    self.assertRaises(ProcessLookupError, os.kill, player_id, 0)
                os.close(ours)
                os.close(theirs)

    def test_what_a_player_leaves_behind_is_no_zombie(self):
        with live('(true &); echo $$ >&2; exec sleep 1000', stdin=subprocess.DEVNULL) as process:
            player_id = process.stderr.readline().decode().strip()
            while True:
                with open(f'/proc/{process.pid}/task/{process.pid}/children') as children:
                    now = children.read().split()
                    if player_id in now and len(now) == 3:  # the driver's process and the guardian
                        break
            process.terminate()

    def test_memory_is_bounded(self):
        for player, most in HEAVY.items():
            with self.subTest(player):
                with live(player, stdin=subprocess.DEVNULL) as process:
                    error = process.stderr.read().decode()
                    used = os.wait4(process.pid, 0)[2].ru_maxrss
                self.assertRegex(error, '000 lines|player:1: longer')
                self.assertLess(used, most)

    def test_a_pace_keeps_the_times(self):
        for pace, times in {'1': (0, 0.1, 0.25), '60': (0, 6, 15)}.items():
            with self.subTest(pace), tempfile.NamedTemporaryFile('w') as session:
                session.writelines(f'{{"notify":"A","at":{at}}}\n' for at in times)
                session.flush()
                command = [DRIVERHOST, 'replay', '--json', '--pace', pace, session.name]
                began = time.monotonic()
                with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as process:
                    came = [time.monotonic() for line in process.stdout if b'"ui"' in line]
                for at, when in zip(times, came, strict=True):
                    self.assertGreaterEqual(when - began, at / float(pace))
                    self.assertLess(when - came[0], at / float(pace) + 1)


unittest.main()
