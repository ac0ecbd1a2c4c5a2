"""Where things lie: the source tree, the build of it that is measured, and the agent as it is measured."""

import http.server
import os
import shutil
import threading

from tools.desktop import private_desktop

_EMPTY_FEED = b'<?xml version="1.0" encoding="UTF-8"?>\n<supportMessages></supportMessages>\n'


class _Feed(http.server.BaseHTTPRequestHandler):
    """A feed without messages, so that the agent has what it asks for and shows nothing."""

    def do_GET(self):  # pylint: disable=invalid-name
        self.send_response(200)
        self.send_header("Content-Type", "text/xml")
        self.send_header("Content-Length", str(len(_EMPTY_FEED)))
        self.end_headers()
        self.wfile.write(_EMPTY_FEED)

    def log_message(self, *_):
        pass


class Place:
    def __init__(self, source_root, build_root):
        self._source_root = os.path.abspath(source_root)
        self._build_root = os.path.abspath(build_root)
        self._feed = http.server.ThreadingHTTPServer(("127.0.0.1", 0), _Feed)
        threading.Thread(target=self._feed.serve_forever, daemon=True).start()
        self._make_bundle()

    def _make_bundle(self):
        """A copy of the agent that asks this program for its messages, and nobody on the network."""
        bundle = self.build("bundle")
        shutil.rmtree(bundle, ignore_errors=True)
        private_desktop.bundle(bundle, self._build_root, "bin/kivmenua", {
            "KIVSupportMessages": f"http://127.0.0.1:{self._feed.server_port}/messages.xml"})
        os.sync()  # Pages of a file that is not on the disk yet count as ones that the process has written to.

    def source(self, path):
        return os.path.join(self._source_root, path)

    def build(self, path):
        return os.path.join(self._build_root, path)

    def program(self, name):
        """One of the measuring programs."""
        return self.build("bench/" + name)

    def agent(self):
        return self.build("bundle/bin/kivmenua")
