"""How long an event is under way."""

import contextlib
import statistics
import subprocess

from bench.session.desktop import Desktop
from bench.session.figure import Figure

MESSAGES = 2000
WARM_UP = 100
RATE = 1000  # A second.
ROUNDS = 5


def _microseconds_of_one_round(place, desktop, kind):
    count = MESSAGES + WARM_UP
    with contextlib.ExitStack() as stack:
        receiver = desktop.start([place.program("linkpeer"), "receive", kind, str(count)],
                                 stdout=subprocess.PIPE, text=True)
        stack.callback(desktop.end, receiver)
        pid = receiver.stdout.readline().split()[1]
        sender = desktop.start([place.program("linkpeer"), "send", kind, pid, str(count), str(RATE)],
                               stdin=subprocess.PIPE)
        stack.callback(desktop.end, sender)
        return [int(word) / 1000 for word in receiver.stdout.readline().split()[1:]][WARM_UP:]


def measure(place):
    medians = {"event": [], "ping": []}
    tails = {"event": [], "ping": []}
    with Desktop(place, panel=False) as desktop:
        for _ in range(ROUNDS):
            for kind in medians:
                times = sorted(_microseconds_of_one_round(place, desktop, kind))
                medians[kind].append(statistics.median(times))
                tails[kind].append(times[len(times) * 99 // 100])

    def figure(title, values, how):
        named = {"kivmenua": statistics.median(values["event"]), "bare QtDBus": statistics.median(values["ping"])}
        return Figure(title, "µs", how, named).require_times(1.2, "bare QtDBus")

    return [
        figure("Event, one way", medians,
               f"From before the event is made in one process until its handler runs in another, {RATE} a second, on "
               "an idle bus. Bare QtDBus sends a message of the same shape to an object that takes it as it is. Median "
               f"of {MESSAGES}; of {ROUNDS} rounds in turns, the middle one."),
        figure("Event, one way, 99th percentile", tails, "As above."),
    ]
