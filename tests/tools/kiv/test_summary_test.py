"""The line with which ./kiv test ends."""

import pathlib
import subprocess
import sys
import tempfile
import unittest
from xml.sax.saxutils import escape

SOURCE = pathlib.Path(__file__).resolve().parents[3]


def program(name, output="", status="run", inside=""):
    return f'<testcase name="{name}" status="{status}">{inside}<system-out>{escape(output)}</system-out></testcase>'


def test_summary(*arguments):
    return subprocess.run([sys.executable, "-B", SOURCE / "tools/kiv/test_summary.py", *arguments], text=True,
                          capture_output=True, timeout=60)


def results(folder, name, programs):
    file = pathlib.Path(folder) / name
    file.write_text("<testsuite>" + "".join(programs) + "</testsuite>")
    return file


class TestSummary(unittest.TestCase):
    def summary(self, *programs, again=None, status=0):
        with tempfile.TemporaryDirectory() as folder:
            first = results(folder, "first.xml", programs)
            second = results(folder, "second.xml", again) if again else pathlib.Path(folder) / "none.xml"
            done = test_summary(first, second)
        self.assertEqual((done.returncode, done.stderr), (status, ""))
        return done.stdout.split("\n")[1:-1]

    def test_the_tests_in_a_program_are_counted(self):
        self.assertEqual(self.summary(program("A", "[ RUN      ] S.One\n[       OK ] S.One (0 ms)\n"
                                                   "[ RUN      ] S/T.Two/0\n[       OK ] S/T.Two/0 (12 ms)\n")),
                         ["2 passed, 0 failed, 0 skipped"])

    def test_a_program_without_tests_in_it_is_one(self):
        self.assertEqual(self.summary(program("A", "all is well\n"), program("B")), ["2 passed, 0 failed, 0 skipped"])

    def test_what_python_skips_is_counted_beside_its_program_unless_that_is_all(self):
        skipped = "test_a (__main__.A) ... skipped 'not installed: git'\n"
        self.assertEqual(self.summary(program("A", f"{skipped}test_b (__main__.A) ... ok\n{skipped}\nOK (skipped=2)\n"),
                                      program("B", f"{skipped}\nOK (skipped=1)\n")),
                         ["1 passed, 0 failed, 3 skipped (3: not installed: git)"])

    def test_failures_are_named(self):
        self.assertEqual(self.summary(program("A", "[  FAILED  ] S.One (3 ms)\n[       OK ] S.Two (0 ms)\n"
                                                   "[  FAILED  ] S.One\n", "fail"),
                                      program("B", "no", "fail")),
                         ["failed: S.One", "failed: B", "1 passed, 2 failed, 0 skipped"])

    def test_a_failure_with_a_parameter_is_named_without_it(self):
        self.assertEqual(self.summary(program("A", "[  FAILED  ] S/T.Two/0, where GetParam() = 4 (1 ms)\n", "fail")),
                         ["failed: S/T.Two/0", "0 passed, 1 failed, 0 skipped"])

    def test_a_crash_after_tests_that_passed_is_a_failure(self):
        self.assertEqual(self.summary(program("A", "[       OK ] S.One (0 ms)\n[ RUN      ] S.Two\n", "fail")),
                         ["failed: A", "1 passed, 1 failed, 0 skipped"])

    def test_an_end_with_status_zero_before_the_last_test_is_a_failure_that_ctest_has_not_seen(self):
        begun = "[==========] Running 2 tests from 1 test suite.\n[       OK ] S.One (0 ms)\n"
        rest = "[       OK ] S.Two (0 ms)\n[==========] 2 tests from 1 test suite ran. (3 ms total)\n"
        self.assertEqual(self.summary(program("A", begun + "[ RUN      ] S.Two\n"), program("B", begun + rest), status=1),
                         ["ended before its last test, with status 0: A", "3 passed, 1 failed, 0 skipped"])
        self.assertEqual(self.summary(program("A", begun + rest)), ["2 passed, 0 failed, 0 skipped"])
        self.assertEqual(self.summary(program("B", "[  FAILED  ] S.Two (0 ms)\n", "fail"),
                                      again=[program("B", begun)], status=1)[0],
                         "ended before its last test, with status 0: B")

    def test_what_could_not_start_is_a_failure(self):
        self.assertEqual(self.summary(program("A", "", "notrun",
                                              '<skipped message="Unable to find executable"/>')),
                         ["failed: A", "0 passed, 1 failed, 0 skipped"])

    def test_each_reason_for_skipping_is_given_once(self):
        skipped = "[ RUN      ] S.{0}\n/a/b.cpp:12: Skipped\nno disk of its own\n\n[  SKIPPED ] S.{0} (0 ms)\n"
        self.assertEqual(self.summary(program("A", skipped.format("One") + skipped.format("Two") +
                                              "[ RUN      ] S.Three\n[  SKIPPED ] S.Three (0 ms)\n")),
                         ["0 passed, 0 failed, 3 skipped (2: no disk of its own; 1: no reason given)"])

    def test_a_workaround_whose_time_is_over_is_named(self):
        self.assertEqual(self.summary(program("A", "[ RUN      ] S.One\n"
                                                   "workaround One: no longer needed with Qt 6.11.0\n"
                                                   "[       OK ] S.One (1 ms)\n[ RUN      ] S.Two\n"
                                                   "workaround Two: still needed with Qt 6.11.0\n"
                                                   "[       OK ] S.Two (1 ms)\n")),
                         ["workaround no longer needed: One with Qt 6.11.0", "2 passed, 0 failed, 0 skipped"])

    def test_a_program_that_skips_itself(self):
        self.assertEqual(self.summary(program("A", "", "notrun", '<skipped message="SKIP_RETURN_CODE=77"/>'),
                                      program("B", "", "disabled", '<skipped message="Disabled"/>')),
                         ["0 passed, 0 failed, 2 skipped (1: A says so; 1: disabled)"])

    def test_what_passes_when_tested_again_is_named(self):
        failed = program("A", "[  FAILED  ] S.One (3 ms)\n[       OK ] S.Two (0 ms)\n", "fail")
        passed = program("A", "[       OK ] S.One (3 ms)\n[       OK ] S.Two (0 ms)\n")
        self.assertEqual(self.summary(failed, program("B"), again=[passed]),
                         ["3 passed, 0 failed, 0 skipped; 1 passed only when tested again: S.One"])

    def test_what_fails_when_tested_again_has_failed_once(self):
        failed = program("A", "[  FAILED  ] S.One (3 ms)\n[       OK ] S.Two (0 ms)\n", "fail")
        self.assertEqual(self.summary(failed, again=[failed]), ["failed: S.One", "1 passed, 1 failed, 0 skipped"])

    def test_what_fails_in_another_way_when_tested_again_has_failed_twice(self):
        failed = program("A", "[  FAILED  ] S.One (3 ms)\n", "fail")
        self.assertEqual(self.summary(failed, again=[program("A", "", "fail")]),
                         ["failed: S.One", "failed: A", "0 passed, 2 failed, 0 skipped"])

    def test_few_failures_are_three_programs(self):
        with tempfile.TemporaryDirectory() as folder:
            for count, few in ((1, True), (3, True), (4, False)):
                file = results(folder, "results.xml", [program(str(i), "", "fail") for i in range(count)])
                self.assertEqual(test_summary("--few-failures", file).returncode == 0, few)


if __name__ == "__main__":
    unittest.main()
