"""Which service tool an agent runs that nobody has built for another one."""

import json
import pathlib
import re
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[2]


class ServiceTool(unittest.TestCase):
    def test_is_the_installed_one_unless_the_build_says_otherwise(self):
        default = re.search(r'^set\(KIV_SERVICE_TOOL "([^"]*)" CACHE', (SOURCE / "CMakeLists.txt").read_text(), re.M)
        self.assertEqual(default[1], "/usr/sbin/kivservice")

    def test_is_that_in_what_is_installed(self):
        presets = {preset["name"]: preset
                   for preset in json.loads((SOURCE / "CMakePresets.json").read_text())["configurePresets"]}
        name = "release"
        while name:
            self.assertNotIn("KIV_SERVICE_TOOL", presets[name].get("cacheVariables", {}))
            name = presets[name].get("inherits")


if __name__ == "__main__":
    unittest.main()
