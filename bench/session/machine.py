"""What a reader has to know about the machine: nothing that names it."""

import datetime
import os
import platform


def _first(path, key):
    with open(path, encoding="utf-8") as file:
        return next((line.partition(":")[2].strip() for line in file if line.startswith(key)), "unknown")


def facts():
    memory = int(_first("/proc/meminfo", "MemTotal").split()[0]) / 1024 / 1024
    return [
        f"Run of {datetime.date.today():%d %B %Y}.",
        f"Machine: {os.cpu_count()} cores ({_first('/proc/cpuinfo', 'model name')}), {memory:.0f} GB of memory,",
        f"{platform.freedesktop_os_release()['PRETTY_NAME']}, Linux {platform.release().split('-')[0]}.",
    ]
