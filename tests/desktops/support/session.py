"""A session of a described desktop with the agent in it, the service at the other end of its link, and whoever works
pointer and keyboard."""

import os
import pathlib
import pwd
import re
import shutil
import subprocess
import time

from tests.desktops.support import pictures
from tests.desktops.support.windows import Windows
from tools.desktop import private_desktop
from tools.desktop.running_desktop import RunningDesktop

ALLOWED = "actions 32791 32792 32793 32794 32795 32796"
SHOWN, ACTIVE = 2, 4


class Session(RunningDesktop):
    def __init__(self, description, build, beside=None):
        self.description = description
        self.build = pathlib.Path(build)
        self._running = {}
        super().__init__("desktop-", beside)
        try:
            self.windows = self._connect()
            self._start_desktop()
        except BaseException:
            self.close()
            raise

    def environment(self):
        software = {"LIBGL_ALWAYS_SOFTWARE": "1", "NO_AT_BRIDGE": "1", "GSETTINGS_BACKEND": "keyfile",
                    "XDG_SESSION_TYPE": "x11", "XDG_CONFIG_DIRS": "/etc/xdg"}
        return super().environment() | software | self.description.environment

    def agents_environment(self):
        own = {"DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.folder('own/bus')}"} if self.description.has_own_bus else {}
        return self.environment() | own

    def folder(self, name=""):
        return pathlib.Path(self._work, name)

    def _start_desktop(self):
        for name, text in self.description.files.items():
            file = pathlib.Path(self.home(name))
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text(text, encoding="utf-8")
        for command in self.description.setup:
            self.run(*command)
        for name in self.description.programs:
            self.start_program(name)
        self._wait_for_panel()

    def _connect(self):
        # The library knows only cookies that name the host.
        self.run("xhost", "+si:localuser:" + pwd.getpwuid(os.getuid()).pw_name)
        self.run("xsetroot", "-solid", "#3b5b76")
        return Windows(self.environment())

    def panels(self):
        return [*self.windows.panels(), *self.description.bars]

    def run(self, *command, environment=None):
        return subprocess.run(command, env=environment or self.environment(), capture_output=True, text=True, check=False,
                              timeout=30)

    def logged(self, name, command, **options):
        """Starts a program whose output goes into the file of that name."""
        with open(self.folder(name + ".log"), "ab") as log:
            return self.start(command, stdout=log, stderr=log, **options)

    def log(self, name):
        return self.folder(name + ".log").read_text(encoding="utf-8", errors="replace")

    def start_program(self, name):
        self._running[name] = self.logged(name, self.description.programs[name])
        if name == "window-manager": # Some panels do not wait for it.
            self.wait(self.windows.are_managed, 20, "the window manager")

    def kill_panel(self):
        for name in self.description.panel:
            process = self._running.pop(name)
            process.kill()
            process.wait()
            self.end(process)

    def start_panel(self):
        for name in self.description.panel:
            self.start_program(name)
        self._wait_for_panel()

    def _wait_for_panel(self):
        if self.description.panel or self.description.first_keys:
            self.wait(self.panels, 40, "the panel")
            self.still_picture()
        if self.description.first_keys:
            self.keys(*self.description.first_keys)
            self.still_picture()

    def start_agent(self):
        bundle = self.folder("bundle")
        private_desktop.bundle(bundle, self.build, "bin/kivmenua", {"KIVSupportMessages": ""})
        if self.description.has_own_bus:
            self.folder("own").mkdir()
            self._start_announcing(private_desktop.bus(self.folder("own")))
        of_agent = self.agents_environment()
        self.agent = self.logged("agent", [bundle / "bin/kivmenua"],
                                 environment=of_agent | {"QT_LOGGING_RULES": "kiv.*=true"})
        self.wait(lambda: self.has_name(f"com.tamborel.kivune.p{self.agent.pid}"), 45, "the agent's link")
        self._service = self.logged("service", [self.build / "sbin/kivservice", "attach", "--pid", str(self.agent.pid)],
                                    environment=of_agent, stdin=subprocess.PIPE, text=True, bufsize=1)
        self.wait(lambda: "attached" in self.log("service"), 15, "the service's end of the link")
        self.tell(f"flags {SHOWN | ACTIVE}", ALLOWED)

    def tell(self, *lines):
        for line in lines:
            self._service.stdin.write(line + "\n")

    def show_menu(self):
        """As a launcher does, or a key."""
        return self.run(self.build / "bin/kivshowmenu", environment=self.agents_environment()).returncode == 0

    def registered_items(self):
        """What the bus's watcher of StatusNotifierItems has been told of; nothing without a watcher."""
        watcher = "org.kde.StatusNotifierWatcher"
        answer = self.run("dbus-send", "--session", "--print-reply", "--dest=" + watcher, "/StatusNotifierWatcher",
                          "org.freedesktop.DBus.Properties.Get", "string:" + watcher, "string:RegisteredStatusNotifierItems")
        return set(re.findall(r'string "(.*)"', answer.stdout))

    def keep(self, folder):
        """Copies what all have said to where it outlives the session."""
        folder.mkdir(parents=True, exist_ok=True)
        for log in self.folder().glob("*.log"):
            shutil.copy(log, folder)

    @staticmethod
    def wait(condition, seconds, what=""):
        """The condition's first true value; without a word for what is waited for nothing, if there is none."""
        end = time.monotonic() + seconds
        while not (value := condition()):
            if time.monotonic() > end:
                if what:
                    raise TimeoutError(f"{what} did not come within {seconds} s")
                return None
            time.sleep(0.1)
        return value

    def picture(self):
        return self.windows.picture()

    def still_picture(self):
        """Once nothing moves any more, or something has moved for so long that it never stops."""
        last = self.picture()
        for _ in range(8):
            time.sleep(0.3)
            present = self.picture()
            if not pictures.differ(last, present):
                return present
            last = present
        return last

    def point(self, x, y):
        self.run("xdotool", "mousemove", str(x), str(y))

    def click(self, x, y, button=1):
        self.point(x, y)
        self.run("xdotool", "click", str(button))

    def keys(self, *keys):
        self.run("xdotool", "key", "--delay", "250", *keys)
