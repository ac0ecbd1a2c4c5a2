"""The page of the desktops, from a record made up here. Run with the source tree as the working folder."""

import unittest

from tests.desktops.support.page import page, pictures

QUESTIONS = {"once": "the item is there", "left": "a click opens the menu"}


def desktop(title, answers, **others):
    return {"title": title, "day": "1 May 2026", "tree": "the tree at abc", "versions": {}, "drawn_by": [], "remarks": "", "picture": "",
            "answers": answers} | others


def page_of(record):
    return page({"13": record}, QUESTIONS)


def rows_of(text):
    """The cells of each line of a page's tables."""
    return [[cell.strip() for cell in line.strip("|").split("|")] for line in text.splitlines() if line[:1] == "|"]


class PageTest(unittest.TestCase):
    def test_has_a_line_for_each_desktop_and_a_column_for_each_question(self):
        text = page_of({"one": desktop("One", {"once": ["yes", ""], "left": ["yes", ""]}),
                     "two": desktop("Two (2)", {"once": ["yes", ""]})})
        self.assertEqual(rows_of(text), [
            ["", "the item is there", "a click opens the menu"],
            ["---", "---", "---"],
            ["[One](#one)", "yes", "yes"],
            ["[Two (2)](#two-2)", "yes", ""],
        ])

    def test_leads_from_a_cell_to_its_reason(self):
        text = page_of({"one": desktop("One", {"once": ["no", "it is gone"], "left": ["no", "it is gone"]}),
                     "two": desktop("Two", {"once": ["cannot", "it hides them"], "left": ["yes", ""]})})
        self.assertEqual(rows_of(text)[2:], [["[One](#one)", "no (1)", "no (1)"], ["[Two](#two)", "cannot (2)", "yes"]])
        self.assertIn("\n1. One: it is gone.\n2. Two: it hides them.\n", text)

    def test_tells_of_each_desktop_what_was_run(self):
        text = page_of({"one": desktop("One", {}, versions={"one-panel": "1.2", "one-wm": "3"}, remarks="By itself.",
                                    drawn_by=["the agent", "the panel"], picture="images/desktops/one.png")})
        self.assertIn("### One\n\nRun on 1 May 2026, of the tree at abc, with one-panel 1.2, one-wm 3.\n", text)
        self.assertIn("The menu is drawn by the agent and by the panel.\nBy itself.\n", text)
        self.assertIn("![The menu in One](images/desktops/one.png)", text)

    def test_tells_what_the_screen_reader_says(self):
        text = page_of({"one": desktop("One", {}, said={"the item": "Kivune Menu button", "a pop-up": None})})
        self.assertIn("\nOrca says of the item “Kivune Menu button”, of a pop-up “”.\n", text)

    def test_has_a_part_for_each_debian_the_newest_first(self):
        text = page({"9": {"one": desktop("One", {"once": ["no", "it is old"]}, picture="images/desktops-9/one.png")},
                     "13": {"one": desktop("One", {"once": ["yes", ""]})}, "12": {}}, QUESTIONS)
        self.assertEqual([line for line in text.splitlines() if line.startswith("#")],
                         ["# Desktops", "## Debian 13", "### One", "## Debian 9", "### One on Debian 9"])
        self.assertEqual([row[:2] for row in rows_of(text) if "One" in row[0]],
                         [["[One](#one)", "yes"], ["[One](#one-on-debian-9)", "no (1)"]])
        self.assertIn("\n1. One: it is old.\n", text)
        self.assertIn("![The menu in One on Debian 9](images/desktops-9/one.png)", text)

    def test_has_folders_of_pictures_that_are_apart(self):
        self.assertEqual([pictures("13"), pictures("12")], ["images/desktops", "images/desktops-12"])

    def test_has_no_picture_and_no_packages_where_there_are_none(self):
        text = page_of({"one": desktop("One", {})})
        self.assertNotIn("![", text)
        self.assertTrue(text.endswith("### One\n\nRun on 1 May 2026, of the tree at abc.\n"))


if __name__ == "__main__":
    unittest.main()
