"""A session under sway, with nothing but memory for its screen. X programs, of which the agent is one, run in Xwayland."""

import time

from tests.desktops.support.session import Session
from tests.desktops.support.wayland_pointer import WaylandPointer

CONFIGURATION = """xwayland force
output HEADLESS-1 mode 1280x800
output * bg #3b5b76 solid_color
focus_follows_mouse no
exec env >"$XDG_RUNTIME_DIR/part" && mv "$XDG_RUNTIME_DIR/part" "$XDG_RUNTIME_DIR/variables"
"""
HEADLESS = {"WLR_BACKENDS": "headless", "WLR_RENDERER": "pixman", "WLR_LIBINPUT_NO_DEVICES": "1"}
WANTED = ("DISPLAY", "WAYLAND_DISPLAY", "SWAYSOCK")


class SwaySession(Session):
    camera = ("grim", "-t", "ppm")
    _variables = {}
    _pointer = None

    def _start_server(self):
        self.environment() # Makes the folders.
        configuration = self.folder("sway.conf")
        configuration.write_text(CONFIGURATION, encoding="utf-8")
        self.logged("sway", ["sway", "--config", configuration], environment=HEADLESS)
        file = self.folder("runtime/variables")
        self.wait(file.exists, 20, "sway")
        told = dict(line.split("=", 1) for line in file.read_text(encoding="utf-8").splitlines() if "=" in line)
        self._variables = {name: told[name] for name in WANTED}
        self._pointer = WaylandPointer(self.folder("runtime") / told["WAYLAND_DISPLAY"])
        return told["DISPLAY"]

    def environment(self):
        return super().environment() | {"XDG_SESSION_TYPE": "wayland"} | self._variables

    def point(self, x, y):
        screen = self.windows.screen()
        self._pointer.move(x, y, screen.width, screen.height)
        time.sleep(0.1)

    def click(self, x, y, button=1):
        self.point(x, y)
        for is_down in (True, False):
            self._pointer.press(button, is_down)
            time.sleep(0.05)

    def keys(self, *keys):
        for key in keys:
            self.run("wtype", "-s", "100", "-k", key)
            time.sleep(0.25)

    def close(self):
        if self._pointer:
            self._pointer.close()
        super().close()
