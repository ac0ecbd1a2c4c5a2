"""What use leaves in memory, with few fonts and with many."""

from bench.session import fonts, programs, use
from bench.session.figure import Figure
from bench.session.figures.memory import memory_of_third
from bench.session.use import Hints

HINTS = 5


def _use_everything(place):
    def act(desktop, running):
        use.open_and_close_menu(desktop, 1)
        use.show_about(desktop)
        hints = Hints(place, desktop, running.process.pid)
        for number in range(HINTS):
            hints.show_and_close(f"This is hint {number}")
    return act


def _open_menu_of(program):
    return lambda desktop, _running: use.open_and_close_menu(desktop, program.menu_button)


def measure(place):
    everyone = {program.name: program for program in programs.all_programs(place)}
    ours, floor = everyone[programs.OURS], everyone[programs.FLOOR]

    def figure(how_many, environment):
        return Figure(
            f"Memory after use, {how_many} fonts", "kB",
            "Private memory of the third of three, as above, after its menu was opened and closed, ours also after an "
            f"alert and {HINTS} pop-ups.",
            {ours.name: memory_of_third(place, ours, _use_everything(place), environment),
             floor.name: memory_of_third(place, floor, _open_menu_of(floor), environment)}
        ).require_times(1.1, floor.name)

    return [figure("few", fonts.few(place)), figure("many", fonts.many(place))]
