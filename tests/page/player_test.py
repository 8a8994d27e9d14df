#!/usr/bin/python3
"""The panels for a driver that speaks of media: the player, its menus and lists."""

from browser import until
from page_case import FLAGS, PageCase, both, listed, run, settings, ui

NAMED = 'return document.querySelector(args[0]).ariaLabel || document.querySelector(args[0]).textContent'


@both
class Player(PageCase):
    def media(self, *records, **values):
        values = {'online': 'True', 'shuffle_modes': 'Off,On', 'shuffle_mode': 'Off', 'repeat_modes': 'Off,All,One', 'repeat_mode': 'All', **values}
        self.serve({'registered': ['binding 5001', 'default notification', 'command QUERY_CURRENT_SETTINGS']},
                   *self.traffic.caused({'bind': 5001, 'class': 'PLAYER'}, settings(**values), *records))
        self.page.shows('#online', 'Online')

    def tell(self, *documents):
        self.say(*self.traffic.caused({'notify': 'X'}, *documents))

    def answer(self, *records):
        """What comes of the line that the page has sent last."""
        self.say(*self.traffic.caused(self.served.heard[-1], *records, sender='page'))

    def sent(self, line):
        until(lambda: f'{line}, but {self.served.heard[-1:]}', lambda: self.served.heard[-1:] == [line])

    def test_what_plays(self):
        info = '<media_info_1> "Où" &lt;i&gt;vont&lt;/i&gt; &amp; ?</media_info_1><media_info_2>قنديل</media_info_2><media_info_3/>'
        self.media(ui(f'<MEDIA_INFO_CHANGED>{info}</MEDIA_INFO_CHANGED>'), play_status='Paused', elapsed='1:05', remaining='2:30', current_song='3', total_songs='12',
                   media_labels='Title, Artist,Album')
        self.page.shows('#info dd', ' "Où" <i>vont</i> & ?', 'قنديل', '')
        self.page.shows('#info dt', 'Title', 'Artist', 'Album')
        self.page.shows('.time span', '1:05', '-2:30')
        self.page.shows('.status span', 'Online', 'Paused', '3 of 12')
        self.assertEqual(self.page.run('return getComputedStyle(document.querySelectorAll("#info dd")[1]).direction'), 'rtl')
        self.tell(ui('<play_status>W\u202eW</play_status>'), ui('<QUEUE_PROGRESS_CHANGED><current_song>4</current_song><total_songs>many</total_songs></QUEUE_PROGRESS_CHANGED>'))
        self.page.shows('.status span', 'Online', 'W⟦RLO⟧W', '')

    def test_buttons_send_and_say_what_happened(self):
        self.media()
        call = {'to': 'device', 'binding': 5001, 'command': 'PLAY', 'params': []}
        self.page.click('#play')
        self.sent({'command': 'PLAY'})
        self.answer(call)
        self.page.shows('#notice', 'PLAY sent to the player')
        self.tell(ui('<play_status>Playing</play_status>'))
        until('pause', lambda: self.page.run(NAMED, '#play') == 'Pause')
        self.assertEqual(self.page.run('return document.activeElement.id'), 'play')
        self.page.press(' ')
        self.sent({'command': 'PAUSE'})
        self.answer()
        self.page.shows('#notice', 'PAUSE: nothing came of it')
        self.say(*self.traffic.caused({'unbind': 5001}))
        for name, mode in [('SHUFFLE', 'On'), ('REPEAT', 'One')]:
            self.page.click(f'button[data-command=SET_{name}]')
            self.sent({'command': f'SET_{name}', 'params': {'MODE': mode}})
            self.answer(call)
            self.page.shows('#notice', f'SET_{name}: no player is bound, nobody listens')
        self.page.run('const s = document.querySelector("[name=SET_REPEAT]"); s.value = "0"; s.dispatchEvent(new Event("change"))')
        self.sent({'command': 'SET_REPEAT', 'params': {'MODE': 'Off'}})
        self.tell(ui('<PLAY_TIME_CHANGED><elapsed>0:10</elapsed><remaining>1:30</remaining></PLAY_TIME_CHANGED>'), ui('<play_status>Stopped</play_status>'))
        self.page.shows('#elapsed', '0:10')
        self.page.run('document.querySelector("#player #play").focus()')
        for key, position in [('ArrowRight', 20), ('ArrowLeft', 0)]:
            self.page.press(key)
            self.sent({'command': 'SEEK', 'params': {'POSITION': position}})
        count = len(self.served.heard)
        self.page.run('document.querySelector("#rows").focus()')
        self.page.press(' ', 'ArrowRight')
        self.page.run('document.querySelector("#driver").focus(); document.activeElement.blur()')
        self.page.press(' ', 'ArrowRight')
        self.assertEqual(len(self.served.heard), count)

    def test_only_what_the_player_can_do(self):
        can = ['has_play', 'has_skip_fwd', 'has_repeat']
        self.media(**{flag: flag in can for flag in FLAGS})
        self.page.shows('nav button', 'Driver', 'Player')
        self.assertEqual(self.page.run('return [...document.querySelectorAll("[data-command], #play")].filter(e => e.checkVisibility()).map(e => e.dataset.command || e.id)'),
                         ['play', 'SKIP_FWD', 'SET_REPEAT'])

    def test_many_modes(self):
        self.media(shuffle_modes=','.join(f'Mode {number}' for number in range(130000)), shuffle_mode='Mode 7')
        self.page.click('button[data-command=SET_SHUFFLE]')
        self.sent({'command': 'SET_SHUFFLE', 'params': {'MODE': 'Mode 8'}})
        self.assertEqual(self.page.run('return document.querySelector("[name=SET_SHUFFLE]").length'), 300)

    def test_browsing(self):
        items = '<items><item><id>al</id><type>list</type><text>Albums</text></item><item><id>se</id><type>search</type><text>Find</text></item></items>'
        self.media(play_status='Playing', media_info_1='Song 3 &lt;b&gt;')
        self.page.click('nav [data-panel=browse]')
        self.page.click('#no-list button')
        self.sent({'command': 'MENU'})
        self.answer(ui(f'<menu_list><title>Top</title><num_items>2</num_items>{items}</menu_list>'))
        self.page.shows('#list .text', 'Albums', 'Find')
        self.page.click('#list .item')
        part = lambda first: {'command': 'BROWSE', 'params': {'ID': 'al', 'FIRST': first, 'COUNT': 100}}
        songs = [(f's{number}', 'song', f'Song {number} &lt;b&gt;') for number in range(500)]
        self.sent(part(0))
        self.answer(listed('Albums', songs[:100], total=500))
        self.page.shows('#list-title', 'Albums')
        self.page.shows('#list-count', '500')
        self.page.shows('#list .playing .text', 'Song 3 <b>')
        self.page.run('const list = document.querySelector("#list"); list.scrollTop = list.scrollHeight')
        until('a later part', lambda: self.served.heard[-1]['params']['FIRST'] > 400)
        first = self.served.heard[-1]['params']['FIRST']
        self.sent(part(first))
        self.answer(listed('Albums', songs[first:], first=first, total=500, clear=False))
        until('the last', lambda: self.page.texts('#list .text')[-1:] == ['Song 499 <b>'])
        self.page.run('document.querySelector("#list").focus()')
        self.page.press('End', 'Enter')
        self.sent({'command': 'PLAY', 'params': {'ID': 's499'}})
        top = self.page.run('return document.querySelector("#list").scrollTop')
        self.tell(listed('Other', [('x', 'list', 'X')]))
        self.page.shows('#list .text', 'X')
        self.page.run('document.querySelector("#list").focus()')
        self.page.press('ArrowLeft')
        self.page.shows('#list-title', 'Albums')
        self.assertEqual(self.page.run('return document.querySelector("#list").scrollTop'), top)
        self.page.click('#back')
        self.page.shows('#list .text', 'Albums', 'Find')
        self.assertEqual(self.page.run('const l = document.querySelector("#list"); return l.scrollHeight <= l.clientHeight'), True)
        self.page.click('#list .item', 1)
        self.page.write('é')
        self.page.press('Enter')
        self.sent({'command': 'SEARCH', 'params': {'TEXT': 'é', 'FIRST': 0, 'COUNT': 100}})
        self.answer(listed('é', [('', '', '')]))
        self.page.shows('#empty', 'Nothing is here.')
        self.tell(listed('All', [(f's{number}', 'song', f'Song {number}') for number in range(200000)]))
        self.page.shows('#list-count', '200,000')
        self.page.run('document.querySelector("#list").scrollTop = 1e9')
        until('the last of them', lambda: self.page.texts('#list .text')[-1:] == ['Song 199999'])

    def test_cover(self):
        width = 'const i = document.querySelector("#cover img"); return i ? i.naturalWidth : 0'
        self.media()
        with open(__file__.replace('tests/page/player_test.py', 'sessions/pictures/record-96x96.jpg'), 'rb') as file:
            self.served.images['/images/ipod/1/coverart.jpg'] = file.read()
        for path, expected in [('ipod/1/coverart.jpg', 96), ('', 0), ('ipod/1/coverart.jpg', 96), ('../style.css', 0), ('ipod/1/coverart.jpg', 96), ('none.jpg', 0)]:
            self.tell(ui(f'<NEW_COVER_ART><image_path>{path}</image_path><width>1</width><height>1</height></NEW_COVER_ART>'))
            until(f'{path}: {expected}', lambda: self.page.run(width) == expected)
        self.page.errors.clear()

    def test_a_view_that_fails_does_not_stop_the_others(self):
        self.media()
        self.page.run('document.querySelector("#info").remove(); document.querySelector("#play-status").remove()')
        self.tell(ui('<play_status>Playing</play_status>'), {'to': 'variable', 'action': 'changed', 'id': 7, 'name': 'SEEN', 'value': '1'})
        self.page.click('nav [data-panel=driver]')
        self.page.shows('#variables th[scope=row]', 'SEEN 7')
        self.page.errors.clear()


if __name__ == '__main__':
    run()
