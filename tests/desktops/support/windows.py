"""The windows of an X display, as its server has them."""

import typing

from PIL import Image
from Xlib import X, Xatom, display, error
from Xlib.protocol import display as protocol, event

from tests.desktops.support.rules import Box

AGENT = "kivmenua"


class Window(typing.NamedTuple):
    number: int
    place: Box
    program: tuple    # By its names in WM_CLASS.
    is_top: bool      # Of the root's own children.

    @property
    def is_agents(self):
        return AGENT in self.program


class Windows:
    """A connection to a display that lets this user in without a cookie."""

    def __init__(self, environment):
        # The library keeps the events of extensions for all displays, though servers number them differently.
        protocol.Display.event_classes = event.event_class.copy()
        self._display = display.Display(environment["DISPLAY"])
        self._root = self._display.screen().root

    def screen(self):
        size = self._root.get_geometry()
        return Box(0, 0, size.width, size.height)

    def seen(self):
        """All windows that are mapped, with all above them, and are on the screen."""
        return list(self._below(self._root, 0, 0, self.screen(), is_top=True))

    def _below(self, parent, x, y, screen, is_top=False):
        try:
            children = parent.query_tree().children
        except error.XError:
            return
        for child in children:
            try:
                if child.get_attributes().map_state != X.IsViewable:
                    continue
                size = child.get_geometry()
                program = child.get_wm_class() or ()
            except error.XError:
                continue # It has gone since.
            place = Box(x + size.x + size.border_width, y + size.y + size.border_width, size.width, size.height)
            if place.overlaps(screen):
                yield Window(child.id, place, program, is_top)
            yield from self._below(child, place.x, place.y, screen)

    def picture(self):
        """What the screen shows."""
        screen = self.screen()
        image = self._root.get_image(0, 0, screen.width, screen.height, X.ZPixmap, 0xffffffff)
        return Image.frombytes("RGB", (screen.width, screen.height), image.data, "raw", "BGRX")

    def focus(self):
        """What has the keyboard: by the server, and by the window manager."""
        focus = self._display.get_input_focus().focus
        active = self._cardinals(self._root, "_NET_ACTIVE_WINDOW", Xatom.WINDOW)
        return getattr(focus, "id", focus), active[:1]

    def set_focus(self, number):
        self._display.create_resource_object("window", number).set_input_focus(X.RevertToParent, X.CurrentTime)
        self._display.sync()

    def are_managed(self):
        return bool(self._cardinals(self._root, "_NET_SUPPORTING_WM_CHECK", Xatom.WINDOW))

    def tray_owner(self):
        """The window of the tray; 0 where there is none."""
        owner = self._display.get_selection_owner(self._display.intern_atom("_NET_SYSTEM_TRAY_S0"))
        return getattr(owner, "id", owner)

    def panels(self):
        """What the window manager keeps clear for panels, and the windows that say that they are one."""
        screen = self.screen()
        area = Box(*(self._cardinals(self._root, "_NET_WORKAREA", Xatom.CARDINAL) or screen)[:4])
        sides = [Box(0, 0, screen.width, area.y), Box(0, area.bottom, screen.width, screen.bottom - area.bottom),
                 Box(0, 0, area.x, screen.height), Box(area.right, 0, screen.right - area.right, screen.height)]
        kind = self._display.intern_atom("_NET_WM_WINDOW_TYPE")
        dock = self._display.intern_atom("_NET_WM_WINDOW_TYPE_DOCK")
        docks = []
        for window in self.seen():
            try:
                value = self._display.create_resource_object("window", window.number).get_full_property(kind, Xatom.ATOM)
            except error.XError:
                continue
            if value and dock in value.value:
                docks.append(window.place)
        return [panel for panel in [*sides, *docks] if panel.width > 1 and panel.height > 1]

    def _cardinals(self, window, name, kind):
        value = window.get_full_property(self._display.intern_atom(name), kind)
        return list(value.value) if value else []
