"""bundle_libraries.py BUNDLE < PROGRAMS: which libraries a bundle for macOS wants that are neither in it nor the system's.

On standard input come the paths of the programs and libraries in the bundle, one a line. otool says what each wants. Ends
with status 1, and a line for each complaint, when one of them looks outside the bundle or finds nothing there.
"""

import pathlib
import re
import subprocess
import sys

SYSTEM = ("/usr/lib/", "/System/") # Where newer systems have no files any more.


def otool(option, program):
    return subprocess.run(["otool", option, program], check=True, capture_output=True, text=True).stdout


def libraries(program):
    """What is loaded with it. A library's own name, which comes with them, is not."""
    own = otool("-D", program).splitlines()[1:]
    return [path for path in re.findall(r"(?m)^\t(.*) \(compatibility ", otool("-L", program)) if path not in own]


def run_paths(program):
    """The folders that @rpath may stand for, as they are written there."""
    return re.findall(r"cmd LC_RPATH\n.*\n *path (.*) \(offset \d+\)", otool("-l", program))


class Bundle:
    def __init__(self, path):
        self.path = path.resolve()
        self.programs = self.path / "Contents/MacOS"

    def resolved(self, path, loader):
        """The file or folder that this path means in that file."""
        for name, folder in (("@executable_path", self.programs), ("@loader_path", loader.parent)):
            if path.split("/")[0] == name:
                return (folder / path[len(name):].lstrip("/")).resolve()
        return pathlib.Path(path).resolve()

    def has(self, place):
        return place.is_relative_to(self.path)

    def complaints(self, program):
        folders = run_paths(program)
        for folder in folders:
            if not self.has(self.resolved(folder, program)):
                yield f"{program} looks for libraries in {folder}"
        # The folders of the program that loads a library count for that one, too.
        places = [self.resolved(folder, program) for folder in folders]
        places += [self.resolved(folder, main) for main in self.programs.iterdir() for folder in run_paths(main)]
        for library in libraries(program):
            if library.startswith(SYSTEM):
                continue
            name = library.removeprefix("@rpath/")
            found = [(place / name).resolve() for place in places] if name != library else [self.resolved(library, program)]
            if not any(self.has(file) and file.is_file() for file in found):
                yield f"{program} wants {library}"


def main():
    bundle = Bundle(pathlib.Path(sys.argv[1]))
    programs = [pathlib.Path(line.rstrip("\n")).resolve() for line in sys.stdin]
    complaints = [complaint for program in programs for complaint in bundle.complaints(program)]
    print("\n".join(complaints))
    return 1 if complaints or not programs else 0


if __name__ == "__main__":
    sys.exit(main())
