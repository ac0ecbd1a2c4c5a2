"""./kiv clean-room: what it refuses, what is in a room, and what is left after it.

The room here holds no Debian but a shell and a few programs of this machine, put there by a program in the place of
mmdebstrap. What is committed as ./kiv is a probe, which looks around in the room.
"""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[3]

MMDEBSTRAP = """#!/bin/bash
# mmdebstrap OPTION... SUITE FOLDER MIRROR
set -e
echo "${@: -3:1} ${@: -1}" >>"$MADE"
root=${@: -2:1}
mkdir -p "$root"/{bin,dev,etc,proc,root,tmp,usr/bin}
for program in bash env ls mkdir sleep cat; do
    path=$(type -P "$program")
    cp "$path" "$root/usr/bin/$program"
    cp "$path" "$root/bin/$program"
    for library in $(ldd "$path" | grep -o '/[^ ]*'); do
        mkdir -p "$root${library%/*}"
        cp "$library" "$root$library"
    done
done
"""
APT_GET = """#!/bin/sh
[ -n "$MIRROR" ] && echo "$MIRROR"
exit 0
"""
PROBE = """#!/bin/bash
echo "arguments $*"
echo "environment $(env | cut_names)"
echo "temporary $(ls -A /tmp)"
echo "processes $(cd /proc && echo [0-9]*)"
[[ -c /dev/null && -d /dev/pts && -w /dev/shm ]] && echo devices
[[ $1 == leave ]] && { sleep "$2" & }
mkdir -p build/shot
echo picture >build/shot/session.png
exit 3
""".replace("cut_names", "while read -r line; do echo -n \"${line%%=*} \"; done")


def run(*command, **options):
    return subprocess.run(command, text=True, capture_output=True, timeout=60, **options)


def command_of(path):
    try:
        return path.read_text()
    except OSError:
        return ""


class CleanRoom(unittest.TestCase):
    def setUp(self):
        # Not below /tmp: the room has another.
        self.folder = pathlib.Path(tempfile.mkdtemp(dir="/var/tmp"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.folder.chmod(0o755)
        self.clone = self.folder / "clone"
        shutil.copytree(SOURCE / "tools/kiv", self.clone / "tools/kiv")
        shutil.copy(SOURCE / "kiv", self.clone / "kiv")
        self.rooms = self.folder / "rooms"
        self.made = self.folder / "made"
        self.mirror = "http://mirror.example/debian/"
        bin_folder = self.folder / "bin"
        bin_folder.mkdir()
        for name, text in {"mmdebstrap": MMDEBSTRAP, "apt-get": APT_GET}.items():
            (bin_folder / name).write_text(text)
            (bin_folder / name).chmod(0o755)

    def kiv(self, *arguments, before=()):
        return run(*before, "./kiv", *arguments, cwd=self.clone, stdin=subprocess.DEVNULL,
                   env={"PATH": f"{self.folder}/bin:{os.environ['PATH']}", "KIV_CLEAN_ROOMS": str(self.rooms),
                        "MADE": str(self.made), "MIRROR": self.mirror, "HOME": str(self.folder)})

    def commit(self, text):
        """Commits the text as ./kiv, and leaves the real one in its place in the work tree."""
        git = ["git", "-C", str(self.clone), "-c", "user.name=N", "-c", "user.email=e@example.com"]
        if not (self.clone / ".git").exists():
            run("git", "init", "--quiet", str(self.clone), check=True)
            (self.clone / ".gitignore").write_text("/build/\n")
        real = (self.clone / "kiv").read_text()
        (self.clone / "kiv").write_text(text)
        run(*git, "add", "--all", check=True)
        run(*git, "commit", "--quiet", "--message=C", check=True)
        (self.clone / "kiv").write_text(real)
        return run(*git, "rev-parse", "HEAD", check=True).stdout[:12]

    def table(self):
        return [line.split("\t") for line in (self.clone / "build/clean-rooms.tsv").read_text().splitlines()]


class Refusals(CleanRoom):
    def refusal(self, *arguments, before=()):
        done = self.kiv("clean-room", *arguments, before=before)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stdout, "")
        self.assertEqual(done.stderr.count("\n"), 1)
        return done.stderr

    def test_no_such_release(self):
        self.assertIn('no such release: "14"', self.refusal("14", "run"))
        self.assertIn('no such release: ""', self.refusal())

    def test_no_command(self):
        self.assertIn("wants a command", self.refusal("13"))
        self.assertIn("wants a command", self.refusal("13", "--fresh"))

    def test_no_root(self):
        nobody = ("setpriv", "--reuid=65534", "--regid=65534", "--clear-groups") if os.geteuid() == 0 else ()
        self.assertIn("only root", self.refusal("13", "run", before=nobody))
        self.assertFalse(self.rooms.exists())


@unittest.skipUnless(os.geteuid() == 0, "only root can make a clean room")
@unittest.skipUnless(shutil.which("git"), "no git to clone with")
class Rooms(CleanRoom):
    def setUp(self):
        super().setUp()
        self.head = self.commit(PROBE)

    def test_the_committed_tree_runs_in_it_and_its_status_is_the_result(self):
        done = self.kiv("clean-room", "13", "look", "a b")
        self.assertEqual(done.returncode, 3, done.stderr)
        self.assertIn("arguments look a b\n", done.stdout)
        self.assertIn("Uncommitted changes are not in", done.stdout)

    def test_nothing_of_this_machine_is_in_it(self):
        lines = self.kiv("clean-room", "13", "look").stdout.splitlines()
        self.assertIn("temporary ", lines)
        self.assertIn("devices", lines)
        environment = next(line for line in lines if line.startswith("environment ")).split()[1:]
        self.assertLessEqual(set(environment), {"HOME", "PATH", "TERM", "LANG", "PWD", "OLDPWD", "SHLVL", "_",
                                                  "KIV_CLEAN_ROOM"})
        processes = next(line for line in lines if line.startswith("processes ")).split()[1:]
        self.assertLess(len(processes), 6)

    def test_nothing_of_it_is_left_at_work(self):
        seconds = f"86400.{os.getpid()}"
        self.assertEqual(self.kiv("clean-room", "13", "leave", seconds).returncode, 3)
        self.assertNotIn(str(self.rooms), pathlib.Path("/proc/mounts").read_text())
        left = [path for path in pathlib.Path("/proc").glob("[0-9]*/cmdline") if seconds in command_of(path)]
        self.assertEqual(left, [])

    def test_each_run_is_a_line_of_the_table(self):
        self.kiv("clean-room", "13", "--fresh", "look", "far")
        self.kiv("clean-room", "13", "look")
        header, first, second = self.table()
        self.assertEqual(header, ["time", "release", "commit", "command", "status", "seconds"])
        self.assertEqual(first[1:5], ["13", self.head, "--fresh look far", "3"])
        self.assertEqual(second[1:5], ["13", self.head, "look", "3"])
        self.assertTrue(first[5].isdigit())

    def test_it_is_kept_and_gets_the_next_commit_into_the_same_clone(self):
        self.kiv("clean-room", "13", "look")
        (self.rooms / "13/root/kivmenua/build/kept").touch()
        head = self.commit("#!/bin/bash\necho the next one\n[[ -e build/kept && ! -e build/shot ]]\n")
        done = self.kiv("clean-room", "13", "look")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("the next one", done.stdout)
        self.assertEqual(self.table()[-1][2], head)
        self.assertEqual(len(self.made.read_text().splitlines()), 1)

    def test_fresh_makes_it_anew(self):
        self.kiv("clean-room", "13", "look")
        (self.rooms / "13/old").touch()
        self.kiv("clean-room", "13", "--fresh", "look")
        self.assertFalse((self.rooms / "13/old").exists())

    def test_remove_takes_it_away(self):
        self.kiv("clean-room", "13", "look")
        self.assertTrue((self.rooms / "13").exists())
        self.assertEqual(self.kiv("clean-room", "13", "--remove").returncode, 0)
        self.assertFalse((self.rooms / "13").exists())

    def test_the_releases_come_from_where_this_machine_has_its_packages(self):
        self.kiv("clean-room", "12", "look")
        self.kiv("clean-room", "testing", "look")
        self.mirror = ""
        self.kiv("clean-room", "13", "look")
        self.assertEqual(self.made.read_text().splitlines(),
                         ["bookworm http://mirror.example/debian/", "testing http://mirror.example/debian/",
                          "trixie http://deb.debian.org/debian"])

    def test_a_machine_that_can_have_none_says_so_by_its_status(self):
        unshare = self.folder / "bin/unshare"
        unshare.write_text("#!/bin/sh\necho 'unshare: not permitted' >&2\nexit 1\n")
        unshare.chmod(0o755)
        done = self.kiv("clean-room", "13", "look")
        self.assertEqual((done.returncode, done.stderr), (69, "unshare: not permitted\nkiv: root may not mount here, "
                                                              "as in most containers: no clean room\n"))
        self.assertFalse((self.rooms / "13").exists())
        (self.rooms / "13").mkdir(parents=True)
        self.assertEqual(self.kiv("clean-room", "13", "--remove").returncode, 0)
        self.assertFalse((self.rooms / "13").exists())

    def test_pictures_are_brought_out(self):
        self.kiv("clean-room", "13", "look")
        self.assertEqual((self.clone / "build/clean-rooms/13/session.png").read_text(), "picture\n")


if __name__ == "__main__":
    unittest.main()
