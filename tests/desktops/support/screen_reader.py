"""Orca in a session, and what it says: its own account of it, for nothing is to be heard here."""

import re

PACKAGES = ("orca", "at-spi2-core", "speech-dispatcher")
# It writes to a terminal line by line, and to a file when it has much to say.
COMMAND = ["script", "--quiet", "--flush", "--command", "orca --replace --debug-file=/dev/tty", "/dev/stdout"]
SPEECH = re.compile(r"SPEECH OUTPUT: '(.*?)' \{", re.DOTALL)


def said_in(log):
    """What it has said, in one line each."""
    return [" ".join(text.split()) for text in SPEECH.findall(log)]


class ScreenReader:
    def __init__(self, session):
        self._session = session
        # Programs tell readers nothing unless the desktop says that there is one.
        session.run("gsettings", "set", "org.gnome.desktop.interface", "toolkit-accessibility", "true")
        self._process = session.logged("orca", COMMAND)
        self._heard = 0
        self.hears("Screen reader on", 60)

    def hears(self, words, seconds=20):
        """What is said next with these words in it; nothing when they do not come."""
        def found():
            said = said_in(self._session.log("orca"))
            for number, text in enumerate(said[self._heard:], self._heard):
                if words in text:
                    self._heard = number + 1
                    return text
            return None
        return self._session.wait(found, seconds)

    def close(self):
        self._session.end(self._process)
        self._session.run("gsettings", "set", "org.gnome.desktop.interface", "toolkit-accessibility", "false")
