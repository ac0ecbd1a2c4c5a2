#!/usr/bin/env python3
"""What a screen reader has of a program, by the library that screen readers are written with (pyatspi).

reader_client.py PID looks at the program with that process ID. It answers each line of its input with a line, as JSON:
    tree                all objects below the program, in order: [role, name, description, states]
    press ROLE NAME     does the first action of the first object with that role and name: whether it could
and says {"shown": [ROLE, WORD...]} by itself of an alert or a notification that comes up, with what is read out of it.
It says "ready" first, and ends with its input; with status 77 at once where there is no such library.
"""

import json
import sys

try:
    import pyatspi
    from gi.repository import GLib
except ImportError:
    sys.exit(77)

# By their numbers: what they are called differs between versions of the library.
ROLES = {2: "alert", 29: "label", 35: "entry", 41: "menu", 43: "button", 88: "link", 101: "notification"}
STATES = {4: "checked", 8: "enabled", 16: "modal", 25: "showing"}


def say(answer):
    print(json.dumps(answer), flush=True)


def role_of(thing):
    return ROLES.get(int(thing.getRole()), "")


def states_of(thing):
    present = thing.getState()
    return [name for state, name in STATES.items() if present.contains(state)]


def below(thing):
    for child in thing:
        if child is not None:
            yield child
            yield from below(child)


def objects_of(pid):
    for program in pyatspi.Registry.getDesktop(0):
        if program is not None and program.get_process_id() == pid:
            return list(below(program))
    return []


def tree(pid):
    return [[role_of(thing), thing.name, thing.description, states_of(thing)] for thing in objects_of(pid)]


def press(pid, role, name):
    for thing in objects_of(pid):
        if role_of(thing) == role and thing.name == name:
            actions = thing.queryAction()
            return actions.nActions > 0 and actions.doAction(0)
    return False


def hear(pid, event):
    role = role_of(event.source)
    if event.detail1 == 1 and role in ("alert", "notification") and event.host_application.get_process_id() == pid:
        labels = [each.name for each in below(event.source)
                  if role_of(each) == "label" and "showing" in states_of(each)]
        say({"shown": [role, event.source.name, *labels]})


def serve(pid):
    def answer(channel, _):
        line = channel.readline()
        if not line:
            pyatspi.Registry.stop()
            return False
        request, *arguments = line.rstrip("\n").split(" ", 2)
        say(tree(pid) if request == "tree" else press(pid, *arguments))
        return True

    pyatspi.Registry.registerEventListener(lambda event: hear(pid, event), "object:state-changed:showing")
    GLib.io_add_watch(sys.stdin, GLib.PRIORITY_DEFAULT, GLib.IO_IN | GLib.IO_HUP, answer)
    say("ready")
    pyatspi.Registry.start()


if __name__ == "__main__":
    serve(int(sys.argv[1]))
