#!/usr/bin/env python3
"""sysroot.py FOLDER CLANG: makes a folder that a compiler and a linker for macOS can be pointed at.

It has the shape of Apple's own: headers in usr/include and in frameworks, and for each library a text file with the
symbols that it has. What is Apple's comes from beside this script. The headers of the C library are musl's, as far as
macOS has them; those of the C++ library are libc++'s own. What Qt's libraries, libc++, GoogleTest,
libcurl, libgumbo and libproxy have is read from those of this machine, and so are the headers of all but libproxy; what
Qt, libc++ and GoogleTest have once more in words for symbols.py.
"""
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

import symbols

HERE = Path(__file__).resolve().parent
MUSL = Path('/usr/include/x86_64-linux-musl')
TARGETS = '[ arm64-macos, x86_64-macos ]'


def words(path):
    """The words of a list in which "#" begins a comment; none without such a list."""
    lines = path.read_text().splitlines() if path.exists() else []
    return [word for line in lines for word in line.partition('#')[0].split()]


def library(path, install_name, symbols, classes=()):
    """A library as the linker reads it: what it is called, and what it has."""
    def names(key, values):
        return f'    {key}: [ {", ".join(repr(value) for value in sorted(values))} ]\n' if values else ''
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(f'--- !tapi-tbd\ntbd-version: 4\ntargets: {TARGETS}\ninstall-name: {install_name!r}\n'
                    f'exports:\n  - targets: {TARGETS}\n{names("symbols", symbols)}'
                    f'{names("objc-classes", classes)}...\n')


def exported(nm, *files, kind='--dynamic'):
    """What libraries of this machine export, by the names that it has on macOS: those of C with "_" before them."""
    lines = subprocess.run([nm, kind, '--defined-only', '--format=just-symbols', *files], check=True,
                           capture_output=True, text=True).stdout.splitlines()
    return {'_' + line.partition('@')[0] for line in lines if line and not line.endswith(':')}


def cxx_libraries(clang):
    """Where the compiler finds libc++ of this machine. Paths that are not there when it does not."""
    return [Path(subprocess.run([clang, f'-print-file-name={name}.so.1'], check=True, capture_output=True,
                                text=True).stdout.strip()).absolute() for name in ('libc++', 'libc++abi')]


def standard_c(clang):
    """The functions of ISO C, which every system has."""
    names = 'ctype fenv inttypes locale math setjmp signal stdio stdlib string time wchar wctype'.split()
    text = subprocess.run([clang, '-target', 'x86_64-linux-musl', '-std=c11', '-nostdinc', '-isystem', MUSL, '-xc', '-E',
                           '-P', '-'], input=''.join(f'#include <{name}.h>\n' for name in names), check=True,
                          capture_output=True, text=True).stdout
    names = re.findall(r'\b([a-z]\w*)\s*\([^;{}]*\)\s*;', text)
    return {'_' + name for name in names if name not in ('void', 'sizeof')}


def make_c_headers(folder):
    for name in words(HERE / 'c-library/headers'):
        source = MUSL / name
        for file in sorted(source.rglob('*.h')) if source.is_dir() else [source]:
            target = folder / file.relative_to(MUSL)
            target.parent.mkdir(parents=True, exist_ok=True)
            # Its 64-bit integers are of the type "long". On macOS they are of another one.
            text = re.sub(r'^#define _Int64 long$', '#define _Int64 long long', file.read_text(), flags=re.M)
            target.write_text(text)
    features = folder / 'features.h'
    features.write_text('#define _BSD_SOURCE 1\n#define _XOPEN_SOURCE 700\n' + features.read_text())
    # What differs is put behind each.
    for file in (HERE / 'c-library').glob('*.h'):
        with (folder / file.name).open('a') as header:
            header.write(file.read_text())
    # As old as what it is made of: when all is made anew, only what has changed is compiled again.
    for file in (path for path in folder.rglob('*.h') if not path.is_symlink()):
        name = file.relative_to(folder)
        sources = (MUSL / name, HERE / 'c-library' / name, Path(__file__))
        newest = max(source.stat().st_mtime_ns for source in sources if source.exists())
        os.utime(file, ns=(newest, newest))


def make_frameworks(folder):
    """One for each folder of headers. What the headers beside these folders declare has no framework."""
    for headers in (path for path in (HERE / 'include').iterdir() if (path / f'{path.name}.h').exists()):
        framework = folder / f'{headers.name}.framework'
        framework.mkdir(parents=True)
        (framework / 'Headers').symlink_to(headers)
        lists = HERE / 'libraries'
        library(framework / f'{headers.name}.tbd', f'/System/Library/Frameworks/{framework.name}/{headers.name}',
                words(lists / f'{headers.name}.symbols'), words(lists / f'{headers.name}.classes'))


def package_folder(package, key):
    return Path(subprocess.run(['pkg-config', f'--variable={key}', package], check=True, capture_output=True,
                               text=True).stdout.strip())


def link_headers(prefix, package, *headers):
    """Those of a library of this machine. They lie where pkg-config says, or where the compiler looks."""
    include = prefix / 'include'
    include.mkdir(parents=True, exist_ok=True)
    for header in headers:
        places = (package_folder(package, 'includedir'), Path('/usr/include'),
                  Path('/usr/include', package_folder(package, 'libdir').name))
        (include / header).symlink_to(next(place / header for place in places if (place / header).exists()))


def make_other(prefix, nm, package, name, *headers):
    """A library of this machine's, by its own headers."""
    file = package_folder(package, 'libdir') / f'lib{name}.so'
    library(prefix / f'lib/lib{name}.tbd', f'/{prefix.name}/lib/lib{name}.dylib', exported(nm, file))
    link_headers(prefix, package, *headers)


def make_googletest(prefix, nm):
    """Its headers. Returns what its libraries have, which are archives."""
    for name in ('gtest', 'gmock'):
        link_headers(prefix, name, name)
    return exported(nm, *(package_folder(name, 'libdir') / f'lib{name}.a' for name in ('gtest', 'gmock')),
                    kind='--extern-only')


def qt(key):
    return subprocess.run(['qmake6', '-query', key], check=True, capture_output=True, text=True).stdout.strip()


def make_qt(root, nm):
    """Returns what Qt's libraries have."""
    libraries = Path(qt('QT_INSTALL_LIBS'))
    everything = set()
    for module in ('Core', 'Gui', 'Widgets', 'Network'):
        exports = exported(nm, libraries / f'libQt6{module}.so')
        only_on_macos = words(HERE / f'libraries/Qt{module}.symbols')
        library(root / f'qt/lib/Qt{module}.tbd', f'@rpath/Qt{module}.framework/Versions/A/Qt{module}',
                exports | set(only_on_macos))
        everything |= exports
        include = root / f'qt/include/Qt{module}'
        include.parent.mkdir(exist_ok=True)
        include.symlink_to(Path(qt('QT_INSTALL_HEADERS'), include.name))
    (root / 'qt/libexec').symlink_to(qt('QT_INSTALL_LIBEXECS'))
    (root / 'qt/version').write_text(qt('QT_VERSION'))
    return everything


def main(root, clang):
    llvm = Path(clang).resolve().parent.parent
    nm = llvm / 'bin/llvm-nm'
    shutil.rmtree(root, ignore_errors=True)
    headers, libraries = root / 'usr/include', root / 'usr/lib'
    headers.mkdir(parents=True)
    make_c_headers(headers)
    for path in (HERE / 'include').iterdir():
        if (path / f'{path.name}.h').exists():
            continue
        if (headers / path.name).exists(): # A folder of the C library's as well.
            for header in path.iterdir():
                (headers / path.name / header.name).symlink_to(header)
        else:
            (headers / path.name).symlink_to(path)
    (headers / 'c++').mkdir()
    (headers / 'c++/v1').symlink_to(llvm / 'include/c++/v1')
    make_frameworks(root / 'System/Library/Frameworks')
    library(libraries / 'libSystem.tbd', '/usr/lib/libSystem.B.dylib',
            standard_c(clang) | set(words(HERE / 'libraries/libSystem.symbols')))
    cxx = exported(nm, *cxx_libraries(clang))
    library(libraries / 'libc++.tbd', '/usr/lib/libc++.1.dylib', cxx)
    make_other(root / 'usr/local', nm, 'gumbo', 'gumbo', 'gumbo.h', 'tag_enum.h')
    make_other(root / 'usr/local', nm, 'libproxy-1.0', 'proxy')
    make_other(root / 'usr', nm, 'libcurl', 'curl', 'curl')
    known = cxx | make_qt(root, nm) | make_googletest(root / 'usr/local', nm)
    names = symbols.neutral(clang, sorted(known), '--strip-underscore')
    (root / symbols.NEUTRAL).write_text('\n'.join(sorted(set(names))))


if __name__ == '__main__':
    main(Path(sys.argv[1]).absolute(), sys.argv[2])
