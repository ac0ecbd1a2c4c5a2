#!/usr/bin/env python3
"""build.py FOLDER [ARCHITECTURE [TARGET...]]: builds the agent for macOS on this machine, into FOLDER.

The architecture is arm64 unless x86_64 is named, and all is built unless targets are. What comes out can be looked at
and not run: README.md says what it is good for.
"""
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

import symbols
import sysroot

HERE = Path(__file__).resolve().parent
SOURCE = HERE.parents[2]
PROGRAMS = 'bin/kivmenua.app/Contents/MacOS'
TESTS = ('tests', 'fuzz')
STAMP = 'sysroot.made-of'
TESTED = 'arm64'
# However a compiler cache is set up, it is not to tell of the folders that headers came from in another tree.
ENVIRONMENT = os.environ | {'CCACHE_BASEDIR': '', 'CCACHE_HASHDIR': 'true'}
MIN_CLANG = 16 # As in tools/kiv/mac.bash. The libc++ of an older one lacks parts of the ranges.


def find_clang():
    """One that is new enough, with the tools and the C++ library of its own version. None without, or without musl."""
    for name in ('clang++', *(f'clang++-{number}' for number in range(MIN_CLANG, 40))):
        path = shutil.which(name)
        version = path and subprocess.run([path, '-dumpversion'], check=True, capture_output=True, text=True).stdout
        if version and int(re.match(r'\d+', version)[0]) >= MIN_CLANG:
            llvm = Path(path).resolve().parent.parent
            parts = (llvm / 'bin/ld64.lld', llvm / 'bin/llvm-nm', llvm / 'include/c++/v1', sysroot.MUSL,
                     *sysroot.cxx_libraries(path))
            if all(part.exists() for part in parts):
                return path
    return None


def configure(folder, architecture, root, clang):
    """In the folder of that name, the tests with it on one of the two processors. Returns it."""
    build = folder / architecture
    tests = 'ON' if architecture == TESTED else 'OFF'
    # What was found by an older toolchain is looked for again.
    cache = build / 'CMakeCache.txt'
    fresh = cache.exists() and cache.stat().st_mtime < (folder / STAMP).stat().st_mtime
    subprocess.run(['cmake', *(['--fresh'] if fresh else []),
                    '-S', SOURCE, '-B', build, '-G', 'Ninja', '--log-level=WARNING',
                    '-D', f'CMAKE_TOOLCHAIN_FILE={HERE / "toolchain.cmake"}', '-D', f'KIV_SYSROOT={root}',
                    '-D', f'KIV_ARCHITECTURE={architecture}', '-D', f'KIV_CLANG={clang}', '-D', 'CMAKE_BUILD_TYPE=',
                    '-D', 'CMAKE_UNITY_BUILD=ON', '-D', f'KIV_BUILD_TESTS={tests}', '-D', 'KIV_WARNINGS_AS_ERRORS=ON'],
                   env=ENVIRONMENT, check=True)
    return build


def make_sysroot(folder, clang):
    """Anew only when what it is made of has changed, for all that is compiled depends on it. Returns it."""
    root, stamp = folder / 'sysroot', folder / STAMP
    parts = [path for path in HERE.rglob('*') if path.is_file()]
    made_of = '\n'.join([clang, sysroot.qt('QT_VERSION'), *sorted(f'{path} {path.stat().st_mtime_ns}' for path in parts)])
    if not stamp.exists() or stamp.read_text() != made_of:
        subprocess.run([sys.executable, '-B', HERE / 'sysroot.py', root, clang], check=True)
        stamp.write_text(made_of)
    return root


def build(folder, architecture='arm64', targets=()):
    folder.mkdir(parents=True, exist_ok=True)
    clang = find_clang()
    if not clang:
        sys.exit(f'There is no clang {MIN_CLANG} or newer with its lld, llvm and libc++, or no musl: '
                 './kiv mac installs them.')
    root = make_sysroot(folder, clang)
    tree = configure(folder, architecture, root, clang)
    subprocess.run(['ninja', '-C', tree, '--quiet', *targets], env=ENVIRONMENT, check=True)
    strangers = foreign(headers_of(tree), root, tree, clang)
    for header in strangers:
        print(f'{header}: no Mac has this header, or it is for Linux', file=sys.stderr)
    if symbols.main(root, clang, *programs(tree)) or strangers:
        sys.exit(1)
    return tree


def headers_of(tree):
    """What the compiler has read, for all that has been compiled; and not what CMake has."""
    lines = subprocess.run(['ninja', '-C', tree, '-t', 'deps'], check=True, capture_output=True, text=True).stdout
    headers, is_compiled = set(), False
    for line in lines.splitlines():
        if not line.startswith(' '):
            is_compiled = line.partition(':')[0].endswith('.o')
        elif is_compiled:
            headers.add(line.strip())
    return headers


def foreign(headers, root, tree, clang):
    """Which of these are neither the sysroot's nor the compiler's nor the agent's, or are of its side for Linux."""
    # Of the two places where the compiler finds the headers of its C++ library, one is a link.
    compiler = (Path(clang).resolve().parent.parent, Path(clang).parent.parent / 'include/c++')
    known = tuple(f'{folder}/' for folder in (root, tree, SOURCE, *compiler))
    linux = f'{SOURCE}/platform/linux/'
    paths = {os.path.normpath(Path(tree, header)) for header in headers}
    return sorted(path for path in paths if not path.startswith(known) or path.startswith(linux))


def programs(tree):
    """The agent's, and those of its tests: what can be run of the folders where CMake puts them."""
    files = [file for folder in (PROGRAMS, *TESTS) for file in (tree / folder).glob('*')]
    return [file for file in files if file.is_file() and os.access(file, os.X_OK)]


if __name__ == '__main__':
    try:
        build(Path(sys.argv[1]).absolute(), *sys.argv[2:3], targets=sys.argv[3:])
    except subprocess.CalledProcessError as failed:
        sys.exit(failed.returncode)
