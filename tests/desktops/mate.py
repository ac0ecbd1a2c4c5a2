"""MATE's panel with its usual layout, and its window manager."""

from tests.desktops.description import Description

DESKTOPS = {"mate": Description(
    title="MATE",
    packages=("mate-panel", "marco", "mate-settings-daemon"),
    programs={"mate-settings-daemon": ["/usr/libexec/mate-settings-daemon"], "window-manager": ["marco"],
              "mate-panel": ["mate-panel"]},
    panel=("mate-panel",),
    setup=(["gsettings", "set", "org.mate.Marco.general", "compositing-manager", "false"],),
    environment={"XDG_CURRENT_DESKTOP": "MATE"},
)}
