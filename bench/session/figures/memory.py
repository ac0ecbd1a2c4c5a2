"""What one more session costs in memory."""

import contextlib
import time

from bench.session import cost, programs
from bench.session.desktop import Desktop
from bench.session.figure import Figure
from bench.session.programs import Kind

SETTLE = 5  # Seconds from docking to the look at its memory.


def memory_of_third(place, program, use=None, environment=None):
    """In kB: the private memory of the third of three copies, after `use` of each if there is one, in desktops with
    that environment beside their own."""
    with contextlib.ExitStack() as stack:
        desktops = [stack.enter_context(Desktop(place, environment=environment)) for _ in range(3)]
        running = [programs.start(desktop, program) for desktop in desktops]
        if use:
            for desktop, one in zip(desktops, running):
                use(desktop, one)
        time.sleep(SETTLE)
        return cost.private_memory(desktops[-1].processes_of(running[-1].process))


def measure(place):
    everyone = programs.all_programs(place)
    values = {program.name: memory_of_third(place, program) for program in everyone}
    peers = [program.name for program in everyone if program.kind is Kind.TRAY
             and program.name not in (programs.OURS, programs.FLOOR)]
    figure = Figure(
        "Memory of one more session", "kB",
        "Three sessions are up, so that what can be shared is shared. The figure is the private memory (clean and "
        "dirty pages) of the third copy and of what it made its bus start, idle, "
        f"{SETTLE} s after its item stood in the tray, or its name on the bus, or its start.",
        values)
    return [figure.require_times(1.1, programs.FLOOR).require_below("each tray peer", peers)]
