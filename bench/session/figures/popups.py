"""How long a pop-up takes to come up."""

import contextlib
import statistics
import time

from bench.session import programs
from bench.session.desktop import Desktop
from bench.session.figure import Figure
from bench.session.programs import Kind
from bench.session.use import Hints

STARTS = 30  # Each gives one first pop-up.
MAX_TIMES = {"dunst": 0.75}  # Of the later pop-ups; 1.5 times another's.
SESSIONS = 4
SHOWN = 26  # In each session; the first does not count among the later ones.


def _start(stack, place, program):
    desktop = stack.enter_context(Desktop(place))
    running = programs.start(desktop, program)
    time.sleep(1)
    return Hints(place, desktop, running.process.pid if program.name == programs.OURS else None)


def _first(place, program):
    """In ms."""
    with contextlib.ExitStack() as stack:
        return _start(stack, place, program).show_and_close("This is the first hint") * 1000


def measure(place):
    everyone = [program for program in programs.all_programs(place)
                if program.name == programs.OURS or program.kind is Kind.DAEMON]
    firsts = {program.name: [] for program in everyone}
    for _ in range(STARTS):
        for program in everyone:
            firsts[program.name].append(_first(place, program))
    times = {program.name: [] for program in everyone}
    with contextlib.ExitStack() as stack:
        hints = [(program.name, _start(stack, place, program)) for _ in range(SESSIONS) for program in everyone]
        for number in range(SHOWN):
            for name, sender in hints:
                took = sender.show_and_close(f"This is hint {number} of {SHOWN}") * 1000
                if number > 0:
                    times[name].append(took)
                time.sleep(0.05)

    first = Figure("Hint to pop-up, the first time", "ms", "From just before the hint is sent, over the event link or "
                   f"by the daemons' own call, until the server maps the pop-up's window. The median of {STARTS} fresh "
                   "starts.", {name: statistics.median(values) for name, values in firsts.items()}, digits=1)
    later = Figure("Hint to pop-up, later", "ms", f"The {SHOWN - 1} after the first in each of {SESSIONS} sessions, in "
                   "turns, each closed by a click; the median of all.",
                   {name: statistics.median(values) for name, values in times.items()}, digits=1)
    later.require("3 ms", 3)
    for program in everyone:
        if program.kind is Kind.DAEMON:
            later.require_times(MAX_TIMES.get(program.name, 1.5), program.name)
    return [first.require("20 ms", 20), later]
