"""The benchmarks of single functions: programs of their own, which print their ratios."""

import os
import re
import subprocess

from bench.session.figure import Figure

_RATIO = re.compile(r"^(\w+) +(\w+) +([\d.]+) +([\d.]+) +([\d.]+)(?: +([\d.]+))?")

_SUBMENU = re.compile(r"^resolutionSubmenu/(\d+) +([\d.]+) ms", re.M)

_RATIOS = {"bench_base64": "Base64", "bench_feed": "Feed of 1,000 messages"}
_MAX_MODES_TIME = 5  # ms for 600 modes

_MESSAGE = re.compile(r"^(\w+) +[\d.]+ ms +([\d.]+) ms", re.M)
_MAX_MESSAGE_TIME = 100  # ms of processor time

_TURN = re.compile(r"^longestTurn (\w+) ([\d.]+) ms", re.M)
_MAX_TURN = 50  # ms of processor time
_COMES_IN = {"cache": "1,000 messages of 1 kB come in from the cache",
             "feed": "10,000 messages of 1 kB come in from the feed, and the queue is full already",
             "message": "one message of 11 MB comes in",
             "part": "messages come in of which one part has 15.7 MB (an id, a type, a content, a text, a comment)"}


def ratios_in(output):
    """(ours, other, median, largest good median or None) for each line of the table at the end of a program's output."""
    found = []
    for line in output.partition("compared with")[2].splitlines():
        if match := _RATIO.match(line):
            found.append((match[1], match[2], float(match[3]), float(match[6]) if match[6] else None))
    return found


def measure(place):
    environment = os.environ | {"QT_QPA_PLATFORM": "offscreen"}
    def rows_of(program, rows_in):
        ended = subprocess.run([place.program(program)], env=environment, capture_output=True, text=True, check=False)
        rows = rows_in(ended.stdout)
        # 1 says that a limit is not met, which the page says too.
        if ended.returncode not in (0, 1) or not rows:
            raise RuntimeError(f"{program} ended with {ended.returncode} and {len(rows)} figures")
        return rows

    figures = []
    for program, title in _RATIOS.items():
        for ours, other, median, max_median in rows_of(program, ratios_in):
            figure = Figure(f"{title}: {ours} to {other}", "times the time", "", {"kivmenua": median}, digits=2)
            figures.append(figure.require("limit", max_median) if max_median else figure)
    for count, time in rows_of("bench_resolutions", _SUBMENU.findall):
        figure = Figure(f"Submenu of {count} resolutions", "ms", "", {"kivmenua": float(time)}, digits=2)
        figures.append(figure.require("limit", _MAX_MODES_TIME) if count == "600" else figure)
    name, slowest = max(rows_of("bench_messages", _MESSAGE.findall), key=lambda row: float(row[1]))
    figures.append(Figure(f"Text of the slowest of the sample messages ({name}), to its picture", "ms", "",
                          {"kivmenua": float(slowest)}, digits=2).require("limit", _MAX_MESSAGE_TIME))
    for what, longest in rows_of("bench_turns", _TURN.findall):
        figures.append(Figure(f"Longest turn of the event loop while {_COMES_IN[what]}", "ms",
                              "The processor time of the main thread; so long the menu stands still.",
                              {"kivmenua": float(longest)}, digits=1).require("limit", _MAX_TURN))
    return figures
