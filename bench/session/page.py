"""The page that tells the figures."""

from bench.session.figure import Figure, Limit  # noqa: F401  (what a page is made of)

OURS = "kivmenua"


def _number(value, digits):
    return f"{value:,.{digits}f}"


def _columns(figures):
    """Everybody that was measured, ours first, the others in the order in which they come up."""
    names = [OURS]
    for figure in figures:
        names += [name for name in figure.values if name not in names]
    return names


def _row(figure, columns):
    title = figure.title + (f", {figure.unit}" if figure.unit else "")
    cells = [title]
    cells += [_number(figure.values[name], figure.digits) if name in figure.values else "" for name in columns]
    cells.append("; ".join(f"{limit.text}: {_number(limit.at_most, figure.digits)}" for limit in figure.limits))
    cells.append("" if not figure.limits else "yes" if figure.met else "**no**")
    return cells


def _table(rows):
    head, *body = rows
    lines = ["| " + " | ".join(head) + " |", "|---" + "|---:" * (len(head) - 3) + "|---|---|"]
    return "\n".join(lines + ["| " + " | ".join(cells) + " |" for cells in body])


def table(figures):
    columns = _columns(figures)
    return _table([["", *columns, "at most", "met"]] + [_row(figure, columns) for figure in figures])


def methods(figures):
    return "\n".join(f"- **{figure.title}.** {figure.how}" for figure in figures if figure.how != "As above.")
