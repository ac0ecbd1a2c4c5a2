"""sway with waybar. The agent is a program for X11 and so runs in Xwayland."""

from tests.desktops.description import Description
from tests.desktops.support.rules import Box
from tests.desktops.support.sway_session import SwaySession

BAR = """{"layer": "top", "position": "top", "height": 30, "modules-left": ["sway/workspaces"], "modules-right": ["tray"],
 "tray": {"icon-size": 20, "spacing": 8}}
"""

DESKTOPS = {"sway": Description(
    title="sway with waybar",
    packages=("sway", "waybar", "xwayland"),
    programs={"waybar": ["waybar"]},
    panel=("waybar",),
    files={".config/waybar/config": BAR},
    environment={"XDG_CURRENT_DESKTOP": "sway"},
    cannot={"keyboard": "sway gives the menus of X programs no keyboard"},
    remarks="A press in a submenu of the agent's own menu closes it there and chooses nothing; in the menu that waybar "
            "draws at a press of the right button all can be chosen.",
    bars=(Box(0, 0, 1280, 30),),
    session=SwaySession,
)}
