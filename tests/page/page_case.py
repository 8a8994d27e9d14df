"""What the tests of the page share: each runs in Chromium and in Firefox, in one window of each."""

import pathlib
import unittest

from browser import Browser, until
from scripted import Scripted, compact

__all__ = ['compact']
TOP = pathlib.Path(__file__).resolve().parents[2]
AXE = TOP / 'node_modules' / 'axe-core' / 'axe.min.js'
LIGHT = {'registered': ['binding 5001', 'notification LIGHT_LEVEL_CHANGED', 'command TOGGLE', 'request GET_LIGHT_LEVEL', 'variable 1000 LIGHT_LEVEL'],
         'file': '/home/me/light.so', 'reads': {'notify LIGHT_LEVEL_CHANGED': ['level'], 'command TOGGLE': ['SPEED', 'ROOM_ID']}, 'labels': {'0': 'On', '1': 'Off'}}
FLAGS = [f'has_{each}' for each in 'shuffle repeat play pause stop skip_fwd skip_rev scan_fwd scan_rev menu search browse'.split()]
BROWSERS = {}


def browser(name, dark=False):
    key = (name, dark)
    if key not in BROWSERS:
        BROWSERS[key] = Browser(name, dark)
    return BROWSERS[key]


def quit_all():
    for each in BROWSERS.values():
        each.quit()
    BROWSERS.clear()


class Traffic:
    """Makes records as the program sends them, with steps and times."""

    def __init__(self):
        self.step, self.at = 0, 0.01

    def timed(self, record):
        self.at += 0.0001
        return {'step': self.step, 'at': round(self.at, 6), **record}

    def caused(self, line, *records, sender='player'):
        self.step += 1
        self.at += 0.5
        return [self.timed({'from': sender, **line}), *[self.timed(each) for each in records]]

    def level(self, level):
        return self.caused({'notify': 'LIGHT_LEVEL_CHANGED', 'params': {'level': str(level)}}, {'to': 'event', 'id': 0 if level else 1},
                           {'to': 'variable', 'action': 'changed', 'id': 1000, 'name': 'LIGHT_LEVEL', 'value': str(level)},
                           ui(f'<LIGHT_LEVEL_CHANGED><level>{level}</level></LIGHT_LEVEL_CHANGED>'))


def ui(xml):
    return {'to': 'ui', 'xml': xml}


def settings(**values):
    flags = ''.join(f'<{flag}>{values.pop(flag, True)}</{flag}>' for flag in FLAGS)
    return ui(f'<CURRENT_SETTINGS>{flags}{"".join(f"<{name}>{value}</{name}>" for name, value in values.items())}</CURRENT_SETTINGS>')


def listed(title, items, first=0, total=None, clear=True):
    rows = ''.join(f'<item><id>{ident}</id><type>{sort}</type><text>{text}</text></item>' for ident, sort, text in items)
    return ui(f'<list><title>{title}</title><total_items>{total or len(items)}</total_items><num_items>{len(items)}</num_items>'
              f'<first_item>{first}</first_item><clear>{clear}</clear><items>{rows}</items></list>')


class PageCase(unittest.TestCase):
    """A test with `self.page`, the browser, and `self.served`, the traffic. Subclasses are made for each browser by `both`."""

    browser_name = ''

    def setUp(self):
        self.page = browser(self.browser_name)
        self.page.size(1280, 800)
        self.traffic = Traffic()

    def serve(self, *history):
        self.served = Scripted(*history)
        self.addCleanup(self.served.quit)
        self.page.open(self.served.url)
        self.page.shows('#connection', 'Connected')
        self.addCleanup(lambda: self.assertEqual(self.page.errors, []))

    def light(self):
        """The template's light, with a name that is misspelt."""
        traffic = self.traffic
        self.serve(LIGHT, traffic.timed({'to': 'variable', 'action': 'added', 'id': 1000, 'name': 'LIGHT_LEVEL', 'value': '0'}),
                   *traffic.caused({'bind': 5001, 'class': 'LIGHT'}), *traffic.level(40),
                   *traffic.caused({'notify': 'LIGHT_LEVL_CHANGED', 'params': {'level': '70'}}, sender='stdin'),
                   {'hint': 'did you mean LIGHT_LEVEL_CHANGED?', 'step': 3})
        self.page.shows('#rows .hint .text', 'did you mean LIGHT_LEVEL_CHANGED?')

    def say(self, *records):
        self.served.say(*records)

    def heard(self, *lines):
        until(lambda: f'{lines}, but {self.served.heard}', lambda: self.served.heard == list(lines))

    def rows(self):
        return self.page.texts('#rows .body .row .what')

    def until_rows(self, *rows):
        until(lambda: f'{rows}, but {self.rows()}', lambda: self.rows() == list(rows))


def both(case):
    """Makes a class for each browser of one that names none."""
    import sys
    module = sys.modules[case.__module__]
    for name in ('chromium', 'firefox'):
        made = type(f'{case.__name__}In{name.title()}', (case,), {'browser_name': name, '__module__': case.__module__})
        setattr(module, made.__name__, made)


def run():
    try:
        unittest.main()
    finally:
        quit_all()
