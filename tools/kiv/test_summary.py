"""test_summary.py FILE: says how many tests passed, failed and were skipped, from what ctest --output-junit wrote.

A program of GoogleTest counts as the tests in it, any other program as one.
"""

import collections
import re
import sys
import xml.etree.ElementTree

OUTCOME = re.compile(r"\[ +(OK|FAILED|SKIPPED) +\] (\S+?)(?:, where .*)? \(\d+ ms\)$")
REASON = re.compile(r": Skipped$")


class Summary:
    def __init__(self):
        self.passed = 0
        self.failed = []  # names
        self.reasons = collections.Counter()  # of skipped tests

    def add_program(self, case):
        name = case.get("name")
        status = case.get("status")
        skipped = case.find("skipped")
        seen = self.add_lines(case.findtext("system-out") or "")
        if status == "disabled":
            self.reasons["disabled"] += 1
        elif status == "notrun" and skipped is not None and skipped.get("message", "").startswith("SKIP_"):
            self.reasons[f"{name} says so"] += 1
        elif status == "run" and not seen:
            self.passed += 1
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
            if line.startswith("["):
                reason = None
            elif REASON.search(line):
                reason = []
            elif reason is not None and line.strip():
                reason.append(line.strip())
        return seen

    def line(self):
        text = f"{self.passed} passed, {len(self.failed)} failed"
        if self.reasons:
            text += f", {self.reasons.total()} skipped ("
            text += "; ".join(f"{count}: {reason}" for reason, count in self.reasons.most_common()) + ")"
        return text


def main():
    summary = Summary()
    for case in xml.etree.ElementTree.parse(sys.argv[1]).getroot().iter("testcase"):
        summary.add_program(case)
    print()
    for name in summary.failed:
        print(f"failed: {name}")
    print(summary.line())


if __name__ == "__main__":
    main()
