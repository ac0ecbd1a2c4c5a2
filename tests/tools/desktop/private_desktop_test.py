"""The parts of a private desktop, started as a program and as a module. Needs the source tree on PYTHONPATH."""

import os
import pathlib
import plistlib
import socket
import stat
import struct
import subprocess
import tempfile
import unittest

from tools.desktop import private_desktop

PROGRAM = private_desktop.__file__


def run(*arguments):
    return subprocess.run([PROGRAM, *map(str, arguments)], capture_output=True, text=True, check=False)


def cookie_in(authority):
    return pathlib.Path(authority).read_bytes()[-16:]


def takes(display, cookie):
    """Whether an X server takes a client with that cookie: the first byte of its answer."""
    name = b"MIT-MAGIC-COOKIE-1" if cookie else b""
    with socket.socket(socket.AF_UNIX) as client:
        client.connect("/tmp/.X11-unix/X" + display)
        client.sendall(struct.pack("<cxHHHHxx", b"l", 11, 0, len(name), len(cookie)) + name + b"\0" * (-len(name) % 4) +
                       cookie)
        return client.recv(1) == b"\1"


def ports_of(pid):
    """The TCP ports at which a process listens."""
    files = f"/proc/{pid}/fd"
    sockets = {os.readlink(os.path.join(files, name)) for name in os.listdir(files)}
    ports = []
    for table in ("tcp", "tcp6"):
        for row in pathlib.Path("/proc/net", table).read_text(encoding="ascii").splitlines()[1:]:
            words = row.split()
            if words[3] == "0A" and f"socket:[{words[9]}]" in sockets:
                ports.append(int(words[1].rpartition(":")[2], 16))
    return ports


class PrivateDesktopTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()  # pylint: disable=consider-using-with
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def path(self, name):
        return os.path.join(self.folder, name)

    def start(self, *arguments):
        """Starts a part; returns its process and the first line that it prints."""
        process = subprocess.Popen([PROGRAM, arguments[0], self.folder, *arguments[1:]], stdout=subprocess.PIPE,
                                   stderr=subprocess.DEVNULL, text=True)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process, process.stdout.readline().strip()

    def test_a_part_is_the_process_that_was_started(self):
        for part, program in (("server", "Xtigervnc"), ("bus", "dbus-daemon")):
            process, _ = self.start(part)
            self.assertEqual(pathlib.Path(f"/proc/{process.pid}/comm").read_text(encoding="utf-8").strip(), program)

    def test_the_x_server_takes_only_who_has_its_cookie(self):
        _, display = self.start("server")
        self.assertTrue(takes(display, cookie_in(self.path("authority"))))
        self.assertFalse(takes(display, bytes(16)))
        self.assertFalse(takes(display, b""))
        self.assertEqual(stat.S_IMODE(os.stat(self.path("authority")).st_mode), 0o600)

    def test_no_two_x_servers_have_the_same_cookie(self):
        private_desktop.server(self.folder)
        first = cookie_in(self.path("authority"))
        private_desktop.server(self.folder)
        self.assertNotEqual(cookie_in(self.path("authority")), first)

    def test_the_x_server_cannot_be_reached_over_a_network(self):
        process, display = self.start("server")
        self.assertTrue(display.isdigit())
        self.assertEqual(ports_of(process.pid), [])
        with socket.socket(socket.AF_UNIX) as viewer:
            viewer.connect(self.path("rfb"))
            self.assertEqual(viewer.recv(4), b"RFB ")

    def test_the_x_server_has_a_port_for_who_asks_for_one(self):
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            port = free.getsockname()[1]
        process, _ = self.start("server", "-localhost", "-rfbport", str(port))
        self.assertEqual(set(ports_of(process.pid)), {port})

    def test_the_bus_answers_where_the_environment_says(self):
        _, line = self.start("bus")
        address = private_desktop.environment(self.folder)["DBUS_SESSION_BUS_ADDRESS"]
        self.assertEqual(line.partition(",")[0], address)
        with socket.socket(socket.AF_UNIX) as client:
            client.connect(address.partition("=")[2])
            client.sendall(b"\0AUTH\r\n")
            self.assertEqual(client.recv(8), b"REJECTED")  # Followed by the ways in that it knows.

    def test_the_panel_has_its_tray_at_the_end_that_is_asked_for(self):
        as_it_is = pathlib.Path(private_desktop.PANEL).read_text(encoding="utf-8")
        for side, items in (("left", "SFTC"), ("right", "TFSC")):
            command = private_desktop.panel(self.folder, side)
            self.assertEqual(command, ["tint2", "-c", self.path("tint2rc")])
            text = pathlib.Path(self.path("tint2rc")).read_text(encoding="utf-8")
            self.assertIn(f"\npanel_items = {items}\n", text)
            self.assertEqual(sorted(text), sorted(as_it_is))

    def test_the_environment_is_of_this_desktop_alone(self):
        result = run("environment", self.folder, ":7")
        self.assertEqual(dict(line.split("=", 1) for line in result.stdout.splitlines()), {
            "DISPLAY": ":7",
            "XAUTHORITY": self.path("authority"),
            "DBUS_SESSION_BUS_ADDRESS": "unix:path=" + self.path("bus"),
            "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=" + self.path("no-system-bus"),
            "HOME": self.path("home"),
            "XDG_RUNTIME_DIR": self.path("runtime"),
        })
        self.assertFalse(os.path.exists(self.path("no-system-bus")))
        for name in ("home", "runtime"):
            self.assertEqual(stat.S_IMODE(os.stat(self.path(name)).st_mode), 0o700)

    def test_asking_for_the_environment_again_leaves_the_home_as_it_is(self):
        home = pathlib.Path(private_desktop.environment(self.folder)["HOME"])
        (home / "settings").write_text("mine", encoding="utf-8")
        private_desktop.environment(self.folder, ":8")
        self.assertEqual((home / "settings").read_text(encoding="utf-8"), "mine")

    def test_a_bundle_is_the_built_agent_with_other_values(self):
        build = pathlib.Path(self.path("build"))
        files = {"bin/kivmenua": b"as built", "tests/kivmenua": b"of a test", "libexec/kivmenua/kivfetch": b"fetch",
                 "bin/kivsettings": b"settings",
                 "share/kivmenua/statuson.tiff": b"picture",
                 "share/kivmenua/Info.plist": plistlib.dumps({"KIVSupportMessages": "http://far/",
                                                              "KIVBuildDate": "1"})}
        for name, content in files.items():
            (build / name).parent.mkdir(parents=True, exist_ok=True)
            (build / name).write_bytes(content)
        (build / "bin/kivmenua").chmod(0o755)
        for program in ("bin/kivmenua", "tests/kivmenua"):
            copy = pathlib.Path(self.path("of " + program.replace("/", " ")))
            result = run("bundle", copy, build, program, "KIVSupportMessages=http://near/?a=b&c", "KIVPrivateLabel=")
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertEqual((copy / "bin/kivmenua").read_bytes(), files[program])
            self.assertEqual(os.access(copy / "bin/kivmenua", os.X_OK), program == "bin/kivmenua")
            self.assertEqual((copy / "libexec/kivmenua/kivfetch").read_bytes(), b"fetch")
            self.assertEqual((copy / "bin/kivsettings").read_bytes(), b"settings")
            self.assertEqual((copy / "share/kivmenua/statuson.tiff").read_bytes(), b"picture")
            self.assertEqual(plistlib.loads((copy / "share/kivmenua/Info.plist").read_bytes()),
                             {"KIVSupportMessages": "http://near/?a=b&c", "KIVBuildDate": "1", "KIVPrivateLabel": ""})

    def test_what_it_does_not_know_is_an_error(self):
        for arguments in ((), ("server",), ("screen", self.folder), ("bundle", self.folder)):
            result = run(*arguments)
            self.assertEqual((result.returncode, result.stdout), (1, ""))
            self.assertIn("private_desktop.py PART FOLDER", result.stderr)


if __name__ == "__main__":
    unittest.main()
