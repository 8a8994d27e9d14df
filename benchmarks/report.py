#!/usr/bin/env -S python3 -B
"""report.py RESULTS.json...: makes docs/performance.md and docs/performance.svg from one run of the
benchmarks. Each time is the middle one of its repetitions."""
import json
import pathlib
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
    """The time of each case in nanoseconds, and its counters."""

    def __init__(self, files):
        times = {}
        self.counters = {}
        for file in files:
            for case in json.loads(pathlib.Path(file).read_text())["benchmarks"]:
                if case["run_type"] == "iteration":
                    name = case["run_name"].removesuffix("/real_time").split("/iterations:")[0]
                    times.setdefault(name, []).append(case["real_time"] * UNITS[case["time_unit"]])
                    self.counters[name] = case
        self.times = {name: statistics.median(each) for name, each in times.items()}

    def contenders(self, case):
        """All that stands beside ours, the fastest first."""
        prefix = case + "/"
        names = [name.removeprefix(prefix) for name in self.times if name.startswith(prefix)]
        others = [name for name in names if name != "driver" and "/" not in name]
        return sorted(others, key=lambda name: self.times[prefix + name])


def human(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


class Table:
    def __init__(self):
        self.lines = ["| case | driver | beside it | | ratio | target | |",
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


def notifications(run):
    table = Table()
    for message in MESSAGES:
        case = "notification/" + message
        table.times(run, case, "pugixml", message, 1.0)
        table.times(run, case, "libxml2", message)
        ours, bus = run.times[case + "/driver"], run.times[case + "/dbus"]
        table.add(message + ", messages a second", 1e9 / ours, "D-Bus", 1e9 / bus, bus / ours,
                  least=25, show="{:,.0f}".format)
    return table


def lists(run):
    table = Table()
    for items in (10, 1000, 100000):
        case, label = f"list/{items}", f"{items:,} items, built and sent"
        table.times(run, case, "pugixml", label, 1.0)
        table.times(run, case, "libxml2", label)
    each = [run.times[f"list/{items}/driver"] / items for items in (100000, 1000)]
    table.add("one of 100,000 items", each[0], "one of 1,000", each[1], each[0] / each[1], 1.5)
    held = [run.counters["list/100000/" + name]["bytes_per_item"] for name in ("driver", "pugixml")]
    table.add("memory of an item, of 100,000", held[0], "pugixml", held[1], held[0] / held[1], 1.0,
              show="{:.0f} bytes".format)
    table.times(run, "again/100000", "copy", "100,000 items sent again with one more", 3)
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
            table.times(run, case, "base64+libjpeg", label, 1.1)
            table.times(run, case, "copy+base64+libjpeg", label)
    return table


def life(run):
    table = Table()
    table.times(run, "life", "empty_library", "load, create, initialize, destroy, unload")
    held = run.counters["idle/driver/1000"]["bytes_each"]
    table.add("memory of each of 1,000 idle drivers", held, "16 KiB", 16384, held / 16384, 1.0,
              show="{:,.0f} bytes".format)
    if "replay/jq" in run.times:
        messages = run.counters["replay/driver"]["messages"]
        ours, theirs = run.times["replay/driver"], run.times["replay/jq"]
        table.add("replay of a session, messages a second", messages / ours * 1e9, "jq -c .",
                  messages / theirs * 1e9, theirs / ours, least=1, show="{:,.0f}".format)
    return table


def machine():
    info = pathlib.Path("/proc/cpuinfo").read_text().splitlines()
    models = [line.split(":", 1)[1].strip() for line in info if line.startswith("model name")]
    return f"{models[0]}, {len(models)} cores"


PAGE = """# Performance

Made by `benchmarks/run`, which installs what is missing, builds, fetches a package of photographs,
measures and writes this page and the chart. Ratios are taken within one run on one machine, here
{machine}. A time is the middle one of 25, taken in turns with those that
it is compared with.

![Times of other libraries and the driver, the driver's being 1](performance.svg)

## Notifications

From the delivery of a prepared message to the text in a sink: dispatch by name, parameters, state,
document. Beside it stand the same document, built anew and printed by an XML library alone, and a
PropertiesChanged signal with the same values from one process to another over a bus of its own.

{notifications}

## Lists

The header and all items, each a notification, against the same tree built and printed by an XML
library. The last row is one more item and the whole list sent again, against a copy of its text.

{lists}

## Cover art, from pixels to file

A photograph, scaled down, in memory, to a file in memory (`/dev/shm`). libjpeg is the limit: it gets
ready rows, all at once. The other libraries get the same pixels as the driver; libvips and
ImageMagick read no RGB565.

{photo}

The same with noise, which no picture exceeds.

{noise}

## Cover art, from the notification to file

The whole handler. The limit is base64 decoding alone and then libjpeg alone, with ready rows. Above it
lie the reordering of the pixels and the copy of the text that the host's interface hands to the
driver, which the second limit makes, too.

{coverarts}

The same with noise.

{noisearts}

## Life, memory, replay

The library is loaded into a process that has libjpeg loaded already. Memory is what the heap holds
for a driver and its stand-in host. The replay reads an evening of a music player, twenty times over,
and is timed as a whole process.

{life}

## Watching it

`benchmarks/instructions` counts the instructions of three replays, which is repeatable where times
are not, and fails when one has grown by more than 5 % over `benchmarks/instructions.txt`.
"""


def main():
    run = Run(sys.argv[1:])
    tables = {"notifications": notifications(run), "lists": lists(run),
              "photo": covers(run, "photo"), "noise": covers(run, "noise"),
              "coverarts": coverarts(run, "photo"), "noisearts": coverarts(run, "noise"),
              "life": life(run)}
    page = PAGE.format(machine=machine(),
                       **{name: "\n".join(table.lines) for name, table in tables.items()})
    (DOCS / "performance.md").write_text(page)
    groups = [("PLAY_TIME_CHANGED, parameters to text", "notification/PLAY_TIME_CHANGED"),
              ("a list of 1,000 items", "list/1000"),
              ("a 600 × 600 cover, RGB565 to file", "cover/photo/600/RGB565"),
              ("a 600 × 600 cover, RGB888 to file", "cover/photo/600/RGB888")]
    (DOCS / "performance.svg").write_text(draw([
        (title, [(name, run.times[f"{case}/{name}"] / run.times[case + "/driver"])
                 for name in ["driver"] + run.contenders(case)]) for title, case in groups]))


if __name__ == "__main__":
    main()
