"""The rules about what is right on a desktop, from tables. Run with the source tree as the working folder."""

import unittest

from tests.desktops.support import rules
from tests.desktops.support.rules import Box

SCREEN = Box(0, 0, 1280, 800)
TOP = Box(0, 0, 1280, 24)
BOTTOM = Box(0, 760, 1280, 40)


class BoxTest(unittest.TestCase):
    def test_grows_as_far_as_there_is_room(self):
        self.assertEqual(Box(5, 700, 20, 95).grown(10, SCREEN), Box(0, 690, 35, 110))

    def test_overlaps_only_what_has_a_pixel_in_common(self):
        for other, overlaps in ((Box(19, 19, 5, 5), True), (Box(20, 0, 5, 20), False), (Box(0, 20, 20, 1), False),
                                (Box(-5, 0, 5, 20), False), (Box(0, -5, 20, 5), False)):
            self.assertEqual(Box(0, 0, 20, 20).overlaps(other), overlaps, other)

    def test_gap_is_the_longer_way_across_or_down(self):
        for other, gap in ((Box(0, 0, 9, 9), 0), (Box(20, 0, 5, 5), 0), (Box(30, 0, 5, 5), 10), (Box(0, 27, 5, 5), 7),
                           (Box(30, 27, 5, 5), 10), (Box(-15, 0, 5, 5), 10)):
            self.assertEqual(rules.gap(Box(0, 0, 20, 20), other), gap, other)

    def test_joins_what_lies_together_and_nothing_else(self):
        blocks = [Box(0, 0, 4, 4), Box(100, 0, 4, 4), Box(10, 0, 4, 4), Box(5, 5, 4, 4)]
        self.assertEqual(rules.clusters(blocks, 6), [Box(0, 0, 14, 9), Box(100, 0, 4, 4)])
        self.assertEqual(len(rules.clusters(blocks, 0)), 4)
        for reach, number in ((5, 2), (6, 1)):
            self.assertEqual(len(rules.clusters([Box(0, 0, 4, 4), Box(10, 0, 4, 4)], reach)), number)


class ItemTest(unittest.TestCase):
    def test_is_there_once(self):
        item = Box(10, 0, 22, 22)
        self.assertEqual(rules.count_fault([item]), "")
        self.assertEqual(rules.count_fault([]), "no item is seen")
        self.assertEqual(rules.count_fault([item, item]), "the item is seen 2 times")

    def test_is_in_a_panel(self):
        for item, fault in ((Box(1200, 2, 22, 20), ""), (Box(1200, 770, 22, 20), ""),
                            (Box(1258, 30, 22, 20), "the item is in no panel")):
            self.assertEqual(rules.panel_fault(item, [TOP, BOTTOM]), fault)

    def test_has_a_size_for_its_panel(self):
        for item, fault in ((Box(0, 1, 22, 20), ""), (Box(0, 0, 16, 15), ""),
                            (Box(0, 1, 11, 11), "it is tiny, 11 x 11 px"),
                            (Box(0, 1, 22, 13), "it is stretched or cut off, 22 x 13 px"),
                            (Box(0, 1, 30, 26), "it is larger than its panel, 30 x 26 px"),
                            (Box(0, 761, 42, 38), "")):
            self.assertEqual(rules.size_fault(item, [TOP, BOTTOM]), fault, item)


class MenuTest(unittest.TestCase):
    def test_opens_at_the_item(self):
        item = Box(1000, 0, 22, 22)
        for menu, fault in ((Box(1000, 24, 200, 300), ""), (Box(900, 62, 300, 300), ""),
                            (Box(1000, 63, 200, 300), "the menu opens 41 px from the item"),
                            (Box(0, 24, 200, 300), "the menu opens 800 px from the item")):
            self.assertEqual(rules.menu_fault(menu, item), fault, menu)


class PopUpTest(unittest.TestCase):
    def test_stands_in_the_top_right_corner(self):
        for pop_up, fault in ((Box(870, 30, 400, 100), ""),
                              (Box(871, 30, 400, 100), "it is 9 px from the right edge"),
                              (Box(870, 31, 400, 100), "it is 31 px from the top instead of 30")):
            self.assertEqual(rules.pop_up_fault(pop_up, SCREEN, [TOP, BOTTOM]), fault, pop_up)

    def test_stands_right_below_a_higher_panel(self):
        high = Box(0, 0, 1280, 44)
        for pop_up, fault in ((Box(870, 44, 400, 100), ""),
                              (Box(870, 50, 400, 100), "it is 50 px from the top instead of 44"),
                              (Box(870, 30, 400, 100), "it covers 400 x 14 px of a panel")):
            self.assertEqual(rules.pop_up_fault(pop_up, SCREEN, [high]), fault, pop_up)

    def test_covers_no_panel_at_the_side(self):
        self.assertEqual(rules.pop_up_fault(Box(870, 30, 400, 100), SCREEN, [Box(1240, 0, 40, 800)]),
                         "it covers 30 x 100 px of a panel")


if __name__ == "__main__":
    unittest.main()
