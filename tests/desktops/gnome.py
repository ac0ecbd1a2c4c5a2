"""GNOME's shell, with the extension that shows items, and without."""

from tests.desktops.description import Description

EXTENSION = "ubuntu-appindicators@ubuntu.com"
COMMON = {
    # The shell does not start without a system bus; there is nobody on this one.
    "programs": {
        "system-bus": ["sh", "-c", 'exec dbus-daemon --session --nofork --nopidfile --address="$DBUS_SYSTEM_BUS_ADDRESS"'],
        "gnome-shell": ["sh", "-c", 'until test -S "${DBUS_SYSTEM_BUS_ADDRESS#unix:path=}"; do sleep 0.1; done; '
                                    'exec gnome-shell --x11'],
    },
    "setup": (["gsettings", "set", "org.gnome.shell", "welcome-dialog-last-shown-version", "99"],
              ["gsettings", "set", "org.gnome.desktop.notifications", "show-banners", "false"]),
    "first_keys": ("Escape",), # It begins with the overview.
    "environment": {"XDG_CURRENT_DESKTOP": "GNOME", "XDG_MENU_PREFIX": "gnome-"},
}

DESKTOPS = {
    "gnome": Description(
        title="GNOME with the AppIndicator extension",
        packages=("gnome-shell", "mutter", "gnome-shell-extension-appindicator"),
        panel=("gnome-shell",),
        remarks="The extension takes icons of the X tray as well as StatusNotifierItems, and ours goes into the tray on "
                "purpose. Both look the same at a scale of 1 and of 2. But our menu is there as soon as the "
                "item is clicked, and kivshowmenu knows from the start where the item is; before the menu of a "
                "StatusNotifierItem the extension waits whether there will be a second click, 0.6 s in all. With its setting "
                "`legacy-tray-enabled` off the item is a StatusNotifierItem, and the menu is the shell's own.",
        **COMMON | {"setup": (["gsettings", "set", "org.gnome.shell", "enabled-extensions", f"['{EXTENSION}']"],
                              *COMMON["setup"])}),
    "gnome-stock": Description(
        title="GNOME as it comes",
        packages=("gnome-shell", "mutter"),
        panel=(),
        remarks="The shell shows no items of programs: ours stands under the top bar by itself.",
        **COMMON),
}
