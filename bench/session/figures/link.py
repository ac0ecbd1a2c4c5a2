"""How long an event is under way."""

import contextlib
import select
import statistics
import subprocess

from bench.session.desktop import Desktop
from bench.session.figure import Figure

MESSAGES = 1000
WARM_UP = 100
RATE = 1000  # A second.
ROUNDS = 15


# Who sends, and who receives.
LINKS = {"kivmenua": ("event", "event"), "kivmenua receives": ("ping", "event"), "bare QtDBus": ("ping", "ping")}


def _microseconds_of_one_round(place, desktop, sent_as, received_as):
    count = MESSAGES + WARM_UP
    with contextlib.ExitStack() as stack:
        receiver = desktop.start([place.program("linkpeer"), "receive", received_as, str(count)],
                                 stdout=subprocess.PIPE, text=True)
        stack.callback(desktop.end, receiver)
        pid = receiver.stdout.readline().split()[1]
        sender = desktop.start([place.program("linkpeer"), "send", sent_as, pid, str(count), str(RATE)],
                               stdin=subprocess.PIPE)
        stack.callback(desktop.end, sender)
        # A sender that fails sends no more, and the receiver would wait for ever.
        if not select.select([receiver.stdout], [], [], 10 * count / RATE)[0]:
            raise TimeoutError("the messages do not arrive")
        return [int(word) / 1000 for word in receiver.stdout.readline().split()[1:]][WARM_UP:]


def measure(place):
    medians = {name: [] for name in LINKS}
    tails = {name: [] for name in LINKS}
    with Desktop(place, panel=False) as desktop:
        for _ in range(ROUNDS):
            for name, kinds in LINKS.items():
                times = sorted(_microseconds_of_one_round(place, desktop, *kinds))
                medians[name].append(statistics.median(times))
                tails[name].append(times[len(times) * 99 // 100])

    def figure(title, rounds, factor, how, middle=statistics.median):
        values = {name: middle(of_one) for name, of_one in rounds.items()}
        return Figure(title, "µs", how, values).require_times(factor, "bare QtDBus")

    return [
        figure("Event, one way", medians, 1.05,
               f"From before the event is made in one process until its handler runs in another, {RATE} a second, on "
               "an idle bus. Bare QtDBus sends a message of the same shape to an object that takes it as it is; where "
               f"kivmenua receives, our handler takes what that sends. Median of {MESSAGES}; of {ROUNDS} rounds in "
               "turns, the middle one."),
        # What else the machine does only ever adds to the slowest messages of a round, and to many times their time.
        figure("Event, one way, 99th percentile", tails, 1.2,
               f"As above; of {ROUNDS} rounds the lower quartile, since what disturbs the machine only adds.",
               middle=lambda of_one: statistics.quantiles(of_one)[0]),
    ]
