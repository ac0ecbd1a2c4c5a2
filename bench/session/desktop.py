"""A desktop of a program's own: X server, message bus, home, and a panel that takes status items."""

import os
import secrets
import shutil
import struct
import subprocess
import tempfile

from bench.session.children import descendants, end, wait_until
from bench.session.watch import Watch


def _authority_entry(cookie):
    """An entry of an X authority file, Xau(3), for every display of this host."""
    def counted(text):
        return struct.pack(">H", len(text)) + text
    return b"\xff\xff" + counted(b"") + counted(b"") + counted(b"MIT-MAGIC-COOKIE-1") + counted(cookie)


class Desktop:
    """Up from its making until close(). Nothing in it reaches the desktop in which the measuring itself runs."""

    def __init__(self, place, panel=True):
        self.place = place
        self._work = tempfile.mkdtemp(prefix="bench-")
        self._started = []
        self.watch = None
        try:
            self._start_server()
            self._start_bus()
            self.watch = Watch(place.program("xwatch"), self.environment())
            if panel:
                self._start_panel()
        except BaseException:
            self.close()
            raise

    def _path(self, name):
        return os.path.join(self._work, name)

    def _start_server(self):
        with open(self._path("authority"), "wb") as file:
            file.write(_authority_entry(secrets.token_bytes(16)))
        # -rfbport -1: no TCP port at all (0 would be a port on every interface).
        self._server = self._start_announcing(
            "display", ["Xtigervnc", "-displayfd", "{}", "-auth", self._path("authority"), "-nolisten", "tcp",
                        "-SecurityTypes", "None", "-rfbport", "-1", "-rfbunixpath", self._path("rfb"),
                        "-geometry", "1280x800", "-depth", "24"])

    def _start_bus(self):
        os.mkdir(self._path("home"))
        os.mkdir(self._path("runtime"), 0o700)
        self._bus = self._start_announcing(
            "bus", ["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address={}",
                    "--address=unix:path=" + self._path("socket")])

    def _start_announcing(self, name, command):
        """Starts a program that writes a line to a descriptor when it is ready, and keeps that line."""
        reader, writer = os.pipe()
        command = [word.format(writer) for word in command]
        process = subprocess.Popen(command, env=self.environment(), pass_fds=[writer], stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self._started.append(process)
        os.close(writer)
        with os.fdopen(reader) as file:
            setattr(self, name, file.readline().strip())
        return process

    def _start_panel(self):
        self.panel = self.start(["tint2", "-c", self.place.source("resources/demo/tint2rc")])
        # It waits ten seconds or so for a window manager, of which xwatch has set the property that it looks for.
        wait_until(self.watch.tray, 30, "the panel")

    def environment(self):
        environment = {
            "PATH": os.environ["PATH"],
            "LANG": "C.UTF-8",
            "HOME": self._path("home"),
            "XDG_RUNTIME_DIR": self._path("runtime"),
            "XAUTHORITY": self._path("authority"),
            "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=" + self._path("no-system-bus"),
        }
        if hasattr(self, "display"):
            environment["DISPLAY"] = ":" + self.display
        if hasattr(self, "bus"):
            environment["DBUS_SESSION_BUS_ADDRESS"] = self.bus
        return environment

    def start(self, command, **options):
        """Starts a program in this desktop (subprocess.Popen), to be ended by end() or by close()."""
        options = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL} | options
        environment = self.environment() | options.pop("environment", {})
        process = subprocess.Popen(command, env=environment, **options)
        self._started.append(process)
        return process

    def end(self, process):
        end(process)
        self._started.remove(process)

    def home(self, name):
        return os.path.join(self._path("home"), name)

    def processes_of(self, process):
        """A program's processes: itself, those below it, and those that the bus was made to start."""
        return [process.pid] + descendants(process.pid) + descendants(self._bus.pid)

    def server_processes(self):
        """The X server's, the bus's and the panel's processes."""
        return [process.pid for process in self._started[:3]]

    def has_name(self, name):
        """Whether that name is on the bus."""
        question = ["dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
                    "org.freedesktop.DBus.NameHasOwner", "string:" + name]
        answer = subprocess.run(question, env=self.environment(), capture_output=True, text=True, check=False)
        return "boolean true" in answer.stdout

    def close(self):
        if self.watch:
            self.watch.close()
        for process in reversed(self._started):
            end(process)
        shutil.rmtree(self._work, ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()
