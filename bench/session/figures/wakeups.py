"""How often an idle program wakes up."""

import contextlib
import time

from bench.session import cost, programs
from bench.session.desktop import Desktop
from bench.session.figure import Figure

IDLE = 60
CHANGES = 100
SETTLE = 45  # The toolkit looks once after its pictures, 30 s after the first was drawn.


def measure(place):
    everyone = programs.all_programs(place)
    with contextlib.ExitStack() as stack:
        started = {}
        for program in everyone:
            desktop = stack.enter_context(Desktop(place))
            started[program.name] = desktop, programs.start(desktop, program)
        time.sleep(SETTLE)

        def sleeps():
            return {name: cost.sleeps(desktop.processes_of(running.process))
                    for name, (desktop, running) in started.items()}

        def wake_ups_during(act):
            before = sleeps()
            act()
            return {name: cost.wake_ups(before[name], after) for name, after in sleeps().items()}

        def change_root_properties():
            for _ in range(CHANGES):
                for desktop, _running in started.values():
                    desktop.watch.change_root_property()
                time.sleep(0.02)

        idle = wake_ups_during(lambda: time.sleep(IDLE))
        changed = wake_ups_during(change_root_properties)

    return [
        Figure(f"Wake-ups in {IDLE} s", "", f"Idle, from {SETTLE} s after the start on, which is after the one look at "
               "its pictures that the toolkit takes 30 s after the first was drawn. Voluntary context switches of all "
               "threads, of what the program made the bus start too.", idle).require("0", 0),
        Figure("Wake-ups per change of the root window", "", f"Another program changes a property of the root window "
               f"{CHANGES} times, as window managers and panels do all the time.",
               {name: count / CHANGES for name, count in changed.items()}, digits=2).require("0", 0),
    ]
