#!/usr/bin/env python3
"""reserved_words.py ROOT: names and texts that others know keep their spelling.

The service, the makers' feed and the settings program use these words as they stand, some of them misspelt for good.
Prints each that is gone from the code, and each place where one was put right; then the status is 1. So it does with
each text of the code in which the product's or its maker's name stands outside a ProductTexts.h: whoever ships the
agent under another name shall have no other file to look through.
"""
import re
import subprocess
import sys
from pathlib import Path

# Each with the spellings that a well-meaning hand would give it.
RESERVED = {
    'recieveNotifications': ['receiveNotifications'],
    'recreateNotificaionWindow': ['recreateNotificationWindow'],
    'KivMunuUpdateSettingsNotification': ['KivMenuUpdateSettingsNotification'],
    'isCurrentUserIsAdminLevelUser': ['isCurrentUserAdminLevelUser', 'currentUserIsAdminLevelUser'],
    ', repeate: ': [', repeat: ', ', repeats: '],
    'kivmAECreateEvent failed, error=%d': [],
    'kivmAESendEvent failed, error=%d': [],
    'Kivune[M]: Could not write file: : %s': ['Kivune[M]: Could not write file: %s'],
    'KivNotificationLastMessId': ['KivNotificationLastMessageId'],
    'com.tamborel.kivmenua': [],
    'com.tamborel.kivune': [],
    'KIVPrivateLabel': ['KIVPrivateLable'],
    'This will disconnect the current Kivune session.': [],
    'System could not set the selected resolution.': [],
    'Do Not Remind Me Later': ["Don't Remind Me Later"],
}
NAMES = re.compile(r'"(?:[^"\\\n]|\\.)*(?:kivmenua|kivune|tamborel)', re.IGNORECASE)
PRODUCT = ['shell', 'menu', 'notify', 'platform', 'settings', 'resources/Info.plist.in']


def places(root, word, folders):
    """Lines of the tracked files in those folders that have the word in them; "" for none."""
    return subprocess.run(['git', 'grep', '--line-number', '--fixed-strings', '-e', word, '--', *folders], cwd=root,
                          capture_output=True, text=True, check=False).stdout


def strewn_names(root):
    """Places where a text has one of the names, which ought to stand in a ProductTexts.h."""
    listed = subprocess.run(['git', 'ls-files', '*.h', '*.cpp', '*.mm'], cwd=root, capture_output=True, text=True,
                            check=True).stdout
    for name in listed.splitlines():
        is_product = name.startswith(('shell/', 'menu/', 'notify/', 'platform/', 'settings/'))
        if not is_product or name.endswith('/ProductTexts.h') or not (root / name).is_file():
            continue
        for number, line in enumerate((root / name).read_text(encoding='utf-8').splitlines(), 1):
            code = re.sub(r'(^|\s)//.*', '', line)
            if NAMES.search(code) and not code.lstrip().startswith('#'):
                yield f'{name}:{number}: {line.strip()}'


def main(root):
    status = 0
    for place in strewn_names(root):
        print(f'{place}\n    belongs in ProductTexts.h')
        status = 1
    for word, corrections in RESERVED.items():
        if not places(root, word, PRODUCT):
            print(f'nowhere any more: {word}')
            status = 1
        for correction in corrections:
            for place in places(root, correction, PRODUCT + ['tests', 'tools/kivservice']).splitlines():
                print(f'{place}\n    is spelt {word}')
                status = 1
    return status


if __name__ == '__main__':
    sys.exit(main(Path(sys.argv[1])))
