"""LXQt's panel above Openbox."""

from tests.desktops.description import Description

PANEL = """panels=panel1

[panel1]
alignment=-1
desktop=0
lineCount=1
panelSize=32
plugins=taskbar, statusnotifier, tray
position=Bottom
width=100
width-percent=true

[taskbar]
type=taskbar

[statusnotifier]
alignment=Right
type=statusnotifier

[tray]
alignment=Right
type=tray
"""

DESKTOPS = {"lxqt": Description(
    title="LXQt",
    packages=("lxqt-panel", "openbox"),
    programs={"window-manager": ["openbox", "--sm-disable"], "lxqt-panel": ["lxqt-panel"]},
    panel=("lxqt-panel",),
    cannot={"keyboard": "the panel tells where the item is only with a click, so that kivshowmenu opens the menu at the "
                        "pointer"},
    files={".config/lxqt/panel.conf": PANEL},
    environment={"XDG_CURRENT_DESKTOP": "LXQt", "XDG_CONFIG_DIRS": "/etc/xdg:/usr/share"},
)}
