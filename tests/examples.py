#!/usr/bin/env python3
"""examples.py DRIVERHOST FOLDER REFERENCE PAGE...: plays the examples of Markdown pages, in FOLDER.

A block that begins with ```case is checked as a case, one with ```session is played. No hint may come, except for
parameters that a message lacks. The cases of REFERENCE have to deliver all that the driver registers, with each
parameter that it reads, and the text of REFERENCE has to have all these names, in `code`.
"""
import json
import pathlib
import re
import subprocess
import sys

COMMANDS = {"case": ["check", "--quiet", "--strict", "--coverage", "--json", "-"],
            "session": ["replay", "--quiet", "--strict", "-"]}


def play(driverhost, folder, page):
    """The faults, and for each name whether it was delivered or given."""
    text = pathlib.Path(page).read_text(encoding="utf-8")
    faults, seen = [], {}
    for block in re.finditer(r"^```(case|session)\n(.*?)^```$", text, re.M | re.S):
        run = subprocess.run([*driverhost.split(), *COMMANDS[block[1]]], input=block[2], text=True, cwd=folder,
                             capture_output=True, check=False)
        *differences, covered = run.stdout.splitlines() or [""]
        if run.returncode != 0:
            line = text.count("\n", 0, block.start()) + 1
            faults += [f"{page}:{line}: the {block[1]} that begins here:", *differences, run.stderr]
        elif block[1] == "case":
            for kind, names in json.loads(covered).items():
                for name, row in names.items():
                    for parameter, times in {"": row["delivered"], **row.get("read", {})}.items():
                        each = f"{kind} {name} {parameter}".rstrip()
                        seen[each] = seen.get(each, False) or times > 0
    return faults, seen


def main():
    driverhost, folder, reference, *pages = sys.argv[1:]
    faults, seen = play(driverhost, folder, reference)
    text = pathlib.Path(reference).read_text(encoding="utf-8")
    faults += [f"{reference}: no case has {each}" for each, was in seen.items() if not was]
    faults += [f"{reference}: no text says {each}" for each in seen if f"`{each.split()[-1]}`" not in text]
    for page in pages:
        faults += play(driverhost, folder, page)[0]
    print(*faults, sep="\n")
    return 1 if faults or not seen else 0


sys.exit(main())
