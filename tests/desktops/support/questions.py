"""The questions, which are the same for all desktops. Each is a function of the desktop at work; it returns what is at
fault in a few words, and an empty text where nothing is."""

import contextlib
import pathlib

from tests.desktops.description import Description
from tests.desktops.support import rules
from tests.desktops.support.pictures import changes, save_for_page
from tests.desktops.support.screen import Screen
from tests.desktops.support.screen_reader import ScreenReader
from tests.desktops.support.session import ACTIVE, SHOWN, Session
from tools.desktop import private_desktop

TREE = pathlib.Path(__file__).resolve().parents[3]
# What the second session is, and its panel, which comes later.
OTHER = Description("another session", (), {"window-manager": private_desktop.window_manager("")}, ())
PANEL = ["tint2", "-c", TREE / "resources/demo/tint2rc"]
TRIES = 3 # For a comparison of screens, as a clock may change in between.
ROUNDS = 20
MINIMIZE = ("Down", "Down", "Right", "Return") # From the top of the menu.
MINIMIZED = "meoa 32793 Minimize"


# Where entries are, of the menu's height: the second and the last one of six with four lines between, the first one of
# five with one.
WORKSPACE, ABOUT, FIRST = 0.24, 0.92, 0.1


def down(box, part):
    return box.centre[0], box.y + round(box.height * part)


class AtWork:
    """A session in which the questions are asked, and what has been found out."""

    def __init__(self, session, picture):
        self.session = session
        self.screen = Screen(session)
        self.picture = picture   # The file that a picture goes to, as soon as there is a good one.
        self.item = None
        self.menu = None
        self.drawn_by = set()
        self.said = {}           # By the screen reader, of what.

    def the_item(self):
        """Where it is now, once it is there as it ought to be."""
        faults = [""]
        def found():
            items = self.screen.items()
            faults[0] = rules.count_fault(items) or self.place_fault(items[0])
            return not faults[0] and items
        items = self.session.wait(found, 30)
        if not items:
            raise Fault(faults[0])
        self.item = items[0]
        return self.item

    def place_fault(self, item):
        windows = self.session.windows
        if self.session.description.panel or windows.tray_owner():
            return rules.panel_fault(item, self.session.panels())
        return rules.standing_fault(item, windows.standing_items())

    def menu_at(self, button):
        menu = self.screen.open_menu(lambda: self.session.click(*self.item.centre, button))
        if menu:
            self.drawn_by.add(menu.drawn_by)
        return menu

    def chooses_by_keys(self):
        return self._chooses(lambda: self.session.keys(*MINIMIZE))

    def chooses_by_pointer(self, menu):
        def act():
            submenu = self.screen.open_menu(lambda: self.session.click(*down(menu.place, WORKSPACE)), menu)
            if submenu:
                self.session.click(*down(submenu.place, FIRST))
        return self._chooses(act)

    def _chooses(self, act):
        """Whether what is chosen so in the open menu reaches the service."""
        before = self.session.log("service").count(MINIMIZED)
        act()
        return self.session.wait(lambda: self.session.log("service").count(MINIMIZED) > before, 5) is not None


class Fault(Exception):
    """What keeps a question from being answered with yes."""


def once(work):
    work.the_item()
    return ""


def size(work):
    return rules.size_fault(work.the_item(), work.session.panels())


def left(work):
    work.the_item()
    menu = work.menu_at(1)
    if not menu:
        return "no menu opens"
    work.menu = menu
    picture, part = work.screen.picture_with(rules.around([menu.place, work.item]))
    save_for_page(picture, work.picture, part)
    work.screen.close_menu(menu, work.item)
    return ""


def right(work):
    work.the_item()
    menu = work.menu_at(3)
    if not menu:
        return "no menu opens"
    chosen = work.chooses_by_pointer(menu)
    work.screen.close_menu(menu, work.item)
    distance = rules.menu_fault(menu.place, work.item)
    return distance or ("" if chosen else "what is chosen in it does not reach the service")


def near(work):
    if not work.menu:
        return "there is no menu"
    return rules.menu_fault(work.menu.place, work.item)


def choice(work):
    work.the_item()
    menu = work.menu_at(1)
    if not menu:
        return "no menu opens"
    chosen = work.chooses_by_pointer(menu)
    work.screen.close_menu(menu, work.item)
    return "" if chosen else "nothing reaches the service"


def keyboard(work):
    """By kivshowmenu, which a key or a launcher runs, for one who has no mouse: nothing has pressed the item before,
    without which some panels tell nobody where it is."""
    work.the_item()
    work.session.point(*work.screen.free_place())
    menu = work.screen.open_menu(work.session.show_menu)
    if not menu:
        return "no menu opens"
    chosen = work.chooses_by_keys()
    work.screen.close_menu(menu, work.item)
    faults = [rules.menu_fault(menu.place, work.item), "" if chosen else "the menu takes no keys"]
    return " and ".join(filter(None, faults))


def alert(work):
    """About, which is the last entry."""
    work.the_item()
    menu = work.screen.open_menu(work.session.show_menu)
    if not menu:
        return "no menu opens"
    shown = work.screen.new_agent_window(lambda: work.session.click(*down(menu.place, ABOUT)))
    if not shown:
        work.screen.close_menu(menu, work.item)
        return "none is seen"
    work.session.keys("Escape")
    if work.session.wait(lambda: not work.screen.big_windows(), 5) is None:
        work.session.click(*down(shown, 0.9))
        return "it takes no keys"
    return ""


def reader(work):
    """Orca, with the keyboard alone; the item gets that as a panel gives it."""
    work.the_item()
    keys, windows = work.session.keys, work.session.windows
    acts = [("the item", "Kivune Menu", lambda: windows.give_keyboard_to_item(True)),
            ("its menu", "popup menu", lambda: [windows.give_keyboard_to_item(False), work.session.show_menu()]),
            ("the first entry", "Switch Resolution", lambda: keys("Down")),
            ("the last one", "About", lambda: keys("Up")),
            ("the alert", "alert", lambda: keys("Return")),
            ("its button", "button", lambda: None),
            ("a pop-up", "Good morning", lambda: [keys("Escape"), work.session.tell("hint Good morning")])]
    orca = ScreenReader(work.session)
    try:
        work.session.wait(lambda: "tells a screen reader" in work.session.log("agent"), 20, "what the agent tells readers")
        for what, words, act in acts:
            act()
            work.said[what] = orca.hears(words)
    finally:
        orca.close()
        for place in work.screen.big_windows().values():
            work.session.click(place.centre[0], place.bottom - 26)
    unsaid = [what for what, text in work.said.items() if not text]
    return "Orca says nothing of " + " and ".join(unsaid) if unsaid else ""


def flags(work):
    for number in range(ROUNDS):
        work.session.tell("flags 0")
        if number % 2: # With time for the panel to follow, and without.
            work.session.picture()
        work.session.tell(f"flags {SHOWN | ACTIVE}")
    work.the_item()
    return ""


def restart(work):
    work.session.kill_panel()
    work.session.start_panel()
    work.the_item()
    return ""


def handover(work):
    """Another panel takes over while the desktop's own is away, and goes when that one is to come back."""
    work.session.kill_panel()
    # A shell that stays is in front of what stands in the place of its bar.
    edge = "top" if work.session.description.panel else "bottom"
    other = work.session.logged("other-panel", private_desktop.panel(work.session.folder(), "right", edge))
    try:
        if work.session.wait(work.session.windows.tray_owner, 30) is None:
            raise Fault("the other panel gets no tray")
        work.the_item()
    finally:
        work.session.end(other)
        work.session.start_panel()
    work.the_item()
    return ""


@contextlib.contextmanager
def pop_up(work):
    place = work.screen.new_agent_window(lambda: work.session.tell("hint Good morning"))
    if not place:
        raise Fault("no pop-up comes")
    yield place
    # Its button is at the bottom; and it goes by itself after half a minute.
    work.session.click(place.centre[0], place.bottom - 26)
    work.session.wait(lambda: not work.screen.big_windows(), 45)


def corner(work):
    with pop_up(work) as place:
        windows = work.session.windows
        return rules.pop_up_fault(place, windows.screen(), work.session.panels(), windows.standing_items())


def focus(work):
    """A program's window has the keyboard, and keeps it."""
    program = work.session.logged("writer", ["xmessage", "-geometry", "300x200+300+300", "here"])
    try:
        found = work.session.wait(lambda: [window for window in work.session.windows.seen()
                                           if "xmessage" in window.program], 10)
        if not found:
            raise Fault("no program has a window")
        work.session.click(*found[0].place.centre)
        work.session.windows.set_focus(found[0].number) # A click does nothing without a window manager.
        work.session.still_picture()
        before = work.session.windows.focus()
        with pop_up(work):
            after = work.session.windows.focus()
        return "" if before == after else f"the keyboard goes from {before} to {after}"
    finally:
        work.session.end(program)


def second(work):
    """Another session of the same user shares the bus. First it has no panel, and its item must not come into this
    one's; then it has one of its own."""
    with Session(OTHER, work.session.build, beside=work.session) as other:
        registered = work.session.registered_items()
        other.start_agent()
        beside = AtWork(other, None)
        seen_apart(work, beside)
        other.logged("panel", PANEL)
        other.wait(other.windows.tray_owner, 30, "the other session's tray")
        seen_apart(work, beside)
        if work.session.registered_items() - registered:
            raise Fault("this session's panel has been told of the other's item")
    work.the_item()
    return ""


def seen_apart(work, beside):
    """Each session has its item; what the other's service does to its own is seen there, and nowhere here."""
    for _ in range(TRIES):
        beside.the_item()
        work.the_item()
        before = beside.session.still_picture(), work.session.still_picture()
        beside.session.tell("flags 0")
        beside.session.wait(lambda: changes(before[0], beside.session.picture(), 8, beside.item), 10,
                            "the end of the other's item")
        changed = changes(before[1], work.session.still_picture(), 8)
        beside.session.tell(f"flags {SHOWN | ACTIVE}")
        if not changed:
            return
    raise Fault("the other session's item is here, too")


# In the order of the page, which is that in which they are asked.
QUESTIONS = {
    "once": ("the item is there, once", once),
    "size": ("it has a size for the panel", size),
    "keyboard": ("the menu by keyboard, before the mouse has touched the item", keyboard),
    "left": ("a left click opens the menu", left),
    "near": (f"at most {rules.MAX_MENU_DISTANCE} px from the item", near),
    "right": ("a right click does so, too", right),
    "choice": ("a choice reaches the service", choice),
    "alert": ("About, and its end by keyboard", alert),
    "corner": ("the pop-up is in its place", corner),
    "focus": ("it takes no keyboard", focus),
    "reader": ("Orca reads it all", reader),
    "flags": (f"once after {ROUNDS} rounds of flags", flags),
    "second": ("a second session has its own", second),
    "handover": ("another panel takes over, and gives back", handover),
    "restart": ("the panel is killed and comes back", restart),
}
