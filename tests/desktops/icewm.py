"""The taskbar of icewm, which is the window manager itself."""

from tests.desktops.description import Description

# Nothing in the taskbar that changes by itself.
PREFERENCES = """TaskBarShowCPUStatus=0
TaskBarShowMEMStatus=0
TaskBarShowNetStatus=0
TimeFormat="%H:%M"
"""

DESKTOPS = {"icewm": Description(
    title="icewm",
    packages=("icewm",),
    programs={"icewm": ["icewm"]},
    panel=("icewm",),
    files={".icewm/preferences": PREFERENCES},
)}
