"""A hundred sessions on one machine."""

import contextlib
import time

from bench.session import cost, programs
from bench.session.desktop import Desktop
from bench.session.figure import Figure

SESSIONS = 100
IDLE = 60
SETTLE = 10


def measure(place):
    ours = next(program for program in programs.all_programs(place) if program.name == programs.OURS)
    with contextlib.ExitStack() as stack:
        desktops = [stack.enter_context(Desktop(place)) for _ in range(SESSIONS)]
        running = [programs.start(desktop, ours) for desktop in desktops]
        time.sleep(SETTLE)
        agents = [pid for desktop, one in zip(desktops, running) for pid in desktop.processes_of(one.process)]
        others = [pid for desktop in desktops for pid in desktop.server_processes()]
        before = cost.processor_time(agents), cost.processor_time(others)
        time.sleep(IDLE)
        spent = cost.processor_time(agents) - before[0], cost.processor_time(others) - before[1]
        memory = cost.proportional_memory(agents) / 1024, cost.proportional_memory(others) / 1024

    def figure(title, unit, how, values, digits):
        named = {programs.OURS: values[0], "X servers, buses and panels": values[1]}
        return Figure(title, unit, how, named, digits=digits)

    return [
        figure(f"Memory of {SESSIONS} agents", "MB", f"{SESSIONS} sessions, each with an agent. What is shared is "
               "counted once, among all that share it.", memory, 0),
        figure(f"Processor time of {SESSIONS} idle agents in {IDLE} s", "s", "In the same sessions.", spent, 3),
    ]
