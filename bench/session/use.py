"""Using a program as its user does."""

import contextlib
import subprocess
import time


def _is_big(window):
    return not window.embedded and window.width > 40 and window.height > 40


def _close(desktop, window, act):
    """Repeats what closes the window until it has gone: it takes input only some time after it has come up."""
    for _ in range(40):
        act()
        with contextlib.suppress(TimeoutError):
            desktop.watch.wait_for("unmap", 0.25, lambda event: event.window == window)
            return
    raise TimeoutError("a window does not close")


def open_menu(desktop, button):
    """Opens the item's menu. The event of its coming up, and the seconds from the press until then."""
    desktop.watch.forget()
    pressed = desktop.watch.click(*desktop.watch.centre_of(desktop.watch.item()), button)
    menu = desktop.watch.wait_for("map", 10, _is_big)
    return menu, menu.time - pressed


def open_and_close_menu(desktop, button):
    """Seconds from the press until the menu was there."""
    menu, took = open_menu(desktop, button)
    time.sleep(0.02)
    _close(desktop, menu.window, lambda: desktop.watch.press("Escape"))
    return took


def show_about(desktop):
    """Chooses the last entry of the agent's menu, which brings an alert, and closes that."""
    menu, _ = open_menu(desktop, 1)
    time.sleep(0.2)
    desktop.watch.press("Up")
    desktop.watch.press("Return")
    alert = desktop.watch.wait_for("map", 10, lambda window: _is_big(window) and window.window != menu.window)
    time.sleep(0.2)
    _close(desktop, alert.window, lambda: desktop.watch.press("Escape"))


class Questions:
    """Has the agent ask whether the session is to be disconnected, as a service allows it, and refuses each time."""

    def __init__(self, place, desktop, agent):
        self._desktop = desktop
        # Its input stays open: with it the service would end.
        self._service = desktop.start([place.build("sbin/kivservice"), "attach", "--pid", str(agent)],
                                      stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, bufsize=1)
        if not self._service.stdout.readline().startswith("attached"):
            raise RuntimeError("the agent has no service")
        self._service.stdin.write("flags 6\nactions 32792\n")

    def ask_and_refuse(self):
        menu, _ = open_menu(self._desktop, 1)
        time.sleep(0.05)
        watch = self._desktop.watch
        for key in ("Down", "Down", "Down", "Return"):
            watch.press(key)
        question = watch.wait_for("map", 10, lambda window: _is_big(window) and window.window != menu.window)
        time.sleep(0.05)
        _close(self._desktop, question.window, lambda: watch.press("Escape"))


class Hints:
    """Has texts shown in a pop-up, by the agent or by a notification daemon, and closes each by a click."""

    def __init__(self, place, desktop, agent=None):
        self._desktop = desktop
        self._is_agent = agent is not None
        words = ["agent", str(agent)] if self._is_agent else ["daemon"]
        self._sender = desktop.start([place.program("hintsender"), *words], stdin=subprocess.PIPE,
                                     stdout=subprocess.PIPE, text=True, bufsize=1)
        if self._sender.stdout.readline() != "ready\n":
            raise RuntimeError("the agent receives no events")

    def show_and_close(self, text):
        """Seconds from the sending until the pop-up was there."""
        watch = self._desktop.watch
        watch.move(400, 700)
        watch.forget()
        self._sender.stdin.write(text + "\n")
        sent = int(self._sender.stdout.readline()) / 1e9
        pop_up = watch.wait_for("map", 10, _is_big)
        time.sleep(0.02)
        x, y, width, height = watch.place_of(pop_up.window)
        # Ours has a button at the bottom; the others close wherever they are clicked.
        bottom = 26 if self._is_agent else height // 2
        _close(self._desktop, pop_up.window, lambda: watch.click(x + width // 2, y + height - bottom))
        return pop_up.time - sent
