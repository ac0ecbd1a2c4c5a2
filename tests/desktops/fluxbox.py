"""The toolbar of Fluxbox, which is the window manager itself."""

from tests.desktops.description import Description

# A clock without seconds, and no wallpaper, for which another program would be wanted.
INIT = """session.screen0.strftimeFormat: %H:%M
session.styleOverlay: ~/.fluxbox/overlay
"""

DESKTOPS = {"fluxbox": Description(
    title="Fluxbox",
    packages=("fluxbox",),
    programs={"fluxbox": ["fluxbox"]},
    panel=("fluxbox",),
    files={".fluxbox/init": INIT, ".fluxbox/overlay": "background: none\n"},
)}
