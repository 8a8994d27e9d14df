#!/usr/bin/env python3
"""count.py PROGRAM: runs null_host_instructions and prints, for each message, the instructions that the driver and
straight-line code take, as a JSON object. With --check also a table, to standard error; exit status 1 where the driver
takes more than 1.2 times as many. A message that the straight-line code lacks is named, and fails nothing."""
import json
import pathlib
import re
import subprocess
import sys
import tempfile

MOST = 1.2


def count(program):
    counts = {}
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(["valgrind", "--tool=callgrind", f"--callgrind-out-file={folder}/out",
                        f"--log-file={folder}/log", program], check=True)
        for file in pathlib.Path(folder).glob("out.*"):
            text = file.read_text()
            dump = re.search(r"^desc: Trigger: Client Request: (\w+)/(.*)$", text, re.M)
            if dump:
                total = int(re.search(r"^totals: (\d+)$", text, re.M).group(1))
                counts.setdefault(dump.group(2), {})[dump.group(1)] = total / 1000
    return counts


def main():
    counts = count(sys.argv[1])
    print(json.dumps(counts, indent=1, sort_keys=True))
    if "--check" not in sys.argv:
        return 0
    over = 0
    for name, both in sorted(counts.items()):
        if "straight_line" not in both:
            print(f"{name:24} {both['driver']:6.0f} instructions, no straight-line code", file=sys.stderr)
            continue
        ratio = both["driver"] / both["straight_line"]
        over += ratio > MOST
        print(f"{name:24} {both['driver']:6.0f} instructions, straight-line {both['straight_line']:6.0f}, {ratio:.2f}",
              file=sys.stderr)
    return 1 if over or not any("straight_line" in both for both in counts.values()) else 0


sys.exit(main())
