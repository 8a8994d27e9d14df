#!/usr/bin/env python3
"""replay.py DRIVERHOST SESSION OUT.json: times a replay of a long session beside jq on the same
file, in turn, and writes the times as Google Benchmark writes its own."""
import json
import subprocess
import sys
import tempfile
import time

ROUNDS = 9
COPIES = 20


def seconds(command):
    begin = time.perf_counter()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return time.perf_counter() - begin


def main():
    driverhost, session, out = sys.argv[1:]
    with open(session, "rb") as file:
        lines = file.read()
    if b"base64_of_file" in lines:
        sys.exit("a session with files cannot be replayed from another folder")
    messages = COPIES * sum(1 for line in lines.splitlines() if line and not line.startswith(b"#"))
    with tempfile.TemporaryDirectory(dir="/dev/shm") as folder:
        path = folder + "/session.ndjson"
        json_only = b"".join(
            line for line in lines.splitlines(keepends=True) if not line.startswith(b"#"))
        with open(path, "wb") as file:
            file.write(json_only * COPIES)
        commands = {
            "replay/driver": [driverhost, "replay", "--quiet", "--image-root", folder, path],
            "replay/jq": ["jq", "-c", ".", path],
        }
        times = [{"run_name": name, "run_type": "iteration", "time_unit": "ns",
                  "real_time": seconds(command) * 1e9, "messages": messages}
                 for _ in range(ROUNDS) for name, command in commands.items()]
    with open(out, "w") as file:
        json.dump({"benchmarks": times}, file)


main()
