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
    "first_keys": ("Escape",), # It begins with the overview.
    "environment": {"XDG_CURRENT_DESKTOP": "GNOME", "XDG_MENU_PREFIX": "gnome-"},
}

DESKTOPS = {
    "gnome": Description(
        title="GNOME with the AppIndicator extension",
        packages=("gnome-shell", "mutter", "gnome-shell-extension-appindicator"),
        panel=("gnome-shell",),
        setup=(["gsettings", "set", "org.gnome.shell", "enabled-extensions", f"['{EXTENSION}']"],
               ["gsettings", "set", "org.gnome.shell", "welcome-dialog-last-shown-version", "99"]),
        **COMMON),
    "gnome-stock": Description(
        title="GNOME as it comes",
        packages=("gnome-shell", "mutter"),
        panel=(),
        setup=(["gsettings", "set", "org.gnome.shell", "welcome-dialog-last-shown-version", "99"],),
        cannot={name: "the shell takes all input over its panel, where the item stands; kivshowmenu opens the menu"
                for name in ("left", "near", "right", "choice")},
        remarks="The shell shows no items of programs: ours stands at the top of the screen by itself.",
        **COMMON),
}
