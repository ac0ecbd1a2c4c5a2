#!/usr/bin/env python3
"""try_packages.py FOLDER: what a user and an administrator do with the packages in FOLDER, from install to purge.

Only in a clean room, as root: it installs, makes a user with a session, trusts a certificate of its own, and takes all
of it away again. The feed lies behind a proxy and speaks TLS, as in a company. Prints a line for each thing seen, and
ends with status 1 at the first that is not so.
"""

import contextlib
import os
import pathlib
import plistlib
import re
import shutil
import subprocess
import sys
import time

from tools.packages.company import Company

TREE = pathlib.Path(__file__).resolve().parents[2]
WORK = pathlib.Path("/tmp/try-packages")
USER = "trying"
PREFERENCES = "Library/Preferences/com.tamborel.kivmenua.plist"
CONFIGURATION = pathlib.Path("/etc/kivmenua/Info.plist")
# What belongs to the machine, to apt or to useradd, and to the tree that is being tried.
APART = ("/proc", "/sys", "/dev", "/tmp", "/run", "/root", "/var/lib/apt", "/var/cache", "/var/log", "/var/lib/dpkg",
         "/var/backups", "/etc/resolv.conf", "/etc/ld.so.cache", "/usr/share/mime", "/usr/share/applications",
         "/usr/share/icons/hicolor/icon-theme.cache", "/var/tmp", "/etc/subgid-", "/etc/subuid-")


def seen(what, holds=True):
    print(("   " if holds else "NOT SO: ") + what, flush=True)
    if not holds:
        sys.exit(1)


def wait_for(what, condition, seconds=60):
    end = time.monotonic() + seconds
    while not (value := condition()):
        if time.monotonic() > end:
            seen(what, False)
        time.sleep(0.1)
    seen(what)
    return value


def apt(*arguments):
    subprocess.run(["apt-get", "-qq", "-y", "--no-install-recommends", "-o", "Dpkg::Use-Pty=0", "-o",
                    "Dpkg::Options::=--force-confold", *map(str, arguments)], check=True, stdout=subprocess.DEVNULL,
                   env=os.environ | {"DEBIAN_FRONTEND": "noninteractive"})


def files():
    """What lies on this system, but for what is none of a package's affair."""
    found = set()
    for folder, folders, names in os.walk("/"):
        folders[:] = [name for name in folders if os.path.join(folder, name) not in APART]
        found.update(path for path in (os.path.join(folder, name) for name in names + folders) if path not in APART)
    return {path for path in found if "__pycache__" not in path}


class Session:
    """A desktop of the user's in an X server for remote sessions, whose programs are started by XDG autostart."""

    def __init__(self, company):
        self._processes = []
        self._folder = WORK / "desktop"
        subprocess.run(["runuser", "-u", USER, "--", "mkdir", "-m", "700", self._folder], check=True)
        home = f"/home/{USER}"
        self.environment = {"PATH": "/usr/bin:/bin", "LANG": "C.UTF-8", "XDG_CONFIG_DIRS": "/etc/xdg", **company.proxies}
        display = self.start(self._part("server"), wait=True)
        listed = self._run(*self._part("environment", f":{display}"))
        self.environment |= dict(line.split("=", 1) for line in listed.splitlines()) | {"HOME": home}
        self.start(self._part("bus"), wait=True)
        self.start(self._part("window-manager"))
        self.start(self._part("panel"))
        # The usual starter where no desktop environment is.
        self.start(["dex", "--autostart", "--environment", "openbox"])

    def _part(self, name, *arguments):
        return [WORK / "tools/desktop/private_desktop.py", name, self._folder, *arguments]

    def start(self, command, wait=False):
        """Starts a program of the session; with `wait`, returns the first line that it prints."""
        log = open(WORK / f"{len(self._processes)}.log", "wb")  # pylint: disable=consider-using-with
        process = subprocess.Popen(self._as_user(command), stdin=subprocess.PIPE, stderr=log,
                                   stdout=subprocess.PIPE if wait else log)
        self._processes.append(process)
        return process.stdout.readline().decode().strip() if wait else process

    def _as_user(self, command):
        settings = [f"{name}={value}" for name, value in self.environment.items()]
        return ["runuser", "-u", USER, "--", "env", "-i", *settings, *map(str, command)]

    def _run(self, *command):
        return subprocess.run(self._as_user(command), stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                              check=False).stdout

    def run(self, *command):
        return self._run(*command).strip()

    def windows(self, name):
        """The geometry and number of each window of that class that can be seen."""
        found = []
        for window in self.run("xdotool", "search", "--onlyvisible", "--class", f"^{name}$").split():
            shell = dict(re.findall(r"(\w+)=(-?\d+)", self.run("xdotool", "getwindowgeometry", "--shell", window)))
            if shell:
                found.append((window, int(shell["WIDTH"]), int(shell["HEIGHT"])))
        return found

    def item(self):
        return next((window for window, width, _ in self.windows("kivmenua") if width < 100), None)

    def choose(self, *keys):
        """Opens the menu with a click on the item, and chooses by these keys."""
        wait_for("the menu opens at the item", self._open_menu)
        self.run("xdotool", "key", "--delay", "200", *keys)

    def _open_menu(self):
        self.run("xdotool", "mousemove", "--window", self.item() or "", "11", "11", "click", "1")
        time.sleep(1)
        return len(self.windows("kivmenua")) > 1

    def size(self):
        return re.search(r"current (\d+) x (\d+)", self.run("xrandr")).groups()

    def log_out(self):
        """The X server goes, as at the end of a session, and what the session started goes with it."""
        self._processes[0].terminate()
        with contextlib.suppress(subprocess.TimeoutExpired):
            self._processes[0].wait(10)

    def end(self):
        subprocess.run(["pkill", "-KILL", "-u", USER], check=False)
        for process in self._processes:
            process.wait()


def processes(name):
    return subprocess.run(["pgrep", "-u", USER, "-x", name], stdout=subprocess.PIPE, text=True, check=False).stdout


def configure(company):
    """What an administrator does: another feed, and preferences for new users."""
    values = plistlib.loads(CONFIGURATION.read_bytes())
    CONFIGURATION.write_bytes(plistlib.dumps(values | {"KIVSupportMessages": company.address}))
    everything = {f"KivNotificationShow{what}": True for what in
                  ("News", "Notices", "Updates", "Warnings", "LowPriority", "MediumPriority", "HighPriority")}
    skeleton = pathlib.Path("/etc/skel", PREFERENCES)
    skeleton.parent.mkdir(parents=True)
    skeleton.write_bytes(plistlib.dumps(everything | {"KivNotificationShowTimeout": 1, "KivNotificationCloseTimeout": 4,
                                                      "KivNotificationRepeatTimeout": 3,
                                                      "KivNotificationLastMessId": "0"}))
    subprocess.run(["useradd", "--create-home", USER], check=True)


def live(session):
    """A session from its item to the log-out."""
    wait_for("the session has one agent, by XDG autostart", lambda: processes("kivmenua").count("\n") == 1)
    wait_for("the item is in the panel", session.item)
    service = session.start(["/usr/sbin/kivservice", "attach"], wait=False)
    service.stdin.write(b"flags 6\nactions 32791 32792 32793 32794 32795 32796\n")
    service.stdin.flush()
    time.sleep(2)
    seen("the service is attached", service.poll() is None)

    before = session.size()
    session.choose("Down", "Right", "Down", "Down", "Return")
    wait_for("Switch Resolution switches, by /usr/sbin/kivservice", lambda: session.size() != before)
    session.choose("Up", "Up", "Up", "Return")
    wait_for("Server Preferences opens the settings", lambda: session.windows("kivsettings"))
    session.run("/usr/sbin/kivservice", "settings", "KivNotificationShowNews", "off")
    home = pathlib.Path("/home", USER)
    seen("a setting is set from a shell",
         plistlib.loads((home / PREFERENCES).read_bytes())["KivNotificationShowNews"] is False)
    wait_for("a message comes from the feed and is shown", lambda: [
        window for window, width, height in session.windows("kivmenua") if width > 200 and height > 100], 150)
    seen("its id is remembered",
         plistlib.loads((home / PREFERENCES).read_bytes())["KivNotificationLastMessId"] not in ("0", ""))
    session.log_out()
    wait_for("agent and settings end with the session",
             lambda: not processes("kivmenua") and not processes("kivsettings"))


def newer(package):
    """The package once more, as of a later version with another configuration file."""
    folder = WORK / f"newer-{package.name}"
    subprocess.run(["dpkg-deb", "--raw-extract", package, folder], check=True)
    control = folder / "DEBIAN/control"
    control.write_text(re.sub(r"^(Version: .*)$", r"\1+later", control.read_text(), flags=re.M).replace(
        "${binary:Version}", ""))
    configuration = folder / CONFIGURATION.relative_to("/")
    if configuration.exists():
        configuration.write_text(configuration.read_text().replace("1.0.0", "9.9.9"))
    target = WORK / package.name.replace("_1", "_later-1")
    subprocess.run(["dpkg-deb", "--root-owner-group", "--build", folder, target], check=True,
                   stdout=subprocess.DEVNULL)
    return target


def main(folder):
    if "KIV_CLEAN_ROOM" not in os.environ: # As ./kiv clean-room sets it.
        sys.exit("try_packages.py: only in a clean room: ./kiv clean-room 12 try-packages")
    packages = sorted(path for path in folder.glob("*.deb") if "dbgsym" not in path.name)
    shutil.rmtree(WORK, ignore_errors=True)
    for name in ("tools/desktop", "resources/demo"):
        shutil.copytree(TREE / name, WORK / name)
    WORK.chmod(0o1777)
    apt("install", *packages)
    apt("purge", *(path.name.partition("_")[0] for path in packages))
    before = files()  # With what they depend on, which is not theirs.

    apt("install", *packages)
    seen("installed: " + " ".join(path.name for path in packages))
    with Company(WORK) as company:
        company.try_certificates()
        configure(company)
        session = Session(company)
        try:
            live(session)
        finally:
            session.end()
        seen("all that the feed was asked came through the proxy", company.asked_by_proxy_only())

        kept = CONFIGURATION.read_bytes()
        apt("install", *map(newer, packages))
        seen("an upgrade keeps the administrator's file", CONFIGURATION.read_bytes() == kept)
        seen("and lays the new one beside it", CONFIGURATION.with_name("Info.plist.dpkg-dist").exists())
        names = [path.name.partition("_")[0] for path in packages]
        apt("remove", *names)
        seen("removed, the administrator's file stays", CONFIGURATION.exists())
        apt("purge", *names)
        subprocess.run(["userdel", "--remove", USER], check=True, stderr=subprocess.DEVNULL)
        shutil.rmtree("/etc/skel/Library")
    left = files() - before
    seen("purged, nothing is left" + "".join(f"\n      {path}" for path in sorted(left)), not left)


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]).resolve())
