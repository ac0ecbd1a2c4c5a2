"""./kiv check is green on a tree without a fault, and red for one seeded fault of each kind."""
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

from tests.tools.kiv.scratch_tree import SOURCE, Tree

# All packages are there, as far as ./kiv can see: a test installs none.
DPKG_QUERY = """#!/bin/sh
shift 3
for name; do echo "installed $name"; done
"""

METAINFO = """<?xml version="1.0" encoding="UTF-8"?>
<component type="console-application">
  <id>org.example.thing</id>
  <metadata_license>FSFAP</metadata_license>
  <project_license>MIT</project_license>
  <name>Thing</name>
  <summary>Does a thing</summary>
  <description><p>A thing that does what things do.</p></description>
  <url type="homepage">https://example.org/</url>
  <provides><binary>thing</binary></provides>
  <content_rating type="oars-1.1"/>
</component>
"""
PROPERTY_LIST = '<?xml version="1.0" encoding="UTF-8"?>\n<plist version="1.0"><dict><key>A</key>%s</dict></plist>\n'
DESKTOP = "[Desktop Entry]\nType=Application\n%sExec=thing\n"

# The program that a document needs, the document, and the same with a fault.
DOCUMENTS = {
    "resources/dbus/thing.xml": ("xmllint", "<node><arg/></node>\n", "<node><arg></node>\n"),
    "docs/images/thing.svg": ("xmllint", "<svg/>\n", "<svg>\n"),
    "resources/Thing.plist": ("python3", PROPERTY_LIST % "<true/>", PROPERTY_LIST % ""),
    "resources/Thing.plist.in": ("python3", PROPERTY_LIST % "<string>@B@</string>", PROPERTY_LIST % "<string>@B@"),
    "resources/thing.desktop": ("desktop-file-validate", DESKTOP % "Name=Thing\n", DESKTOP % ""),
    "resources/thing.metainfo.xml": ("appstreamcli", METAINFO, METAINFO.replace("<id>org.example.thing</id>", "")),
}

# What clang-tidy needs: a project with the preset of its name.
PROJECT = {
    "CMakeLists.txt": """
        cmake_minimum_required(VERSION 3.25)
        project(toy LANGUAGES CXX)
        add_library(toy shell/A.cpp tests/A.cpp)
        """,
    "CMakePresets.json": """{"version": 4, "configurePresets": [
        {"name": "check", "generator": "Ninja", "binaryDir": "${sourceDir}/build/${presetName}",
         "cacheVariables": {"CMAKE_EXPORT_COMPILE_COMMANDS": "ON"}}]}""",
    ".gitignore": "/build/\n",
}

WHOLE = "bool isNothing(const int *p);\nbool isNothing(const int *p)\n{\n    return p == nullptr;\n}\n"


def tracked(*names):
    """Those files of the tree, or all, by name."""
    listed = subprocess.run(["git", "ls-files", "-z", *names], cwd=SOURCE, capture_output=True, text=True, check=True)
    return {name: (SOURCE / name).read_bytes() for name in listed.stdout.split("\0") if (SOURCE / name).is_file()}


@unittest.skipUnless(shutil.which("git"), "git lists the files")
class Check(unittest.TestCase):
    def setUp(self):
        self.programs = tempfile.TemporaryDirectory()
        self.addCleanup(self.programs.cleanup)
        dpkg_query = pathlib.Path(self.programs.name, "dpkg-query")
        dpkg_query.write_text(DPKG_QUERY)
        dpkg_query.chmod(0o755)

    def needs(self, *programs):
        missing = [program for program in programs if not shutil.which(program)]
        if missing:
            self.skipTest("not installed: " + ", ".join(missing))

    def tree(self, files):
        tree = Tree(files)
        self.addCleanup(tree.cleanup)
        return tree

    def small_tree(self, files):
        """The script, and only these files beside it."""
        return self.tree(tracked("kiv", "tools/kiv", ".ci", "fuzz/run", "resources/make-images", ".clang-format",
                                 ".clang-tidy") | files)

    def check(self, tree, name):
        return subprocess.run(["bash", "kiv", "check", name], cwd=tree.name, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False, timeout=300,
                              env=os.environ | {"PATH": f"{self.programs.name}:{os.environ['PATH']}"})

    def assertNotices(self, name, tree, fault, said):
        """Green without the fault; and red with it, for a reason that is said."""
        sound = self.check(tree, name)
        self.assertEqual(sound.returncode, 0, sound.stdout)
        self.assertIn("The tree is in order.", sound.stdout)
        tree.add(fault)
        faulty = self.check(tree, name)
        self.assertEqual(faulty.returncode, 1, faulty.stdout)
        self.assertIn(f"the tree is not in order: {name}\n", faulty.stdout)
        self.assertIn(said, faulty.stdout)

    def test_a_line_that_clang_format_would_write_otherwise(self):
        self.needs("clang-format")
        self.assertNotices("format", self.small_tree({"shell/A.cpp": WHOLE}),
                           {"shell/A.cpp": WHOLE.replace("== n", "==  n")}, "shell/A.cpp:4:")

    def test_a_variable_that_a_script_splits_into_words(self):
        self.needs("shellcheck")
        for script in ("tools/kiv/more.bash", "resources/make-images"):
            with self.subTest(script):
                tree = self.small_tree({"tools/kiv/more.bash": "more() { rm \"$1\"; }\n"})
                self.assertNotices("scripts", tree, {script: "#!/bin/bash\nmore() { rm $1; }\n"}, "SC2086")

    def test_a_document_that_its_reader_would_refuse(self):
        for name, (program, whole, faulty) in DOCUMENTS.items():
            with self.subTest(name):
                self.needs(program)
                self.assertNotices("documents", self.small_tree({name: whole}), {name: faulty}, pathlib.Path(name).stem)

    def test_what_clang_tidy_finds(self):
        self.needs("cmake", "ninja", "c++", "clang-tidy", "run-clang-tidy")
        whole = PROJECT | {"shell/A.cpp": WHOLE, "tests/A.cpp": WHOLE.replace("isNothing", "isNothingToo")}
        for name in ("shell/A.cpp", "tests/A.cpp"):
            self.assertNotices("tidy", self.small_tree(whole), {name: whole[name].replace("nullptr", "0")},
                               "modernize-use-nullptr")

    def test_an_include_against_the_arrows(self):
        self.assertNotices("includes", self.small_tree({"menu/A.cpp": '#include "platform/B.h"\n'}),
                           {"menu/A.cpp": '#include "notify/queue/B.h"\n'}, "menu/A.cpp:1: notify/queue/B.h")

    def test_a_file_that_is_too_long(self):
        self.assertNotices("sizes", self.small_tree({"menu/A.cpp": "\n" * 400}), {"menu/A.cpp": "\n" * 401},
                           "menu/A.cpp: 401 lines")

    def test_a_link_to_nowhere(self):
        self.assertNotices("links", self.small_tree({"A.md": "[here](kiv)"}), {"A.md": "[there](B.md)"}, "A.md: B.md")

    def test_a_word_that_others_know_and_a_mutant_whose_rule_has_gone(self):
        whole = tracked()
        self.assertNotices("words", self.tree(whole), {"menu/A.cpp": "void receive" + "Notifications();\n"},
                           "menu/A.cpp:1:")
        self.assertNotices("mutants", self.tree(whole), {"menu/DisplayModes.cpp": b"\n"}, "DisplayModes.cpp")


if __name__ == "__main__":
    unittest.main(verbosity=2) # Which says what is skipped, and why.
