"""The page of the desktops, from a record made up here. Run with the source tree as the working folder."""

import unittest

from tests.desktops.support.page import page

QUESTIONS = {"once": "the item is there", "left": "a click opens the menu"}


def desktop(title, answers, **others):
    return {"title": title, "day": "1 May 2026", "tree": "the tree at abc", "versions": {}, "drawn_by": [], "remarks": "", "picture": "",
            "answers": answers} | others


def rows_of(text):
    """The cells of each line of a page's tables."""
    return [[cell.strip() for cell in line.strip("|").split("|")] for line in text.splitlines() if line[:1] == "|"]


class PageTest(unittest.TestCase):
    def test_has_a_line_for_each_desktop_and_a_column_for_each_question(self):
        text = page({"one": desktop("One", {"once": ["yes", ""], "left": ["yes", ""]}),
                     "two": desktop("Two (2)", {"once": ["yes", ""]})}, QUESTIONS)
        self.assertEqual(rows_of(text), [
            ["", "the item is there", "a click opens the menu"],
            ["---", "---", "---"],
            ["[One](#one)", "yes", "yes"],
            ["[Two (2)](#two-2)", "yes", ""],
        ])

    def test_leads_from_a_cell_to_its_reason(self):
        text = page({"one": desktop("One", {"once": ["no", "it is gone"], "left": ["no", "it is gone"]}),
                     "two": desktop("Two", {"once": ["cannot", "it hides them"], "left": ["yes", ""]})}, QUESTIONS)
        self.assertEqual(rows_of(text)[2:], [["[One](#one)", "no (1)", "no (1)"], ["[Two](#two)", "cannot (2)", "yes"]])
        self.assertIn("\n1. One: it is gone.\n2. Two: it hides them.\n", text)

    def test_tells_of_each_desktop_what_was_run(self):
        text = page({"one": desktop("One", {}, versions={"one-panel": "1.2", "one-wm": "3"}, remarks="By itself.",
                                    drawn_by=["the agent", "the panel"], picture="images/desktops/one.png")}, QUESTIONS)
        self.assertIn("## One\n\nRun on 1 May 2026, of the tree at abc, with one-panel 1.2, one-wm 3.\n", text)
        self.assertIn("The menu is drawn by the agent and by the panel.\nBy itself.\n", text)
        self.assertIn("![The menu in One](images/desktops/one.png)", text)

    def test_has_no_picture_and_no_packages_where_there_are_none(self):
        text = page({"one": desktop("One", {})}, QUESTIONS)
        self.assertNotIn("![", text)
        self.assertTrue(text.endswith("## One\n\nRun on 1 May 2026, of the tree at abc.\n"))


if __name__ == "__main__":
    unittest.main()
