"""new_line_test.py COMPILE_COMMANDS: a kind of line that kivservice cannot send to the agent does not compile.

It used to be taken for the last kind that there is, which ends the agent.
"""
import json
import pathlib
import shlex
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[3]
HEADER = "tools/kivservice/ServiceLine.h"


def compiles_the_command(entry):
    """Whether it is the file itself that is compiled, or one that includes several of which it is one."""
    file = pathlib.Path(entry["directory"], entry["file"])
    name = "tools/kivservice/AttachCommand.cpp"
    return str(file).endswith(name) or file.name.startswith("unity_") and name in file.read_text(encoding="utf-8")


COMMAND = next(entry for entry in json.loads(pathlib.Path(sys.argv.pop(1)).read_text(encoding="utf-8"))
               if compiles_the_command(entry))


class NewLine(unittest.TestCase):
    def compile_with(self, kinds):
        """What the compiler says of the command when the lines have these kinds, and its status."""
        text = (SOURCE / HEADER).read_text(encoding="utf-8")
        known = "using Line = std::variant<"
        self.assertIn(known, text)
        with tempfile.TemporaryDirectory() as folder:
            header = pathlib.Path(folder, HEADER)
            header.parent.mkdir(parents=True)
            header.write_text(text.replace(known, "struct Unheard {\n};\n" + known + kinds), encoding="utf-8")
            words = shlex.split(COMMAND["command"])
            # Ahead of the tree's own.
            done = subprocess.run([words[0], "-I", folder, *words[1:], "-fsyntax-only"], cwd=COMMAND["directory"],
                                  capture_output=True, text=True, check=False)
        return done.stderr, done.returncode

    def test_the_kinds_that_there_are_compile(self):
        self.assertEqual(self.compile_with(""), ("", 0))

    def test_one_that_nobody_sends_does_not(self):
        errors, status = self.compile_with("Unheard, ")
        self.assertNotEqual(status, 0)
        self.assertIn("Unheard", errors)


if __name__ == "__main__":
    unittest.main()
