#!/usr/bin/env python3
"""tools/kill.py [NUMBER] [SEED]: plays sessions with driverhost and kills one of its processes at a random moment, NUMBER
times (300). Exit status 1 when a process, a temporary directory or half a line is left behind, or the program hangs."""
import json
import os
import pathlib
import random
import signal
import subprocess
import sys
import tempfile
import time

TOP = pathlib.Path(__file__).resolve().parent.parent
DRIVERHOST = TOP / 'build' / 'release' / 'bin' / 'driverhost'
SESSION = TOP / 'sessions' / 'browsing.ndjson'
CASES = sorted(str(path) for path in (TOP / 'tests' / 'cases').glob('*.ndjson'))
PLAYER = ['--', 'sh', '-c', f'cat {SESSION}; sleep 2 & cat {SESSION}; wait']
MODES = [['replay', '--json', '--repeat', '20', str(SESSION)], ['check', '--jobs', '2', *3 * CASES], ['live', '--json', *PLAYER]]
SIGNALS = [signal.SIGKILL, signal.SIGSEGV, signal.SIGTERM, signal.SIGSTOP]
LONGEST = 30


def marked(mark):
    """The processes whose environment has the mark, with their programs' names."""
    found = {}
    for each in pathlib.Path('/proc').iterdir():
        try:
            if each.name.isdigit() and mark in (each / 'environ').read_bytes():
                state = (each / 'stat').read_text().rpartition(')')[2].split()[0]
                if state not in 'ZX':
                    found[int(each.name)] = (each / 'comm').read_text().strip()
        except OSError:
            pass
    return found


def play(number, chance):
    mode, sent = chance.choice(MODES), chance.choice(SIGNALS)
    mark = f'KILL_ROUND={os.getpid()}.{number}'
    with tempfile.TemporaryDirectory() as folder:
        temporary = pathlib.Path(folder, 'tmp')
        temporary.mkdir()
        root = [] if mode[0] == 'check' else ['--image-root', f'{folder}/root']
        with open(f'{folder}/out', 'wb') as out, open(f'{folder}/err', 'wb') as err:
            program = subprocess.Popen(
                [DRIVERHOST, mode[0], *root, '--timeout', '1', *mode[1:]], stdin=subprocess.DEVNULL, stdout=out, stderr=err,
                env={**os.environ, 'TMPDIR': str(temporary), mark.split('=')[0]: mark.split('=')[1]})
            time.sleep(chance.random() * 0.3)
            victims = marked(mark.encode())
            victim = chance.choice(sorted(victims)) if victims else 0
            name = victims.get(victim, 'nobody') + (' (program)' if victim == program.pid else '')
            what = f'{number}: {mode[0]}, {sent.name} to {name}'
            try:
                os.kill(victim or program.pid, sent)
            except ProcessLookupError:
                pass
            if sent == signal.SIGSTOP and name != 'driverprocess':  # nobody waits for less than a player's end
                time.sleep(chance.random() * 0.3)
                program.send_signal(signal.SIGCONT)
                program.send_signal(signal.SIGTERM)
            try:
                program.wait(LONGEST)
            except subprocess.TimeoutExpired:
                program.kill()
                return [f'{what}: hangs: {marked(mark.encode())}']
        end = time.monotonic() + 5
        while marked(mark.encode()) and time.monotonic() < end:
            time.sleep(0.02)
        wrong = [f'{what}: left behind: {left}' for left in [marked(mark.encode())] if left]
        while list(temporary.iterdir()) and time.monotonic() < end:
            time.sleep(0.02)
        wrong += [f'{what}: left behind: {left}' for left in temporary.iterdir()]
        text = pathlib.Path(folder, 'out').read_bytes()
        if text and not text.endswith(b'\n'):
            wrong.append(f'{what}: half a line: {text[-60:]}')
        if '--json' in mode:
            for line in text.splitlines():
                json.loads(line)
        return wrong


def main(number=300, seed=None):
    seed = seed if seed is not None else random.randrange(10**6)
    print(f'seed {seed}', flush=True)
    chance = random.Random(seed)
    failed = 0
    for each in range(number):
        for wrong in play(each, chance):
            print(wrong, flush=True)
            failed += 1
    print(f'{number} kills, {failed} left something behind')
    return 1 if failed else 0


if __name__ == '__main__':
    sys.exit(main(*map(int, sys.argv[1:])))
