"""Links between documents. Their check is green on the tree, and red for a seeded fault."""
import shutil
import unittest

from tests.tools.kiv.scratch_tree import SOURCE, Tree, run


@unittest.skipUnless(shutil.which("git"), "git lists the files")
class Links(unittest.TestCase):
    def test_those_of_the_tree_lead_somewhere(self):
        result = run("links.py", SOURCE)
        self.assertEqual((result.stdout, result.returncode), ("", 0))

    def test_a_file_that_is_not_there_is_named(self):
        with Tree({"A.md": "[there](docs/B.md) [gone](docs/C.md) [site](https://example.org/x)",
                   "docs/B.md": ""}) as root:
            result = run("links.py", root)
        self.assertEqual((result.stdout, result.returncode), ("A.md: docs/C.md: no such file\n", 1))

    def test_a_heading_that_is_not_there_is_named(self):
        with Tree({"A.md": "# One & two\n[here](#one--two) [gone](#three)"}) as root:
            result = run("links.py", root)
        self.assertEqual((result.stdout, result.returncode), ("A.md: #three: no such heading\n", 1))


if __name__ == "__main__":
    unittest.main()
