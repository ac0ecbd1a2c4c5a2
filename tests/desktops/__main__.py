"""Asks the same questions of all desktops, or of those named: python3 -m tests.desktops --build BUILD --folder FOLDER [NAME...]

Only in a clean room with the desktops' packages. BUILD is a build of the agent for release. FOLDER has desktops.json,
what was found out before, by the release of Debian, which is kept for the others; it gets the new one, the page and the
pictures. With --packages in the place of both it prints the names of those packages.
"""

import argparse
import contextlib
import datetime
import importlib
import json
import os
import pathlib
import platform
import signal
import subprocess
import sys
import time
import traceback

from tests.desktops.support import page
from tests.desktops.support.questions import QUESTIONS, AtWork, Fault

FILES = ("none", "icewm", "i3", "fluxbox", "polybar", "xfce", "mate", "lxqt", "cinnamon", "plasma", "gnome", "sway")


def all_desktops(release):
    """Descriptions by name, in the order of the page."""
    found = {}
    for name in FILES:
        found |= importlib.import_module("tests.desktops." + name).DESKTOPS
    return {name: description.on(release) for name, description in found.items()}


def versions(packages):
    asked = subprocess.run(["dpkg-query", "-W", "-f", "${Package} ${Version}\n", *packages], capture_output=True,
                           text=True, check=True)
    return dict(line.split(" ", 1) for line in asked.stdout.splitlines())


def answer(work, name, description):
    """The word and the reason."""
    began = time.monotonic()
    try:
        reason = QUESTIONS[name][1](work)
    except Fault as fault:
        reason = str(fault)
    except (TimeoutError, OSError, subprocess.SubprocessError) as error:
        traceback.print_exc()
        reason = str(error)
    word = "yes" if not reason else "no"
    if reason and name in description.cannot:
        word, reason = "cannot", f"{description.cannot[name]} (seen: {reason})"
    print(f"   {QUESTIONS[name][0]}: {page.said(word, reason)} ({time.monotonic() - began:.0f} s)", flush=True)
    return [word, reason]


def ask(name, description, build, folder, release):
    """The desktop's part of the record."""
    pictures = page.pictures(release)
    picture = folder / pictures / f"{name}.png"
    picture.parent.mkdir(parents=True, exist_ok=True)
    picture.unlink(missing_ok=True)
    answers = {}
    with description.session(description, build) as session:
        work = AtWork(session, picture)
        try:
            session.start_agent()
            for question in QUESTIONS:
                if (question == "restart" and not description.panel) or (question == "reader" and not description.has_reader):
                    continue
                answers[question] = answer(work, question, description)
        finally:
            session.keep(folder / "logs" / name)
    return {
        "title": description.title,
        "day": f"{datetime.date.today():%-d %B %Y}",
        "tree": "the tree at " + os.environ["KIV_TREE"],
        "versions": versions(description.packages) if description.packages else {},
        "drawn_by": sorted(work.drawn_by),
        "said": work.said,
        "remarks": description.remarks,
        "picture": f"{pictures}/{name}.png" if picture.exists() else "",
        "answers": answers,
    }


def end_what_is_left():
    """What buses and panels have started and left behind. In the room's own processes this user has no others."""
    for process in pathlib.Path("/proc").glob("[0-9]*"):
        with contextlib.suppress(OSError):
            if process.stat().st_uid == os.getuid() and int(process.name) != os.getpid():
                os.kill(int(process.name), signal.SIGKILL)


def main():
    release = platform.freedesktop_os_release()["VERSION_ID"]
    desktops = all_desktops(release)
    parser = argparse.ArgumentParser(prog="desktops")
    parser.add_argument("--packages", action="store_true")
    parser.add_argument("--build")
    parser.add_argument("--folder", type=lambda path: pathlib.Path(path).resolve())
    parser.add_argument("name", nargs="*", choices=[*desktops, []], help="of: " + " ".join(desktops))
    asked = parser.parse_args()
    names = asked.name or list(desktops)
    if asked.packages:
        print("\n".join(sorted({package for name in names for package in desktops[name].packages})))
        return 0
    if "KIV_CLEAN_ROOM" not in os.environ or os.getuid() == 0: # As ./kiv desktops calls it.
        sys.exit("only in a clean room, as a user: ./kiv desktops")

    file = asked.folder / "desktops.json"
    records = json.loads(file.read_text(encoding="utf-8")) if file.exists() else {}
    record = records.setdefault(release, {})
    failed = []
    for name in names:
        print(f"-- {desktops[name].title}", flush=True)
        try:
            record[name] = ask(name, desktops[name], asked.build, asked.folder, release)
        except Exception:  # pylint: disable=broad-except  (the others are still worth their time)
            traceback.print_exc()
            failed.append(name)
        end_what_is_left()
        record = {each: record[each] for each in desktops if each in record}
        records[release] = record
        file.write_text(json.dumps(records, indent=1, ensure_ascii=False) + "\n", encoding="utf-8")
        headings = {question: heading for question, (heading, _) in QUESTIONS.items()}
        (asked.folder / "desktops.md").write_text(page.page(records, headings), encoding="utf-8")
    if failed:
        print("Did not come up: " + ", ".join(failed), file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
