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
cat "$2"
"""
SYSTEM = "\t/usr/lib/libSystem.B.dylib (compatibility version 1.0.0, current version 1351.0.0)\n"


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

    def test_refuses_a_bundle_that_wants_a_library_of_the_machine_that_built_it(self):
        step = "Every library that is not the system's lies in the bundle"
        self.write(self.folder / "bin/file", FILE)
        self.write(self.folder / "bin/otool", OTOOL)
        self.assertNotEqual(self.run_step(step), 0, "there is no program at all")
        self.write(self.bundle / "Contents/Resources/Info.plist", "\t/usr/local/is/no/program\n")
        self.write(self.bundle / "Contents/MacOS/kivmenua", SYSTEM + "\t@executable_path/../Frameworks/libgumbo.1.dylib\n")
        self.assertEqual(self.run_step(step), 0)
        for library in ("/opt/homebrew/opt/gumbo-parser/lib/libgumbo.1.dylib", "/usr/local/lib/libproxy.1.dylib"):
            self.write(self.bundle / "Contents/MacOS/kivfetch", f"{SYSTEM}\t{library} (compatibility version 1.0.0)\n")
            self.assertNotEqual(self.run_step(step), 0, library)

    def test_refuses_an_agent_that_does_not_start_or_not_end_in_order(self):
        step = "Start the agent, and end it"
        agent = self.bundle / "Contents/MacOS/kivmenua"
        self.write(self.folder / "bin/sleep", "#!/bin/sh\nwhile [ ! -e started ]; do :; done\n")
        self.write(agent, "#!/bin/bash\ntrap 'exit 0' TERM\n: > started\nwhile :; do :; done\n")
        self.assertEqual(self.run_step(step), 0)
        self.write(agent, "#!/bin/bash\n: > started\nwhile :; do :; done\n")
        self.assertNotEqual(self.run_step(step), 0, "it is killed by the signal")
        self.write(agent, "#!/bin/sh\n: > started\nexit 1\n")
        self.assertNotEqual(self.run_step(step), 0)


if __name__ == "__main__":
    unittest.main()
