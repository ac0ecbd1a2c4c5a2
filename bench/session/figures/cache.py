"""What kept messages cost at the start."""

import datetime
import os
import plistlib
import statistics
import time

from bench.session import programs
from bench.session.desktop import Desktop
from bench.session.figure import Figure

COUNTS = (10, 100, 1000)
RUNS = 5
SETTLE = 3
FILE = "Library/Caches/com.tamborel.kivune/notifications.plist"


def _record(number):
    """One that the agent keeps: it is for everybody and for ever, and was shown a moment ago."""
    always = datetime.datetime(2020, 1, 1), datetime.datetime(4001, 1, 1)
    text = f"<b>Message {number}</b>" + "<p>Read what is new in it.</p>" * 20
    return {
        "messageId": str(number), "messageType": 0, "messageLevel": 2, "messageRepeat": 4, "messagePriority": 1,
        "productCode": 2, "licenseType": 2, "minVersion": "any", "maxVersion": "any", "buildDate": "any",
        "systemCode": "any", "minSysVer": "any", "maxSysVer": "any", "minDate": always[0], "maxDate": always[1],
        "lastShowDate": datetime.datetime.now(datetime.timezone.utc).replace(tzinfo=None, microsecond=0),
        "contentEncoding": "none", "contentType": "text/html", "contentWidth": 320.0, "contentHeight": 120.0,
        "messageText": text,
    }


def _fill(path, count):
    if count == 0:
        return
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as file:
        plistlib.dump([_record(number) for number in range(count)], file)
    os.chmod(path, 0o600)


def _written(pid):
    with open(f"/proc/{pid}/io", encoding="ascii") as file:
        return next(int(line.split()[1]) for line in file if line.startswith("wchar"))


def _start(place, ours, count):
    """Milliseconds from the start to the docked item, and kB written until the agent is at rest, to sockets too."""
    with Desktop(place) as desktop:
        path = desktop.home(FILE)
        _fill(path, count)
        running = programs.start(desktop, ours)
        time.sleep(SETTLE)
        if count > 0:
            with open(path, "rb") as file:
                kept = len(plistlib.load(file))
            if kept != count:
                raise RuntimeError(f"{kept} of {count} cached records were kept")
        return running.took * 1000, _written(running.process.pid) / 1024


def measure(place):
    ours = next(program for program in programs.all_programs(place) if program.name == programs.OURS)
    runs = {count: [] for count in (0, *COUNTS)}
    for _ in range(RUNS):
        for count, seen in runs.items():
            seen.append(_start(place, ours, count))
    medians = {count: [statistics.median(column) for column in zip(*seen)] for count, seen in runs.items()}
    _, without = medians.pop(0)

    starts = [Figure(f"Start to docked item with {count:,} cached messages", "ms", "", {programs.OURS: took}, digits=1)
              for count, (took, _) in medians.items()]
    writes = [Figure(f"Written at a start with {count:,} cached messages", "kB", "", {programs.OURS: written - without})
              for count, (_, written) in medians.items()]
    few, many = COUNTS[0], COUNTS[-1]
    writes[-1].require(f"{many // few} x that of {few}", many // few * (medians[few][1] - without))
    starts[0].how = (f"All that the process writes in its first {SETTLE} s counts as written, less what it writes "
                     f"without a cache, which goes to the server and the bus. The item docks while the agent reads the "
                     f"messages: the times differ by chance. Medians of {RUNS} runs.")
    return starts + writes
