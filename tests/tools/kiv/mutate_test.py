"""./kiv mutate, on a tree of three files."""

import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[3]

TREE = {
    ".gitignore": "/build/",
    "CMakeLists.txt": """
        cmake_minimum_required(VERSION 3.25)
        project(toy LANGUAGES CXX)
        add_executable(toy_tests rules/Sum.cpp tests/SumTest.cpp)
        set_target_properties(toy_tests PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
        """,
    "CMakePresets.json": """{"version": 4, "configurePresets": [
        {"name": "dev", "generator": "Ninja", "binaryDir": "${sourceDir}/build/dev"}]}""",
    "rules/Sum.cpp": """
int sum(int a, int b)
{
    return a
        + b;
}
bool always() { return true; }
""",
    # Speaks as GoogleTest does.
    "tests/SumTest.cpp": """
#include <cstdio>
#include <cstring>
int sum(int, int);
#if 0
TEST(Sum, AddsTwoNumbers)
TEST(Sum, IsSkipped)
#endif
int main(int, char **arguments)
{
    const bool isSkipped = std::strstr(arguments[1], "IsSkipped");
    const bool isRight = sum(2, 1) == 3;
    std::printf("[ %s ] Sum.Test (0 ms)\\n", isSkipped ? " SKIPPED" : isRight ? "      OK" : " FAILED ");
    return isRight ? 0 : 1;
}
""",
}
ADDS = "toy_tests/Sum.AddsTwoNumbers"
KILLED = f"Sum.cpp\treturn a + b\treturn a - b\t{ADDS}"
SURVIVOR = f"Sum.cpp\treturn true\treturn false\t{ADDS}"


class Tree(tempfile.TemporaryDirectory):
    def __init__(self, *mutants):
        super().__init__()
        for name, text in (TREE | {"tests/mutants.tsv": "# Sums\n" + "\n".join(mutants) + "\n"}).items():
            path = pathlib.Path(self.name, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        for command in (["init", "--quiet"], ["add", "--all"]):
            subprocess.run(["git", *command], cwd=self.name, check=True)


def run(*arguments):
    return subprocess.run([sys.executable, "-B", SOURCE / "tools/kiv/mutate.py", *arguments], text=True,
                          capture_output=True, check=False, timeout=100)


@unittest.skipUnless(shutil.which("git"), "git lists the files")
class Mutate(unittest.TestCase):
    def assertEnds(self, result, last, status):
        self.assertEqual(((result.stdout + result.stderr).splitlines()[-1:], result.returncode), ([last], status),
                         result.stdout + result.stderr)

    def test_only_what_a_test_notices_is_killed_and_the_tree_stays_as_it_was(self):
        with Tree(KILLED, SURVIVOR, f"Sum.cpp\treturn a + b\treturn c\t{ADDS}",
                  f"Sum.cpp\treturn a + b\t__builtin_abort(); return a\t{ADDS}") as root:
            result = run(root)
            self.assertEnds(result, "2 of 4 mutants killed", 1)
            self.assertEqual([line.split("\t")[4] for line in
                              pathlib.Path(root, "build/mutants.tsv").read_text(encoding="utf-8").splitlines()[1:]],
                             ["killed: failed", f"survived {ADDS}", "does not build", "killed: crashed, SIGABRT"])
            self.assertEqual(pathlib.Path(root, "rules/Sum.cpp").read_text(encoding="utf-8"), TREE["rules/Sum.cpp"])
            self.assertEnds(run(root, "1"), "1 of 1 mutants killed", 0)

    def test_a_test_that_is_red_without_a_mutant_proves_nothing(self):
        with Tree(KILLED) as root:
            pathlib.Path(root, "rules/Sum.cpp").write_text("int sum(int a, int b) { return a + b + 1; }")
            self.assertEnds(run(root), f"{ADDS}: failed", 1)

    def test_nor_does_one_that_is_skipped(self):
        with Tree(KILLED.replace("AddsTwoNumbers", "IsSkipped")) as root:
            self.assertEnds(run(root), "toy_tests/Sum.IsSkipped: skipped, or no test at all", 1)

    def test_check_names_what_no_longer_applies_and_builds_nothing(self):
        with Tree(KILLED, f"Gone.cpp\ta\tb\t{ADDS}", f"Sum.cpp\treturn a * b\tb\t{ADDS}", f"Sum.cpp\tint\tb\t{ADDS}",
                  "Sum.cpp\tint a\tint b\ttoy_tests/Sum.Subtracts", f"Sum.cpp\tint a\tint a\t{ADDS}") as root:
            result = run("--check", root)
            self.assertFalse(pathlib.Path(root, "build").exists())
        self.assertEqual(result.stdout.splitlines(), [
            "tests/mutants.tsv:3: Gone.cpp: no such file",
            "tests/mutants.tsv:4: rules/Sum.cpp: no longer there: return a * b",
            "tests/mutants.tsv:5: rules/Sum.cpp: more than once: int",
            "tests/mutants.tsv:6: no such test: toy_tests/Sum.Subtracts",
            "tests/mutants.tsv:7: rules/Sum.cpp: changes nothing: int a"])
        self.assertEqual(result.returncode, 1)


if __name__ == "__main__":
    unittest.main()
