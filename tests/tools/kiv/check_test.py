"""The checks of ./kiv check that are our own are green on the tree, and red for a seeded fault."""
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).parents[3]


def run(check, root):
    return subprocess.run([sys.executable, "-B", SOURCE / "tools/kiv" / check, root], capture_output=True, text=True,
                          check=False)


class Tree(tempfile.TemporaryDirectory):
    """A git tree of the given files."""

    def __init__(self, files):
        super().__init__()
        for name, text in files.items():
            path = pathlib.Path(self.name, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        for command in (["init", "--quiet"], ["add", "--all"]):
            subprocess.run(["git", *command], cwd=self.name, check=True)


@unittest.skipUnless(shutil.which("git"), "git lists the files")
class Links(unittest.TestCase):
    def test_those_of_the_tree_lead_somewhere(self):
        self.assertEqual((run("links.py", SOURCE).stdout, run("links.py", SOURCE).returncode), ("", 0))

    def test_a_file_that_is_not_there_is_named(self):
        with Tree({"A.md": "[there](docs/B.md) [gone](docs/C.md) [site](https://example.org/x)", "docs/B.md": ""}) as root:
            result = run("links.py", root)
        self.assertEqual((result.stdout, result.returncode), ("A.md: docs/C.md: no such file\n", 1))

    def test_a_heading_that_is_not_there_is_named(self):
        with Tree({"A.md": "# One & two\n[here](#one--two) [gone](#three)"}) as root:
            result = run("links.py", root)
        self.assertEqual((result.stdout, result.returncode), ("A.md: #three: no such heading\n", 1))


@unittest.skipUnless(shutil.which("git"), "git lists the files")
class Sizes(unittest.TestCase):
    def test_those_of_the_tree_are_within_the_limits(self):
        self.assertEqual((run("sizes.py", SOURCE).stdout, run("sizes.py", SOURCE).returncode), ("", 0))

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


@unittest.skipUnless(shutil.which("git"), "git lists the files")
class ReservedWords(unittest.TestCase):
    def test_all_stand_in_the_tree_as_others_know_them(self):
        self.assertEqual((run("reserved_words.py", SOURCE).stdout, run("reserved_words.py", SOURCE).returncode), ("", 0))

    def test_one_that_is_gone_is_named(self):
        with Tree({"shell/A.cpp": "void f();"}) as root:
            result = run("reserved_words.py", root)
        self.assertIn("nowhere any more: recieveNotifications\n", result.stdout)
        self.assertEqual(result.returncode, 1)

    def test_one_that_was_put_right_is_named_with_its_place(self):
        with Tree({"shell/A.cpp": "int a;\nvoid receive" + "Notifications();"}) as root:
            result = run("reserved_words.py", root)
        self.assertIn("shell/A.cpp:2:", result.stdout)

    def test_a_name_of_the_product_outside_its_header_is_named_with_its_place(self):
        with Tree({"menu/A.cpp": '#include "menu/Kivune.h"\n// The "Kivune" of old.\nint a;\nauto t = u"The Kivune menu";',
                   "notify/queue/B.cpp": 'auto folder = "com.tamborel.other"; // of "Kivune"',
                   "menu/ProductTexts.h": 'auto t = u"Kivune";', "tests/C.cpp": 'auto t = u"Kivune";'}) as root:
            result = run("reserved_words.py", root)
        strewn = [line for line in result.stdout.splitlines() if line.startswith(("menu/", "notify/", "tests/"))]
        self.assertEqual(strewn, ['menu/A.cpp:4: auto t = u"The Kivune menu";',
                                  'notify/queue/B.cpp:1: auto folder = "com.tamborel.other"; // of "Kivune"'])


if __name__ == "__main__":
    unittest.main()
