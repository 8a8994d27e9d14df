#!/usr/bin/env python3
"""tools/includes.py: each room includes only those it may, each folder of the bench only those before it, and no header
includes itself by way of others. Says what does not."""
import pathlib
import re
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent
BENCH = ['driverhost/text', 'driverhost/io', 'driverhost/run', 'driverhost/report', 'driverhost/replay', 'driverhost/check', 'driverhost/live', 'driverhost/web', 'driverhost']
MAY = {'host': [], 'driver': ['host'], 'standin': ['host'], 'session': [], 'driverprocess': ['session', 'standin'],
       **{folder: ['session', *BENCH[:at]] for at, folder in enumerate(BENCH)}}


def room(path):
    return str(path.parent) if path.parts[0] == 'driverhost' else path.parts[0]


def includes(path):
    return [pathlib.Path(each) for each in re.findall(r'^#include "([^"]+)"', (TOP / path).read_text(encoding='utf-8'), re.M)]


def cycle(header, known, path):
    """The headers from one to itself by way of what it includes, if there is such a way."""
    if header in path:
        return [*path[path.index(header):], header]
    if header in known or not (TOP / header).exists():
        return None
    known.add(header)
    return next(filter(None, (cycle(each, known, [*path, header]) for each in includes(header))), None)


def main():
    wrong, known = [], set()
    for name in MAY:
        for found in sorted((TOP / name).glob('*.*' if name == 'driverhost' else '**/*.*')):
            path = found.relative_to(TOP)
            if path.suffix not in ('.h', '.cpp'):
                continue
            wrong += [f'{path} includes {each}' for each in includes(path) if room(each) not in (name, *MAY[name])]
            if path.suffix == '.h' and (way := cycle(path, known, [])):
                wrong.append(f'a cycle: {" ".join(map(str, way))}')
    print(*wrong, sep='\n', end='\n' if wrong else '')
    return 1 if wrong else 0


if __name__ == '__main__':
    sys.exit(main())
