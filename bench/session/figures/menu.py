"""How long the menu takes to open."""

import contextlib
import statistics
import time

from bench.session import programs, use
from bench.session.desktop import Desktop
from bench.session.figure import Figure

CLICKS = 30
SETTLE = 2


def measure(place):
    everyone = [program for program in programs.all_programs(place) if program.menu_button]
    times = {program.name: [] for program in everyone}
    with contextlib.ExitStack() as stack:
        desktops = {program: stack.enter_context(Desktop(place)) for program in everyone}
        for program, desktop in desktops.items():
            programs.start(desktop, program)
        # Some put their item into the tray twice.
        time.sleep(SETTLE)
        for _ in range(CLICKS):
            for program, desktop in desktops.items():
                times[program.name].append(use.open_and_close_menu(desktop, program.menu_button) * 1000)
            # Longer than a double click, to which some do not open.
            time.sleep(0.5)
    how = (f"From the press of the mouse button on the item until the server maps the menu. {CLICKS} times, in turns; "
           "the median. Ours opens on the left button, the others' on the right one.")
    return [
        Figure("Click to menu", "ms", how, {name: statistics.median(values) for name, values in times.items()},
               digits=1).require("10 ms", 10),
        Figure("Click to menu, the first time", "ms", "", {name: values[0] for name, values in times.items()},
               digits=1),
    ]
