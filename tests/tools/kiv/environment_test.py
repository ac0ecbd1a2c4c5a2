"""Whoever starts a test starts it in the environment of tests/environment. environment_test.py BUILD"""

import json
import pathlib
import subprocess
import sys
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[3]
sys.path.insert(0, str(SOURCE / "tools/kiv"))
import mutate  # noqa: E402 pylint: disable=wrong-import-position

WANTED = [line for line in (SOURCE / "tests/environment").read_text(encoding="utf-8").splitlines() if line[0] != "#"]
BUILD = sys.argv.pop(1)


class Environment(unittest.TestCase):
    def test_has_neither_display_nor_bus(self):
        self.assertEqual({line for line in WANTED if "DISPLAY" in line or "BUS" in line},
                         {"DISPLAY=", "DBUS_SESSION_BUS_ADDRESS=disabled:",
                          "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nonexistent"})

    def test_is_that_of_every_test_of_ctest_that_needs_one(self):
        listed = subprocess.run(["ctest", "--test-dir", BUILD, "--show-only=json-v1"], capture_output=True, text=True,
                                check=True)
        of_google_test = [test for test in json.loads(listed.stdout)["tests"]
                          if any(argument.startswith("--gtest_filter=") for argument in test.get("command", []))]
        self.assertGreater(len(of_google_test), 50)
        for test in of_google_test:
            has = next(each["value"] for each in test["properties"] if each["name"] == "ENVIRONMENT")
            self.assertLessEqual(set(WANTED), set(has), test["name"])

    def test_is_that_of_soak_and_flood(self):
        shown = subprocess.run(["bash", "-c", "source ./kiv help >/dev/null && in_test_environment env"], cwd=SOURCE,
                               env={"PATH": "/usr/bin:/bin", "DISPLAY": ":7"}, capture_output=True, text=True,
                               check=True)
        self.assertLessEqual(set(WANTED), set(shown.stdout.splitlines()))

    def test_is_that_of_the_mutants(self):
        self.assertEqual([f"{name}={value}" for name, value in mutate.ENVIRONMENT.items()], WANTED)


if __name__ == "__main__":
    unittest.main()
