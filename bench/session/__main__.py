"""Measures the agent beside others: python3 -m bench.session [--page FILE] SOURCE BUILD [FIGURE...]

Without names all figures are measured, and the page is written. Ends with status 1 when a limit is not met.
"""

import argparse
import dataclasses
import importlib
import json
import sys
import time
import traceback

from bench.session import machine, page
from bench.session.place import Place

SECTIONS = {
    "A session": ["memory", "start", "wakeups", "menu"],
    "Pop-ups": ["popups"],
    "After use": ["used", "growth", "cache"],
    "The event link": ["link"],
    "A hundred sessions": ["many"],
    "Single functions": ["functions"],
}


def measure(place, names, failed):
    """Pairs of title and figures, each section as far as it is asked for. Adds to `failed` what cannot be measured."""
    for title, members in SECTIONS.items():
        figures = []
        for name in members:
            if name in names:
                began = time.monotonic()
                print(f"-- {name}", flush=True)
                try:
                    figures += importlib.import_module("bench.session.figures." + name).measure(place)
                except Exception:  # pylint: disable=broad-except  (the others are still worth their time)
                    traceback.print_exc()
                    failed.append(name)
                print(f"   {time.monotonic() - began:.0f} s", flush=True)
        if figures:
            yield title, figures


def main():
    everything = [name for members in SECTIONS.values() for name in members]
    parser = argparse.ArgumentParser(prog="bench.session")
    parser.add_argument("--page")
    parser.add_argument("source")
    parser.add_argument("build")
    parser.add_argument("figure", nargs="*", choices=[*everything, []], help="of: " + " ".join(everything))
    asked = parser.parse_args()
    place = Place(asked.source, asked.build)

    facts = machine.facts()  # Of the tree as it is now: to write the page changes it.
    failed = []
    sections = list(measure(place, asked.figure or everything, failed))
    with open(place.build("figures.json"), "w", encoding="utf-8") as file:
        json.dump({title: [dataclasses.asdict(figure) for figure in figures] for title, figures in sections}, file,
                  indent=1)
    for title, figures in sections:
        print("\n" + page.section(title, figures))
    if asked.page and not asked.figure:
        with open(place.source("docs/performance-notes.md"), encoding="utf-8") as file:
            notes = file.read()
        with open(asked.page, "w", encoding="utf-8") as file:
            gaps = [f"This run could not measure: {', '.join(failed)}."] if failed else []
            file.write(page.page(facts + gaps, sections, notes))
    missed = [figure.title for _, figures in sections for figure in figures if not figure.met]
    if missed:
        print("Not met: " + "; ".join(missed), file=sys.stderr)
    return 1 if missed or failed else 0


if __name__ == "__main__":
    sys.exit(main())
