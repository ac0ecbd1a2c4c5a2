"""What a user sees of the agent on a desktop: its item, its menu, its pop-up and its alert."""

import typing

from PIL import Image

from tests.desktops.support.pictures import changes, whole, without
from tests.desktops.support.rules import Box
from tests.desktops.support.session import ACTIVE, SHOWN

PARTS_OF_ITEM = 6  # What is so near in a picture belongs to one item.
PARTS_OF_MENU = 16
MIN_MENU = 100


class Menu(typing.NamedTuple):
    place: Box
    drawn_by: str          # "the agent", "the panel" in a window of its own, or "the shell" without one.
    before: Image.Image    # The screen without it.


class Screen:
    def __init__(self, session):
        self._session = session

    def items(self):
        """Where the screen changes with the item's picture, which is another one when the service makes it inactive. A
        clock may change at that moment, so that more than one counts when it is seen again."""
        found = []
        for _ in range(3):
            self._session.point(*self.free_place())
            active = self._session.still_picture()
            self._session.tell(f"flags {SHOWN}")
            inactive = self._session.still_picture()
            self._session.tell(f"flags {SHOWN | ACTIVE}")
            self._session.still_picture()
            found = changes(active, inactive, PARTS_OF_ITEM)
            if len(found) == 1:
                break
        return found

    def free_place(self):
        """Where the pointer is over no panel."""
        screen = self._session.windows.screen()
        return screen.width // 3, screen.height * 2 // 3

    def big_windows(self, of_agent=True):
        """By their number."""
        return {window.number: window.place for window in self._session.windows.seen()
                if window.is_agents == of_agent and (of_agent or window.is_top)
                and window.place.width >= MIN_MENU and window.place.height >= MIN_MENU}

    def open_menu(self, act, parent=None):
        """Does what ought to open a menu, below the parent if there is one, and returns it; nothing when none comes."""
        before = self._session.still_picture()
        windows = {of_agent: self.big_windows(of_agent) for of_agent in (True, False)}

        def new(of_agent):
            return [place for number, place in self.big_windows(of_agent).items() if number not in windows[of_agent]]

        looks = {"the agent": lambda: new(True), "the panel": lambda: new(False),
                 "the shell": lambda: self._big_changes(before, parent and parent.place)}
        act()
        self._session.wait(lambda: new(True) or new(False), 4)
        self._session.still_picture()
        for drawn_by, look in looks.items():
            if places := look():
                return Menu(places[0], drawn_by, before)
        return None

    def _big_changes(self, before, beside=None):
        return [box for box in changes(without(before, beside), without(self._session.picture(), beside), PARTS_OF_MENU)
                if box.width >= MIN_MENU and box.height >= MIN_MENU]

    def close_menu(self, menu, item):
        """By a key; where that does not help, by a click beside it, and then by one on the item. Whether it has closed."""
        def is_closed():
            return not self.big_windows() and not self._big_changes(menu.before)

        self._session.keys("Escape", "Escape")
        for place in (self.free_place(), item.centre):
            if self._session.wait(is_closed, 2) is None:
                self._session.click(*place)
        return self._session.wait(is_closed, 2) is not None

    def new_agent_window(self, act, seconds=10):
        """Where a window of the agent's comes up after that; nothing when none does."""
        before = self.big_windows()
        act()
        found = self._session.wait(
            lambda: [place for number, place in self.big_windows().items() if number not in before], seconds)
        if found:
            self._session.still_picture() # It may fade in or be moved.
            found = [place for number, place in self.big_windows().items() if number not in before] or found
        return found[0] if found else None

    def picture_with(self, place):
        """The screen, and the part of it that is about that."""
        picture = self._session.picture()
        return picture, place.grown(20, whole(picture))
