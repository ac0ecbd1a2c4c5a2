#!/usr/bin/python3 -IS
"""A private desktop, for whoever wants to try the agent without disturbing, or being disturbed by, anybody else.

    private_desktop.py PART FOLDER [ARGUMENT...]

All of a desktop lies in FOLDER, which nobody else may enter. This program writes the files that a part needs there and
then becomes the part, so that whoever called it has the process of the X server, the bus or the panel itself, to
watch, to stop and to start again. A part needs those above it:

    server [ARGUMENT...]    a remote-desktop X server on a free display, whose number it prints once it takes clients;
                            viewers connect to the socket FOLDER/rfb. Arguments of the server's own win over those here
    server-with-rates [ARGUMENT...]
                            in its place, one without viewers that lists sizes at several refresh rates, as a screen does
    bus                     a message bus at the socket FOLDER/bus; prints a line once it listens
    window-manager
    panel [SIDE [EDGE [GAP [THICKNESS [MONITOR]]]]]
                            the panel of resources/demo, with its tray at the right end or at the left, along the top
                            edge or another, with so many pixels between; so many pixels thick; on the main monitor
                            (primary) or that of the number

Two words start nothing:

    environment [DISPLAY]   makes the home, and prints as lines NAME=VALUE what a program of the desktop has in its
                            environment
    bundle BUILD PROGRAM [KEY=VALUE...]
                            makes FOLDER a copy of the agent built in BUILD, where PROGRAM (bin/kivmenua) is its
                            program, with these values in its information dictionary

The same as a module: functions that return the command to run, or the environment.
"""

import os
import struct
import sys

PANEL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../resources/demo/tint2rc")

# Without AutoAddDevices it would take the machine's own keyboard and mouse.
XORG_CONFIGURATION = """
Section "ServerFlags"
    Option "AutoAddDevices" "false"
    Option "AutoAddGPU" "false"
EndSection
Section "Monitor"
    Identifier "Monitor"
    HorizSync 15-100
    VertRefresh 50-90
EndSection
Section "Device"
    Identifier "Device"
    Driver "dummy"
    VideoRam 65536
EndSection
Section "Screen"
    Identifier "Screen"
    Device "Device"
    Monitor "Monitor"
    DefaultDepth 24
    SubSection "Display"
        Depth 24
        Modes "1280x1024"
    EndSubSection
EndSection
"""


def _write(path, content):
    """Writes a file that only this user reads."""
    descriptor = os.open(path, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o600)
    with os.fdopen(descriptor, "wb") as file:
        file.write(content)
    return path


def _authority(folder):
    """The path of an X authority file, Xau(3), with a new cookie for every display of this host."""
    def counted(text):
        return struct.pack(">H", len(text)) + text
    wild_family = b"\xff\xff"
    return _write(os.path.join(folder, "authority"),
                  wild_family + counted(b"") + counted(b"") + counted(b"MIT-MAGIC-COOKIE-1") + counted(os.urandom(16)))


def _closed(folder):
    """Arguments of every X server: it names its display on standard output, and takes only who has the cookie."""
    return ["-displayfd", "1", "-auth", _authority(folder), "-nolisten", "tcp"]


def server(folder, *arguments):
    # -rfbport -1: no TCP port at all (0 would be a port on every interface).
    return ["Xtigervnc", *_closed(folder), "-SecurityTypes", "None", "-rfbport", "-1",
            "-rfbunixpath", os.path.join(folder, "rfb"), "-geometry", "1280x800", "-depth", "24",
            "-Log", "*:stderr:0", *arguments]


def server_with_rates(folder, *arguments):
    configuration = _write(os.path.join(folder, "xorg.conf"), XORG_CONFIGURATION.encode())
    return ["Xorg", *_closed(folder), "-config", configuration, "-logfile", os.path.join(folder, "xorg.log"),
            "-noreset", "-novtswitch", "-sharevts", "vt7", *arguments]


def bus(folder):
    return ["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address", "--address=" + _bus(folder)]


def _bus(folder):
    return "unix:path=" + os.path.join(folder, "bus")


def window_manager(_):
    return ["openbox", "--sm-disable"]


def panel(folder, side="right", edge="top", gap="0", thickness="30", monitor="primary"):
    """At the left end of the panel, the open menu of an item has room to its right, and leaves pop-ups in sight."""
    place = f"{edge} center horizontal" if edge in ("top", "bottom") else f"center {edge} vertical"
    with open(PANEL, encoding="utf-8") as file:
        text = file.read()
    for line, changed in (("panel_items = TFSC", "panel_items = SFTC" if side == "left" else "panel_items = TFSC"),
                          ("panel_position = top center horizontal", f"panel_position = {place}"),
                          ("panel_margin = 0 0", f"panel_margin = {gap} {gap}"),
                          ("panel_size = 100% 30", f"panel_size = 100% {thickness}"),
                          ("systray_icon_size = 22", f"systray_icon_size = {max(22, int(thickness) - 12)}"),
                          ("panel_monitor = primary", f"panel_monitor = {monitor}")):
        if text.count(f"\n{line}\n") != 1:
            sys.exit(f"{PANEL}: there is no line {line}")
        text = text.replace(f"\n{line}\n", f"\n{changed}\n")
    text = text.encode()
    return ["tint2", "-c", _write(os.path.join(folder, "tint2rc"), text)]


def environment(folder, display=""):
    """What differs from the caller's; display is ":7", or nothing before there is one. Makes the home."""
    for name in ("home", "runtime"):
        os.makedirs(os.path.join(folder, name), 0o700, exist_ok=True)
    return {
        "DISPLAY": display,
        "XAUTHORITY": os.path.join(folder, "authority"),
        "DBUS_SESSION_BUS_ADDRESS": _bus(folder),
        "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=" + os.path.join(folder, "no-system-bus"),
        "HOME": os.path.join(folder, "home"),
        "XDG_RUNTIME_DIR": os.path.join(folder, "runtime"),
    }


def bundle(folder, build, program, values):
    # These take longer to load than all else here takes to run.
    import plistlib  # pylint: disable=import-outside-toplevel
    import shutil  # pylint: disable=import-outside-toplevel
    os.makedirs(os.path.join(folder, "bin"))
    shutil.copy2(os.path.join(build, program), os.path.join(folder, "bin/kivmenua"))
    shutil.copy2(os.path.join(build, "bin/kivsettings"), os.path.join(folder, "bin"))
    for name in ("libexec", "share"):
        shutil.copytree(os.path.join(build, name), os.path.join(folder, name))
    path = os.path.join(folder, "share/kivmenua/Info.plist")
    with open(path, "rb") as file:
        information = plistlib.load(file)
    with open(path, "wb") as file:
        plistlib.dump(information | values, file)


PARTS = {"server": server, "server-with-rates": server_with_rates, "bus": bus, "window-manager": window_manager,
         "panel": panel}


def main(word="", folder="", *arguments):
    if word in PARTS and folder:
        command = PARTS[word](os.path.abspath(folder), *arguments)
        os.execvp(command[0], command)
    elif word == "environment" and folder:
        for name, value in environment(os.path.abspath(folder), *arguments).items():
            print(f"{name}={value}")
    elif word == "bundle" and len(arguments) >= 2:
        build, program, *values = arguments
        bundle(folder, build, program, dict(value.split("=", 1) for value in values))
    else:
        sys.exit(__doc__)


if __name__ == "__main__":
    main(*sys.argv[1:])
