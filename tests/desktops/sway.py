"""sway with waybar. The agent is a program for X11 and so runs in Xwayland."""

from tests.desktops.description import Description
from tests.desktops.support.rules import Box
from tests.desktops.support.sway_session import SwaySession

# Higher than the place that a pop-up has where nothing is in its way.
HEIGHT = 40
BAR = """{"layer": "top", "position": "top", "height": HEIGHT, "modules-left": ["sway/workspaces"], "modules-right": ["tray"],
 "tray": {"icon-size": 20, "spacing": 8}}
"""

DESKTOPS = {"sway": Description(
    title="sway with waybar",
    packages=("sway", "waybar", "xwayland", "grim", "wtype"),
    programs={"waybar": ["waybar"]},
    panel=("waybar",),
    files={".config/waybar/config": BAR.replace("HEIGHT", str(HEIGHT))},
    environment={"XDG_CURRENT_DESKTOP": "sway"},
    remarks="Xwayland takes a press in a menu to be beside it when the pointer has come there in a single leap, which no "
            "hand does: the pointer goes in small steps here.",
    bars=(Box(0, 0, 1280, HEIGHT),),
    session=SwaySession,
)}
