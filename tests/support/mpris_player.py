#!/usr/bin/python3
'''A stand-in media player for tests: python3-dbusmock with this file as its template. Run as
ombrix-test-mpris-player --name N [--identity I] [--status S] [--title T] [--artist A]... [--art-url U]
[--log FILE], it owns org.mpris.MediaPlayer2.N on the session bus with the root and Player interfaces
and writes every transport call to FILE, one name a line. PlayPause flips Playing and Paused and Play
plays, announced by PropertiesChanged, as a real player does.'''
import json
import os
import sys

import dbus

BUS_NAME = 'org.mpris.MediaPlayer2.' + os.environ.get('OMBRIX_MPRIS_NAME', 'testplayer')
MAIN_OBJ = '/org/mpris/MediaPlayer2'
MAIN_IFACE = 'org.mpris.MediaPlayer2.Player'
SYSTEM_BUS = False


def load(mock, p):
    keys = {'title': 'xesam:title', 'artist': 'xesam:artist', 'art-url': 'mpris:artUrl'}
    metadata = {keys[k]: dbus.Array(v, signature='s') if k == 'artist' else v for k, v in p.items() if k in keys}
    mock.AddProperties('org.mpris.MediaPlayer2', {'Identity': p.get('identity', 'Test Player')})
    mock.AddProperties(MAIN_IFACE, {'PlaybackStatus': p.get('status', 'Playing'),
                                    'Metadata': dbus.Dictionary(metadata, signature='sv')})
    status = "self.UpdateProperties('%s', {'PlaybackStatus': %%s})" % MAIN_IFACE
    flip = "'Paused' if self.Get('%s', 'PlaybackStatus') == 'Playing' else 'Playing'" % MAIN_IFACE
    calls = {'PlayPause': status % flip, 'Play': status % "'Playing'", 'Next': '', 'Previous': ''}
    log = "open(%r, 'a').write('%%s\\n'); " % p['log'] if 'log' in p else ''
    mock.AddMethods(MAIN_IFACE, [(name, '', '', (log % name if log else '') + code) for name, code in calls.items()])


if __name__ == '__main__':
    options = {}
    for option, value in zip(sys.argv[1::2], sys.argv[2::2]):
        if option == '--artist':
            options.setdefault('artist', []).append(value)
        else:
            options[option[2:]] = value
    os.environ['OMBRIX_MPRIS_NAME'] = options.pop('name', 'testplayer')
    os.execv(sys.executable, [sys.executable, '-m', 'dbusmock', '-l', os.devnull, '--template',
                              os.path.realpath(__file__), '-p', json.dumps(options)])
