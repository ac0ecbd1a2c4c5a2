"""What a desktop is made of. A file of this folder describes one or two of them in its DESKTOPS."""

import dataclasses

from tests.desktops.support.session import Session


@dataclasses.dataclass(frozen=True)
class Description:
    title: str
    packages: tuple                 # Debian's, without what they depend on; the page tells their versions.
    programs: dict                  # Command by name, in the order of their start.
    panel: tuple                    # Which of them the item is in: these are killed and started again.
    files: dict = dataclasses.field(default_factory=dict)        # Text by path in the home, before anything starts.
    environment: dict = dataclasses.field(default_factory=dict)
    setup: tuple = ()               # Commands to run to their end before the programs.
    first_keys: tuple = ()          # What to press once the panel is up.
    bars: tuple = ()                # Boxes of panels of which the X server does not know.
    has_own_bus: bool = False       # The agent is on a bus of its own, where it finds nothing of the desktop.
    has_reader: bool = False        # Orca is started, and asked what it says.
    session: type = Session
    # Why something cannot be, by question: what the desktop does. It is asked all the same.
    cannot: dict = dataclasses.field(default_factory=dict)
    remarks: str = ""               # What a reader has to know of how it is run.
    on_debian: dict = dataclasses.field(default_factory=dict)    # Other values of these, by the release of Debian.

    def on(self, release):
        """The same on that Debian."""
        return dataclasses.replace(self, **self.on_debian.get(release, {}))
