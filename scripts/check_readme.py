#!/usr/bin/env python3
"""Checks that the code shown in README.md is the code that is compiled: exits with 1 if it is not."""

import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SOURCE = ROOT / "examples" / "first_label" / "main.cpp"
BEGIN, END = "// README begins\n", "// README ends\n"


def shown(readme):
    return readme.split("```cpp\n")[1].split("```\n")[0]


def compiled(source):
    return source.split(BEGIN)[1].split(END)[0]


def main():
    readme = (ROOT / "README.md").read_text(encoding="utf-8")
    if shown(readme) == compiled(SOURCE.read_text(encoding="utf-8")): return 0
    print(f"the code in README.md is not that of {SOURCE.relative_to(ROOT)}: copy it over", file=sys.stderr)
    return 1


if __name__ == "__main__":
    sys.exit(main())
