"""polybar above a small window manager."""

from tests.desktops.description import Description

CONFIGURATION = """[bar/top]
width = 100%
height = 28
background = #303848
foreground = #e0e4ec
font-0 = DejaVu Sans:size=10;2
modules-left = title
modules-right = tray

[module/title]
type = internal/xwindow

[module/tray]
type = internal/tray
tray-size = 22px
"""

DESKTOPS = {"polybar": Description(
    title="polybar",
    packages=("polybar", "openbox"),
    programs={"window-manager": ["openbox", "--sm-disable"], "polybar": ["polybar", "top"]},
    panel=("polybar",),
    files={".config/polybar/config.ini": CONFIGURATION},
)}
