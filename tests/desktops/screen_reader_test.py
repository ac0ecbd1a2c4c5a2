"""What a screen reader has said, from a log made up here. Run with the source tree as the working folder."""

import unittest

from tests.desktops.support.screen_reader import said_in

LOG = """09:01:14.683674 - SPEECH: Speak 'Screen reader on.' acss: {'established': False}
09:01:14.683681 - SPEECH OUTPUT: 'Screen reader on.' {'established': False}
09:01:15.683681 - SPEECH OUTPUT: 'alert It's here.\r
  In two lines.' {'established': False}
"""


class ScreenReaderTest(unittest.TestCase):
    def test_has_each_text_once_and_in_one_line(self):
        self.assertEqual(said_in(LOG), ["Screen reader on.", "alert It's here. In two lines."])


if __name__ == "__main__":
    unittest.main()
