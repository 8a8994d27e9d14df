#!/usr/bin/env python3
"""examples.py DRIVERHOST FOLDER PAGE...: plays the examples of Markdown pages, in FOLDER.

A block that begins with ```case is checked as a case, one with ```session is played, and no hint may come.
"""
import pathlib
import re
import subprocess
import sys

COMMANDS = {"case": ["check", "--quiet", "-"], "session": ["replay", "--quiet", "--strict", "-"]}


def main():
    driverhost, folder, *pages = sys.argv[1:]
    wrong = played = 0
    for page in pages:
        text = pathlib.Path(page).read_text(encoding="utf-8")
        for block in re.finditer(r"^```(case|session)\n(.*?)^```$", text, re.M | re.S):
            played += 1
            line = text.count("\n", 0, block.start()) + 1
            run = subprocess.run([*driverhost.split(), *COMMANDS[block[1]]], input=block[2], text=True, cwd=folder,
                                 capture_output=True, check=False)
            if run.returncode != 0 or "hint:" in run.stderr:
                wrong += 1
                print(f"{page}: the {block[1]} that begins in line {line}:\n{run.stdout}{run.stderr}")
    return 1 if wrong or not played else 0


sys.exit(main())
