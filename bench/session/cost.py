"""What processes cost, as the kernel counts it."""

import os


def _fields(pid):
    with open(f"/proc/{pid}/smaps_rollup", encoding="ascii") as file:
        return {words[0].rstrip(":"): int(words[1]) for words in map(str.split, file) if words[-1] == "kB"}


def private_memory(pids):
    """In kB: the pages that nobody else has, clean and dirty. It is what comes back when the processes end."""
    return sum(fields["Private_Clean"] + fields["Private_Dirty"] for fields in map(_fields, pids))


def proportional_memory(pids):
    """In kB: a page that n processes share counts as one n-th. Over all processes it adds up to what is in use."""
    return sum(_fields(pid)["Pss"] for pid in pids)


def _by_thread(pids, file_name, read):
    values = {}
    for pid in pids:
        for thread in os.listdir(f"/proc/{pid}/task"):
            with open(f"/proc/{pid}/task/{thread}/{file_name}", encoding="utf-8") as file:
                values[thread] = read(file)
    return values


def sleeps(pids):
    """How often each thread has gone to sleep so far."""
    def voluntary(file):
        return next(int(line.split()[1]) for line in file if line.startswith("voluntary_ctxt_switches"))
    return _by_thread(pids, "status", voluntary)


def wake_ups(before, after):
    """How often threads have woken up from one look at sleeps() to the next. One that has ended has done so once at
    least."""
    return (sum(count - before.get(thread, 0) for thread, count in after.items())
            + len(before.keys() - after.keys()))


def processor_time(pids):
    """In seconds, so far."""
    return sum(_by_thread(pids, "schedstat", lambda file: int(file.read().split()[0])).values()) / 1e9
