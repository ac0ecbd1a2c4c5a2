"""What use leaves behind in memory."""

import time

from bench.session import cost, programs, use
from bench.session.desktop import Desktop
from bench.session.figure import Figure
from bench.session.figures.memory import SETTLE, memory_of_third
from bench.session.use import Hints

FEW = 5
MANY = 500


def _use_everything(place):
    def act(desktop, running):
        use.open_and_close_menu(desktop, 1)
        use.show_about(desktop)
        hints = Hints(place, desktop, running.process.pid)
        for number in range(FEW):
            hints.show_and_close(f"This is hint {number}")
    return act


def _growth(place, program, make_act):
    """In kB: what is added from the fifth to the five-hundredth time."""
    with Desktop(place) as desktop:
        running = programs.start(desktop, program)
        time.sleep(1)
        act = make_act(desktop, running)
        seen = []
        for times in (FEW, MANY - FEW):
            for _ in range(times):
                act()
            time.sleep(SETTLE)
            seen.append(cost.private_memory([running.process.pid]))
        return seen[1] - seen[0]


def _menu(desktop, _running):
    return lambda: use.open_and_close_menu(desktop, 1)


def _pop_up(place):
    def make(desktop, running):
        hints = Hints(place, desktop, running.process.pid)
        return lambda: hints.show_and_close("This is a hint")
    return make


def measure(place):
    everyone = {program.name: program for program in programs.all_programs(place)}
    ours = everyone[programs.OURS]
    used = Figure(
        "Memory after use", "kB", "As above, after the menu, an alert and five pop-ups were shown and closed again; "
        "beside it the floor, which was not used.",
        {programs.OURS: memory_of_third(place, ours, _use_everything(place)),
         programs.FLOOR: memory_of_third(place, everyone[programs.FLOOR])})

    def growth(what, make_act):
        return Figure(f"Memory added from the {FEW}th to the {MANY}th {what}", "kB",
                      "Private memory, clean and dirty, as above.",
                      {programs.OURS: _growth(place, ours, make_act)}).require("100 kB", 100)

    return [used.require_times(1.6, programs.FLOOR), growth("pop-up", _pop_up(place)), growth("menu", _menu)]
