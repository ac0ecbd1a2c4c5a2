#!/usr/bin/env python3
"""include_directions.py ROOT: the folders use one another one way only.

Prints each include that points elsewhere, and ends with status 1 when there is one. Includes of ours are written with
their path from ROOT.
"""
import re
import sys
from pathlib import Path

# Which rooms the files of a room may include from, beside their own. A file's room is the entry here with which its
# folder begins, the longest if there are several; "platform" alone stands for the headers in platform/ itself.
PLATFORM = ['platform', 'platform/files', 'platform/data', 'platform/text', 'platform/images', 'platform/alert',
            'platform/screen']
RECORD = ['notify', 'notify/record']
RULES = RECORD + ['notify/rules']
TEXT = RECORD + ['notify/text']
POPUP = RULES + TEXT + ['notify/popup']
QUEUE = RULES + ['notify/popup', 'notify/queue']
NOTIFY = TEXT + QUEUE + ['notify/feed']
LINUX = ['platform', 'platform/screen', 'platform/linux/include']
ALLOWED = {
    'fetch': [],
    'platform/files': [],
    'platform/data': ['platform/files'],
    'platform/images': [],
    'platform/text': [],
    'platform/screen': [],
    'platform': ['platform/data'],
    'platform/alert': ['platform', 'platform/screen', 'platform/text'],
    'platform/macos': ['platform', 'platform/screen', 'platform/images'],
    'platform/linux/include': ['platform'],
    'platform/linux/bus': LINUX + ['platform/linux/workarounds'],
    'platform/linux/corefoundation': LINUX,
    'platform/linux/screen': LINUX + ['platform/files'],
    'platform/linux/processes': LINUX,
    'platform/linux/desktop': LINUX + ['platform/linux/bus', 'platform/linux/screen', 'platform/linux/workarounds',
                                       'platform/text'],
    'platform/linux/events': LINUX + ['platform/linux/bus', 'platform/linux/processes'],
    'platform/linux/workarounds': LINUX,
    'platform/linux/accessibility': LINUX + ['platform/linux/bus', 'platform/linux/workarounds'],
    'platform/linux/item': LINUX + ['platform/images', 'platform/linux/accessibility', 'platform/linux/bus',
                                    'platform/linux/screen', 'platform/linux/workarounds'],
    'platform/linux': LINUX + ['platform/linux/accessibility', 'platform/linux/bus', 'platform/linux/desktop',
                               'platform/linux/workarounds'],
    'menu': PLATFORM,
    'notify/record': ['notify', 'platform/data', 'platform/text'],
    'notify/text': PLATFORM + TEXT,
    'notify/rules': PLATFORM + RULES,
    'notify/popup': PLATFORM + POPUP,
    'notify/queue': PLATFORM + QUEUE,
    'notify/feed': PLATFORM + RULES + TEXT,
    'notify': [],
    'shell': PLATFORM + NOTIFY + ['menu'],
    'settings': PLATFORM + RULES,
    'tools': PLATFORM + RULES + ['platform/linux/include', 'menu', 'settings', 'shell'],
}
HOUSE = ('fetch', 'platform', 'notify', 'menu', 'shell', 'settings', 'tools', 'tests', 'bench', 'fuzz')
# Made from descriptions of D-Bus interfaces, or by moc.
GENERATED = re.compile(r'(Adaptor\.h|\.moc)$')
INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)')
# Which others find without a path, too. What lies deeper has the names that Apple gave it.
EXPORTED = 'platform/linux/include'


def room_of(folder, rooms):
    return max((room for room in rooms if folder == room or folder.startswith(room + '/')), key=len, default=None)


def complaint(file, included):
    """What is wrong with that include in that file, both as paths from the root; None when nothing is."""
    if GENERATED.search(included):
        return None
    if '/' not in included or {'.', '..'} & set(included.split('/')):
        return 'is not written with its path'
    target_folder = included.rpartition('/')[0]
    inside = target_folder.startswith('platform/linux')
    folder = file.rpartition('/')[0]
    room = room_of(folder, ALLOWED)
    if room is None:
        # Tests, benchmarks and fuzzers may look at everything, but only its own tests and fuzzers into platform/linux/.
        private = inside and not target_folder.startswith('platform/linux/include')
        return 'is private to platform/linux' if private and not file.startswith(('tests/platform/linux/', 'fuzz/')) \
            else None
    target = room_of(target_folder, ALLOWED) or target_folder
    return None if target == room or target in ALLOWED[room] else f'is above {room}, or beside it'


def includes(root):
    """(file, number of the line, what is included) for each include of ours."""
    exported = {path.name for path in (root / EXPORTED).glob('*.h')}
    for path in sorted(path for folder in HOUSE for path in (root / folder).rglob('*')):
        if path.suffix not in ('.h', '.cpp', '.mm'):
            continue
        for number, line in enumerate(path.read_text(encoding='utf-8').splitlines(), 1):
            match = INCLUDE.match(line)
            if match and (match[1] or match[2] in exported or match[2].split('/')[0] in (*HOUSE, '.', '..')):
                yield path.relative_to(root).as_posix(), number, match[1] or match[2]


def main(root):
    status = 0
    for file, number, included in includes(root):
        if wrong := complaint(file, included):
            print(f'{file}:{number}: {included} {wrong}')
            status = 1
    return status


if __name__ == '__main__':
    sys.exit(main(Path(sys.argv[1])))
