"""The page that tells which desktop does what. It is made of a record: of each desktop by name its title, the day, the
tree that the agent was built of, the versions of its packages, who draws the menu, the answers, and the picture.

An answer is [word, reason]: "yes", "no", or "cannot" where it is the desktop that stands in the way.
"""

HEAD = """# Desktops

`./kiv desktops` makes this page anew, and `./kiv desktops icewm i3` only these lines. Each desktop runs in a session of
its own in a clean room of Debian 13, with an agent, the reference service, and real input. What is seen is read from
the screen and asked of the X server. [CONTRIBUTING.md](../CONTRIBUTING.md#adding-a-desktop) says how one is added.

In the table stands **yes**, **no**, or **cannot** where the desktop is in the way; a number leads to the reason.
"""


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


def page(record, questions):
    """`questions` are the headings by name; a desktop that was not asked one of them has an empty cell there."""
    notes = []
    rows = [["", *questions.values()], ["---"] * (len(questions) + 1)]
    for desktop in record.values():
        cells = [_cell(desktop["answers"][name], notes, desktop["title"]) if name in desktop["answers"] else ""
                 for name in questions]
        rows.append([f"[{desktop['title']}](#{anchor(desktop['title'])})", *cells])
    reasons = "\n".join(f"{number}. {note}." for number, note in enumerate(notes, 1))
    sections = [_section(desktop) for desktop in record.values()]
    return "\n\n".join([HEAD.strip(), _table(rows), *([reasons] if reasons else []), *sections]) + "\n"


def anchor(title):
    return "".join(letter for letter in title.lower() if letter.isalnum() or letter in "-_ ").replace(" ", "-")


def _section(desktop):
    versions = ", ".join(f"{name} {version}" for name, version in desktop["versions"].items())
    lines = [f"## {desktop['title']}", ""]
    lines.append(f"Run on {desktop['day']}, of {desktop['tree']}" + (f", with {versions}." if versions else "."))
    if desktop["drawn_by"]:
        lines.append("The menu is drawn by " + " and by ".join(desktop["drawn_by"]) + ".")
    if desktop["remarks"]:
        lines.append(desktop["remarks"])
    if desktop["picture"]:
        lines += ["", f"![The menu in {desktop['title']}]({desktop['picture']})"]
    return "\n".join(lines)


def said(word, reason):
    """For the one who watches."""
    return word + (f": {reason}" if reason else "")
