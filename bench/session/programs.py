"""The agent and what it is measured against."""

import dataclasses
import enum
import glob
import shutil

from tools.desktop.children import wait_until


class Kind(enum.Enum):
    TRAY = "has an item in the tray"
    DAEMON = "shows notifications"
    HELPER = "has nothing on the screen"


@dataclasses.dataclass(frozen=True)
class Program:
    name: str
    kind: Kind
    command: tuple
    menu_button: int = 0  # The mouse button that opens its item's menu; 0 for none.


@dataclasses.dataclass
class Running:
    """A started program that is ready to use."""
    process: object
    took: float = 0.0  # Seconds from just before its start until its item stood in the tray.


OURS = "kivmenua"
FLOOR = "floor"


def all_programs(place):
    notifyd = glob.glob("/usr/lib/*/xfce4/notifyd/xfce4-notifyd")
    programs = [
        Program(OURS, Kind.TRAY, (place.agent(),), menu_button=1),
        Program(FLOOR, Kind.TRAY, (place.program("floor"),), menu_button=3),
        Program("nm-applet", Kind.TRAY, ("nm-applet",), menu_button=3),
        Program("pasystray", Kind.TRAY, ("pasystray",), menu_button=3),
        Program("dunst", Kind.DAEMON, ("dunst",)),
        Program("xfce4-notifyd", Kind.DAEMON, tuple(notifyd[:1])),
        Program("vncconfig", Kind.HELPER, ("vncconfig", "-nowin")),
    ]
    missing = [program.name for program in programs if not program.command or not shutil.which(program.command[0])]
    if missing:
        raise FileNotFoundError("not installed: " + ", ".join(missing))
    return programs


def start(desktop, program):
    """Starts it and returns once it is ready: its item is in the tray, or its name on the bus."""
    desktop.watch.forget()
    before = desktop.watch.time()
    process = desktop.start(program.command)
    if program.kind is Kind.TRAY:
        event = desktop.watch.wait_for("map", 30, lambda window: window.embedded)
        return Running(process, event.time - before)
    if program.kind is Kind.DAEMON:
        wait_until(lambda: desktop.has_name("org.freedesktop.Notifications"), 30, program.name)
    return Running(process)
