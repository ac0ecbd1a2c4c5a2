"""The other end of xwatch: what happens on a display, with the time at which it happened."""

import collections
import queue
import subprocess
import threading
import time

KEYS = {"Escape": 9, "Return": 36, "Up": 111, "Down": 116}  # Codes of the X server's keyboard.

WindowEvent = collections.namedtuple("WindowEvent", "time kind window x y width height embedded")


class Watch:
    """Follows the windows of one display and works its pointer. Times are in seconds of CLOCK_MONOTONIC."""

    def __init__(self, program, environment):
        self._process = subprocess.Popen([program], env=environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                         text=True, bufsize=1)
        self._events = queue.Queue()
        self._answers = queue.Queue()
        self._items = []
        threading.Thread(target=self._read, daemon=True).start()
        self._answers.get(timeout=10)

    def _read(self):
        for line in self._process.stdout:
            at, kind, *words = line.split()
            if kind == "done":
                self._answers.put((int(at) / 1e9, words))
            else:
                window, x, y, width, height = map(int, words[:5])
                embedded = words[5] == "embedded"
                if window in self._items:
                    self._items.remove(window)
                if kind == "map" and embedded:
                    self._items.append(window)
                self._events.put(WindowEvent(int(at) / 1e9, kind, window, x, y, width, height, embedded))

    def _tell(self, line):
        self._process.stdin.write(line + "\n")
        return self._answers.get(timeout=10)

    @staticmethod
    def time():
        """The present time of the same clock."""
        return time.clock_gettime(time.CLOCK_MONOTONIC)

    def click(self, x, y, button=1):
        """The time of the press."""
        return self._tell(f"click {x} {y} {button}")[0]

    def move(self, x, y):
        self._tell(f"move {x} {y}")

    def press(self, key):
        self._tell(f"key {KEYS[key]}")

    def change_root_property(self):
        self._tell("change")

    def tray(self):
        return int(self._tell("tray")[1][0])

    def item(self):
        """The window that stands in the tray."""
        return self._items[-1]

    def place_of(self, window):
        """x, y, width and height on the screen."""
        return tuple(map(int, self._tell(f"place {window}")[1]))

    def centre_of(self, window):
        x, y, width, height = self.place_of(window)
        return x + width // 2, y + height // 2

    def forget(self):
        """What has happened so far is not waited for."""
        while not self._events.empty():
            self._events.get()

    def wait_for(self, kind, seconds, fits):
        """The first event of that kind ("map" or "unmap") from now or since forget() that fits."""
        deadline = self.time() + seconds
        while True:
            try:
                event = self._events.get(timeout=max(0.0, deadline - self.time()))
            except queue.Empty:
                raise TimeoutError(f"no window to {kind}: not within {seconds} s") from None
            if event.kind == kind and fits(event):
                return event

    def close(self):
        self._process.stdin.close()
        self._process.wait()
