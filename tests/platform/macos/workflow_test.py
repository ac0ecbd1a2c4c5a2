"""What hosted machines are told to do, as far as that can be tried without one of them."""

import os
import pathlib
import re
import subprocess
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[3]
TEXT = (SOURCE / ".github/workflows/mac-and-debian.yml").read_text(encoding="utf-8")
BLOCK = re.compile(r"^      - name: (.*)\n(?:        #.*\n)*        run: \|\n((?:          .*\n|\n)+)", re.MULTILINE)
SCRIPTS = {name: re.sub(r"^ {10}", "", block, flags=re.MULTILINE) for name, block in BLOCK.findall(TEXT)}

FILE = """#!/bin/sh
for path; do case $path in
*/Resources/*) echo "$path: XML document text" ;;
*) echo "$path: Mach-O universal binary with 2 architectures"
   echo "$path (for architecture arm64):	Mach-O 64-bit executable arm64" ;;
esac; done
"""
OTOOL = """#!/bin/sh
[ -e "$2" ] || exit 1
echo "$2:"
case $1 in
-D) sed -n 's/^own name //p' "$2" ;;
-L) sed -n 's/^own name \\(.*\\)/\t\\1 (compatibility version 1.0.0, current version 1.0.0)/p' "$2"
    sed -n 's/^wants \\(.*\\)/\t\\1 (compatibility version 1.0.0, current version 1.0.0)/p' "$2" ;;
-l) echo 'Load command 12'
    sed -n 's/^looks in \\(.*\\)/          cmd LC_RPATH\\n      cmdsize 32\\n         path \\1 (offset 12)/p' "$2" ;;
*) exit 1 ;;
esac
"""
SYSTEM = "wants /usr/lib/libSystem.B.dylib\nwants /System/Library/Frameworks/AppKit.framework/Versions/C/AppKit\n"
SLEEP = """#!/bin/sh
echo >> slept
[ "$(wc -l < slept)" -lt 3 ] || while [ ! -e said ]; do /bin/sleep 0.02; done
"""


class Workflow(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.bundle = self.folder / "Application Support/kivmenua.app"

    def write(self, path, text):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        path.chmod(0o755)

    def run_step(self, name):
        """Its exit status, with programs and a bundle of the test's, as the machines run it."""
        path = f"{self.folder}/bin:{os.environ['PATH']}"
        return subprocess.run(["bash", "-e", "-c", SCRIPTS[name]], cwd=self.folder, timeout=60, check=False,
                              capture_output=True, env={"PATH": path, "BUNDLE": str(self.bundle)}).returncode

    def test_has_scripts_that_can_be_read(self):
        self.assertGreater(len(SCRIPTS), 4)
        for name, script in SCRIPTS.items():
            result = subprocess.run(["bash", "-n"], input=script, capture_output=True, text=True, check=False)
            self.assertEqual((name, result.returncode, result.stderr), (name, 0, ""))

    def test_names_its_machines_and_what_it_uses_by_version(self):
        self.assertNotIn("latest", TEXT)
        for used in re.findall(r"uses: (.*)", TEXT):
            self.assertRegex(used, r"^[\w-]+/[\w-]+@[0-9a-f]{40} # v[\d.]+$")
        self.assertRegex(TEXT, r"(?m)^permissions:\n  contents: read\n(?! )")

    def test_signs_for_one_machine_without_what_refuses_the_libraries(self):
        lines = [line for line in TEXT.splitlines() if "codesign --force" in line]
        self.assertGreater(len(lines), 3)
        for line in lines:
            self.assertIn("--sign -", line)
            self.assertNotIn("runtime", line)

    def refuses(self, program, text):
        """Whether it does when one file of a bundle that is in order is this one instead."""
        path = self.bundle / "Contents" / program
        before = path.read_text(encoding="utf-8")
        self.write(path, text)
        status = self.run_step("Every library that is not the system's lies in the bundle")
        self.write(path, before)
        return status != 0

    def make_bundle(self):
        step = "Every library that is not the system's lies in the bundle"
        self.write(self.folder / "bin/file", FILE)
        self.write(self.folder / "bin/otool", OTOOL)
        (self.folder / "tools").symlink_to(SOURCE / "tools")
        self.bundle.mkdir(parents=True)
        (self.bundle / "Contents/MacOS").mkdir(parents=True)
        self.assertNotEqual(self.run_step(step), 0, "there is no program at all")
        self.write(self.bundle / "Contents/Resources/Info.plist", "wants /usr/local/is/no/program\n")
        self.write(self.bundle / "Contents/MacOS/kivmenua",
                   SYSTEM + "looks in @executable_path/../Frameworks\nwants @rpath/QtCore.framework/Versions/A/QtCore\n")
        self.write(self.bundle / "Contents/MacOS/kivfetch", SYSTEM + "wants @executable_path/../Frameworks/libproxy.1.dylib\n")
        self.write(self.bundle / "Contents/Frameworks/QtCore.framework/Versions/A/QtCore",
                   "own name @rpath/QtCore\n" + SYSTEM)
        self.write(self.bundle / "Contents/Frameworks/libproxy.1.dylib",
                   "own name /opt/homebrew/lib/libproxy.1.dylib\nwants @loader_path/libpxbackend.dylib\n"
                   "wants @rpath/QtCore.framework/Versions/A/QtCore\n")
        self.write(self.bundle / "Contents/Frameworks/libpxbackend.dylib", SYSTEM)
        self.write(self.folder / "outside.dylib", SYSTEM)
        self.write(self.bundle.parent / "beside.dylib", SYSTEM)
        self.assertEqual(self.run_step(step), 0)

    def test_refuses_a_bundle_that_wants_a_library_of_the_machine_that_built_it(self):
        self.make_bundle()
        for library in ("/opt/homebrew/opt/gumbo-parser/lib/libgumbo.1.dylib", "/usr/local/lib/libproxy.1.dylib",
                        f"{self.folder}/outside.dylib", "@executable_path/../../../beside.dylib",
                        "@executable_path/../Frameworks/missing.dylib"):
            self.assertTrue(self.refuses("MacOS/kivfetch", f"{SYSTEM}wants {library}\n"), library)

    def test_refuses_a_library_outside_that_another_one_wants_beside_itself(self):
        self.make_bundle()
        for library in ("@loader_path/../../../beside.dylib", "@loader_path/missing.dylib"):
            self.assertTrue(self.refuses("Frameworks/libproxy.1.dylib", f"wants {library}\n"), library)

    def test_refuses_a_library_that_is_looked_for_outside(self):
        self.make_bundle()
        good = "looks in @executable_path/../Frameworks\n"
        self.assertFalse(self.refuses("MacOS/kivmenua", good))
        for folder in ("/opt/homebrew/lib", str(self.folder), "@executable_path/../../..", "@loader_path/../../.."):
            self.assertTrue(self.refuses("MacOS/kivmenua", f"{good}looks in {folder}\n"), folder)
        for library in ("@rpath/missing.dylib", "@rpath/../../../beside.dylib"):
            self.assertTrue(self.refuses("MacOS/kivmenua", f"{good}wants {library}\n"), library)
        (self.bundle / "Contents/Frameworks/link.dylib").symlink_to(self.folder / "outside.dylib")
        self.assertTrue(self.refuses("MacOS/kivmenua", f"{good}wants @rpath/link.dylib\n"), "a link that leads outside")

    START = "Start the agent, and end it"
    SAYS = "[ \"$QT_LOGGING_RULES\" != 'kiv.*=true' ] || echo 'kiv.agent: has started' >&2; : > said\n"

    FOR_EVER = "while :; do /bin/sleep 0.02; done\n"

    def status_with_agent(self, script):
        for name in ("said", "slept"):
            (self.folder / name).unlink(missing_ok=True)
        self.write(self.folder / "bin/sleep", SLEEP)
        self.write(self.bundle / "Contents/MacOS/kivmenua", "#!/bin/bash\n" + script)
        return self.run_step(self.START)

    def test_refuses_an_agent_that_does_not_start_or_not_end_in_order(self):
        self.assertEqual(self.status_with_agent("trap 'exit 0' TERM\n" + self.SAYS + self.FOR_EVER), 0)
        self.assertNotEqual(self.status_with_agent(self.SAYS + self.FOR_EVER), 0, "it is killed by the signal")
        self.assertNotEqual(self.status_with_agent("trap 'exit 3' TERM\n" + self.SAYS + self.FOR_EVER), 0)
        self.assertNotEqual(self.status_with_agent(": > said; exit 0\n"), 0, "it ends by itself")
        self.assertNotEqual(self.status_with_agent("trap 'exit 0' TERM\n: > said\n" + self.FOR_EVER), 0, "it never has started")

    def test_sends_no_signal_before_the_agent_has_started(self):
        waits = "until [ -e slept ] && [ \"$(wc -l < slept)\" -ge 3 ]; do /bin/sleep 0.02; done\n"
        self.assertEqual(self.status_with_agent(waits + "trap 'exit 0' TERM\n" + self.SAYS + self.FOR_EVER), 0)

    def test_waits_for_what_the_agent_says_once_signals_end_it_in_order(self):
        self.assertIn("'kiv.agent: has started'", SCRIPTS[self.START])
        self.assertRegex((SOURCE / "shell/main.cpp").read_text(encoding="utf-8"),
                         r"(?s)\n    const TerminationSignals \w+;.*\n    qCDebug\(agentLog, \"has started\"\);")


if __name__ == "__main__":
    unittest.main()
