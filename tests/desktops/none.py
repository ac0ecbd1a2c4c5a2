"""A session with nothing in it."""

from tests.desktops.description import Description

DESKTOPS = {"none": Description(
    title="No window manager",
    packages=(),
    programs={},
    panel=(),
    remarks="Nothing but the X server runs: the item stands at the top of the screen by itself.",
)}
