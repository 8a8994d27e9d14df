#!/usr/bin/python3
"""That everybody can use the page: WCAG by axe, the keyboard alone, zoom, the browser's font size."""

from browser import until
from page_case import AXE, PageCase, Traffic, both, browser, listed, run, settings

RULES = ['wcag2a', 'wcag2aa', 'wcag21a', 'wcag21aa', 'wcag22aa', 'best-practice']
FOCUS = '''const e = document.activeElement; const s = getComputedStyle(e);
return { name: e.id || e.dataset.command || e.dataset.panel || e.dataset.copy || e.textContent.slice(0, 20), isBody: e === document.body,
  isSeen: s.outlineStyle !== 'none' && parseFloat(s.outlineWidth) >= 2 }'''


@both
class Access(PageCase):
    def media(self):
        traffic = self.traffic
        self.serve({'registered': ['binding 5001', 'command QUERY_CURRENT_SETTINGS'], 'file': 'media.so'},
                   *traffic.caused({'bind': 5001, 'class': 'PLAYER', 'capabilities': {'has_play': True}},
                                   settings(shuffle_modes='Off,On', shuffle_mode='On', repeat_modes='Off,All,One', play_status='Playing', online='True',
                                            media_info_1='A title', media_labels='Title,Artist', elapsed='1:05', remaining='2:00'),
                                   listed('Songs', [(f's{at}', 'song' if at else 'folder', 'A title') for at in range(200)])))
        self.page.shows('#info dd', 'A title', '', '')

    def findings(self):
        self.page.run(AXE.read_text(encoding='utf-8') + '; window.axe = axe')
        return self.page.run('''const found = await axe.run(document, { runOnly: args[0] });
            return found.violations.flatMap(each => each.nodes.map(node => `${each.id}: ${node.target} ${node.failureSummary.split('\\n').slice(1, 2)}`))''', RULES)

    def test_axe_finds_nothing(self):
        for dark in (False, True):
            self.page = browser(self.browser_name, dark)
            self.page.size(1280, 800)
            self.traffic = Traffic()
            self.light()
            self.page.click('#rows .body .row.ui')
            self.page.click('#line')
            self.page.write('t')
            found = [self.findings()]
            self.page.size(360, 740)
            for panel in ('driver', 'timeline'):
                self.page.click(f'nav [data-panel={panel}]')
                found.append(self.findings())
            self.page.press('Escape')
            self.page.size(1720, 900)
            self.traffic = Traffic()
            self.media()
            found.append(self.findings())
            self.page.click('#help')
            found.append(self.findings())
            self.assertEqual('\n'.join(sum(found, [])), '', dark)


    def focus(self):
        return self.page.run(FOCUS)

    def test_the_keyboard_reaches_all_and_the_focus_is_seen(self):
        self.media()
        for panel in ('driver', 'player', 'browse'):
            self.page.click(f'nav [data-panel={panel}]')
            self.page.run('document.activeElement.blur()')
            reached = []
            while not (reached and reached[-1] == 'Send'):
                self.page.press('Tab')
                focus = self.focus()
                self.assertTrue(focus['isSeen'] or focus['isBody'], focus)
                reached.append(focus['name'])
                self.assertLess(len(reached), 80)
            expected = {'driver': ['driver', 'step 1'], 'player': ['seek', 'SKIP_REV', 'play', 'SET_REPEAT'], 'browse': ['menu', 'list']}[panel]
            self.assertLessEqual({*expected, 'search', 'save-case', 'rows', 'verb', 'line'}, set(reached), panel)

    def test_keys_of_the_grid(self):
        self.light()
        active = lambda: self.page.texts('#rows .active .text')
        self.page.run('document.querySelector("#rows").focus()')
        for keys, expected in [(['Home'], 'create, initialize'), (['ArrowDown', 'ArrowDown'], '5001 LIGHT'), (['ArrowUp'], 'LIGHT_LEVEL = 0 (added)'),
                               (['ArrowLeft'], 'create, initialize'), (['ArrowLeft', 'ArrowDown'], '5001 LIGHT'), (['ArrowUp', 'ArrowRight', 'ArrowDown'], 'LIGHT_LEVEL = 0 (added)'),
                               (['End'], 'did you mean LIGHT_LEVEL_CHANGED?'), (['PageUp'], 'create, initialize')]:
            self.page.press(*keys)
            until(lambda: f'{keys}: {expected}, but {active()}', lambda: active() == [expected])
        self.page.press('Shift+ArrowDown', 'Shift+ArrowDown')
        until('three', lambda: len(self.page.texts('#rows [aria-selected=true].row')) == 3)
        self.page.press('Enter')
        self.page.shows('#details h2', 'Steps 0 to 1')
        self.page.press('Escape')
        self.assertEqual(self.page.texts('#details'), [])
        self.assertEqual(self.focus()['name'], 'rows')
        for key, name in [('/', 'search'), ('Escape', 'search')]:
            self.page.press(key)
            self.assertEqual(self.focus()['name'], name)
        self.page.run('document.querySelector("#rows").focus()')
        self.page.press('>')
        self.assertEqual(self.focus()['name'], 'line')
        self.page.write('?')
        self.assertEqual(self.page.texts('#keys'), [])
        self.page.run('document.activeElement.blur()')
        self.page.press('?')
        until('the keys', lambda: self.page.texts('#keys h2') == ['Keys'])
        self.page.press('Escape')
        self.assertEqual(self.page.texts('#keys h2'), [])

    def test_the_focus_is_never_lost(self):
        self.serve({'registered': ['command QUERY_CURRENT_SETTINGS']}, *self.traffic.caused({'bind': 5001}, {'to': 'ui', 'xml': '<online_status>True</online_status>'}))
        self.page.shows('#online', 'Online')
        self.page.run('document.querySelector("#ask button").focus()')
        self.say(*self.traffic.caused({'notify': 'X'}, settings()))
        until('the player', lambda: self.focus()['name'] == 'player')
        self.page.click('nav [data-panel=browse]')
        self.page.run('document.querySelector("#no-list button").focus()')
        self.say(*self.traffic.caused({'notify': 'X'}, listed('One', [('a', 'list', 'A')]), listed('Two', [('b', 'list', 'B')])))
        until('the list', lambda: self.focus()['name'] == 'list')
        self.page.run('document.querySelector("#back").focus()')
        self.page.press('Enter')
        until('the list', lambda: self.focus()['name'] == 'list')

    def test_nothing_is_cut(self):
        self.media()
        for width, height in [(320, 200), (320, 640), (640, 400), (900, 500), (1280, 800)]:
            self.page.size(width, height)
            for panel in ('driver', 'player', 'browse', 'timeline'):
                self.page.run('document.querySelector(`nav [data-panel=${args[0]}]`).click()', panel)
                cut = self.page.run('''await new Promise(requestAnimationFrame);
                    const out = e => { for (let box = e.getBoundingClientRect(), up = e.parentElement; up; up = up.parentElement) {
                      const style = getComputedStyle(up), around = up.getBoundingClientRect();
                      if (up === document.documentElement || /auto|scroll/.test(style.overflowX + style.overflowY)) return box.left < -1 || box.right > innerWidth + 1;
                      if (style.overflow === 'hidden' && (box.right > around.right + 1 || box.bottom > around.bottom + 1)) return true; } return false; };
                    return [...document.querySelectorAll('button, input, select')].filter(e => e.checkVisibility() && out(e)).map(e => e.id || e.textContent)''')
                self.assertEqual(cut, [], (width, height, panel))
                small = self.page.run('''return [...document.querySelectorAll('button, input:not([type=range]), select')].filter(e => e.checkVisibility()).map(e => [e.id || e.textContent, e.getBoundingClientRect()])
                    .filter(([, box]) => box.width < 24 || box.height < 24).map(([name]) => name)''')
                self.assertEqual(small, [], (width, height, panel))

    def test_the_font_size_of_the_browser_is_honoured(self):
        self.light()
        before = self.page.run('return document.querySelector("#rows .active, #rows .body .row").getBoundingClientRect().height')
        self.page.run('document.documentElement.style.fontSize = "200%"')
        until('rows twice as high', lambda: self.page.run('const [a, b] = document.querySelectorAll("#rows .body .row"); return b.getBoundingClientRect().top - a.getBoundingClientRect().top') == 2 * before)

    def test_what_is_announced(self):
        self.media()
        self.page.run('window.said = []; new MutationObserver(all => said.push(...all.map(each => each.target.closest?.("[role=status]")?.id || each.target.parentElement?.id)))'
                      '.observe(document.body, { subtree: true, childList: true, characterData: true })')
        self.say(*self.traffic.caused({'notify': 'X'}, {'to': 'log', 'level': 3, 'text': 'trouble'}, settings(media_info_1='Another', media_info_2='Singer')))
        self.page.shows('#track', 'Another – Singer')
        self.assertEqual(self.page.run('return said.filter(each => each === "track").length'), 1)
        self.assertEqual(self.page.run('return [...document.querySelectorAll("[role=status], [aria-live]")].filter(each => each.textContent.includes("trouble")).length'), 0)


if __name__ == '__main__':
    run()
