"""Words that others know, and names of the product. Its check is green on the tree, and red for a seeded fault."""
import shutil
import unittest

from tests.tools.kiv.scratch_tree import SOURCE, Tree, run


@unittest.skipUnless(shutil.which("git"), "git lists the files")
class ReservedWords(unittest.TestCase):
    def test_all_stand_in_the_tree_as_others_know_them(self):
        result = run("reserved_words.py", SOURCE)
        self.assertEqual((result.stdout, result.returncode), ("", 0))

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
        with Tree({"menu/A.cpp": '#include "menu/Kivune.h"\n// The "Kivune" of old.\nint a;\n'
                                 'auto t = u"The Kivune menu";',
                   "notify/queue/B.cpp": 'auto folder = "com.tamborel.other"; // of "Kivune"',
                   "platform/D.cpp": 'auto id = "kivmenua";', "menu/ProductTexts.h": 'auto t = u"Kivune";',
                   "tests/C.cpp": 'auto t = u"Kivune";'}) as root:
            result = run("reserved_words.py", root)
        folders = ("menu/", "notify/", "platform/", "tests/")
        strewn = [line for line in result.stdout.splitlines() if line.startswith(folders)]
        self.assertEqual(strewn, ['menu/A.cpp:4: auto t = u"The Kivune menu";',
                                  'notify/queue/B.cpp:1: auto folder = "com.tamborel.other"; // of "Kivune"',
                                  'platform/D.cpp:1: auto id = "kivmenua";'])


if __name__ == "__main__":
    unittest.main()
