#!/usr/bin/env python3
"""versions.py ROOT: the version stands in CMakeLists.txt, and whoever tells a history of versions tells its last.

Prints each file whose newest version, or the day of it, is another one; then the status is 1. Those are for people and
for programs that cannot ask CMake.
"""
import email.utils
import re
import sys
import xml.etree.ElementTree
from pathlib import Path


def of_project(root):
    return re.search(r'^project\(\w+ VERSION (\S+) ', (root / 'CMakeLists.txt').read_text(encoding='utf-8'), re.M)[1]


def of_changelog(root):
    """The newest (version, day) that has been released."""
    found = re.search(r'^## \[(\d\S*)\] - (\S+)$', (root / 'CHANGELOG.md').read_text(encoding='utf-8'), re.M)
    return found and found.groups()


def of_metainfo(root):
    path = root / 'resources/linux/com.tamborel.kivmenua.metainfo.xml'
    release = xml.etree.ElementTree.parse(path).getroot().find('releases/release')
    return release.get('version'), release.get('date')


def of_packages(root):
    text = (root / 'debian/changelog').read_text(encoding='utf-8')
    version = re.match(r'kivmenua \((\S+)-\w+\) ', text)
    day = re.search(r'^ -- .*>  (.*)$', text, re.M)
    return version and day and (version[1], email.utils.parsedate_to_datetime(day[1]).date().isoformat())


def of_manual_pages(root):
    """The day at the head of each, by its name."""
    for page in sorted((root / 'docs/man').glob('*.[1-9]')):
        found = re.match(r'\.TH \S+ \d "(\S*)"', page.read_text(encoding='utf-8'))
        yield page.name, found and found[1]


def main(root):
    version = of_project(root)
    day = (of_changelog(root) or (None, None))[1]
    status = 0
    for name, told in (('CHANGELOG.md', of_changelog(root)), ('the metainfo', of_metainfo(root)),
                       ('debian/changelog', of_packages(root))):
        if told != (version, day):
            print(f'{name}: its newest version is {told}, not {(version, day)}')
            status = 1
    for page, told in of_manual_pages(root):
        if told != day:
            print(f'{page}: its day is {told}, not {day}')
            status = 1
    return status


if __name__ == '__main__':
    sys.exit(main(Path(sys.argv[1])))
