"""What use goes on adding to memory."""

import contextlib
import time

from bench.session import cost, programs, use
from bench.session.desktop import Desktop
from bench.session.figure import Figure
from bench.session.figures.memory import SETTLE
from bench.session.use import Hints, Questions

FEW = 5


def _growth(place, program, make_act, times):
    """In kB: what the third of three copies has more after so many times than after the fifth, which all three have
    seen: the others keep what can be shared shared."""
    with contextlib.ExitStack() as stack:
        for _ in range(3):
            desktop = stack.enter_context(Desktop(place))
            running = programs.start(desktop, program)
            time.sleep(1)
            act = make_act(desktop, running)
            for _ in range(FEW):
                act()
        time.sleep(SETTLE)
        before = cost.private_memory(desktop.processes_of(running.process))
        for _ in range(times - FEW):
            act()
        time.sleep(SETTLE)
        return cost.private_memory(desktop.processes_of(running.process)) - before


def _menu(desktop, _running):
    return lambda: use.open_and_close_menu(desktop, 1)


def _pop_up(place):
    def make(desktop, running):
        hints = Hints(place, desktop, running.process.pid)
        return lambda: hints.show_and_close("This is a hint")
    return make


def _question(place):
    def make(desktop, running):
        return Questions(place, desktop, running.process.pid).ask_and_refuse
    return make


def measure(place):
    everyone = {program.name: program for program in programs.all_programs(place)}
    ours = everyone[programs.OURS]

    # The limits are such that what once grew for each of them, 88 bytes for a menu and 240 for a question, would show.
    def growth(what, make_act, times, limit):
        return Figure(f"Memory added from the {FEW}th to the {times:,}th {what}", "kB",
                      "Private memory, clean and dirty, of the third of three, as above.",
                      {programs.OURS: _growth(place, ours, make_act, times)}).require(f"{limit} kB", limit)

    return [growth("pop-up", _pop_up(place), 500, 80), growth("menu", _menu, 2000, 100),
            growth("question before a disconnect", _question(place), 500, 90)]
