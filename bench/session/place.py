"""Where things lie: the source tree and the build of it that is measured."""

import os


class Place:
    def __init__(self, source_root, build_root):
        self._source_root = os.path.abspath(source_root)
        self._build_root = os.path.abspath(build_root)

    def source(self, path):
        return os.path.join(self._source_root, path)

    def build(self, path):
        return os.path.join(self._build_root, path)

    def program(self, name):
        """One of the measuring programs."""
        return self.build("bench/" + name)
