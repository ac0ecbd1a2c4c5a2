"""What the page of figures says of where they are from."""

import pathlib
import subprocess
import unittest

from bench.session import machine

SOURCE = pathlib.Path(__file__).resolve().parents[3]


class Machine(unittest.TestCase):
    def test_tells_the_tree_that_was_measured(self):
        asked = subprocess.run(["git", "rev-parse", "--short", "HEAD"], cwd=SOURCE, capture_output=True, text=True,
                               check=False)
        tree = asked.stdout.strip() or "no commit"
        self.assertRegex(machine.facts()[0], rf"^Run of \d+ \w+ \d+, of the tree at {tree}( with changes)?\.$")


if __name__ == "__main__":
    unittest.main()
