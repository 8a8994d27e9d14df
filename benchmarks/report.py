#!/usr/bin/env -S python3 -B
"""report.py RESULTS: makes docs/performance.md and docs/performance.svg from one run of the benchmarks,
whose results that folder holds. Each time is the middle one of its repetitions."""
import json
import pathlib
import re
import statistics
import sys

from chart import draw

DOCS = pathlib.Path(__file__).resolve().parent.parent / "docs"
UNITS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
SIDES = (300, 600, 1500)
FORMATS = (("RGB565", 1.20), ("RGB888", 1.10))
MESSAGES = ("PLAY_TIME_CHANGED", "PLAY_STATUS_CHANGED", "UPDATE_MEDIA_INFO",
            "QUERY_CURRENT_SETTINGS")


class Run:
    """The time of each case in nanoseconds, the processor's and the clock's, its counters, and the
    instructions of each message."""

    def __init__(self, folder):
        times, clock = {}, {}
        self.counters = {}
        for file in folder.glob("*.json"):
            for case in json.loads(file.read_text())["benchmarks"]:
                if case.get("error_occurred"):
                    sys.exit(f"{case['name']}: {case['error_message']}")
                if case["run_type"] == "iteration":
                    name = re.sub("/(real_time|process_time|iterations:.*)$", "", case["run_name"])
                    unit = UNITS[case["time_unit"]]
                    clock.setdefault(name, []).append(case["real_time"] * unit)
                    times.setdefault(name, []).append(case.get("cpu_time", 0) * unit)
                    self.counters[name] = case
        self.times = {name: statistics.median(each) for name, each in times.items()}
        self.clock = {name: statistics.median(each) for name, each in clock.items()}
        self.instructions = json.loads((folder / "instructions").read_text())

    def contenders(self, case):
        """All that stands beside ours, the fastest first."""
        prefix = case + "/"
        names = [name.removeprefix(prefix) for name in self.times if name.startswith(prefix)]
        others = [name for name in names if name != "driver" and "/" not in name]
        return sorted(others, key=lambda name: self.ratio(case, name))

    def ratio(self, case, name):
        """How many times our time it takes; by the clock where more than one process works."""
        times = self.clock if name == "dbus" else self.times
        return times[f"{case}/{name}"] / times[case + "/driver"]


def human(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


class Table:
    def __init__(self):
        self.lines = ["| case | ours | beside it | | ratio | target | |",
                      "| --- | ---: | --- | ---: | ---: | ---: | --- |"]

    def add(self, case, ours, beside, theirs, ratio, most=None, least=None, show=human):
        target, met = "", ""
        if most is not None:
            target, met = f"≤ {most:g}", "yes" if ratio <= most else "**no**"
        if least is not None:
            target, met = f"≥ {least:g}", "yes" if ratio >= least else "**no**"
        self.lines.append(f"| {case} | {show(ours)} | {beside} | {show(theirs)} | {ratio:.3g} "
                          f"| {target} | {met} |")

    def times(self, run, case, beside, label, most=None):
        ours, theirs = run.times[case + "/driver"], run.times[case + "/" + beside]
        self.add(label, ours, beside, theirs, ours / theirs, most)


def messages(run):
    """The driver alone. The counts are of one message, the times of two."""
    named = []
    lines = ["| message | instructions | straight-line | ratio | time | straight-line | ratio | both ≤ 1.2 |",
             "| --- | ---: | ---: | ---: | ---: | ---: | ---: | --- |"]
    for name, counts in sorted(run.instructions.items()):
        if "straight_line" not in counts:
            named.append(f"There is no straight-line code for {name}.")
            continue
        calls = {kind: run.counters[f"message/{name}/{kind}"]["calls"] for kind in counts}
        if calls["driver"] != calls["straight_line"]:
            named.append("{0} makes {driver:g} calls of the host, straight-line {straight_line:g}.".format(name, **calls))
        times = {kind: run.times[f"message/{name}/{kind}"] / 2 for kind in counts}
        line, ratios = "| " + name.replace("_", " " if name.islower() else "_"), []
        for both, show in ((counts, "{:.0f}".format), (times, human)):
            ratios.append(both["driver"] / both["straight_line"])
            line += f" | {show(both['driver'])} | {show(both['straight_line'])} | {ratios[-1]:.2f}"
        lines.append(line + f" | {'yes' if max(ratios) <= 1.2 else '**no**'} |")
    return [*lines, "", *named] if named else lines


def notifications(run):
    table = Table()
    for message in MESSAGES:
        case = "notification/" + message
        table.times(run, case, "pugixml", message)
        ours, bus = run.clock[case + "/driver"], run.clock[case + "/dbus"]
        table.add(message + ", messages a second", 1e9 / ours, "D-Bus", 1e9 / bus, bus / ours,
                  show="{:,.0f}".format)
    return table


def lists(run):
    table = Table()
    for items in (10, 1000, 100000):
        case, label = f"list/{items}", f"{items:,} items, built and sent"
        table.times(run, case, "pugixml", label, 1.6)
    each = [run.times[f"list/{items}/driver"] / items for items in (100000, 1000)]
    table.add("one of 100,000 items", each[0], "one of 1,000", each[1], each[0] / each[1], 1.5)
    held = [run.counters["list/100000/" + name]["bytes_per_item"] for name in ("driver", "pugixml")]
    table.add("memory of an item, of 100,000", held[0], "pugixml", held[1], held[0] / held[1], 1.0,
              show="{:.0f} bytes".format)
    return table


def covers(run, picture):
    table = Table()
    for side in SIDES:
        for name, most in FORMATS:
            case = f"cover/{picture}/{side}/{name}"
            for beside in run.contenders(case):
                table.times(run, case, beside, f"{side} × {side}, {name}",
                            most if beside == "libjpeg" else 1.0)
    return table


def coverarts(run, picture):
    table = Table()
    for side in SIDES:
        for name, _ in FORMATS:
            case, label = f"coverart/{picture}/{side}/{name}", f"{side} × {side}, {name}"
            table.times(run, case, "copy+base64+libjpeg", label, 1.1)
    return table


def life(run):
    table = Table()
    table.times(run, "life", "empty_library", "load, create, initialize, destroy, unload")
    held = run.counters["idle/driver/1000"]["bytes_each"]
    table.add("memory of each of 1,000 idle drivers", held, "16 KiB", 16384, held / 16384, 1.0,
              show="{:,.0f} bytes".format)
    if "replay/jq" in run.clock:
        messages = run.counters["replay/driver"]["messages"]
        ours, theirs = run.clock["replay/driver"], run.clock["replay/jq"]
        table.add("replay of a session, messages a second", messages / ours * 1e9, "jq -c .",
                  messages / theirs * 1e9, theirs / ours, least=1, show="{:,.0f}".format)
    return table


def live(folder):
    lines = ["| what | | goal | |", "| --- | ---: | ---: | --- |"]
    return lines + ["| " + " | ".join(row) + " |" for row in json.loads((folder / "live.rows").read_text())]


def machine():
    info = pathlib.Path("/proc/cpuinfo").read_text().splitlines()
    models = [line.split(":", 1)[1].strip() for line in info if line.startswith("model name")]
    return f"{models[0]}, {len(models)} cores"


PAGE = """# Performance

Who does what: the driver takes a message apart, keeps its texts, calls the host and compresses
pictures. The host delivers messages, builds and prints XML, decodes base64 and sends: the controller
itself, or on the desk the stand-in. So the driver is measured alone first, then driver and stand-in
together, as the bench runs them.

This page is made by `benchmarks/run`, which installs what is missing, builds, fetches a package of
photographs, measures and writes this page and the chart. Ratios are taken within one run on one
machine, here {machine}. Times are processor
times, each the middle one of 25, measured in turns with those that it is compared with. Only where
several processes work (D-Bus, the replay) are they times by the clock.

![Times beside those of the driver, and of driver and stand-in](performance.svg)

## The driver

### Messages, in a host that does nothing

The host's operations return at once, with a fixed text where they return text. Beside the driver
stands straight-line code: a plug-in that makes the same calls of the host and keeps the same texts,
each message written out from its first call to its last and bound to its name by the same means. It
{traffic} for a recorded evening, and makes as many calls for each message, where
nothing else is said below.
For each name two messages take turns: for an item, one that is not the last and one that is; for the
play status, a change to Playing and one to Paused.

{messages}

### Cover art, from pixels to file

From a scaled-down photograph in memory to a file there (`/dev/shm`). libjpeg is the limit: it gets
ready rows, all at once. OpenCV gets the same pixels as the driver.

{photo}

The same with noise, which is harder to compress than any picture.

{noise}

## The bench: driver and stand-in

### Notifications

From the delivery of a prepared message to the text in a sink: dispatch by name, parameters, state,
document. Beside it stand the same document, built anew and printed by an XML library alone, and a
PropertiesChanged signal with the same values from one process to another over a bus of its own.

{notifications}

### Lists

The header and all items, each a notification, against the same tree built and printed by an XML
library.

{lists}

### Cover art, from the notification to file

The whole handler, and the stand-in's base64. The limit is a copy of the text, which the host's
interface makes for the driver, then base64 decoding alone, then libjpeg alone, with ready rows. The driver
also reorders the pixels.

{coverarts}

The same with noise.

{noisearts}

### Life, memory, replay

The library is loaded into a process that has libjpeg loaded already. Memory is what the heap holds
for a driver and its stand-in host. The replay reads an evening of a music player, twenty times over,
and is timed as a whole process.

{life}

### Live players, and the page

A line is written by a player, delivered, and its traffic read from standard output. For MPD the time
begins when its answer to `idle` passes a socket between it and `mpd-player`; each change is one of its
shuffle mode. The page is in headless Chromium, on the same machine; its figures are the browser's own.

{live}

## Watching it

`benchmarks/instructions` counts instructions, which is repeatable where times are not. It fails when
a message takes the driver more than 1.2 times as many as straight-line code, or one of three replays,
on amd64 or armhf, has grown by more than 5 % over `benchmarks/instructions.txt`, in instructions or in
the heap's peak; [controllers.md](controllers.md) has these figures.
"""


def main():
    results = pathlib.Path(sys.argv[1])
    run = Run(results)
    tables = {"notifications": notifications(run), "lists": lists(run),
              "photo": covers(run, "photo"), "noise": covers(run, "noise"),
              "coverarts": coverarts(run, "photo"), "noisearts": coverarts(run, "noise"),
              "life": life(run)}
    same = not (results / "difference").read_text()
    page = PAGE.format(machine=machine(), traffic="sends the same traffic as the driver" if same else "sends other traffic",
                       messages="\n".join(messages(run)),
                       live="\n".join(live(results)),
                       **{name: "\n".join(table.lines) for name, table in tables.items()})
    (DOCS / "performance.md").write_text(page)
    groups = [("the driver: a list item, in a host that does nothing", "message/ADD_LIST_ITEM"),
              ("the driver: PLAY_TIME_CHANGED, in a host that does nothing",
               "message/PLAY_TIME_CHANGED"),
              ("the driver: a 600 × 600 cover, RGB565 to file", "cover/photo/600/RGB565"),
              ("the driver: a 600 × 600 cover, RGB888 to file", "cover/photo/600/RGB888"),
              ("with the stand-in: PLAY_TIME_CHANGED, parameters to text",
               "notification/PLAY_TIME_CHANGED"),
              ("with the stand-in: a list of 1,000 items", "list/1000")]
    (DOCS / "performance.svg").write_text(draw([
        (title, [("driver", 1)] + [(name, run.ratio(case, name)) for name in run.contenders(case)])
        for title, case in groups]))


if __name__ == "__main__":
    main()
