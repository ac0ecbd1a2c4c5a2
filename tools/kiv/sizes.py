#!/usr/bin/env python3
"""sizes.py ROOT: no source file is too long to read, and no folder too full to look through.

Prints each that is; then the status is 1. Tests may be longer, and lie where what they test lies.
"""
import collections
import subprocess
import sys
from pathlib import Path

MAX_LINES_OF_A_FILE = 400
MAX_FILES_OF_A_FOLDER = 25

SUFFIXES = {'.h', '.cpp', '.mm', '.py', '.bash'}


def is_source(path):
    """Programs without a suffix are known by their first line."""
    if path.suffix:
        return path.suffix in SUFFIXES
    with path.open('rb') as file:
        return file.read(2) == b'#!'


def main(root):
    listed = subprocess.run(['git', 'ls-files', '-z'], cwd=root, capture_output=True, text=True, check=True).stdout
    folders = collections.Counter()
    status = 0
    for name in filter(None, listed.split('\0')):
        path = root / name
        if name.startswith('tests/') or not path.is_file() or not is_source(path):
            continue
        folders[path.relative_to(root).parent.as_posix()] += 1
        lines = len(path.read_text(encoding='utf-8').splitlines())
        if lines > MAX_LINES_OF_A_FILE:
            print(f'{name}: {lines} lines, more than {MAX_LINES_OF_A_FILE}')
            status = 1
    for folder, files in sorted(folders.items()):
        if files > MAX_FILES_OF_A_FOLDER:
            print(f'{folder}: {files} source files, more than {MAX_FILES_OF_A_FOLDER}')
            status = 1
    return status


if __name__ == '__main__':
    sys.exit(main(Path(sys.argv[1])))
