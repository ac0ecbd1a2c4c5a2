"""A graphical session of a user's: an X server for remote sessions, whose programs are started by XDG autostart."""

import contextlib
import pathlib
import re
import subprocess
import tempfile
import time

from tools.packages.machine import TOOLS, WORK, end_all_of, processes, wait_for


class UserSession:
    """`variables` are in its environment; `beside` is another session of the same user, whose bus this one shares, as
    where a system has one bus for each user."""

    def __init__(self, user, variables=None, beside=None):
        self.user = user
        self._processes = []
        self._logs = pathlib.Path(tempfile.mkdtemp(prefix=f"{user}-logs-", dir=WORK))
        self._folder = self._logs.with_name(self._logs.name.replace("logs", "desktop"))
        subprocess.run([*self._becoming_user(), "mkdir", "-m", "700", self._folder], check=True)
        self.environment = {"PATH": "/usr/bin:/bin", "LANG": "C.UTF-8", "XDG_CONFIG_DIRS": "/etc/xdg", **(variables or {})}
        self.display = f":{self.start(self._part('server'), wait=True)}"
        listed = self.run(*self._part("environment", self.display))
        self.environment |= dict(line.split("=", 1) for line in listed.splitlines()) | {"HOME": f"/home/{user}"}
        if beside:
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = beside.environment["DBUS_SESSION_BUS_ADDRESS"]
        else:
            self.start(self._part("bus"), wait=True)
        self.start(self._part("window-manager"))
        self.start(self._part("panel"))
        before = set(processes(user, "kivmenua"))
        # The usual starter where no desktop environment is.
        self.start(["dex", "--autostart", "--environment", "openbox"])
        self.agent = wait_for(f"the session {user} {self.display} has one agent, by XDG autostart",
                              lambda: set(processes(user, "kivmenua")) - before).pop()

    def _part(self, name, *arguments):
        return [TOOLS / "private_desktop.py", name, self._folder, *arguments]

    def start(self, command, wait=False):
        """Starts a program of the session; with `wait`, returns the first line that it prints."""
        log = open(self._logs / f"{len(self._processes)}.log", "wb")  # pylint: disable=consider-using-with
        process = subprocess.Popen(self._as_user(command), stdin=subprocess.PIPE, stderr=log,
                                   stdout=subprocess.PIPE if wait else log)
        process.log = pathlib.Path(log.name)
        self._processes.append(process)
        return process.stdout.readline().decode().strip() if wait else process

    def _as_user(self, command):
        settings = [f"{name}={value}" for name, value in self.environment.items()]
        return [*self._becoming_user(), "env", "-i", *settings, *map(str, command)]

    def _becoming_user(self):
        """It becomes the program itself, and so hands on whatever signal comes, unlike runuser(1)."""
        return ["setpriv", "--reuid", self.user, "--regid", self.user, "--init-groups", "--"]

    def run(self, *command):
        return subprocess.run(self._as_user(command), stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                              check=False).stdout.strip()

    def windows(self, name):
        """The number, width and height of each window of that class that can be seen."""
        found = []
        for window in self.run("xdotool", "search", "--onlyvisible", "--class", f"^{name}$").split():
            shell = dict(re.findall(r"(\w+)=(-?\d+)", self.run("xdotool", "getwindowgeometry", "--shell", window)))
            if shell:
                found.append((window, int(shell["WIDTH"]), int(shell["HEIGHT"])))
        return found

    def items(self):
        return [window for window, width, _ in self.windows("kivmenua") if width < 100]

    def pop_ups(self):
        return [window for window, width, height in self.windows("kivmenua") if width > 200 and height > 50]

    def attach_service(self):
        """The reference service at the other end of the agent's link, which makes the item active; returns it."""
        service = wait_for("the service is attached", self._attached)
        self.tell(service, "flags 6", "actions 32791 32792 32793 32794 32795 32796")
        wait_for("the item is in the panel", self.items)
        return service

    def _attached(self):
        """The service; nothing when the agent has no link yet, with which the service ends."""
        service = self.start(["/usr/sbin/kivservice", "attach", "--pid", self.agent])
        while service.poll() is None:
            if f"attached {self.agent}" in service.log.read_text():
                return service
            time.sleep(0.1)
        return None

    @staticmethod
    def tell(service, *lines):
        service.stdin.write("".join(f"{line}\n" for line in lines).encode())
        service.stdin.flush()

    def choose(self, *keys):
        """Opens the menu with a click on the item, and chooses by these keys."""
        wait_for("the menu opens at the item", self._open_menu)
        self.run("xdotool", "key", "--delay", "200", *keys)

    def _open_menu(self):
        """Clicks once and gives the menu some time: a second click would close it again."""
        before = len(self.windows("kivmenua"))
        for item in self.items():
            self.run("xdotool", "mousemove", "--window", item, "11", "11", "click", "1")
        end = time.monotonic() + 5
        while not (is_open := len(self.windows("kivmenua")) > before) and time.monotonic() < end:
            time.sleep(0.1)
        return is_open

    def size(self):
        return re.search(r"current (\d+) x (\d+)", self.run("xrandr")).groups()

    def log_out(self):
        """The X server goes, as at the end of a session, and what the session started goes with it."""
        self._processes[0].terminate()
        with contextlib.suppress(subprocess.TimeoutExpired):
            self._processes[0].wait(10)
        wait_for(f"the agent of {self.user} {self.display} ends with its session",
                 lambda: self.agent not in processes(self.user, "kivmenua"))

    def close(self):
        """Ends all that the user runs, in other sessions, too."""
        end_all_of(self.user)
        for process in self._processes:
            process.wait()
