#!/usr/bin/python3
"""A player for the template's driver: a lamp whose program has a misspelt name in one place."""

import json
import sys


def say(**line):
    print(json.dumps(line), flush=True)


say(bind=5001, **{'class': 'LIGHT'})
say(notify='LIGHT_LEVEL_CHANGED', params={'level': '40'})
say(notify='LIGHT_LEVL_CHANGED', params={'level': '70'})
for text in sys.stdin:
    call = json.loads(text)
    if call['command'] == 'SET_LEVEL':
        say(notify='LIGHT_LEVEL_CHANGED', params={'level': call['params'][0]['value']})
