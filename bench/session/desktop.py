"""A desktop of a program's own: X server, message bus, home, and a panel that takes status items."""

import os
import shutil
import subprocess
import tempfile

from bench.session.children import descendants, end, wait_until
from bench.session.watch import Watch
from tools.desktop import private_desktop


class Desktop:
    """Up from its making until close(). Nothing in it reaches the desktop in which the measuring itself runs."""

    def __init__(self, place, panel=True, environment=None):
        self.place = place
        self._environment = environment or {}
        self._work = tempfile.mkdtemp(prefix="bench-")
        self._started = []
        self._display = ""
        self.watch = None
        try:
            self._display = ":" + self._start_announcing(private_desktop.server(self._work))
            self._start_announcing(private_desktop.bus(self._work))
            self._bus = self._started[-1]
            self.watch = Watch(place.program("xwatch"), self.environment())
            if panel:
                self._start_panel()
        except BaseException:
            self.close()
            raise

    def _start_announcing(self, command):
        """Starts a program that prints a line when it is ready, and returns that line."""
        process = self.start(command, stdout=subprocess.PIPE, text=True)
        with process.stdout:
            return process.stdout.readline().strip()

    def _start_panel(self):
        self.panel = self.start(private_desktop.panel(self._work))
        # It waits ten seconds or so for a window manager, of which xwatch has set the property that it looks for.
        wait_until(self.watch.tray, 30, "the panel")

    def environment(self):
        own = {"PATH": os.environ["PATH"], "LANG": "C.UTF-8"}
        return own | private_desktop.environment(self._work, self._display) | self._environment

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
        return os.path.join(self._work, "home", name)

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
