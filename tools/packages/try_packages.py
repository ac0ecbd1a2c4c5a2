#!/usr/bin/env python3
"""try_packages.py FOLDER: what users and an administrator do with the packages in FOLDER, from install to purge.

Only in a clean room, as root: it installs, makes users with sessions, trusts a certificate of its own, and takes all of
it away again. The feed lies behind a proxy and speaks TLS, as in a company. Prints a line for each thing seen, and ends
with status 1 at the first that is not so.
"""

import contextlib
import os
import pathlib
import plistlib
import re
import shutil
import subprocess
import sys

from tools.packages import machine
from tools.packages.company import Company
from tools.packages.machine import WORK, apt, processes, seen, wait_for
from tools.packages.user_session import UserSession

USERS = ("trying", "beside1", "beside2")
USER = USERS[0]
PREFERENCES = "Library/Preferences/com.tamborel.kivmenua.plist"
CONFIGURATION = pathlib.Path("/etc/kivmenua/Info.plist")


def configure(company):
    """What an administrator does: another feed, and preferences for new users."""
    values = plistlib.loads(CONFIGURATION.read_bytes())
    CONFIGURATION.write_bytes(plistlib.dumps(values | {"KIVSupportMessages": company.address}))
    everything = {f"KivNotificationShow{what}": True for what in
                  ("News", "Notices", "Updates", "Warnings", "LowPriority", "MediumPriority", "HighPriority")}
    skeleton = pathlib.Path("/etc/skel", PREFERENCES)
    skeleton.parent.mkdir(parents=True)
    skeleton.write_bytes(plistlib.dumps(everything | {"KivNotificationShowTimeout": 1, "KivNotificationCloseTimeout": 4,
                                                      "KivNotificationRepeatTimeout": 3,
                                                      "KivNotificationLastMessId": "0"}))


def preferences_of(user):
    return plistlib.loads(pathlib.Path("/home", user, PREFERENCES).read_bytes())


def work(session):
    """What a user does in a session."""
    session.attach_service()
    before = session.size()
    session.choose("Down", "Right", "Down", "Down", "Return")
    wait_for("Switch Resolution switches, by /usr/sbin/kivservice", lambda: session.size() != before)
    session.choose("Up", "Up", "Up", "Return")
    wait_for("Server Preferences opens the settings", lambda: session.windows("kivsettings"))
    session.run("/usr/sbin/kivservice", "settings", "KivNotificationShowNews", "off")
    seen("a setting is set from a shell", preferences_of(session.user)["KivNotificationShowNews"] is False)
    wait_for("a message comes from the feed and is shown", session.pop_ups, 150)
    wait_for("its id is remembered",
             lambda: preferences_of(session.user)["KivNotificationLastMessId"] not in ("0", ""))


def work_side_by_side(users):
    """Two users with two sessions each: whatever is done in one shows there and nowhere else."""
    sessions = []
    for user in users:
        first = UserSession(user)
        sessions += [first, UserSession(user, beside=first)]
    services = [session.attach_service() for session in sessions]
    seen("each session has one item", [len(session.items()) for session in sessions] == [1] * len(sessions))
    for number, (session, service) in enumerate(zip(sessions, services), 1):
        session.tell(service, "hint Only here")
        wait_for(f"a hint shows in {session.user} {session.display}", session.pop_ups)
        seen("and in no other", [bool(each.pop_ups()) for each in sessions].count(True) == number)
        sizes = [each.size() for each in sessions]
        session.choose("Down", "Right", "Down", "Down", "Return")
        wait_for("its resolution switches", lambda: session.size() != sizes[number - 1])
        seen("and no other's", [each.size() != size for each, size in zip(sessions, sizes)].count(True) == 1)
        session.choose("Down", "Down", "Right", "Return")
        wait_for("its service is told what was chosen", lambda: "Minimize" in service.log.read_text())
        seen("and no other", ["Minimize" in each.log.read_text() for each in services].count(True) == number)
    for session in sessions:
        session.log_out()
    for user in users:
        seen(f"{user} has no agent left", not processes(user, "kivmenua"))
        machine.end_all_of(user)


def newer(package):
    """The package once more, as of a later version with another configuration file."""
    folder = WORK / f"newer-{package.name}"
    subprocess.run(["dpkg-deb", "--raw-extract", package, folder], check=True)
    control = folder / "DEBIAN/control"
    control.write_text(re.sub(r"^(Version: .*)$", r"\1+later", control.read_text(), flags=re.M))
    configuration = folder / CONFIGURATION.relative_to("/")
    if configuration.exists():
        values = plistlib.loads(configuration.read_bytes())
        configuration.write_bytes(plistlib.dumps(values | {"KIVProductHome": "https://later.kivune.example/"}))
        build = folder / "usr/share/kivmenua/Build.plist"
        build.write_bytes(plistlib.dumps(plistlib.loads(build.read_bytes()) | {"KIVBuildVersion": "9.9.9"}))
    target = WORK / package.name.replace("_1", "_later-1")
    subprocess.run(["dpkg-deb", "--root-owner-group", "--build", folder, target], check=True,
                   stdout=subprocess.DEVNULL)
    return target


def still_works(session, when):
    seen(f"the agent runs {when}", session.agent in processes(session.user, "kivmenua"))
    session.choose("Escape")


def upgrade(packages, company):
    """While a user is at work: his agent goes on, and the next one is the new one."""
    with contextlib.closing(UserSession(USER, company.proxies)) as session:
        session.attach_service()
        kept = CONFIGURATION.read_bytes()
        apt("install", *map(newer, packages))
        seen("an upgrade keeps the administrator's file", CONFIGURATION.read_bytes() == kept)
        seen("and lays the new one beside it", CONFIGURATION.with_name("Info.plist.dpkg-dist").exists())
        still_works(session, "after the upgrade")
        session.log_out()
    company.forget()
    with contextlib.closing(UserSession(USER, company.proxies)) as session:
        wait_for("the new agent asks the administrator's feed, with its own version",
                 lambda: any("version=9.9.9" in path for path in company.asked()))
        session.attach_service()
        remove(packages)
        still_works(session, "after the removal")
        session.log_out()


def name_of(package):
    return package.name.partition("_")[0]


def take_away(packages):
    installed = [name for name in map(name_of, packages) if machine.knows_package(name)]
    if installed:
        apt("purge", *installed)
    for user in USERS:
        machine.remove_user(user)
    shutil.rmtree("/etc/skel/Library", ignore_errors=True)


def remove(packages):
    apt("remove", *map(name_of, packages))
    seen("removed, the administrator's file stays", CONFIGURATION.exists())
    seen("and so do the user's preferences", preferences_of(USER)["KivNotificationShowNews"] is False)


def main(folder):
    if "KIV_CLEAN_ROOM" not in os.environ: # As ./kiv clean-room sets it.
        sys.exit("try_packages.py: only in a clean room: ./kiv clean-room 12 try-packages")
    packages = sorted(path for path in folder.glob("*.deb") if "dbgsym" not in path.name)
    machine.make_work_folder()
    take_away(packages) # What a trial that came to a bad end has left.
    machine.install_what_is_needed_by(packages)
    # Whatever else trust and users leave behind is theirs.
    with Company(WORK / "before"):
        machine.add_user(USER)
        machine.remove_user(USER)
    before = machine.files()

    apt("install", *packages)
    seen("installed: " + " ".join(path.name for path in packages))
    with Company(WORK / "company") as company:
        company.try_certificates()
        configure(company)
        for user in USERS:
            machine.add_user(user)
        try:
            with contextlib.closing(UserSession(USER, company.proxies)) as session:
                work(session)
                session.log_out()
                wait_for("the settings end with the session", lambda: not processes(USER, "kivsettings"))
            seen("all that the feed was asked came through the proxy", company.asked_by_proxy_only())
            work_side_by_side(USERS[1:])
            upgrade(packages, company)
        finally:
            for user in USERS:
                machine.end_all_of(user)
        take_away(packages)
    left = machine.files() - before
    seen("purged, nothing is left" + "".join(f"\n      {path}" for path in sorted(left)), not left)


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]).resolve())
