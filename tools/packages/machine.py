"""The machine on which packages are tried, as its administrator has it in hand: its packages, its users, its files."""

import os
import pathlib
import shutil
import subprocess
import sys
import time

TREE = pathlib.Path(__file__).resolve().parents[2]
# What users may enter, unlike the tree, which lies in root's home.
WORK = pathlib.Path("/tmp/try-packages")
TOOLS = WORK / "tools/desktop"

# What is no file of the machine's, belongs to nobody in particular, or is apt's and dpkg's own book of what they did.
APART = ("/proc", "/sys", "/dev", "/tmp", "/run", "/root", "/var/lib/apt", "/var/cache/apt", "/var/log",
         "/var/cache/ldconfig", "/var/cache/man")


def make_work_folder():
    shutil.rmtree(WORK, ignore_errors=True)
    for name in ("tools/desktop", "resources/demo"):
        shutil.copytree(TREE / name, WORK / name)
    WORK.chmod(0o1777)


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


def knows_package(name):
    """Whether it is installed, or has left its configuration files."""
    return subprocess.run(["dpkg-query", "--status", name], check=False, stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL).returncode == 0


def install_what_is_needed_by(packages):
    """What these packages depend on, and not one of them."""
    for package in packages:
        needed = subprocess.run(["dpkg-deb", "--field", package, "Depends"], check=True, stdout=subprocess.PIPE, text=True)
        apt("satisfy", needed.stdout.strip())


def add_user(name):
    subprocess.run(["useradd", "--create-home", name], check=True)


def remove_user(name):
    """It may be that there is none."""
    subprocess.run(["userdel", "--remove", name], check=False, stderr=subprocess.DEVNULL)


def processes(user, name):
    """Their process IDs, oldest first."""
    found = subprocess.run(["pgrep", "-u", user, "-x", name], stdout=subprocess.PIPE, text=True, check=False)
    return [int(line) for line in found.stdout.split()]


def end_all_of(user):
    subprocess.run(["pkill", "-KILL", "-u", user], check=False)


def files():
    """The path of everything that lies here."""
    found = set()
    for folder, folders, names in os.walk("/"):
        folders[:] = [name for name in folders if os.path.join(folder, name) not in APART and name != "__pycache__"]
        found.update(os.path.join(folder, name) for name in names + folders)
    return found
