#!/usr/bin/env python3
"""Writes the performance page from the results of scripts/bench.sh: performance_page.py FOLDER REPETITIONS"""

import json
import pathlib
import re
import sys

HEAD = """# Performance

Written by `scripts/bench.sh`, which runs the programs in [benchmarks](../benchmarks); do not edit this
page, run the script. Times are medians of {repetitions} runs, in milliseconds of the whole operation
unless another unit stands beside them.

Measured on {machine}, {build}; frames are drawn by `{renderer}`. Frame times on a graphics card are still
to be measured.

## What the benchmarks compare

- **StraightforwardDot** is a dot as it would be without sharing: the same nodes, with a stock sphere of
  its own (14,400 triangles, 60 primitive sets) in place of the shared one.
- **BareTransform** is the floor of creating and drawing: two bare auto-scaled transforms for each feature,
  over one shared pair of squares.
- **raw...** and **bare...** are what OpenSceneGraph's own visitors, or Qt's XML streams over the same
  bytes, take for the same in the same run.
- **bytes_each** is the heap that one feature takes, its label included. **growth_bytes** is by how much
  the resident memory grew from the third to the last of 100 rounds of creating, colouring, hiding, showing
  and removing 1,000 dots.
"""

TAIL = """
## What remains

- **Drawing.** A steady frame of 1,000 labelled dots is not yet ten times faster than the straightforward
  one, a first frame is. What is left are the texels of label texts, drawn from glyphs of 64 x 64, and the
  triangles of the spheres. A sphere of 2.5 to 12 pixels draws a half with about 800 triangles turned to the
  eye. It differs from the full tessellation by at most 6/255 inside; on the outline single pixels differ
  more, most with multisampling. Spheres of other sizes draw their full tessellation.
- **Picking.** A pick by kind over 10,000 lines or planes walks the scene three times (labels, box, ray) and
  takes longer than a frame of 16 ms.
- **Memory.** Most of a feature is its label. A solid arrow keeps vertices of its own, since its length is its
  own, and takes slightly more than 30,000 bytes.
- **Creating.** A feature first looks for a namesake among its siblings, where the nodes keep their names, so
  that a host may rename, move and remove nodes as it likes. That is why a feature among 10,000 takes up to
  twice as long as one among 1,000.
"""


def label(benchmark):
    return re.sub(r"/(iterations:\d+|real_time|repeats:\d+)", "", benchmark["run_name"])


def counters(benchmark):
    wanted = ("bytes_each", "us_each", "growth_bytes")
    cells = []
    for name in wanted:
        if name in benchmark:
            value = benchmark[name] * 1e6 if name == "us_each" and benchmark[name] < 0.01 else benchmark[name]
            cells.append(f"{name} {value:,.0f}")
    return ", ".join(cells)


def table(path):
    data = json.loads(path.read_text(encoding="utf-8"))
    rows = [f"\n## {path.stem.capitalize()}\n", "| Benchmark | Time | CPU | |", "|---|---:|---:|---|"]
    for benchmark in data["benchmarks"]:
        if benchmark.get("aggregate_name") == "median":
            unit = benchmark["time_unit"]
            rows.append(
                f"| {label(benchmark)} | {benchmark['real_time']:.3g} {unit} | {benchmark['cpu_time']:.3g} {unit} "
                f"| {counters(benchmark)} |"
            )
    return rows, data["context"]


def main():
    folder, repetitions = pathlib.Path(sys.argv[1]), sys.argv[2]
    rows, context = [], {}
    for name in ("features", "picking", "persistence"):
        part, context = table(folder / f"{name}.json")
        rows += part
    machine = f"{context['num_cpus']} cores at {context['mhz_per_cpu']} MHz (load {context['load_avg'][0]:.1f})"
    print(HEAD.format(repetitions=repetitions, machine=machine, build="release build", renderer="llvmpipe"))
    print("\n".join(rows))
    print(TAIL, end="")


if __name__ == "__main__":
    main()
