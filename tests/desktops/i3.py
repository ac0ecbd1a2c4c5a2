"""i3, whose bar is a program of its own that the window manager starts anew."""

from tests.desktops.description import Description

CONFIGURATION = """# i3 config file (v4)
font pango:DejaVu Sans 10
bar {
    id bar-0
    i3bar_command true
    position bottom
}
"""

DESKTOPS = {"i3": Description(
    title="i3 (i3bar)",
    packages=("i3-wm",),
    programs={"i3": ["i3"], "i3bar": ["sh", "-c", "until i3-msg -t get_version; do sleep 0.2; done; exec i3bar --bar_id=bar-0"]},
    panel=("i3bar",),
    files={".config/i3/config": CONFIGURATION},
)}
