"""Reads what ctest --output-junit wrote. A program of GoogleTest counts as the tests in it, any other program as one,
and what it skipped beside that.

test_summary.py FILE [AGAIN]        says how many tests passed, failed and were skipped. AGAIN, which need not be there,
                                    is about the programs that failed in FILE, which have been run once more.
                                    Before that it names those of our cures for others' bugs that the tests found to be
                                    of no use any more. It fails when one has failed of which ctest knows nothing: a
                                    program that ended with status 0 before its last test.
test_summary.py --few-failures FILE succeeds when so few programs failed that to run them once more is worth the time.
"""

import collections
import pathlib
import re
import sys
import xml.etree.ElementTree

OUTCOME = re.compile(r"\[ +(OK|FAILED|SKIPPED) +\] (\S+?)(?:, where .*)? \(\d+ ms\)$")
GONE = re.compile(r"workaround (\w+): no longer needed (with .*)$")
SKIPPED_BY_PYTHON = re.compile(r"\.\.\. skipped ['\"](.*)['\"]$", re.MULTILINE)
PASSED_BY_PYTHON = re.compile(r"\.\.\. ok$", re.MULTILINE)
REASON = re.compile(r": Skipped$")
FIRST = re.compile(r"\[=+\] Running \d+ tests? ", re.MULTILINE)
LAST = re.compile(r"\[=+\] \d+ tests? .* ran\.", re.MULTILINE)
FEW = 3


class Summary:
    def __init__(self):
        self.passed = 0
        self.passed_again = []  # names of those that failed at first
        self.failed = []  # names
        self.reasons = collections.Counter()  # of skipped tests
        self.broken_off = []  # names of programs
        self.gone = {}  # what workarounds are no longer needed with, by their names

    def add_program(self, case):
        name = case.get("name")
        status = case.get("status")
        skipped = case.find("skipped")
        output = case.findtext("system-out") or ""
        seen = self.add_lines(output)
        if status == "disabled":
            self.reasons["disabled"] += 1
        elif status == "notrun" and skipped is not None and skipped.get("message", "").startswith("SKIP_"):
            self.reasons[f"{name} says so"] += 1
        elif status == "run" and FIRST.search(output) and not LAST.search(output):
            self.broken_off.append(name)
        elif status == "run" and not seen:
            reasons = SKIPPED_BY_PYTHON.findall(output)
            self.reasons.update(reasons)
            self.passed += not reasons or PASSED_BY_PYTHON.search(output) is not None
        elif status != "run" and "FAILED" not in seen:
            # It did not start, took too long, crashed, or failed after its last test.
            self.failed.append(name)

    def add_lines(self, text):
        """Takes up the tests that the program says it ran, and returns their kinds of outcome."""
        seen = set()
        reason = None
        for line in text.splitlines():
            outcome = OUTCOME.match(line)
            if outcome:
                kind, name = outcome.groups()
                seen.add(kind)
                if kind == "OK":
                    self.passed += 1
                elif kind == "FAILED":
                    self.failed.append(name)
                else:
                    self.reasons[" ".join(reason or ["no reason given"])] += 1
            if gone := GONE.match(line):
                self.gone[gone[1]] = gone[2]
            if line.startswith("["):
                reason = None
            elif REASON.search(line):
                reason = []
            elif reason is not None and line.strip():
                reason.append(line.strip())
        return seen

    def add_second_run(self, again):
        """Takes up what became of the programs that had failed. A test counts as passed in either run."""
        self.gone |= again.gone
        self.broken_off += again.broken_off
        if not set(again.failed) <= set(self.failed):
            self.failed = list(dict.fromkeys(self.failed + again.failed))
            return
        self.passed_again = [name for name in self.failed if name not in again.failed]
        self.failed = again.failed
        self.passed += len(self.passed_again)

    def line(self):
        text = f"{self.passed} passed, {len(self.failed) + len(self.broken_off)} failed, {self.reasons.total()} skipped"
        if self.reasons:
            text += " ("
            text += "; ".join(f"{count}: {reason}" for reason, count in self.reasons.most_common()) + ")"
        if self.passed_again:
            text += f"; {len(self.passed_again)} passed only when tested again: " + ", ".join(self.passed_again)
        return text


def cases(path):
    return xml.etree.ElementTree.parse(path).getroot().iter("testcase")


def summary_of(path):
    summary = Summary()
    for case in cases(path):
        summary.add_program(case)
    return summary


def main():
    if sys.argv[1] == "--few-failures":
        return sum(case.get("status") == "fail" for case in cases(sys.argv[2])) <= FEW
    summary = summary_of(sys.argv[1])
    if len(sys.argv) > 2 and pathlib.Path(sys.argv[2]).exists():
        summary.add_second_run(summary_of(sys.argv[2]))
    print()
    for name in summary.failed:
        print(f"failed: {name}")
    for name in summary.broken_off:
        print(f"ended before its last test, with status 0: {name}")
    for workaround, version in summary.gone.items():
        print(f"workaround no longer needed: {workaround} {version}")
    print(summary.line())
    return not summary.broken_off


if __name__ == "__main__":
    sys.exit(not main())
