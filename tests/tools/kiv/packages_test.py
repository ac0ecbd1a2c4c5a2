"""Which Debian packages ./kiv installs, with programs of the test in the place of Debian's."""

import os
import pathlib
import re
import subprocess
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[3]

DPKG_QUERY = """#!/bin/sh
echo dpkg-query >>"$CALLS"
cat <<END
installed here
installed newname
not-installed merely-known
config-files removed
half-installed broken
END
exit 1
"""
APT_GET = """#!/bin/sh
echo apt-get "$@" >>"$CALLS"
[ "$1" = update ] && exit "$STATUS"
echo 'pmstatus:here:amd64:40.1234:Unpacking here (amd64)' >&3
# What a package prints while it is installed; apt's reports are not waited for, so that this must not go the same way.
echo 'pmstatus:here:amd64:80.0000:said by a package'
exit "$STATUS"
"""
APT_CACHE = """#!/bin/sh
case $* in *second*) echo Package: second ;; esac
"""


class Packages(unittest.TestCase):
    def install(self, *packages, status=0):
        """Returns what apt-get was asked to install; nothing when it was not asked."""
        with tempfile.TemporaryDirectory() as folder:
            calls = pathlib.Path(folder) / "calls"
            for name, text in {"dpkg-query": DPKG_QUERY, "apt-get": APT_GET, "apt-cache": APT_CACHE,
                               "sudo": '#!/bin/sh\nexec "$@"\n'}.items():
                (pathlib.Path(folder) / name).write_text(text)
                (pathlib.Path(folder) / name).chmod(0o755)
            script = """set -euo pipefail
                say() { echo "$*"; }; fail() { echo "$*" >&2; exit 1; }
                source tools/kiv/packages.bash; install_missing "$@" """
            self.done = subprocess.run(["bash", "-c", script, "bash", *packages], cwd=SOURCE, text=True,
                                       capture_output=True, timeout=60,
                                       env={"PATH": f"{folder}:{os.environ['PATH']}", "CALLS": str(calls),
                                            "STATUS": str(status)})
            self.calls = calls.read_text().splitlines()
        for call in self.calls:
            if call.startswith("apt-get install"):
                return [word for word in call.split()[2:] if word[0] != "-" and "=" not in word and ":" not in word]
        return []

    def test_what_is_installed_is_left_alone(self):
        self.assertEqual(self.install("here"), [])
        self.assertEqual(self.done.returncode, 0)
        self.assertFalse([call for call in self.calls if call.startswith("apt-get")])

    def test_any_other_state_is_as_good_as_none(self):
        self.assertEqual(self.install("here", "merely-known", "removed", "broken", "unheard-of"),
                         ["merely-known", "removed", "broken", "unheard-of"])

    def test_many_packages_are_one_question(self):
        self.install(*["here"] * 50)
        self.assertEqual(self.calls, ["dpkg-query"])

    def test_one_of_two_names_is_enough(self):
        self.assertEqual(self.install("newname|oldname"), [])
        self.assertEqual(self.install("oldname|newname"), [])

    def test_of_two_names_the_one_that_the_release_knows_is_installed(self):
        self.assertEqual(self.install("first|second"), ["second"])
        self.assertEqual(self.install("second|first"), ["second"])

    def test_it_tells_how_far_it_is(self):
        self.install("unheard-of")
        self.assertRegex(self.done.stdout, r"installed +40 %")
        self.assertNotIn("80 %", self.done.stdout)

    def test_a_failure_is_one_line_that_names_the_step(self):
        self.install("unheard-of", status=100)
        self.assertEqual(self.done.returncode, 1)
        self.assertEqual(self.done.stderr, "apt-get update failed\n")

    def test_no_name_has_a_version_in_it(self):
        lists = re.findall(r"^packages_\w+\+?=\((.*?)\)", (SOURCE / "kiv").read_text(), re.MULTILINE | re.DOTALL)
        names = re.split(r"[\s|']+", " ".join(lists).strip())
        self.assertIn("cmake", names)
        self.assertFalse([name for name in names if re.search(r"-\d+(\.\d+)*(-|$)", name)])


if __name__ == "__main__":
    unittest.main()
