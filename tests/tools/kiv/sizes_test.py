"""Sizes of files and folders. Their check is green on the tree, and red for a seeded fault."""
import shutil
import unittest

from tests.tools.kiv.scratch_tree import SOURCE, Tree, run


@unittest.skipUnless(shutil.which("git"), "git lists the files")
class Sizes(unittest.TestCase):
    def test_those_of_the_tree_are_within_the_limits(self):
        result = run("sizes.py", SOURCE)
        self.assertEqual((result.stdout, result.returncode), ("", 0))

    def test_the_largest_that_are_allowed_pass(self):
        with Tree({"a/A.cpp": "\n" * 400} | {f"b/{number}.h": "" for number in range(25)}) as root:
            result = run("sizes.py", root)
        self.assertEqual((result.stdout, result.returncode), ("", 0))

    def test_a_source_file_that_is_too_long_is_named(self):
        for name, begin in {"a/A.cpp": "\n", "a/a.bash": "\n", "a/a": "#!/bin/bash\n"}.items():
            with self.subTest(name), Tree({name: begin + "\n" * 400}) as root:
                result = run("sizes.py", root)
                self.assertEqual((result.stdout, result.returncode), (f"{name}: 401 lines, more than 400\n", 1))

    def test_a_folder_that_is_too_full_is_named(self):
        with Tree({f"a/{number}.h": "" for number in range(26)}) as root:
            result = run("sizes.py", root)
        self.assertEqual((result.stdout, result.returncode), ("a: 26 source files, more than 25\n", 1))

    def test_tests_and_what_is_no_source_do_not_count(self):
        with Tree({"tests/A.cpp": "\n" * 401, "a/A.md": "\n" * 401, "a/A.xml": "\n" * 401, "a/LICENSE": "\n" * 401} |
                  {f"tests/{number}.h": "" for number in range(26)} |
                  {f"b/{number}.xml": "" for number in range(26)}) as root:
            result = run("sizes.py", root)
        self.assertEqual((result.stdout, result.returncode), ("", 0))


if __name__ == "__main__":
    unittest.main()
