"""Plasma's shell, window manager and daemon, which has the watcher of items; with the proxy for windows, or without."""

from tests.desktops.description import Description

ENVIRONMENT = {"XDG_CURRENT_DESKTOP": "KDE", "KDE_FULL_SESSION": "true", "KDE_SESSION_VERSION": "6",
               "QT_QUICK_BACKEND": "software", "KWIN_COMPOSE": "N", "XDG_MENU_PREFIX": "plasma-"}
COMMON = {
    "packages": ("plasma-desktop", "plasma-workspace", "kwin-x11", "kded6"),
    "environment": ENVIRONMENT,
    "on_debian": {"12": {"packages": ("plasma-desktop", "plasma-workspace", "kwin-x11", "kded5"),
                         "environment": ENVIRONMENT | {"KDE_SESSION_VERSION": "5"}}},
}
KDED = ["sh", "-c", 'exec "kded$KDE_SESSION_VERSION"']
PROGRAMS = {"window-manager": ["kwin_x11"], "kded": KDED, "plasmashell": ["plasmashell"]}


DESKTOPS = {
    "plasma": Description(title="Plasma", programs=PROGRAMS, panel=("plasmashell",), **COMMON),
    "plasma-proxy": Description(
        title="Plasma's proxy for windows",
        programs=PROGRAMS | {"xembedsniproxy": ["xembedsniproxy"]}, panel=("plasmashell", "xembedsniproxy"),
        has_own_bus=True,
        cannot={"keyboard": "until it is pressed, the proxy keeps the item's window in the screen's upper left corner"},
        remarks="The agent is on a bus of its own, as one that is started over ssh or by another user's hand, and finds "
                "the panel's host for items on none. So its item comes into the tray, which Plasma's proxy owns and shows "
                "the panel a picture of. An agent on the desktop's bus never goes that way.", **COMMON),
}
