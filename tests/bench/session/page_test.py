"""The page of the performance figures, from figures made up here. Run with the source tree as the working folder."""

import unittest

from bench.session import page
from bench.session.cost import wake_ups
from bench.session.figure import Figure
from bench.session.figures.functions import ratios_in


def rows_of(text):
    """The cells of each line of a page's tables."""
    return [[cell.strip() for cell in line.strip("|").split("|")] for line in text.splitlines() if line[:1] == "|"]


class PageTest(unittest.TestCase):
    def test_has_ours_first_and_an_empty_cell_for_who_was_not_measured(self):
        text = page.section("A session", [
            Figure("Memory", "kB", "At rest.", {"floor": 2400.4, "kivmenua": 2500.0}),
            Figure("Start", "ms", "", {"kivmenua": 24.36, "peer": 150}, digits=1),
        ])
        self.assertEqual(rows_of(text), [
            ["", "kivmenua", "floor", "peer", "at most", "met"],
            ["---", "---:", "---:", "---:", "---", "---"],
            ["Memory, kB", "2,500", "2,400", "", "", ""],
            ["Start, ms", "24.4", "", "150.0", "", ""],
        ])

    def test_says_how_each_was_measured(self):
        text = page.section("A session", [Figure("Memory", "kB", "At rest.", {"kivmenua": 1}),
                                          Figure("Start", "ms", "", {"kivmenua": 1})])
        self.assertIn("## A session\n", text)
        self.assertIn("- **Memory.** At rest.\n", text)
        self.assertNotIn("**Start.**", text)

    def test_tells_a_limit_that_is_met_from_one_that_is_not(self):
        values = {"kivmenua": 110, "floor": 100, "one": 120, "two": 105}
        met = Figure("Memory", "kB", "", values).require_times(1.15, "floor")
        missed = Figure("Start", "ms", "", values).require_times(1.15, "floor").require_below("each", ["one", "two"])
        self.assertEqual([row[-2:] for row in rows_of(page.section("", [met, missed]))[2:]],
                         [["1.15 x floor: 115", "yes"], ["1.15 x floor: 115; below each: 105", "**no**"]])
        self.assertTrue(met.met)
        self.assertFalse(missed.met)

    def test_counts_the_limit_itself_as_met_but_not_as_below(self):
        values = {"kivmenua": 10, "peer": 10}
        self.assertTrue(Figure("Menu", "ms", "", values).require("10 ms", 10).met)
        self.assertFalse(Figure("Menu", "ms", "", values).require_below("the peer", ["peer"]).met)

    def test_is_a_whole_page(self):
        text = page.page(["Run of today.", "Two cores."], [("A session", []), ("Pop-ups", [])])
        self.assertTrue(text.startswith("# What it costs\n"))
        self.assertIn("\nRun of today. Two cores.\n", text)
        self.assertLess(text.index("## A session"), text.index("## Pop-ups"))

    def test_ends_with_what_is_written_by_hand(self):
        text = page.page(["Run of today."], [("A session", [])], "## What is left\n\nA little.\n")
        self.assertLess(text.index("## A session"), text.index("## What is left"))
        self.assertTrue(text.endswith("A little.\n"))


class WakeUpTest(unittest.TestCase):
    def test_counts_threads_that_came_and_went(self):
        self.assertEqual(wake_ups({"1": 10, "2": 5, "3": 7}, {"1": 12, "2": 5, "4": 3}), 2 + 0 + 1 + 3)


class RatioTest(unittest.TestCase):
    def test_are_read_from_the_table_at_the_end_of_a_program_s_output(self):
        output = """ours    12 ns    12 ns
                             compared with                  median    least     most    limit
ours                         openSsl                          0.81     0.70     0.87     3.00
ours                         copy                            30.55    26.86    34.96
ours                         slower                           4.00     3.90     4.10     3.00  too slow
"""
        self.assertEqual(ratios_in(output), [("ours", "openSsl", 0.81, 3.0), ("ours", "copy", 30.55, None),
                                             ("ours", "slower", 4.0, 3.0)])


if __name__ == "__main__":
    unittest.main()
