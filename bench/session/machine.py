"""What a reader has to know about the machine, which nothing names, and about what was measured on it."""

import datetime
import os
import platform
import subprocess


def _first(path, key):
    with open(path, encoding="utf-8") as file:
        return next((line.partition(":")[2].strip() for line in file if line.startswith(key)), "unknown")


def _tree():
    here = os.path.dirname(__file__)
    asked = subprocess.run(["git", "-C", here, "describe", "--always", "--exclude=*", "--dirty= with changes"],
                           capture_output=True, text=True, check=False)
    return asked.stdout.strip() or "no commit"


def facts():
    memory = int(_first("/proc/meminfo", "MemTotal").split()[0]) / 1024 / 1024
    return [
        f"Run of {datetime.date.today():%d %B %Y}, of the tree at {_tree()}.",
        f"Machine: {os.cpu_count()} cores ({_first('/proc/cpuinfo', 'model name')}), {memory:.0f} GB of memory,",
        f"{platform.freedesktop_os_release()['PRETTY_NAME']}, Linux {platform.release().split('-')[0]}.",
    ]
