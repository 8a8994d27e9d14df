#!/usr/bin/python3
"""page.py DRIVERHOST OUT: measures the page in Chromium, and appends to OUT, for each figure, what it is, the figure, its goal,
and whether that is met."""
import pathlib
import statistics
import sys
import time

from figures import add, write

TESTS = pathlib.Path(__file__).resolve().parent.parent / "tests"
sys.path[1:1] = [str(TESTS), str(TESTS / "page")]
from browser import Browser, until  # noqa: E402
from served import Program  # noqa: E402

MINUTE = 60_000  # records
BURST = 100_000  # records
SINGLE = 500  # records
PATIENCE = 300  # seconds

# Lines that hold the time at which they were written, in milliseconds since 1970; the first waits for a call.
PLAYER = """
import sys, time
print('{{"bind":5001}}', flush=True)
sys.stdin.readline()
begin = time.time()
for each in range({count}):
    time.sleep(max(0, begin + (each + 1) * {pause} - time.time()))
    print('{{"notify":"CHANGE","params":{{"t":"%.3f"}}}}' % (time.time() * 1000), flush={pause} > 0)
sys.stdout.flush()
time.sleep(1000)
"""

# What the page's own script sees: when a row is there, tasks that are long, and how many records were taken.
WATCH = """
window.took = []; window.tasks = [];
new PerformanceObserver(list => tasks.push(...list.getEntries().map(each => each.duration))).observe({ type: 'longtask' });
const seen = new Set();
new MutationObserver(() => {
  for (const text of document.querySelectorAll('#rows .input .text')) {
    const written = /t=([\\d.]+)/.exec(text.textContent)?.[1];
    if (!written || seen.has(written)) continue;
    seen.add(written);
    took.push(Date.now() - written);
  }
}).observe(document.querySelector('#rows'), { childList: true, subtree: true });
"""
OTHERS = 2  # the player's binding and the call that starts it
INPUTS = "return Number((document.querySelector('#kinds .input b')?.textContent || '0').replaceAll(',', ''))"
NEWEST = "return Number([...document.querySelectorAll('#rows .head .step')].at(-1)?.textContent || 0)"

class Opened:
    """The page of a program whose player writes `count` lines, `pause` seconds between them, when it is called."""

    def __init__(self, driverhost, browser, count, pause):
        Program.driverhost = driverhost
        self.browser, self.count = browser, count
        self.program = Program(0, "--", "python3", "-c", PLAYER.format(count=count, pause=pause))
        browser.open(self.program.url)
        browser.shows("#connection", "Connected")
        until("the player", lambda: browser.texts("#rows .body .row"))
        browser.run(WATCH)

    def __enter__(self):
        self.began = time.monotonic()
        self.program.say({"command": "GO"})
        while self.browser.run(NEWEST) < self.count + OTHERS and time.monotonic() < self.began + PATIENCE:
            time.sleep(0.2)
        self.took = time.monotonic() - self.began
        return self

    def __exit__(self, *_):
        self.program.stop()

    def tasks(self):
        return self.browser.run("return tasks")


def heap(browser):
    return browser.run("gc(); return performance.memory.usedJSHeapSize") / 1e6


def transferred(browser):
    return browser.run("""return performance.getEntriesByType('resource').filter(each => /(js|css|svg)$/.test(each.name))
        .concat(performance.getEntriesByType('navigation')).reduce((sum, each) => sum + each.encodedBodySize, 0)""") / 1000


def measure(driverhost, browser):
    with Opened(driverhost, browser, SINGLE, 0.05) as opened:
        took = opened.browser.run("return took")
        median = statistics.median(took)
        add("a player's line to its row on the page, median", f"{median:.0f} ms", "≤ 30 ms", median <= 30)
        add("a player's line to its row on the page, 99 of 100 within", f"{sorted(took)[len(took) * 99 // 100]:.0f} ms")
        size = transferred(browser)
        add("the page and all that belongs to it, as it is sent", f"{size:.1f} kB", "< 60 kB", size < 60)
        loads = []
        for _ in range(9):
            browser.open(opened.program.url)
            loads.append(browser.run("return performance.getEntriesByType('navigation')[0].loadEventEnd"))
        load = statistics.median(loads)
        add("until it is loaded, median", f"{load:.0f} ms", "< 200 ms", load < 200)
    with Opened(driverhost, browser, MINUTE // 2, 120 / MINUTE) as opened:
        found = 2 * (browser.run(INPUTS) - OTHERS)
        add("records that the page gets, of 60,000 in a minute", f"{found:,}", "all", found == MINUTE)
        add("the longest task meanwhile", f"{max(opened.tasks(), default=0):.0f} ms", "< 50 ms", max(opened.tasks(), default=0) < 50)
    with Opened(driverhost, browser, BURST // 2, 0) as opened:
        found = 2 * (browser.run(INPUTS) - OTHERS)
        add("records that the page gets, of a burst of 100,000", f"{found:,}", "all", found == BURST)
        add("until the last of them is counted", f"{opened.took:.1f} s")
    heaps = []
    for count in (BURST, 3 * BURST):
        with Opened(driverhost, browser, count, 0):
            heaps.append(heap(browser))
    first, second = heaps
    add("heap of the page after 200,000 records", f"{first:.0f} MB")
    add("heap of the page after 600,000 records", f"{second:.0f} MB", "≤ 1.1 times as much", second <= 1.1 * first)


def main():
    driverhost, out = sys.argv[1:]
    browser = Browser("chromium")
    try:
        browser.size(1280, 800)
        measure(driverhost, browser)
    finally:
        browser.quit()
    write(out)


main()
