"""Cinnamon, whose shell is the window manager and the panel."""

from tests.desktops.description import Description

DESKTOPS = {"cinnamon": Description(
    title="Cinnamon",
    packages=("cinnamon", "muffin"),
    programs={"cinnamon": ["cinnamon", "--replace"]},
    panel=("cinnamon",),
    setup=(["gsettings", "set", "org.cinnamon.desktop.background", "picture-options", "none"],
           ["gsettings", "set", "org.cinnamon.desktop.background", "primary-color", "#3b5b76"]),
    environment={"XDG_CURRENT_DESKTOP": "X-Cinnamon", "CLUTTER_VBLANK": "none"},
)}
