#!/usr/bin/env python3
"""Puts the sources of a folder together for checking: lint_units.py BUILD OUTPUT FOLDER...

clang-tidy spends nearly all its time on the headers of OpenSceneGraph and Qt; read once for all sources of a
folder, they cost little. Writes OUTPUT/NAME.cpp for each folder, which includes its sources, with
OUTPUT/compile_commands.json to match, made from BUILD/compile_commands.json.
"""

import json
import pathlib
import re
import sys

# These give constants of their own the names that others gave theirs, so each of them stands alone.
ALONE = re.compile(r"/(CConeAndCylinderMeta|CFlagAutoScaleSphereMeta)\.cpp$")


def main():
    build, output = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
    commands = {entry["file"]: entry for entry in json.loads((build / "compile_commands.json").read_text())}
    output.mkdir(parents=True, exist_ok=True)
    units = []
    for folder in map(pathlib.Path, sys.argv[3:]):
        files = sorted(str(path.resolve()) for path in folder.rglob("*.cpp"))
        together = [file for file in files if not ALONE.search(file)]
        for sources in [together] + [[file] for file in files if ALONE.search(file)]:
            name = folder.name if sources is together else pathlib.Path(sources[0]).stem
            unit = output / f"{name}.cpp"
            unit.write_text("".join(f'#include "{source}"\n' for source in sources))
            like = commands[sources[0]]
            units.append(dict(like, file=str(unit), command=like["command"].replace(sources[0], str(unit))))
    (output / "compile_commands.json").write_text(json.dumps(units, indent=1))
    print("\n".join(unit["file"] for unit in units))


if __name__ == "__main__":
    main()
