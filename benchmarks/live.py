#!/usr/bin/env python3
"""live.py DRIVERHOST SESSION: what lies between a live player and the traffic on standard output."""
import os
import re
import statistics
import subprocess
import sys
import tempfile
import time

CHANGES = 1000
ROUNDS = 5
COPIES = 150
MILLION = 1_000_000

PLAYER = f"""
import time
for each in range({CHANGES}):
    time.sleep(0.005)
    print('{{"notify":"CHANGE","params":{{"t":"%d"}}}}' % time.monotonic_ns(), flush=True)
"""


def run(command, out=subprocess.DEVNULL):
    """The summary's messages a second, and the peak of the resident memory in kB."""
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=out, stderr=subprocess.PIPE) as process:
        summary = process.stderr.read().decode()
        peak = os.wait4(process.pid, 0)[2].ru_maxrss
    return float(re.search(r'(\d+) messages/s', summary)[1]), peak


def latencies(driverhost):
    """Milliseconds from a player's line to the traffic line that it causes, in order of size."""
    command = [driverhost, 'live', '--json', '--', 'python3', '-c', PLAYER]
    took = []
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as process:
        for line in process.stdout:
            change = re.search(rb'<CHANGE><t>(\d+)', line)
            if change:
                took.append((time.monotonic_ns() - int(change[1])) / 1e6)
    assert len(took) == CHANGES
    return sorted(took)


def main():
    driverhost, session = sys.argv[1:]
    took = latencies(driverhost)
    print(f'line to line: median {statistics.median(took):.3f} ms, 99 % within {took[CHANGES * 99 // 100]:.3f} ms')
    with tempfile.TemporaryDirectory(dir='/dev/shm') as folder, open(session) as file:
        lines = [line for line in file if line.strip() and not line.startswith('#')]
        path = folder + '/session.ndjson'
        with open(path, 'w') as copies:
            copies.writelines(lines * COPIES)
        options = ['--json', '--image-root', folder]
        pairs = [(run([driverhost, 'replay', *options, path])[0], run([driverhost, 'live', *options, '--', 'cat', path])[0])
                 for _ in range(ROUNDS)]
        replay, live = (statistics.median(rates) for rates in zip(*pairs))
        print(f'messages a second: replay {replay:.0f}, live {live:.0f}, live/replay '
              f'{statistics.median(b / a for a, b in pairs):.2f}')
        for messages in (MILLION // 10, MILLION):
            times = messages // (len(lines) * COPIES) + 1
            loop = f'i=0; while [ $i -lt {times} ]; do cat {path}; i=$((i+1)); done'
            peak = run([driverhost, 'live', '--quiet', '--image-root', folder, '--', 'sh', '-c', loop])[1]
            print(f'resident memory after {times * len(lines) * COPIES} messages: {peak} kB at its peak')


main()
