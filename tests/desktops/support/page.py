"""The page that tells which desktop does what. It is made of a record for each release of Debian: of each desktop by name
its title, the day, the tree that the agent was built of, the versions of its packages, who draws the menu, the answers,
what the screen reader says, if one runs, and the picture.

An answer is [word, reason]: "yes", "no", or "cannot" where it is the desktop that stands in the way.
"""

HEAD = """# Desktops

`./kiv desktops` makes this page anew, `./kiv desktops icewm i3` only these lines, and `./kiv desktops --debian 12` those
of Debian 12. Each desktop runs in a session of its own in a clean room, with an agent, the reference service, and real
input. What is seen is read from the screen and asked of the X server.
[CONTRIBUTING.md](../CONTRIBUTING.md#adding-a-desktop) says how one is added.

In the tables stands **yes**, **no**, or **cannot** where the desktop is in the way; a number leads to the reason.
"""
MAIN = "13"  # The Debian whose desktops are named without it.


def _table(rows):
    return "\n".join("| " + " | ".join(row) + " |" for row in rows)


def _cell(answer, notes, title):
    word, reason = answer
    if not reason:
        return word
    note = f"{title}: {reason}"
    if note not in notes:
        notes.append(note)
    return f"{word} ({notes.index(note) + 1})"


def pictures(release):
    """Their folder, from that of the page."""
    return "images/desktops" + ("" if release == MAIN else "-" + release)


def page(records, questions):
    """`records` are those by the release of Debian, the newest first on the page. `questions` are the headings by name; a
    desktop that was not asked one of them has an empty cell there."""
    releases = sorted((release for release in records if records[release]), key=int, reverse=True)
    parts = [part for release in releases for part in _part(release, records[release], questions)]
    return "\n\n".join([HEAD.strip(), *parts]) + "\n"


def _part(release, record, questions):
    """The table of one Debian, the reasons, and what is said of each desktop."""
    notes = []
    titles = {name: desktop["title"] + ("" if release == MAIN else f" on Debian {release}")
              for name, desktop in record.items()}
    rows = [["", *questions.values()], ["---"] * (len(questions) + 1)]
    for name, desktop in record.items():
        cells = [_cell(desktop["answers"][question], notes, desktop["title"]) if question in desktop["answers"] else ""
                 for question in questions]
        rows.append([f"[{desktop['title']}](#{anchor(titles[name])})", *cells])
    reasons = "\n".join(f"{number}. {note}." for number, note in enumerate(notes, 1))
    sections = [_section(desktop, titles[name]) for name, desktop in record.items()]
    return [f"## Debian {release}", _table(rows), *([reasons] if reasons else []), *sections]


def anchor(title):
    return "".join(letter for letter in title.lower() if letter.isalnum() or letter in "-_ ").replace(" ", "-")


def _section(desktop, title):
    versions = ", ".join(f"{name} {version}" for name, version in desktop["versions"].items())
    lines = [f"### {title}", ""]
    lines.append(f"Run on {desktop['day']}, of {desktop['tree']}" + (f", with {versions}." if versions else "."))
    if desktop["drawn_by"]:
        lines.append("The menu is drawn by " + " and by ".join(desktop["drawn_by"]) + ".")
    if desktop.get("said"):
        lines.append("Orca says " + ", ".join(f"of {what} “{text or ''}”" for what, text in desktop["said"].items()) + ".")
    if desktop["remarks"]:
        lines.append(desktop["remarks"])
    if desktop["picture"]:
        lines += ["", f"![The menu in {title}]({desktop['picture']})"]
    return "\n".join(lines)


def said(word, reason):
    """For the one who watches."""
    return word + (f": {reason}" if reason else "")
