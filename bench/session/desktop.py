"""A desktop of a program's own: X server, message bus, home, and a panel that takes status items."""

from bench.session.watch import Watch
from tools.desktop import private_desktop
from tools.desktop.children import descendants, wait_until
from tools.desktop.running_desktop import RunningDesktop


class Desktop(RunningDesktop):
    """One whose windows are watched."""

    def __init__(self, place, panel=True, environment=None):
        self.place = place
        self._environment = environment or {}
        self.watch = None
        super().__init__("bench-")
        try:
            self.watch = Watch(place.program("xwatch"), self.environment())
            if panel:
                self._start_panel()
        except BaseException:
            self.close()
            raise

    def _start_panel(self):
        self.panel = self.start(private_desktop.panel(self._work))
        # It waits ten seconds or so for a window manager, of which xwatch has set the property that it looks for.
        wait_until(self.watch.tray, 30, "the panel")

    def environment(self):
        return super().environment() | self._environment

    def processes_of(self, process):
        """A program's processes: itself, those below it, and those that the bus was made to start."""
        return [process.pid] + descendants(process.pid) + descendants(self._bus.pid)

    def server_processes(self):
        """The X server's, the bus's and the panel's processes."""
        return [process.pid for process in self._started[:3]]

    def close(self):
        if self.watch:
            self.watch.close()
        super().close()
