#!/usr/bin/env python3
"""Checks that the C++ code shown in the guides is code that is compiled: every block must stand, line
for line, in a source of the examples (indentation aside), and the minimal hosts must stay minimal. Prints
what does not hold, and exits with 1. So must every class and function of the public headers show a snippet,
and every picture and file that a guide links to exist."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
GUIDES = ["README.md"] + [f"docs/{name}.md" for name in (
    "axis", "features", "getting-started", "labels", "persistence", "picking", "scene-conventions", "troubleshooting")]
MINIMAL_HOSTS = ["axis_in_stock_viewer", "first_label", "pick_and_select", "save_and_rebuild"]
MINIMAL_HOST_LINES = 60


def lines_of(text):
    return "\n".join(line.strip() for line in text.strip().splitlines())


def headers_without_snippet():
    """Exported classes and functions whose comment, right above them, shows no code."""
    for header in sorted((ROOT / "include/KelvOsgTools").glob("*.h")):
        comment = []
        for line in header.read_text(encoding="utf-8").splitlines():
            if line.startswith("///"):
                comment.append(line)
                continue
            exported = re.match(r"(?:class )?KELVOSGTOOLS_EXPORT (.*)", line)
            if exported and not re.search(r"@snippet|@skip", "\n".join(comment)):
                yield f"{header.name}: no snippet above {exported[1]}"
            comment = []


def dead_links():
    for page in sorted(ROOT.glob("*.md")) + sorted((ROOT / "docs").glob("*.md")):
        for target in re.findall(r"\]\(([^)#\s]+)", page.read_text(encoding="utf-8")):
            if "://" not in target and not (page.parent / target).exists():
                yield f"{page.relative_to(ROOT)}: nothing at {target}"


def main():
    sources = [lines_of(path.read_text(encoding="utf-8")) for path in sorted(ROOT.glob("examples/**/*.cpp"))]
    failures = 0
    for guide in GUIDES:
        blocks = re.findall(r"```cpp\n(.*?)```", (ROOT / guide).read_text(encoding="utf-8"), re.DOTALL)
        for block in blocks:
            if not any(lines_of(block) in source for source in sources):
                print(f"{guide}: no example holds this code:\n{block}", file=sys.stderr)
                failures += 1
    for host in MINIMAL_HOSTS:
        lines = len((ROOT / "examples" / host / "main.cpp").read_text(encoding="utf-8").splitlines())
        if lines > MINIMAL_HOST_LINES:
            print(f"examples/{host}: {lines} lines, {MINIMAL_HOST_LINES} at most", file=sys.stderr)
            failures += 1
    for problem in list(headers_without_snippet()) + list(dead_links()):
        print(problem, file=sys.stderr)
        failures += 1
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
