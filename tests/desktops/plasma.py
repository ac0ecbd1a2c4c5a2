"""Plasma's shell, window manager and daemon, which has the watcher of items; with the proxy for windows, or without."""

from tests.desktops.description import Description

COMMON = {
    "packages": ("plasma-workspace", "kwin-x11", "kded6"),
    "environment": {"XDG_CURRENT_DESKTOP": "KDE", "KDE_FULL_SESSION": "true", "KDE_SESSION_VERSION": "6",
                    "QT_QUICK_BACKEND": "software", "KWIN_COMPOSE": "N", "XDG_MENU_PREFIX": "plasma-"},
    "panel": ("plasmashell",),
}
PROGRAMS = {"window-manager": ["kwin_x11"], "kded": ["kded6"], "plasmashell": ["plasmashell"]}

POINTER = {"keyboard": "the panel tells where the item is only with a click, so that kivshowmenu opens the menu at the "
                       "pointer"}

DESKTOPS = {
    "plasma": Description(title="Plasma", programs=PROGRAMS, cannot=POINTER, **COMMON),
    "plasma-proxy": Description(title="Plasma with its proxy for windows",
                                programs=PROGRAMS | {"xembedsniproxy": ["xembedsniproxy"]}, cannot=POINTER, **COMMON),
}
