"""The fonts that a session has: what a small server has, or some hundreds more.

They are not installed, for then every other figure would be measured with them.
"""

import glob
import os
import subprocess

_SMALL_SERVER = "/usr/share/fonts/truetype/dejavu"
_HUNDREDS = "fonts-noto-core"  # The Debian package with a font for nearly every script.

_CONFIGURATION = """<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">
<fontconfig>
  {folders}
  <cachedir>{cache}</cachedir>
  <include ignore_missing="yes">/etc/fonts/conf.d</include>
</fontconfig>
"""


def few(place):
    """The environment of a session with the fonts of a small server."""
    return _environment(place, "few", [_SMALL_SERVER])


def many(place):
    """The environment of a session with these and some hundreds more."""
    return _environment(place, "many", [_SMALL_SERVER, _unpacked(place)])


def _environment(place, name, folders):
    own = place.build(f"fonts/{name}")
    os.makedirs(own, exist_ok=True)
    configuration = os.path.join(own, "fonts.conf")
    with open(configuration, "w", encoding="utf-8") as file:
        file.write(_CONFIGURATION.format(folders="".join(f"<dir>{folder}</dir>" for folder in folders),
                                         cache=os.path.join(own, "cache")))
    environment = {"FONTCONFIG_FILE": configuration}
    # Reads them all now, lest the first program that is measured does.
    subprocess.run(["fc-cache"], env=os.environ | environment, check=True)
    return environment


def _unpacked(place):
    """The folder with the package's fonts, which is fetched the first time."""
    folder = place.build("fonts/package")
    if not glob.glob(folder + "/usr/share/fonts/**/*.ttf", recursive=True):
        os.makedirs(folder, exist_ok=True)
        subprocess.run(["apt-get", "download", "-q", _HUNDREDS], cwd=folder, check=True)
        subprocess.run(["dpkg", "-x", glob.glob(f"{folder}/{_HUNDREDS}_*.deb")[0], folder], check=True)
    return folder
