"""A git tree of a test's own, on which ./kiv check is tried."""
import pathlib
import subprocess
import sys
import tempfile

SOURCE = pathlib.Path(__file__).resolve().parents[3]


def run(check, root):
    """What one of the programs in tools/kiv says of a tree."""
    return subprocess.run([sys.executable, "-B", SOURCE / "tools/kiv" / check, root], capture_output=True, text=True,
                          check=False)


class Tree(tempfile.TemporaryDirectory):
    """A git tree of the given files: their texts by name, or bytes that are copied as they are."""

    def __init__(self, files):
        super().__init__()
        subprocess.run(["git", "init", "--quiet"], cwd=self.name, check=True)
        self.add(files)

    def add(self, files):
        for name, text in files.items():
            path = pathlib.Path(self.name, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(text if isinstance(text, bytes) else text.encode())
        subprocess.run(["git", "add", "--all", "."], cwd=self.name, check=True)
