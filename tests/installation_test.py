"""What cmake --install makes: a tree that works wherever it is. Needs the source tree on PYTHONPATH.

    installation_test.py CMAKE BUILD
"""

import http.server
import os
import pathlib
import plistlib
import queue
import subprocess
import sys
import tempfile
import threading
import unittest
import urllib.parse

from tools.desktop import private_desktop

CMAKE = sys.argv.pop(1)
BUILD = sys.argv.pop(1)

AUTOSTART_GENERATOR = "/usr/lib/systemd/user-generators/systemd-xdg-autostart-generator"


class Feed(http.server.BaseHTTPRequestHandler):
    """Answers nothing of worth, and notes what was asked."""
    asked = queue.Queue()

    def do_GET(self):  # pylint: disable=invalid-name
        self.asked.put(urllib.parse.urlsplit(self.path))
        self.send_error(404)

    def log_message(self, *_):  # pylint: disable=arguments-differ
        pass


class InstallationTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()  # pylint: disable=consider-using-with
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.prefix = self.folder / "a prefix"

    def install(self, **environment):
        subprocess.run([CMAKE, "--install", BUILD, "--prefix", self.prefix], check=True, stdout=subprocess.DEVNULL,
                       env=os.environ | environment)

    def start(self, command, **environment):
        process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                   stdin=subprocess.DEVNULL, text=True, env=os.environ | environment)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def start_desktop(self):
        """A desktop with a tray, for which an agent waits; returns what is in the environment of its programs."""
        desktop = os.path.join(self.folder, "desktop")
        os.mkdir(desktop, 0o700)
        display = ":" + self.start(private_desktop.server(desktop)).stdout.readline().strip()
        environment = private_desktop.environment(desktop, display) | {"QT_QPA_PLATFORM": "xcb"}
        self.start(private_desktop.bus(desktop), **environment).stdout.readline()
        self.start(private_desktop.window_manager(desktop), **environment)
        self.start(private_desktop.panel(desktop), **environment)
        return environment

    def start_feed(self):
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Feed)
        thread = threading.Thread(target=server.serve_forever)
        thread.start()
        self.addCleanup(server.server_close)
        self.addCleanup(thread.join)
        self.addCleanup(server.shutdown)
        return f"http://127.0.0.1:{server.server_port}/feed"

    def test_each_program_is_where_it_is_looked_for(self):
        self.install()
        programs = {path.relative_to(self.prefix).as_posix() for folder in ("bin", "sbin", "libexec")
                    for path in (self.prefix / folder).rglob("*") if path.is_file()}
        self.assertEqual(programs, {"bin/kivmenua", "bin/kivsettings", "bin/kivshowmenu", "sbin/kivservice",
                                    "libexec/kivmenua/kivfetch"})
        for program in programs:
            self.assertTrue(os.access(self.prefix / program, os.X_OK), program)

    def test_all_of_it_goes_below_the_folder_of_a_packager(self):
        stage = self.folder / "stage"
        self.install(DESTDIR=str(stage))
        self.assertTrue((stage / self.prefix.relative_to("/") / "bin/kivmenua").exists())
        self.assertFalse(self.prefix.exists())

    def test_the_agent_finds_its_bundle_and_its_helper(self):
        self.install()
        information = self.prefix / "share/kivmenua/Info.plist"
        values = plistlib.loads(information.read_bytes())
        information.write_bytes(plistlib.dumps(values | {"KIVSupportMessages": self.start_feed(),
                                                         "KIVBuildVersion": "7.8.9"}))
        self.start([self.prefix / "bin/kivmenua"], **self.start_desktop())
        asked = Feed.asked.get(timeout=90)
        self.assertEqual(asked.path, "/feed")
        self.assertEqual(urllib.parse.parse_qs(asked.query)["version"], ["7.8.9"])

    @unittest.skipUnless(os.path.exists(AUTOSTART_GENERATOR), "no systemd here")
    def test_a_session_that_systemd_starts_has_the_agent_once(self):
        self.install()
        self.assertEqual(len(list(self.prefix.glob("etc/xdg/autostart/*.desktop"))), 1)
        units = self.folder / "units"
        units.mkdir()
        subprocess.run([AUTOSTART_GENERATOR, units, units, units], check=True, env={
            "HOME": str(self.folder), "PATH": f"{self.prefix}/bin", "XDG_CONFIG_HOME": str(units),
            "XDG_CONFIG_DIRS": f"{self.prefix}/etc/xdg"})
        started = [line for unit in units.glob("*.service") for line in unit.read_text().splitlines()
                   if line.startswith("ExecStart=")]
        self.assertEqual([line.rpartition("/")[2].rstrip("\"") for line in started], ["kivmenua"])

    def test_the_service_starts(self):
        self.install()
        result = subprocess.run([self.prefix / "sbin/kivservice", "help"], capture_output=True, text=True, check=True)
        self.assertIn("kivservice attach", result.stdout)


if __name__ == "__main__":
    unittest.main()
