"""A real browser, Chromium or Firefox, spoken to by WebDriver BiDi."""

import asyncio
import base64
import contextlib
import http.client
import itertools
import json
import os
import queue
import re
import shutil
import subprocess
import tempfile
import threading
import time

import websockets

CHROMIUM = ('--headless=new --no-sandbox --disable-gpu --disable-quic --no-first-run --disable-dev-shm-usage --hide-scrollbars '
            '--disable-background-networking --disable-component-update --disable-sync --js-flags=--expose-gc').split()
FIREFOX = {'app.update.enabled': False, 'browser.shell.checkDefaultBrowser': False, 'datareporting.policy.dataSubmissionEnabled': False,
           'network.captive-portal-service.enabled': False, 'network.connectivity-service.enabled': False,
           'toolkit.telemetry.reportingpolicy.firstRun': False, 'services.settings.server': 'http://127.0.0.1:1/',
           'extensions.update.enabled': False, 'app.normandy.enabled': False, 'browser.safebrowsing.update.enabled': False,
           'remote.active-protocols': 1}
KEYS = {'Enter': '\ue007', 'Escape': '\ue00c', 'Tab': '\ue004', 'Backspace': '\ue003', 'ArrowLeft': '\ue012', 'ArrowUp': '\ue013', 'ArrowRight': '\ue014',
        'ArrowDown': '\ue015', 'Home': '\ue011', 'End': '\ue010', 'PageDown': '\ue00f', 'PageUp': '\ue00e', 'Shift': '\ue008', 'Control': '\ue009'}
PATIENCE = 60


def until(what, check):
    """Repeats the check until its answer is true, and returns that; fails after a generous time."""
    end = time.monotonic() + PATIENCE
    while True:
        answer = check()
        if answer:
            return answer
        assert time.monotonic() < end, f'never came: {what() if callable(what) else what}'
        time.sleep(0.01)


class Loop:
    """An event loop on a thread of its own."""

    def __init__(self):
        self.loop = asyncio.new_event_loop()
        self.thread = threading.Thread(target=self.loop.run_forever, daemon=True)
        self.thread.start()

    def run(self, work):
        return asyncio.run_coroutine_threadsafe(work, self.loop).result(PATIENCE)

    def stop(self):
        async def end():
            others = asyncio.all_tasks() - {asyncio.current_task()}
            for each in others:
                each.cancel()
            await asyncio.gather(*others, return_exceptions=True)
        self.run(end())
        self.loop.call_soon_threadsafe(self.loop.stop)
        self.thread.join()
        self.loop.close()


class Browser:
    """One window. `name` is chromium or firefox."""

    def __init__(self, name, dark=False):
        self.name = name
        self.profile = tempfile.mkdtemp(prefix='page-test-')
        self.loop = Loop()
        self.numbers = itertools.count(1)
        self.answers = {}
        self.errors = []
        self.process, url = (self.start_chromium if name == 'chromium' else self.start_firefox)(dark)
        self.socket = self.loop.run(self.connected(url))
        asyncio.run_coroutine_threadsafe(self.read(), self.loop.loop)
        if name == 'firefox':
            self.ask('session.new', capabilities={})
        self.context = self.ask('browsingContext.create', type='window')['context']  # the first one may not have the focus
        self.ask('session.subscribe', events=['log.entryAdded'])

    def start_chromium(self, dark):
        log = os.path.join(self.profile, 'driver.log')
        process = subprocess.Popen(['chromedriver', '--port=0', f'--log-path={log}'], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        port = int(next(found[1] for line in process.stdout if (found := re.search(rb'successfully on port (\d+)', line))))
        arguments = [*CHROMIUM, f'--user-data-dir={self.profile}/data', *(['--force-dark-mode'] if dark else [])]
        driver = http.client.HTTPConnection('127.0.0.1', port, timeout=PATIENCE)
        with contextlib.closing(driver):
            driver.request('POST', '/session', json.dumps({'capabilities': {'alwaysMatch': {
                'webSocketUrl': True, 'unhandledPromptBehavior': 'ignore', 'goog:chromeOptions': {'args': arguments}}}}))
            answer = json.load(driver.getresponse())['value']
        assert 'capabilities' in answer, answer
        return process, answer['capabilities']['webSocketUrl']

    def start_firefox(self, dark):
        wanted = {**FIREFOX, 'ui.systemUsesDarkTheme': int(dark), 'layout.css.prefers-color-scheme.content-override': 0 if dark else 1}
        with open(os.path.join(self.profile, 'user.js'), 'w', encoding='utf-8') as file:
            file.writelines(f'user_pref({json.dumps(name)}, {json.dumps(value)});\n' for name, value in wanted.items())
        process = subprocess.Popen(['firefox-esr', '--headless', '--no-remote', '--profile', self.profile, '--remote-debugging-port=0'],
                                   stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, env={**os.environ, 'HOME': self.profile})
        url = next(found[1] for line in process.stderr if (found := re.search(rb'BiDi listening on (ws://\S+)', line))).decode()
        threading.Thread(target=process.stderr.read, daemon=True).start()
        return process, f'{url}/session'

    async def connected(self, url):
        return await websockets.connect(url, max_size=None, ping_interval=None)

    async def read(self):
        with contextlib.suppress(websockets.ConnectionClosed):
            async for text in self.socket:
                message = json.loads(text)
                if message.get('id') in self.answers:
                    self.answers[message['id']].put(message)
                elif message.get('method') == 'log.entryAdded' and message['params']['level'] == 'error':
                    frames = (message['params'].get('stackTrace') or {}).get('callFrames', [])
                    self.errors.append(' at '.join([message['params']['text'] or '?', *[f"{each['url'].split('/')[-1]}:{each['lineNumber'] + 1}" for each in frames[:4]]]))

    def ask(self, method, /, **params):
        number = next(self.numbers)
        self.answers[number] = queue.Queue()
        self.loop.run(self.socket.send(json.dumps({'id': number, 'method': method, 'params': params})))
        answer = self.answers[number].get(timeout=PATIENCE)
        del self.answers[number]
        assert answer['type'] == 'success', (method, answer)
        return answer['result']

    def open(self, url):
        self.errors.clear()
        self.ask('browsingContext.navigate', context=self.context, url=url, wait='complete')

    def run(self, body, *arguments):
        """What the JavaScript body returns; `args` holds the arguments, promises are waited for."""
        code = f'async () => JSON.stringify(await (async args => {{ {body} }})({json.dumps(arguments)}) ?? null)'
        answer = self.ask('script.callFunction', functionDeclaration=code, awaitPromise=True, target={'context': self.context}, arguments=[], userActivation=True)
        assert answer['type'] == 'success', (body, answer['exceptionDetails']['text'])
        return json.loads(answer['result']['value'])

    def texts(self, css):
        return self.run('return [...document.querySelectorAll(args[0])].filter(e => e.checkVisibility({ checkVisibilityCSS: true })).map(e => e.textContent)', css)

    def shows(self, css, *texts):
        until(lambda: f'{css}: {texts}, but {self.texts(css)}', lambda: self.texts(css) == list(texts))

    def press(self, *keys):
        """Each key by its name or its character, "Shift+ArrowDown" held together."""
        actions = []
        for key in keys:
            parts = [KEYS.get(part, part) for part in (key.split('+') if len(key) > 1 else [key])]
            actions += [{'type': 'keyDown', 'value': part} for part in parts]
            actions += [{'type': 'keyUp', 'value': part} for part in reversed(parts)]
        self.ask('input.performActions', context=self.context, actions=[{'type': 'key', 'id': 'keys', 'actions': actions}])

    def write(self, text):
        self.press(*text)

    def click(self, css, number=0):
        """A press of the pointer in the middle of an element that can be seen."""
        where = until(css, lambda: self.run('''
            const found = [...document.querySelectorAll(args[0])].filter(e => e.checkVisibility())[args[1]];
            if (!found) return null;
            found.scrollIntoView({ block: 'nearest' });
            const box = found.getBoundingClientRect();
            return [Math.floor(box.x + box.width / 2), Math.floor(box.y + box.height / 2)];''', css, number))
        self.ask('input.performActions', context=self.context, actions=[{'type': 'pointer', 'id': 'mouse', 'actions': [
            {'type': 'pointerMove', 'x': where[0], 'y': where[1]}, {'type': 'pointerDown', 'button': 0}, {'type': 'pointerUp', 'button': 0}]}])

    def size(self, width, height, ratio=None):
        self.ask('browsingContext.setViewport', context=self.context, viewport={'width': width, 'height': height}, devicePixelRatio=ratio)

    def picture(self, path):
        with open(path, 'wb') as file:
            file.write(base64.b64decode(self.ask('browsingContext.captureScreenshot', context=self.context)['data']))

    def quit(self):
        with contextlib.suppress(AssertionError, TimeoutError, websockets.ConnectionClosed):
            self.ask('browser.close')
        self.process.terminate()
        self.process.wait(PATIENCE)
        self.loop.stop()
        shutil.rmtree(self.profile, ignore_errors=True)
