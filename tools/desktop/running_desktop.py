"""A private desktop that runs: X server, message bus and home."""

import os
import shutil
import subprocess
import tempfile

from tools.desktop import private_desktop
from tools.desktop.children import end


class RunningDesktop:
    """Up from its making until close(). Nothing in it reaches the desktop in which its maker runs. `beside` is another
    whose bus this one shares, as the sessions of one user do where a system has one bus for each."""

    def __init__(self, prefix, beside=None):
        self._work = tempfile.mkdtemp(prefix=prefix)
        self._started = []
        self._beside = beside
        self._display = ""
        self._bus = None
        try:
            self._display = self._start_server()
            if not beside:
                self._start_announcing(private_desktop.bus(self._work))
                self._bus = self._started[-1]
        except BaseException:
            self.close()
            raise

    def _start_server(self):
        """The display's name, once it takes clients."""
        return ":" + self._start_announcing(private_desktop.server(self._work))

    def _start_announcing(self, command):
        """Starts a program that prints a line when it is ready, and returns that line."""
        process = self.start(command, stdout=subprocess.PIPE, text=True)
        with process.stdout:
            return process.stdout.readline().strip()

    def environment(self):
        own = {"PATH": os.environ["PATH"], "LANG": "C.UTF-8"}
        of_desktop = private_desktop.environment(self._work, self._display)
        if self._beside:
            of_desktop["DBUS_SESSION_BUS_ADDRESS"] = self._beside.environment()["DBUS_SESSION_BUS_ADDRESS"]
        return own | of_desktop

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

    def has_name(self, name):
        """Whether that name is on the bus."""
        question = ["dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
                    "org.freedesktop.DBus.NameHasOwner", "string:" + name]
        answer = subprocess.run(question, env=self.environment(), capture_output=True, text=True, check=False)
        return "boolean true" in answer.stdout

    def close(self):
        for process in reversed(self._started):
            end(process)
        shutil.rmtree(self._work, ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()
