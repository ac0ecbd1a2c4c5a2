"""The page that tells the figures."""

OURS = "kivmenua"


def _number(value, digits):
    return f"{value:,.{digits}f}"


def _columns(figures):
    """Everybody that was measured, ours first, the others in the order in which they come up."""
    names = [OURS]
    for figure in figures:
        names += [name for name in figure.values if name not in names]
    return names


def _limits(figure):
    return "; ".join(f"{limit.text}: {_number(limit.max, figure.digits)}" for limit in figure.limits)


def _met(figure):
    if not figure.limits:
        return ""
    return "yes" if figure.met else "**no**"


def _table(figures):
    columns = _columns(figures)
    rows = [["", *columns, "at most", "met"], ["---", *["---:"] * len(columns), "---", "---"]]
    for figure in figures:
        title = figure.title + (f", {figure.unit}" if figure.unit else "")
        values = [_number(figure.values[name], figure.digits) if name in figure.values else "" for name in columns]
        rows.append([title, *values, _limits(figure), _met(figure)])
    return "\n".join("| " + " | ".join(row) + " |" for row in rows)


def section(title, figures):
    """A table of the figures, and below it how each was measured."""
    methods = "\n".join(f"- **{figure.title}.** {figure.how}" for figure in figures if figure.how)
    return "\n\n".join([f"## {title}", _table(figures), *([methods] if methods else [])]) + "\n"


def page(facts, sections, notes=""):
    """The whole page. `facts` are sentences about the machine and the run; `sections` pairs of title and figures;
    `notes` is a part of the page that is written by hand."""
    head = """# What it costs

`./kiv bench` makes this page anew. All programs of a table were measured in one run, side by side; what counts is how
they compare, since another machine has other figures. A limit that is not met ends the run with status 1.
"""
    return "\n".join([head, " ".join(facts) + "\n", *[section(title, figures) for title, figures in sections],
                      *([notes] if notes else [])])
