"""How long a start takes."""

import contextlib
import statistics

from bench.session import programs
from bench.session.desktop import Desktop
from bench.session.figure import Figure
from bench.session.programs import Kind

RUNS = 15


def measure(place):
    everyone = [program for program in programs.all_programs(place) if program.kind is Kind.TRAY]
    times = {program.name: [] for program in everyone}
    with contextlib.ExitStack() as stack:
        desktops = {program: stack.enter_context(Desktop(place)) for program in everyone}
        # The first round brings the files into memory and does not count.
        for number in range(RUNS + 1):
            for program, desktop in desktops.items():
                running = programs.start(desktop, program)
                if number > 0:
                    times[program.name].append(running.took * 1000)
                desktop.end(running.process)
    figure = Figure(
        "Start to docked item", "ms",
        f"From the start of the process until the server maps its window in the tray. Median of {RUNS} runs, in turns.",
        {name: statistics.median(values) for name, values in times.items()}, digits=1)
    return [figure.require_times(1.25, programs.FLOOR)]
