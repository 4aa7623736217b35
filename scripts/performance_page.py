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
  drawables each for each feature, which share their arrays and their state.
- **raw...** and **bare...** are what OpenSceneGraph's own visitors, or Qt's XML streams over the same
  bytes, take for the same in the same run.
- **bytes_each** is the heap that one feature takes, its label included. **growth_bytes** is by how much
  the resident memory grew from the third to the last of 100 rounds of creating, colouring, hiding, showing
  and removing 1,000 dots.
"""

TAIL = """
## What remains

- **Drawing.** A first frame of 1,000 labelled dots is some twenty times as fast as the straightforward one,
  a steady frame about six times; ten were the aim. In a profile of steady frames three quarters of the time
  pass in the software renderer, 5 % in OpenSceneGraph, 2 % in this library. Drawn apart, the texts of eight
  letters take 70 us each, the outlines and rectangles 15 us, the spheres 90 us, 20 us of which are the
  floor of any drawable under a transform. The labels alone come near a tenth of a straightforward frame. A
  sphere of 2.5 to 12 pixels draws a half with about 1,300 triangles turned to the eye. It differs from the
  full tessellation by at most 2/255, but for a pixel or two whose middle the outline touches, and for
  single samples of multisampled outlines. With 800 triangles it would take 30 us less, and differ by 6/255.
  Spheres of other sizes draw their full tessellation.
- **Culling.** A cull of 10,000 dots takes more than twice that of the floor. In a profile a quarter of the
  time passes in going from node to node, waiting for memory: a dot has a node more than the floor and
  larger ones, 14,000 bytes against 5,500. Without any state sets an eighth would be gained: a label needs
  one of its own, since labels of the same render index would otherwise be drawn by parts, all outlines,
  then all rectangles, then all texts, right through each other.
- **Picking.** A label pick looks at every node once, since any node may bear a listed name; a pick by kind
  then walks with a box and with a ray. Over 10,000 planes that takes longer than a frame of 16 ms: a plane
  with its two normal arrows has 23 nodes in 26,000 bytes, and the profile shows little but waits for
  memory, although nodes are fetched ahead.
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
