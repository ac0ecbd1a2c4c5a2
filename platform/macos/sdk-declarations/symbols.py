#!/usr/bin/env python3
"""symbols.py SYSROOT CLANG PROGRAM...: says which symbols programs for macOS want that no library has.

Prints each, and ends with status 1 when there is one. The linker leaves that to this, for it knows libraries by the
names that their symbols have on macOS, and of Qt and libc++ only those are known that they have on this machine. They
are the same but for types of the C++ library, and for which type a 64-bit integer is: without these two differences
what the linker has not found is looked for once more.
"""
import re
import subprocess
import sys
from pathlib import Path

NEUTRAL = 'symbols' # In the folder that sysroot.py makes.


def tool(clang, name):
    return Path(clang).resolve().parent / name


def neutral(clang, symbols, *options):
    """What each is, in C++, in words that are the same on both systems; in the same order."""
    lines = subprocess.run([tool(clang, 'llvm-cxxfilt'), *options], input='\n'.join(symbols), check=True,
                           capture_output=True, text=True).stdout.splitlines()
    lines = [re.sub(r'\bstd::(__1::)?basic_(ostream|istream)<char, std::(__1::)?char_traits<char> ?>', r'std::\2', line)
             for line in lines] # Which one of the two systems has a short name for.
    lines = [re.sub(r'\b(__1|__cxx11|_V2|__exception_ptr)::|\[abi:\w+\]', '', line) for line in lines]
    return [re.sub(r'\blong long\b', 'long', re.sub(r'(?<=\d)(ll|l)\b', '', line)) for line in lines]


def missing(sysroot, clang, program):
    """What the program wants and nobody has, in C++."""
    lines = subprocess.run([tool(clang, 'llvm-nm'), '-m', '--undefined-only', program], check=True,
                           capture_output=True, text=True).stdout.splitlines()
    wanted = [match[1] for match in (re.search(r' (\S+) \(dynamically looked up\)$', line) for line in lines) if match]
    known = set((Path(sysroot) / NEUTRAL).read_text().splitlines())
    return [name for name in neutral(clang, wanted, '--strip-underscore') if name not in known]


def main(sysroot, clang, *programs):
    status = 0
    for program in programs:
        for name in missing(sysroot, clang, program):
            print(f'{Path(program).name}: undefined symbol: {name}', file=sys.stderr)
            status = 1
    return status


if __name__ == '__main__':
    sys.exit(main(*sys.argv[1:]))
