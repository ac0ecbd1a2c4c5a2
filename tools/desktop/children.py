"""Programs started for a measurement, and their end."""

import os
import signal
import subprocess
import time


def wait_until(condition, seconds, what):
    """Returns the condition's first true value. For things that nobody announces; times are measured otherwise."""
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        value = condition()
        if value:
            return value
        time.sleep(0.02)
    raise TimeoutError(f"{what}: not within {seconds} s")


def descendants(pid):
    """The processes below one, itself not included."""
    children = {}
    for name in os.listdir("/proc"):
        if name.isdigit():
            try:
                with open(f"/proc/{name}/stat", encoding="utf-8", errors="replace") as file:
                    # The name in brackets may hold anything, brackets too.
                    parent = int(file.read().rpartition(")")[2].split()[1])
            except OSError:
                continue
            children.setdefault(parent, []).append(int(name))
    found = []
    todo = [pid]
    while todo:
        below = children.get(todo.pop(), [])
        found += below
        todo += below
    return found


def end(process, seconds=3):
    """Ends a started program (subprocess.Popen) and all below it."""
    below = descendants(process.pid) if process.poll() is None else []
    process.terminate()
    try:
        process.wait(seconds)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()
    for pid in below:
        try:
            os.kill(pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
