#!/usr/bin/python3
"""Whatever a driver does to its process, it ends that life and nothing else: misbehaviour_test.py DRIVERHOST PLUGIN [TEST...]"""

import concurrent.futures
import json
import os
import re
import resource
import subprocess
import sys
import tempfile
import time
import unittest

DRIVERHOST, PLUGIN = (os.path.abspath(sys.argv.pop(1)) for _ in range(2))

LINES = ''.join(json.dumps(line) + '\n' for line in ({'notify': 'ACT'}, {'command': 'ACT'}, {'request': 'ACT'}, {'persist': True}))
MODES = ('replay', 'replay --json', 'replay --quiet', 'live', 'live --json', 'check')
MOMENTS = {
    'load': 'while it was loaded', 'constructor': 'in step 0, create', 'initialization': 'in step 0, create',
    'notification': 'in step 1, notify ACT', 'command': 'in step 2, command ACT', 'thread': 'in step 2, command ACT',
    'request': 'in step 3, request ACT', 'state': 'in step 4, persist', 'destructor': 'in step 5, destroy', 'unload': 'while it was unloaded'}
NOEXCEPT = ('load', 'thread', 'destructor', 'unload')
HUNG = 'the driver did not return within 1 s '
ENDS = {
    'CRASH': r'the driver crashed \(SIGSEGV\) ', 'DEREFERENCE': r'the driver crashed \(SIGSEGV\) ', 'OVERFLOW': r'the driver crashed \(SIGSEGV\) ',
    'ABORT': r'the driver crashed \(SIGABRT\) ', 'REALTIME': r'the driver ended its process \(signal 64\) ',
    'TERMINATE': r'the driver ended its process \(SIGTERM\) ', 'KILL': r'the driver ended its process \(SIGKILL\) ',
    'EXIT': r'the driver ended its process \(exit status 0\) ', 'LEAVE': r'the driver ended its process \(exit status 0\) ',
    'QUICKLY': r'the driver ended its process \(exit status 0\) ', 'LOOP': HUNG, 'WAIT': HUNG, 'DEAF': HUNG, 'STOP': HUNG,
    'NONSENSE': "the driver's process says what means nothing ", 'HALF': "the driver's process says what means nothing ",
    # Which step it is at is only seen where no other end comes first.
    'CLOSE': r'(the driver ended its process \(|the driver crashed \()',
    'THROW': 'the driver threw ', 'THROW WORDS': 'the driver threw ', 'END THREAD': r'the driver ended its process \(exit status \d+\) '}
LEFT = {
    'THREAD': 'a thread of its own: ', 'PROCESS': r'a process: \d+ \(', 'DIRECTORY': 'another working directory: /', 'UMASK': 'another umask: 123',
    'LOCALE': 'another locale: C.UTF-8', 'HANDLER': 'another handler of SIGUSR1', 'MASK': 'another signal mask: ',
    'DESCRIPTOR': r'the open descriptor \d+ \(/dev/null\)', 'TIMER': 'the timer ITIMER_REAL'}


class Played:
    def __init__(self, mode, misbehaviour, *options, lines=LINES, timeout='1', **limits):
        with tempfile.TemporaryDirectory() as folder:
            began = time.monotonic()
            said = subprocess.run(
                [DRIVERHOST, *mode.split(), '--driver', PLUGIN, '--timeout', timeout, *options, *([] if mode.startswith('live') else ['-'])],
                input=lines, capture_output=True, text=True, errors='replace', timeout=100, check=False,
                env={**os.environ, 'TMPDIR': folder, 'MISBEHAVE': misbehaviour}, **limits)
            self.seconds = time.monotonic() - began
        self.status, self.out, self.error = said.returncode, said.stdout, said.stderr


class Misbehaviour(unittest.TestCase):
    def expect_all(self, rows):
        """Rows of how it is played, what the driver does, what is told and the exit statuses that may be."""
        with concurrent.futures.ThreadPoolExecutor(6) as pool:
            plays = [(*row, pool.submit(Played, row[0], row[1])) for row in rows]
            for mode, misbehaviour, words, status, play in plays:
                with self.subTest(mode, misbehaviour=misbehaviour):
                    played = play.result()
                    self.assertRegex(played.error + played.out, words)
                    self.assertIn(played.status, status, played.error)

    def test_each_end_at_each_moment(self):
        def told(moment, act, words):
            if act in ('THROW', 'THROW WORDS', 'END THREAD') and moment in NOEXCEPT:
                words = r'the driver (crashed \(SIGABRT\) |ended its process \()|^driverhost: a\\n' if moment != 'thread' else 'ACT' if act == 'END THREAD' else r'the driver crashed \(SIGABRT\) '
            return words + re.escape(MOMENTS[moment]) if words[-1] == ' ' else words
        self.expect_all([('replay', f'{moment} {act}', told(moment, act, words), {0} if (moment, act) == ('thread', 'END THREAD') else {1})
                         for moment in MOMENTS for act, words in ENDS.items()])

    def test_each_end_in_each_mode(self):
        self.expect_all([(mode, f'request {act}', words, {1}) for mode in MODES for act, words in ENDS.items()])

    def test_the_traffic_before_an_end_is_told(self):
        for mode in ('replay --json', 'live --json'):
            for act in ENDS:
                with self.subTest(mode, act=act):
                    self.assertIn('{"step":3,"to":"answer","request":"ACT","xml":"<ANSWER/>"}\n', Played(mode, f'state {act}').out)

    def test_what_is_left_is_named_and_ends_nothing(self):
        # A thread that wakes when the library is gone crashes.
        self.expect_all([('replay --trace', f'{moment} {act}', f'hint: the driver has left {words}', {0, 1} if act == 'THREAD' else {0})
                         for moment in ('constructor', 'request', 'state') for act, words in LEFT.items()])
        played = Played('replay', 'request PRINT')
        for line in ('driver: \\\\x1Bprinted\n', 'driver: told\n', '-:[123]: hint: the driver writes to standard output\n'):
            self.assertRegex(played.error, line)

    def test_nobody_waits_for_what_is_left(self):
        for mode in MODES:
            self.assertLess(Played(mode, 'request PROCESS').seconds, 30)

    def test_nobody_wakes_a_driver_that_sleeps(self):
        for mode in MODES:
            self.assertIn('did not return within 1 s', Played(mode, 'request NAP').error)
            self.assertNotIn('the driver', Played(mode, 'request NAP', timeout='30').error)

    @unittest.skipIf('ASAN_OPTIONS' in os.environ, 'a sanitizer takes more memory than any limit')
    def test_too_little_memory(self):
        lines = json.dumps({'notify': 'ACT', 'params': {'p': 40000000 * 'x'}}) + '\n'
        for mode in MODES:
            for megabytes in (60, 90, 150, 200, 250):
                limit = megabytes << 20
                with self.subTest(mode, megabytes=megabytes):
                    played = Played(mode, '', lines=lines, timeout='60', preexec_fn=lambda limit=limit: resource.setrlimit(resource.RLIMIT_AS, (limit, limit)))
                    self.assertIn(played.status, (0, 1))
                    self.assertRegex(played.error, '^driverhost: (the driver .*|there is too little memory)\n' if played.status else 'line|case')


if __name__ == '__main__':
    unittest.main()
