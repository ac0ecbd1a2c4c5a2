"""How long the menu takes to open."""

import contextlib
import statistics
import time

from bench.session import programs
from bench.session.desktop import Desktop
from bench.session.figure import Figure

CLICKS = 30
SETTLE = 2


def is_menu(window):
    return not window.embedded and window.width > 40 and window.height > 40


def open_and_close(desktop, program):
    """Opens the item's menu and closes it again. Seconds from the press until it was mapped."""
    desktop.watch.forget()
    pressed = desktop.watch.click(*desktop.watch.centre_of(desktop.watch.item()), program.menu_button)
    menu = desktop.watch.wait_for("map", 10, is_menu)
    # It takes the keyboard only after it has come up.
    time.sleep(0.1)
    desktop.watch.press_escape()
    desktop.watch.wait_for("unmap", 10, lambda window: window.window == menu.window)
    return menu.time - pressed


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
                times[program.name].append(open_and_close(desktop, program) * 1000)
                time.sleep(0.05)
    how = (f"From the press of the mouse button on the item until the server maps the menu. {CLICKS} times, in turns; "
           "the median. Ours opens on the left button, the others' on the right one.")
    return [
        Figure("Click to menu", "ms", how, {name: statistics.median(values) for name, values in times.items()},
               digits=1).require("10 ms", 10),
        Figure("Click to menu, the first time", "ms", "As above.",
               {name: values[0] for name, values in times.items()}, digits=1),
    ]
