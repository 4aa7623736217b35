#!/usr/bin/env python3
"""Tells whether the tests bite: changes the sources of the library, one small change at a time, and looks
whether a test fails.

    scripts/mutate.py [--count N] [--minutes M] [--seed S] [--files REGEX] [--tests BUILD] [--again]
    scripts/mutate.py --report      what is known so far, with every survivor

The sources stay as they are: a changed copy is compiled and linked with the other objects of a library in
build/mutants, and the tests of BUILD (build/dev), which must be built and pass, are run with that library
in place of their own. Tests that do not draw run first. The first failure ends it: the change is killed. So is one
that crashes or hangs. What survives is either equivalent or a test that is missing.

Which changes are drawn depends on the seed alone. Results are kept in build/mutants/results.jsonl; a
further run goes on where the former one ended, and tries the survivors again with --again.
"""

import argparse
import hashlib
import json
import os
import pathlib
import random
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import time

PROJECT = pathlib.Path(__file__).resolve().parent.parent
SCRATCH = PROJECT / "build/mutants"
RESULTS = SCRATCH / "results.jsonl"

# Which programs may notice a change in a room: those of the room, then others; what takes long comes last.
ROOM_PROGRAMS = {
    "foundation": ["foundation/foundation_tests", "primitives/primitives_tests", "scene/scene_tests",
                   "primitives/label_without_application_tests", "persistence/persistence_tests",
                   "picking/picking_tests", "primitives/primitives_picture_tests"],
    "scene": ["scene/scene_tests", "scene/feature_cost_tests", "persistence/persistence_tests",
              "scene/scene_picture_tests", "scene/exhausted_memory_tests"],
    "primitives": ["primitives/primitives_tests", "primitives/axis_tests", "primitives/orientation_tests",
                   "primitives/label_without_application_tests", "scene/scene_tests", "scene/feature_cost_tests",
                   "primitives/axis_picture_tests", "scene/scene_picture_tests", "picking/picking_tests",
                   "primitives/primitives_picture_tests", "scene/scene_threaded_tests"],
    "picking": ["picking/picking_tests", "picking/exhausted_pick_tests"],
    "persistence": ["persistence/persistence_tests", "persistence/persistence_save_interruption_tests",
                    "persistence/persistence_hostile_file_tests"],
}


def comparison(old, *new):
    # clang-format puts blanks around operators and none within template arguments.
    return [(f"{old} becomes {other}", rf"(?<= ){re.escape(old)}(?= )", other) for other in new]


# What is changed: name, where, and what stands there afterwards.
CHANGES = [
    *comparison("<", "<=", ">"),
    *comparison("<=", "<"),
    *comparison(">", ">=", "<"),
    *comparison(">=", ">"),
    *comparison("==", "!="),
    *comparison("!=", "=="),
    *comparison("&&", "||"),
    *comparison("||", "&&"),
    *comparison("+", "-"),
    *comparison("-", "+"),
    *comparison("*", "/"),
    *comparison("/", "*"),
    *comparison("+=", "-="),
    *comparison("-=", "+="),
    ("negation dropped", r"(?<![\w!])!(?=[\w(])", ""),
    ("minus dropped", r"(?<=[(,=?:] )-(?=[\w(])|(?<=\()-(?=[\w(])|(?<=return )-(?=[\w(])", ""),
    ("condition negated", r"\bif \((?!const |auto )(?=[^;]*$)", "if (!"),
    ("true becomes false", r"\btrue\b", "false"),
    ("false becomes true", r"\bfalse\b", "true"),
    ("constant doubled", r"(?<![\w.\[])(?!0\.0f?\b)\d+\.\d+", lambda found: repr(2 * float(found))),
    ("zero becomes one", r"(?<![\w.])0\.0(?=f?\b)|(?<![\w.])0(?![\w.])", lambda found: found.replace("0", "1", 1)),
    ("constant plus one", r"(?<![\w.])[1-9]\d*(?![\w.])", lambda found: str(int(found) + 1)),
    ("statement dropped",
     r"^\s+(?!return\b|throw\b|delete\b|case\b|default\b)\*?[\w:.>()\[\]-]+(?:\(.*\)| [-+*/|&]?= .*);$", None),
]


def blanked(source):
    """The source with comments, texts, preprocessor lines and constant checks blanked, column by column."""

    def blank(match):
        return re.sub(r"[^\n]", "\x01", match.group())

    pattern = [r"//[^\n]*", r"/\*.*?\*/", r'"(?:\\.|[^"\\\n])*"', r"'(?:\\.|[^'\\\n])'", r"^#[^\n]*",
               r"static_assert\([^;]*;", r"template<[^>\n]*>"]
    return re.sub("|".join(pattern), blank, source, flags=re.S | re.M)


def closing_parenthesis(text, start):
    depth = 0
    for i in range(start, len(text)):
        depth += {"(": 1, ")": -1}.get(text[i], 0)
        if depth == 0:
            return i
    return None


class Mutant:
    def __init__(self, file, source, start, end, text, kind):
        self.file, self.kind = file, kind
        self.changed = source[:start] + text + source[end:]
        self.line = source.count("\n", 0, start) + 1
        first = source.rfind("\n", 0, start) + 1
        self.code = source[first : source.find("\n", start)].strip()
        occurrence = source.count(self.code, 0, first)
        key = f"{file}|{self.code}|{occurrence}|{start - first}|{kind}"
        self.id = hashlib.sha1(key.encode()).hexdigest()[:10]
        self.room = file.split("/")[1]

    def __str__(self):
        return f"{self.file}:{self.line}: {self.kind}: {self.code}"


def mutants_of(path):
    file = str(path.relative_to(PROJECT))
    source = path.read_text()
    visible = blanked(source)
    for kind, pattern, replacement in CHANGES:
        for match in re.finditer(pattern, visible, flags=re.M):
            start, end = match.span()
            if kind == "statement dropped":
                # A declaration has a blank before its parenthesis.
                head = match.group().strip().split("(")[0]
                if " " in head and "=" not in head:
                    continue
                indent = len(match.group()) - len(match.group().lstrip())
                yield Mutant(file, source, start + indent, end, ";", kind)
            elif kind == "condition negated":
                opening = end - 1
                close = closing_parenthesis(visible, opening)
                if close is None or ";" in visible[opening:close]:
                    continue
                yield Mutant(file, source, opening, close + 1, f"(!{source[opening : close + 1]})", kind)
            else:
                text = replacement(match.group()) if callable(replacement) else replacement
                yield Mutant(file, source, start, end, text, kind)


def run(command, seconds, environment=None, folder=None):
    """Exit status and output of a command; status None if it ran too long."""
    process = subprocess.Popen(command, cwd=folder, env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                               stdin=subprocess.DEVNULL, text=True, errors="replace", start_new_session=True)
    try:
        output, _ = process.communicate(timeout=seconds)
        return process.returncode, output
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, 9)
        process.communicate()
        return None, ""


class Library:
    """The library in build/mutants, and copies of it with one object changed."""

    def __init__(self, tests):
        self.tests = tests
        self.test_links = {}
        self.folder = SCRATCH / "library"
        configure = ["cmake", "-S", PROJECT, "-B", self.folder, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                     "-DCMAKE_CXX_FLAGS_DEBUG=-O0", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON",
                     "-DKELVOSGTOOLS_BUILD_TESTS=OFF", "-DKELVOSGTOOLS_BUILD_EXAMPLES=OFF",
                     "-DKELVOSGTOOLS_PRECOMPILE_HEADERS=ON"]
        subprocess.run(configure, check=True, stdout=subprocess.DEVNULL)
        subprocess.run(["cmake", "--build", self.folder, "--target", "KelvOsgTools", "--parallel", "1"], check=True)
        self.original = next(path for path in self.folder.glob("libKelvOsgTools.so*") if not path.is_symlink())
        self.compile = {str(pathlib.Path(entry["file"]).relative_to(PROJECT)): shlex.split(entry["command"])
                        for entry in json.loads((self.folder / "compile_commands.json").read_text())
                        if entry["file"].startswith(str(PROJECT / "src"))}
        self.link = self._link_command(self.folder, "KelvOsgTools")
        self.mutant = SCRATCH / "mutant" / self.original.name
        self.mutant.parent.mkdir(exist_ok=True)

    @staticmethod
    def _link_command(folder, target):
        commands = subprocess.run(["ninja", "-C", folder, "-t", "commands", target], check=True, text=True,
                                  stdout=subprocess.PIPE).stdout.splitlines()
        linking = [line for line in commands if " -o " in line and " -c " not in line][-1]
        return next(part for part in linking.split(" && ") if " -o " in part)

    def build(self, mutant):
        """Compiles and links; answers whether that went well."""
        source = SCRATCH / "mutant" / pathlib.Path(mutant.file).name
        source.write_text(mutant.changed)
        self.object = source.with_suffix(".o")
        command = list(self.compile[mutant.file])
        original_object = command[command.index("-o") + 1]
        command[command.index("-o") + 1] = str(self.object)
        command[command.index("-c") + 1] = str(source)
        command += ["-iquote", str((PROJECT / mutant.file).parent), "-w"]
        status, _ = run(command, 300, folder=self.folder)
        if status != 0:
            return False
        return self._relink(self.link, self.folder, original_object, self.mutant)

    def _relink(self, command, folder, original_object, output):
        parts = shlex.split(command)
        parts[parts.index("-o") + 1] = str(output)
        parts = [str(self.object) if part == original_object else part for part in parts]
        status, text = run(parts, 120, folder=folder)
        if status != 0:
            print(text)
        return status == 0

    def program_for(self, mutant, program):
        """The program itself, or, if it holds a copy of the changed source, one with the changed copy."""
        name = pathlib.Path(program).name
        if name not in self.test_links:
            self.test_links[name] = self._link_command(self.tests, name)
        link = self.test_links[name]
        holder = re.search(rf"\S*/{re.escape(mutant.file)}\.o", link)
        if not holder:
            return SCRATCH / "tests" / program
        changed = SCRATCH / "mutant" / name
        return changed if self._relink(link, self.tests, holder.group(), changed) else None


class Tests:
    def __init__(self, library, rooms):
        self.library = library
        self.seconds = {}
        self.environment = dict(os.environ, XDG_RUNTIME_DIR=tempfile.mkdtemp())
        programs = sorted({program for room in rooms for program in ROOM_PROGRAMS[room]})
        for program in programs:
            built = library.tests / "tests" / program
            if not built.exists():
                sys.exit(f"mutate.py: {built} is not built")
            path = SCRATCH / "tests" / program  # the tests may be built anew meanwhile
            path.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(built, path)
            start = time.monotonic()
            status, output = self._run(path, library.original, 900)
            if status != 0:
                sys.exit(f"mutate.py: {program} fails without any change:\n{output[-3000:]}")
            self.seconds[program] = time.monotonic() - start
            print(f"{program}: {self.seconds[program]:.1f} s", flush=True)

    def _run(self, path, library, seconds):
        environment = dict(self.environment, LD_PRELOAD=str(library))
        return run([str(path), "--gtest_fail_fast", "--gtest_brief=1"], seconds, environment, SCRATCH)

    def killer(self, mutant):
        """The test that fails with the change, or none."""
        for program in ROOM_PROGRAMS[mutant.room]:
            path = self.library.program_for(mutant, program)
            if path is None:
                return f"{program}: does not link"
            status, output = self._run(path, self.library.mutant, 30 + 6 * self.seconds[program])
            if status is None:
                return f"{program}: hangs"
            if status != 0:
                failed = re.search(r"\[  FAILED  \] ([^\s,]+)", output)
                return failed.group(1) if failed else f"{program}: crashes"
        return None


def known_results():
    if not RESULTS.exists():
        return {}
    return {entry["id"]: entry for entry in map(json.loads, RESULTS.read_text().splitlines())}


def report(known, present):
    """Prints killed and survived changes of each room, then every survivor that the sources still have."""
    print(f"{'room':<12} {'killed':>6} {'survived':>8}  score")
    for room in [*ROOM_PROGRAMS, "all"]:
        entries = [entry for entry in known.values() if room in (entry["room"], "all") and entry["id"] in present]
        killed = sum(entry["result"] == "killed" for entry in entries)
        survived = sum(entry["result"] == "survived" for entry in entries)
        if killed + survived:
            print(f"{room:<12} {killed:>6} {survived:>8}  {100 * killed / (killed + survived):.1f} %")
    for entry in known.values():
        if entry["result"] == "survived" and entry["id"] in present:
            print(entry["id"], present[entry["id"]])


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--count", type=int, default=200, help="so many changes, those of former runs included")
    parser.add_argument("--minutes", type=float, default=60)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--files", default="", help="only sources whose path matches")
    parser.add_argument("--tests", type=pathlib.Path, default=PROJECT / "build/dev", help="the build with the tests")
    parser.add_argument("--again", action="store_true", help="try known survivors again, and nothing else")
    parser.add_argument("--list", action="store_true", help="print the changes that would be tried")
    parser.add_argument("--report", action="store_true")
    arguments = parser.parse_args()

    sources = sorted(PROJECT.glob("src/*/*.cpp"))
    drawn = [mutant for path in sources for mutant in mutants_of(path)]
    random.Random(arguments.seed).shuffle(drawn)
    known = known_results()
    if arguments.report:
        return report(known, {mutant.id: mutant for mutant in drawn})
    if arguments.again:
        drawn = [mutant for mutant in drawn if known.get(mutant.id, {}).get("result") == "survived"]
        for mutant in drawn:
            known.pop(mutant.id)
    drawn = [mutant for mutant in drawn if re.search(arguments.files, mutant.file)]
    if arguments.list:
        for mutant in drawn[: arguments.count]:
            print(mutant.id, mutant)
        return None
    if not os.environ.get("DISPLAY"):
        os.execvp("xvfb-run", ["xvfb-run", "--auto-servernum", "--server-args=-screen 0 1280x1024x24 -noreset",
                               sys.executable, *sys.argv])

    end = time.monotonic() + 60 * arguments.minutes
    SCRATCH.mkdir(parents=True, exist_ok=True)
    library = Library(arguments.tests.resolve())
    tests = Tests(library, sorted({mutant.room for mutant in drawn}))
    tried = 0
    for mutant in drawn:
        if tried == arguments.count or time.monotonic() > end:
            break
        if mutant.id in known:
            tried += known[mutant.id]["result"] != "does not compile"
            continue
        entry = {"id": mutant.id, "room": mutant.room, "change": str(mutant)}
        if library.build(mutant):
            entry["killer"] = tests.killer(mutant)
            entry["result"] = "killed" if entry["killer"] else "survived"
            tried += 1
        else:
            entry["result"] = "does not compile"
        with RESULTS.open("a") as file:
            file.write(json.dumps(entry) + "\n")
        print(entry["result"], mutant, entry.get("killer") or "", flush=True)
    report(known_results(), {mutant.id: mutant for mutant in drawn})
    return None


if __name__ == "__main__":
    main()
