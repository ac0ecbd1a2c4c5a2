"""What use goes on adding to memory."""

import concurrent.futures
import contextlib
import operator
import statistics
import time

from bench.session import cost, programs, use
from bench.session.desktop import Desktop
from bench.session.figure import Figure
from bench.session.figures.memory import SETTLE
from bench.session.use import Hints, Questions

COPIES = 3
FEW = 5


def _growth(place, program, make_act, times):
    """In kB: what a copy has more after so many times than after the fifth; of three copies, the middle one."""
    with contextlib.ExitStack() as stack:
        desktops = [stack.enter_context(Desktop(place)) for _ in range(COPIES)]
        running = [programs.start(desktop, program) for desktop in desktops]
        time.sleep(1)
        acts = [make_act(desktop, one) for desktop, one in zip(desktops, running)]
        threads = stack.enter_context(concurrent.futures.ThreadPoolExecutor(COPIES))

        def memory_after(count):
            def repeat(act):
                for _ in range(count):
                    act()
            list(threads.map(repeat, acts))
            time.sleep(SETTLE)
            return [cost.private_memory(desktop.processes_of(one.process)) for desktop, one in zip(desktops, running)]

        before = memory_after(FEW)
        after = memory_after(times - FEW)
        return statistics.median(map(operator.sub, after, before))


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
                      f"Private memory, clean and dirty; the middle one of {COPIES} copies.",
                      {programs.OURS: _growth(place, ours, make_act, times)}).require(f"{limit} kB", limit)

    return [growth("pop-up", _pop_up(place), 500, 80), growth("menu", _menu, 2000, 100),
            growth("question before a disconnect", _question(place), 500, 90)]
