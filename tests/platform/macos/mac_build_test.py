"""The agent, built for macOS here and installed into a folder: mac_build_test.py FOLDER [TEST...].

Each test of what is refused compiles or links a few lines as the agent's own sources are.
"""

import os
import pathlib
import plistlib
import struct
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[3]
DECLARATIONS = SOURCE / "platform/macos/sdk-declarations"
sys.path.insert(0, str(DECLARATIONS))
import build  # pylint: disable=wrong-import-position
import symbols  # pylint: disable=wrong-import-position

FOLDER = pathlib.Path(sys.argv.pop(1)).absolute()
ARM64 = 0x0100000C
X86_64 = 0x01000007
BUNDLE = "Library/Application Support/Kivune/kivmenua.app"


def processor_of(program):
    """For which processor that 64-bit Mach-O file is, by the system's number; None when it is no program."""
    magic, processor, _, kind = struct.unpack("<4I", program.read_bytes()[:16])
    return processor if (magic, kind) == (0xFEEDFACF, 2) else None


class Built(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.tree = build.build(FOLDER)
        cls.root = FOLDER / "installed"
        subprocess.run(["cmake", "-E", "rm", "-rf", cls.root], check=True)
        subprocess.run(["cmake", "--install", cls.tree], check=True, capture_output=True,
                       env={**os.environ, "DESTDIR": str(cls.root)})
        cls.contents = cls.root / BUNDLE / "Contents"

    def plist(self, path):
        """The dictionary, which a second reader has found no fault with."""
        subprocess.run(["plistutil", "-i", path, "-o", os.devnull], check=True, capture_output=True)
        return plistlib.loads(path.read_bytes())

    def test_installs_these_files_and_no_others(self):
        files = {path.relative_to(self.root).as_posix() for path in self.root.rglob("*") if path.is_file()}
        images = "statuson.tiff statusoff.tiff update.icns warning.icns information.icns kivmenua.icns"
        self.assertEqual(files, {
            "Library/LaunchAgents/com.tamborel.kivmenua.plist",
            *(f"{BUNDLE}/Contents/{file}" for file in ("Info.plist", "MacOS/kivmenua", "MacOS/kivfetch")),
            *(f"{BUNDLE}/Contents/Resources/{file}" for file in images.split())})

    def test_has_the_images_that_the_menu_bar_can_colour(self):
        for image in ("statuson.tiff", "statusoff.tiff"):
            self.assertEqual((self.contents / "Resources" / image).read_bytes(),
                             (SOURCE / "resources/macos" / image).read_bytes())

    def test_makes_programs_of_that_system(self):
        for program in ("kivmenua", "kivfetch"):
            path = self.contents / "MacOS" / program
            self.assertTrue(os.access(path, os.X_OK))
            self.assertEqual(processor_of(path), ARM64)

    def test_describes_an_agent_without_a_tile_in_the_dock(self):
        information = self.plist(self.contents / "Info.plist")
        self.assertEqual(information["CFBundleExecutable"], "kivmenua")
        self.assertEqual(information["CFBundlePackageType"], "APPL")
        self.assertIs(information["LSUIElement"], True)
        self.assertEqual(information["LSMinimumSystemVersion"], "12.0")
        self.assertTrue(information["NSAppleEventsUsageDescription"])
        self.assertTrue((self.contents / "Resources" / information["CFBundleIconFile"]).exists())
        for key in ("KIVSupportMessages", "KIVProductHome", "KIVProductSupport", "KIVBuildVersion", "KIVBuildDate"):
            self.assertTrue(information[key], key)

    def test_states_its_version_once(self):
        text = (self.contents / "Info.plist").read_text()
        for key in ("CFBundleVersion", "CFBundleShortVersionString"):
            self.assertEqual(text.count(f"<key>{key}</key>"), 1)
        information = self.plist(self.contents / "Info.plist")
        self.assertRegex(information["CFBundleVersion"], r"^\d+\.\d+\.\d+$")
        self.assertEqual(information["CFBundleVersion"], information["CFBundleShortVersionString"])

    def test_is_started_once_in_each_graphical_session(self):
        agent = self.plist(self.root / "Library/LaunchAgents/com.tamborel.kivmenua.plist")
        self.assertEqual(agent["Label"], "com.tamborel.kivmenua")
        self.assertEqual(agent["LimitLoadToSessionType"], "Aqua")
        self.assertIs(agent["RunAtLoad"], True)
        self.assertEqual(agent["KeepAlive"], {"SuccessfulExit": False})
        program, = agent["ProgramArguments"]
        self.assertTrue((self.root / program.lstrip("/")).exists(), program)

    def test_may_send_events_when_it_is_signed(self):
        entitlements = self.plist(SOURCE / "resources/macos/kivmenua.entitlements")
        self.assertEqual(entitlements, {"com.apple.security.automation.apple-events": True})

    def test_has_tests_that_a_mac_would_build(self):
        programs = {path.name: path for path in build.programs(self.tree)}
        for name in ("kiv_core_tests", "kiv_gui_tests", "kiv_system_log_tests", "kiv_application_tests", "fuzz_feed"):
            self.assertEqual(processor_of(programs[name]), ARM64)
        self.assertNotIn("kiv_macos_tests", programs, "its system calls are the tests' own")

    def test_is_made_for_intel_as_well(self):
        program = build.build(FOLDER, "x86_64") / "bin/kivmenua.app/Contents/MacOS/kivmenua"
        self.assertEqual(processor_of(program), X86_64)


class Refused(unittest.TestCase):
    """What no Mac would build."""

    @classmethod
    def setUpClass(cls):
        FOLDER.mkdir(parents=True, exist_ok=True)
        cls.clang = build.find_clang()
        if not cls.clang:
            raise unittest.SkipTest("there is no compiler for macOS, which ./kiv mac installs")
        cls.sysroot = build.make_sysroot(FOLDER, cls.clang)

    def compile(self, text, *more):
        """The complaints about a program; none when it is in order."""
        with tempfile.TemporaryDirectory() as folder:
            source, program = pathlib.Path(folder, "main.cpp"), pathlib.Path(folder, "program")
            source.write_text(text)
            result = subprocess.run(
                [self.clang, "-target", "arm64-apple-macos12", "-isysroot", self.sysroot, "-stdlib=libc++", "-std=c++20",
                 "-Wall", "-Wextra", "-Werror", "-I", SOURCE, "-fuse-ld=lld", "-mlinker-version=609",
                 "-Wl,-undefined,dynamic_lookup", source, "-o", program, *more],
                capture_output=True, text=True, check=False)
            self.assertEqual(bool(result.returncode), bool(result.stderr))
            if result.returncode:
                return result.stderr
            return "".join(f"undefined symbol: {name}\n"
                           for name in symbols.missing(self.sysroot, self.clang, program))

    def test_a_qt_that_wants_a_newer_system_than_the_bundle_says(self):
        for wanted, complaint in (("", ""), ("12", ""), ("13", "-D CMAKE_OSX_DEPLOYMENT_TARGET=13")):
            result = subprocess.run(["cmake", "-D", f"QT_SUPPORTED_MIN_MACOS_VERSION={wanted}", "-D",
                                     "CMAKE_OSX_DEPLOYMENT_TARGET=12.0", "-P", SOURCE / "cmake/OldestSystem.cmake"],
                                    capture_output=True, text=True, check=False)
            self.assertEqual(bool(result.returncode), bool(complaint))
            self.assertIn(complaint, " ".join(result.stderr.split()))

    CARBON = ("-framework", "Carbon")

    def test_nothing_of_a_program_that_is_in_order(self):
        program = '#include <Carbon/Carbon.h>\nint main() { return CGMainDisplayID() == 0; }\n'
        self.assertEqual(self.compile(program, *self.CARBON), "")

    def test_a_type_with_the_name_of_one_of_the_systems(self):
        for name in ("MenuCommand", "Style", "Point", "EventKind"):
            program = f"#include <Carbon/Carbon.h>\nenum {name} : unsigned {{}};\nint main() {{}}\n"
            self.assertIn(f"'{name}'", self.compile(program, *self.CARBON))

    def test_the_menus_codes_by_the_name_of_a_type_of_the_systems(self):
        header = (SOURCE / "menu/MenuCommands.h").read_text().replace("#pragma once\n", "")
        self.assertIn("enum MenuCode :", header)
        for name, complaint in (("MenuCode", ""), ("MenuCommand", "'MenuCommand'")):
            program = f"#include <Carbon/Carbon.h>\n{header.replace('enum MenuCode :', f'enum {name} :')}int main() {{}}\n"
            found = self.compile(program, *self.CARBON)
            self.assertIn(complaint, found)
            self.assertEqual(bool(found), bool(complaint))

    def test_a_system_call_that_is_misspelt(self):
        program = '#include <Carbon/Carbon.h>\nint main() { return CGMainDisplayId() == 0; }\n'
        self.assertIn("'CGMainDisplayId'", self.compile(program, *self.CARBON))

    def test_a_system_call_that_is_misspelt_where_it_is_declared(self):
        program = 'extern "C" int CGMainDisplayId();\nint main() { return CGMainDisplayId(); }\n'
        self.assertIn("undefined symbol: _CGMainDisplayId", self.compile(program, *self.CARBON))

    def test_a_function_whose_source_is_missing(self):
        program = '#include "platform/screen/AvailableDisplayModes.h"\nint main() { return !availableDisplayModes(1); }\n'
        self.assertIn("undefined symbol: availableDisplayModes(unsigned int)", self.compile(program, *self.CARBON))

    def test_a_member_that_qt_does_not_have(self):
        program = ("struct QByteArray { void toStdString() const; void toStdText() const; };\n"
                   "int main() { QByteArray bytes; bytes.toStdString(); bytes.toStdText(); }\n")
        self.assertEqual(self.compile(program), "undefined symbol: QByteArray::toStdText() const\n")

    def test_a_framework_that_is_not_linked(self):
        program = '#include <Carbon/Carbon.h>\nint main() { return CGMainDisplayID() == 0; }\n'
        self.assertIn("undefined symbol: _CGMainDisplayID", self.compile(program))

    def read_with(self, header):
        """What is wrong with the headers that a portable file of the agent's reads with this one besides."""
        text = (SOURCE / "menu/LoginSession.cpp").read_text()
        result = subprocess.run(
            [self.clang, "-target", "arm64-apple-macos12", "-isysroot", self.sysroot, "-stdlib=libc++", "-std=c++20",
             "-I", SOURCE, *(f"-isystem{self.sysroot}/qt/include/{folder}" for folder in ("", "QtCore", "QtGui")),
             "-M", "-x", "c++", "-"],
            cwd=FOLDER, input=f"#include {header}\n{text}", capture_output=True, text=True, check=False)
        headers = result.stdout.replace("\\\n", " ").split()[1:]
        return result.stderr + "".join(build.foreign(set(headers) - {"-"}, self.sysroot, FOLDER / "arm64", self.clang))

    def test_a_header_of_linux_in_a_portable_file(self):
        self.assertEqual(self.read_with('"menu/LoginSession.h"'), "")
        self.assertEqual(self.read_with("<QtCore/qsystemdetection.h>"), "")
        for header in ("sys/epoll.h", "linux/limits.h", "malloc.h", "X11/Xlib.h", "xcb/xcb.h", "dbus/dbus.h",
                       "QtDBus/qtdbusglobal.h"):
            self.assertIn(f"'{header}' file not found", self.read_with(f"<{header}>"))

    def test_a_header_of_the_agents_side_for_linux_in_a_portable_file(self):
        headers = [path.relative_to(SOURCE).as_posix() for path in (SOURCE / "platform/linux/include").glob("*.h")]
        self.assertIn("platform/linux/include/ExecutableName.h", headers) # Which has nothing of Linux itself.
        for header in headers:
            self.assertIn("/platform/linux/include/", self.read_with(f'"{header}"'), header)

    def test_a_deprecated_call_that_nobody_names(self):
        program = "#include <Carbon/Carbon.h>\nint main() { ProcessSerialNumber me; return GetCurrentProcess(&me); }\n"
        self.assertIn("'GetCurrentProcess' is deprecated", self.compile(program, *self.CARBON))

    def test_a_call_that_only_linux_has(self):
        program = "#include <unistd.h>\n#include <fcntl.h>\nint main() { int ends[2]; return pipe2(ends, 0); }\n"
        self.assertIn("pipe2", self.compile(program))


if __name__ == "__main__":
    unittest.main()
