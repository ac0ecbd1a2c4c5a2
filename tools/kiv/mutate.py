"""mutate.py [--check] ROOT [NUMBER|FILE...]: breaks one rule at a time and requires that its tests notice.

The list is tests/mutants.tsv: a line for each mutant with the file, a text that stands in it once, what comes in its
place, and the tests that must go red; tabs lie between. A file is named by the end of its path, or by all of it. Any
space of the text stands for any white space of the file, so that neither a renamed folder nor a wrapped line takes a
mutant away. A test is PROGRAM/FILTER of GoogleTest, or the name of one of ctest's.

Works on a copy of the tree in build/mutate, whose build is kept for the next time. Without names all are tried; with
--check nothing is built, and what no longer applies to the tree is printed. build/mutants.tsv gets what came out. The
status is 0 when all are killed, or apply.
"""

import collections
import dataclasses
import fnmatch
import os
import pathlib
import re
import signal
import subprocess
import sys
import time

LIST = "tests/mutants.tsv"
PRESET = "dev"
TEST_TIMEOUT = 300  # seconds
NOT_OURS_TO_BREAK = ("tests/", "docs/", "bench/", "fuzz/")
DEFINED_TEST = re.compile(r"^(?:TEST|TEST_F|TEST_P|TYPED_TEST)\((\w+),\s*(\w+)\)", re.MULTILINE)
OUTCOME = re.compile(r"^\[ +(OK|FAILED|SKIPPED) +\] \S+.* \(\d+ ms\)$", re.MULTILINE)
# As ctest starts a test, with nothing of the caller's session.
ENVIRONMENT = dict(line.split("=", 1) for line in (pathlib.Path(__file__).parents[2] / "tests/environment").read_text(
    encoding="utf-8").splitlines() if not line.startswith("#"))


@dataclasses.dataclass
class Mutant:
    number: int
    line: int  # of the list
    file: str
    text: str
    change: str
    tests: list

    def pattern(self):
        return re.compile(r"\s+".join(re.escape(word) for word in self.text.split()))


def read_list(root):
    mutants = []
    for line, text in enumerate((root / LIST).read_text(encoding="utf-8").splitlines(), 1):
        if not text.strip() or text.startswith("#"):
            continue
        columns = text.split("\t")
        if len(columns) != 4 or not all(columns[i].strip() for i in (0, 1, 3)):
            sys.exit(f"{LIST}:{line}: not a file, a text, a change and the tests")
        mutants.append(Mutant(len(mutants) + 1, line, columns[0], columns[1], columns[2], columns[3].split()))
    return mutants


def listed_files(root):
    listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=root,
                            capture_output=True, text=True, check=True).stdout
    return [name for name in listed.split("\0") if name and (root / name).is_file()]


def place_of(mutant, root, files):
    """The one file and the one match in it; else the reason why there is none."""
    found = [name for name in files
             if ("/" + name).endswith("/" + mutant.file) and not name.startswith(NOT_OURS_TO_BREAK)]
    found = [mutant.file] if mutant.file in found else found
    if len(found) != 1:
        return None, f"{mutant.file}: " + ("more than one such file: " + " ".join(found) if found else "no such file")
    text = (root / found[0]).read_text(encoding="utf-8")
    matches = list(mutant.pattern().finditer(text))
    if len(matches) != 1:
        return None, f"{found[0]}: " + ("more than once: " if matches else "no longer there: ") + mutant.text
    if matches[0].group() == mutant.change:
        return None, f"{found[0]}: changes nothing: {mutant.text}"
    return (found[0], matches[0]), None


def unknown_tests(mutant, files, defined):
    for test in mutant.tests:
        program, _, patterns = test.partition("/")
        if not patterns:
            if not any(file.endswith(f"/{program.removeprefix('kiv_')}_test.py") for file in files):
                yield test
            continue
        for pattern in patterns.split(":"):
            # What comes before the suite's name of a test with parameters, and after the test's, is known at run time.
            pattern = re.sub(r"/\d+$", "", pattern).rpartition("/")[2]
            if not fnmatch.filter(defined, pattern):
                yield f"{program}/{pattern}"


def check(root, mutants):
    files = listed_files(root)
    defined = [f"{suite}.{name}" for file in files if file.endswith("Test.cpp")
               for suite, name in DEFINED_TEST.findall((root / file).read_text(encoding="utf-8"))]
    status = 0
    for mutant in mutants:
        _, obstacle = place_of(mutant, root, files)
        for problem in ([obstacle] if obstacle else []) + [f"no such test: {test}"
                                                           for test in unknown_tests(mutant, files, defined)]:
            print(f"{LIST}:{mutant.line}: {problem}")
            status = 1
    return status


class Copy:
    """A copy of the tree, in which things may be broken."""

    def __init__(self, root):
        self.root = root / "build" / "mutate"
        self.build = self.root / "build" / PRESET
        self.log = root / "build" / "mutate.log"
        self.files = listed_files(root)
        for name in self.files:
            content, copy = (root / name).read_bytes(), self.root / name
            if not copy.is_file() or copy.read_bytes() != content:  # Else it need not be built again.
                copy.parent.mkdir(parents=True, exist_ok=True)
                copy.write_bytes(content)
            copy.chmod((root / name).stat().st_mode & 0o777)
        kept = set(self.files)
        for file in list(self.root.rglob("*")):
            name = file.relative_to(self.root).as_posix()
            if not file.is_dir() and not name.startswith("build/") and name not in kept:
                file.unlink()

    def run(self, command):
        with open(self.log, "a", encoding="utf-8") as log:
            return subprocess.run(command, cwd=self.root, stdout=log, stderr=log, check=False).returncode == 0

    def make(self, tests):
        """False when something does not build."""
        programs = sorted({test.split("/")[0] for test in tests if "/" in test})
        return not programs or self.run(["ninja", "-C", self.build, *programs])

    def try_test(self, test):
        """How the test goes red; an empty text when it stays green, and None when it is no test."""
        program, _, patterns = test.partition("/")
        command = [self.build / "tests" / program, f"--gtest_filter={patterns}", "--gtest_fail_fast"] if patterns else \
            ["ctest", "--test-dir", self.build, "--no-tests=error", "-R", f"^{program}$"]
        process = subprocess.Popen(command, cwd=self.build / "tests", env=os.environ | ENVIRONMENT, text=True,
                                   errors="replace", stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   stderr=subprocess.STDOUT, start_new_session=True)
        try:
            output, _ = process.communicate(timeout=TEST_TIMEOUT)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.communicate()
            return "timed out"
        with open(self.log, "a", encoding="utf-8") as log:
            log.write(output)
        if process.returncode < 0:
            return f"crashed, {signal.Signals(-process.returncode).name}"
        if process.returncode > 0:
            return "failed"
        outcomes = collections.Counter(OUTCOME.findall(output))
        return "" if not patterns or (outcomes["OK"] and not outcomes["SKIPPED"]) else None


def verdict_on(mutant, tree):
    """What came of the mutant, and whether that is as it should be."""
    place, obstacle = place_of(mutant, tree.root, tree.files)
    if obstacle:
        return "does not apply", False
    file, match = tree.root / place[0], place[1]
    whole = match.string
    file.write_text(whole[:match.start()] + mutant.change + whole[match.end():], encoding="utf-8")
    try:
        if not tree.make(mutant.tests):
            return "does not build", False
        reds = [tree.try_test(test) for test in mutant.tests]
    finally:
        file.write_text(whole, encoding="utf-8")
    green = [test for test, red in zip(mutant.tests, reds) if not red]
    return (f"survived {' '.join(green)}", False) if green else ("killed: " + ", ".join(sorted(set(reds))), True)


def run(root, mutants):
    tree = Copy(root)
    tree.log.write_text("", encoding="utf-8")
    # Each file by itself, because little is built between two mutants.
    if not tree.run(["cmake", "--preset", PRESET, "-D", "CMAKE_UNITY_BUILD=OFF", "--log-level=WARNING"]):
        sys.exit(f"The copy cannot be configured; see {tree.log}")
    tests = sorted({test for mutant in mutants for test in mutant.tests})
    print(f"{len(tests)} tests without a mutant", flush=True)
    if not tree.make(tests):
        sys.exit(f"The copy does not build; see {tree.log}")
    wrong = {test: red for test in tests if (red := tree.try_test(test)) != ""}
    if wrong:
        sys.exit("\n".join(f"{test}: {red or 'skipped, or no test at all'}" for test, red in wrong.items()))

    killed = 0
    with open(root / "build" / "mutants.tsv", "w", encoding="utf-8") as table:
        table.write("number\tfile\ttext\tchange\tverdict\tseconds\n")
        # Those of one file together, so that little is built between them.
        for mutant in sorted(mutants, key=lambda each: (each.file, each.number)):
            start = time.monotonic()
            verdict, as_it_should_be = verdict_on(mutant, tree)
            seconds = time.monotonic() - start
            killed += as_it_should_be
            print(f"{mutant.number:4} {mutant.file:32} {verdict}, {seconds:.0f} s", flush=True)
            table.write("\t".join([str(mutant.number), mutant.file, mutant.text, mutant.change, verdict,
                                   f"{seconds:.1f}"]) + "\n")
            table.flush()
    print(f"{killed} of {len(mutants)} mutants killed")
    return 0 if killed == len(mutants) else 1


def main(arguments):
    only_check = "--check" in arguments
    names = [argument for argument in arguments if argument != "--check"]
    root, names = pathlib.Path(names[0]).resolve(), names[1:]
    mutants = read_list(root)
    for name in names:
        if not any(name in (str(mutant.number), mutant.file) for mutant in mutants):
            sys.exit(f"no such mutant: {name}")
    chosen = [mutant for mutant in mutants if not names or {str(mutant.number), mutant.file} & set(names)]
    return check(root, chosen) if only_check else run(root, chosen)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
