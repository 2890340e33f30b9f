#!/usr/bin/env python3
"""Turns CHANGELOG.md into a Debian changelog on the standard output.

    debian_changelog.py CHANGELOG.md MAINTAINER

With --latest instead of a maintainer it tells the latest version, its day, and that day in seconds since 1970.
"""

import datetime
import email.utils
import re
import sys
import textwrap

HEADING = re.compile(r"^## (\S+) \((\d{4}-\d{2}-\d{2})\)\n", re.MULTILINE)
WIDTH = 78


def releases(text):
    """Version, day and items of each release, the latest first."""
    parts = HEADING.split(text)[1:]
    for version, day, body in zip(parts[0::3], parts[1::3], parts[2::3]):
        midnight = datetime.datetime.fromisoformat(day).replace(tzinfo=datetime.timezone.utc)
        paragraphs = re.split(r"\n\s*\n|\n(?=- )", body.strip())
        yield version, midnight, [" ".join(paragraph.removeprefix("- ").split()) for paragraph in paragraphs]


def debian_entry(version, midnight, items, maintainer):
    wrapped = [textwrap.fill(item, WIDTH, initial_indent="  * ", subsequent_indent="    ", break_on_hyphens=False)
               for item in items]
    return "\n".join([f"korvalin ({version}) stable; urgency=medium", "", *wrapped, "",
                      f" -- {maintainer}  {email.utils.format_datetime(midnight)}", ""])


def main(file, maintainer):
    with open(file, encoding="utf-8") as changes:
        found = list(releases(changes.read()))
    if maintainer == "--latest":
        version, midnight, _ = found[0]
        print(version, midnight.date(), int(midnight.timestamp()), sep=";", end="")
    else:
        print("\n".join(debian_entry(*release, maintainer) for release in found), end="")


if __name__ == "__main__":
    main(*sys.argv[1:])
