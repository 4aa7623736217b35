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

Measured on {machine}, {build}; frames are drawn by `{renderer}`.
Frame times on a graphics card are still to be measured.

## What the benchmarks compare

- **Straightforward...** is a feature as it would be without sharing: the same nodes, but each sphere,
  cylinder, cone and text is a stock one of its own. A sphere then has 14,400 triangles in 60 primitive sets.
- **BareTransform** is the floor of creating, culling and drawing: two bare auto-scaled transforms with two
  drawables each for each feature, which share their arrays and their state. **BareLabel** is the same with
  the kinds that a labelled dot has: a label turns to the screen, and one of its drawables is a text.
- **raw...** and **bare...** (also in the middle of a name) are what OpenSceneGraph's own visitors, or Qt's
  XML streams over the same bytes, take for the same in the same run.
- **bytes_each** is the heap that one feature takes, its label included. **growth_bytes** is by how much
  the resident memory grew from the third to the last of 100 rounds of creating, colouring, hiding, showing
  and removing 1,000 dots.
"""

TAIL = """
## What remains

- **Drawing.** A steady frame of 1,000 labelled dots is some seventeen times as fast as the straightforward
  one, a first frame more than twenty times. Drawn apart, the spheres take 5 us each, the texts of eight letters
  25 us, nearly all of it in the renderer's threads, outlines and rectangles 15 us. A sphere of up to 32 pixels
  across is drawn by one point for each of its pixels. It differs from the full tessellation by at most 2/255
  inside, but for single pixels, of some thousand, along its outline, where the facets end. Where pixels have
  several samples a sphere of 2.5 to 12 pixels draws a half with about 1,300 triangles turned to the eye, which
  looks the same but for single samples; other spheres draw their full tessellation there.
- **Culling.** A cull of 10,000 labelled dots takes some sixth longer than that of the simplest floor, and two thirds
  of what it takes **cullTheStockWay**, by a visitor for which features take no shorter one (both have memory fetched
  ahead). Labels and spheres are culled in one go, and equal state sets are drawn with the first of them. A cull reads
  some 90 cache lines for each dot, 5.7 kB; a quarter of them are its three state sets, which are its own, since a
  host may change one and expects the others to stay, and which are therefore read anew each time. What remains is
  spread: a seventh goes to adding drawables, as reference counts are atomic, a seventh to cleaning up after the last
  cull, both of which the floor pays, too. Planes, with four drawables of their own, take the stock way but for their
  labels.
- **Picking.** A label pick looks at every node once, since any node may bear a listed name; a pick by kind
  then walks with a box and with a ray. Nodes and their lists of children are fetched from memory ahead, which
  nearly halves the time. One walk for box and ray would gain up to a sixth; but OpenSceneGraph tells a
  lone ray another eye point than a group of intersectors, which nodes that turn to the eye ask for.
- **Memory.** Most of a feature is its label. A solid arrow keeps vertices of its own, since its length is
  its own; the normals of its head it shares with others that rise alike.
- **Creating.** A feature first looks for a namesake among its siblings, where the nodes keep their names,
  so that a host may rename, move and remove nodes as it likes. Among 10,000 that is a third of the time,
  which is why a feature then takes up to twice as long as one among 1,000. A registry would be faster, and
  wrong after the first node that a host moves.
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
