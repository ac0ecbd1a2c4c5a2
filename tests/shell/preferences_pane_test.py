"""What Server Preferences opens in an agent that nobody has built for another pane."""

import pathlib
import re
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[2]


class PreferencesPane(unittest.TestCase):
    def test_is_the_servers_on_macos_and_the_settings_program_elsewhere(self):
        defaults = re.search(r'^if\(APPLE\)\s+set\(KIV_PREFERENCES_PANE "([^"]*)" CACHE.*?'
                             r'^else\(\)\s+set\(KIV_PREFERENCES_PANE "([^"]*)" CACHE',
                             (SOURCE / "CMakeLists.txt").read_text(encoding="utf-8"), re.M | re.S)
        self.assertEqual(defaults.groups(), ("/Library/PreferencePanes/kivserverp.prefPane", "kivsettings"))


if __name__ == "__main__":
    unittest.main()
