#!/usr/bin/env python3
"""links.py ROOT: the links between our documents lead somewhere. Prints those that do not; then the status is 1."""
import re
import subprocess
import sys
from pathlib import Path

LINK = re.compile(r'!?\[[^\]]*\]\(([^)\s]+)\)')
HEADING = re.compile(r'^#+\s+(.*)$', re.MULTILINE)


def anchor_of(heading):
    """As web sites that show such documents make it of a heading."""
    return re.sub(r'[^\w\- ]', '', heading.lower()).strip().replace(' ', '-')


def dead_links(document):
    for target in LINK.findall(document.read_text(encoding='utf-8')):
        if re.match(r'[a-z]+:', target):
            continue
        name, _, anchor = target.partition('#')
        file = document.parent / name if name else document
        if not file.exists():
            yield target, 'no such file'
        elif anchor and anchor not in map(anchor_of, HEADING.findall(file.read_text(encoding='utf-8'))):
            yield target, 'no such heading'


def main(root):
    listed = subprocess.run(['git', 'ls-files', '*.md'], cwd=root, capture_output=True, text=True, check=True).stdout
    status = 0
    for name in listed.splitlines():
        for target, why in dead_links(root / name):
            print(f'{name}: {target}: {why}')
            status = 1
    return status


if __name__ == '__main__':
    sys.exit(main(Path(sys.argv[1])))
