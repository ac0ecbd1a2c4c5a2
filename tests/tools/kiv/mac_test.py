"""Which compiler ./kiv mac installs, with Debian's answers from the test."""

import os
import pathlib
import subprocess
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[3]

APT_CACHE = """#!/bin/sh
case $1 in
show) [ -z "$PLAIN" ] || echo "Version: $PLAIN" ;;
search) for number in $NUMBERED; do echo "libc++-$number-dev - the C++ library of $number"; done ;;
esac
"""


class CompilerForMacOs(unittest.TestCase):
    def packages(self, plain, numbered):
        """In a Debian where the plain name is this version, and that has those besides."""
        with tempfile.TemporaryDirectory() as folder:
            program = pathlib.Path(folder, "apt-cache")
            program.write_text(APT_CACHE)
            program.chmod(0o755)
            done = subprocess.run(["bash", "-euo", "pipefail", "-c", "source tools/kiv/mac.bash; mac_compiler_packages"],
                                  cwd=SOURCE, text=True, capture_output=True, timeout=60, check=True,
                                  env={"PATH": f"{folder}:{os.environ['PATH']}", "PLAIN": plain, "NUMBERED": numbered})
        return done.stdout.split()

    def test_has_the_plain_names_where_these_are_new_enough(self):
        for plain in ("1:19.0-63", "1:16.0-58", "21.1.8"):
            self.assertEqual(self.packages(plain, "17 19 22"), ["clang", "libc++-dev", "lld", "llvm"], plain)

    def test_is_the_oldest_that_is_new_enough_elsewhere(self):
        self.assertEqual(self.packages("1:14.0-55.7~deb12u1", "13 14 19 16 22"),
                         ["clang-16", "libc++-16-dev", "lld-16", "llvm-16"])

    def test_is_asked_for_by_the_plain_names_where_there_is_none(self):
        self.assertEqual(self.packages("", ""), ["clang", "libc++-dev", "lld", "llvm"])


if __name__ == "__main__":
    unittest.main()
