"""The line with which ./kiv test ends."""

import pathlib
import subprocess
import sys
import tempfile
import unittest
from xml.sax.saxutils import escape

SOURCE = pathlib.Path(__file__).resolve().parents[2]


def program(name, output="", status="run", inside=""):
    return f'<testcase name="{name}" status="{status}">{inside}<system-out>{escape(output)}</system-out></testcase>'


class TestSummary(unittest.TestCase):
    def summary(self, *programs):
        with tempfile.NamedTemporaryFile("w", suffix=".xml") as file:
            file.write("<testsuite>" + "".join(programs) + "</testsuite>")
            file.flush()
            done = subprocess.run([sys.executable, "-B", SOURCE / "tools/kiv/test_summary.py", file.name], text=True,
                                  capture_output=True, check=True, timeout=60)
        return done.stdout.split("\n")[1:-1]

    def test_the_tests_in_a_program_are_counted(self):
        self.assertEqual(self.summary(program("A", "[ RUN      ] S.One\n[       OK ] S.One (0 ms)\n"
                                                   "[ RUN      ] S/T.Two/0\n[       OK ] S/T.Two/0 (12 ms)\n")),
                         ["2 passed, 0 failed"])

    def test_a_program_without_tests_in_it_is_one(self):
        self.assertEqual(self.summary(program("A", "all is well\n"), program("B")), ["2 passed, 0 failed"])

    def test_failures_are_named(self):
        self.assertEqual(self.summary(program("A", "[  FAILED  ] S.One (3 ms)\n[       OK ] S.Two (0 ms)\n"
                                                   "[  FAILED  ] S.One\n", "fail"),
                                      program("B", "no", "fail")),
                         ["failed: S.One", "failed: B", "1 passed, 2 failed"])

    def test_a_failure_with_a_parameter_is_named_without_it(self):
        self.assertEqual(self.summary(program("A", "[  FAILED  ] S/T.Two/0, where GetParam() = 4 (1 ms)\n", "fail")),
                         ["failed: S/T.Two/0", "0 passed, 1 failed"])

    def test_a_crash_after_tests_that_passed_is_a_failure(self):
        self.assertEqual(self.summary(program("A", "[       OK ] S.One (0 ms)\n[ RUN      ] S.Two\n", "fail")),
                         ["failed: A", "1 passed, 1 failed"])

    def test_what_could_not_start_is_a_failure(self):
        self.assertEqual(self.summary(program("A", "", "notrun",
                                              '<skipped message="Unable to find executable"/>')),
                         ["failed: A", "0 passed, 1 failed"])

    def test_each_reason_for_skipping_is_given_once(self):
        skipped = "[ RUN      ] S.{0}\n/a/b.cpp:12: Skipped\nno disk of its own\n\n[  SKIPPED ] S.{0} (0 ms)\n"
        self.assertEqual(self.summary(program("A", skipped.format("One") + skipped.format("Two") +
                                              "[ RUN      ] S.Three\n[  SKIPPED ] S.Three (0 ms)\n")),
                         ["0 passed, 0 failed, 3 skipped (2: no disk of its own; 1: no reason given)"])

    def test_a_program_that_skips_itself(self):
        self.assertEqual(self.summary(program("A", "", "notrun", '<skipped message="SKIP_RETURN_CODE=77"/>'),
                                      program("B", "", "disabled", '<skipped message="Disabled"/>')),
                         ["0 passed, 0 failed, 2 skipped (1: A says so; 1: disabled)"])


if __name__ == "__main__":
    unittest.main()
