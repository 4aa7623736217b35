#!/usr/bin/env python3
"""Generates the mesh of the tour: a small machined part, as a Wavefront OBJ file.

    scripts/make_part.py FILE          writes FILE
    scripts/make_part.py --check FILE  exits with 1 unless FILE is what would be written

Lengths are millimetres. The part is built with z upwards and written with y upwards, as is usual for
OBJ files. The same file comes out on every machine: points are rounded before anything is decided
from them.
"""

import math
import sys

TAU = 2.0 * math.pi
DIGITS = 4  # of every coordinate


class Loop:
    """A closed outline, anticlockwise, with the outward normal of each point."""

    def __init__(self, points, normals):
        self.points = points
        self.normals = normals

    def offset(self, distance):
        """The outline moved outwards; exact, since every outline here is smooth."""
        return Loop([(p[0] + n[0] * distance, p[1] + n[1] * distance) for p, n in zip(self.points, self.normals)],
                    self.normals)


def arc(centre, radius, start, sweep, steps):
    angles = [start + sweep * i / steps for i in range(steps + 1)]
    return ([(centre[0] + radius * math.cos(a), centre[1] + radius * math.sin(a)) for a in angles],
            [(math.cos(a), math.sin(a)) for a in angles])


def joined(*arcs):
    return Loop([p for points, _ in arcs for p in points], [n for _, normals in arcs for n in normals])


def circle(centre, radius, steps=48):
    points, normals = arc(centre, radius, 0.0, TAU, steps)
    return Loop(points[:-1], normals[:-1])


def rounded_rectangle(width, height, radius, steps=12):
    x, y = width / 2 - radius, height / 2 - radius
    return joined(*[arc(c, radius, i * TAU / 4, TAU / 4, steps)
                    for i, c in enumerate([(x, y), (-x, y), (-x, -y), (x, -y)])])


def slot(centre, width, length, steps=20):
    """A slot along y with round ends."""
    reach = (length - width) / 2
    return joined(arc((centre[0], centre[1] + reach), width / 2, 0.0, TAU / 2, steps),
                  arc((centre[0], centre[1] - reach), width / 2, TAU / 2, TAU / 2, steps))


def cross(o, a, b):
    return (a[0] - o[0]) * (b[1] - o[1]) - (a[1] - o[1]) * (b[0] - o[0])


def segments_cross(a, b, c, d):
    if len({a, b, c, d}) < 4: return False
    return cross(a, b, c) * cross(a, b, d) <= 0 and cross(c, d, a) * cross(c, d, b) <= 0


def rounded(points):
    return [(round(x, DIGITS), round(y, DIGITS)) for x, y in points]


def bridged(points, loops):
    """One outline out of an outer one and its holes, cut open along bridges. All are index lists."""
    outline, holes = loops[0], sorted(loops[1:], key=lambda hole: -max(points[i] for i in hole)[0])
    for number, hole in enumerate(holes):
        start = max(range(len(hole)), key=lambda i: points[hole[i]])
        tip = points[hole[start]]
        edges = [(loop[i - 1], loop[i]) for loop in [outline] + holes[number:] for i in range(len(loop))]

        def visible(index):
            return not any(segments_cross(tip, points[index], points[a], points[b]) for a, b in edges)

        nearest_first = sorted(range(len(outline)), key=lambda i: (math.dist(tip, points[outline[i]]), i))
        at = next(i for i in nearest_first if visible(outline[i]))
        outline = outline[:at + 1] + hole[start:] + hole[:start + 1] + outline[at:]
    return outline


def clipped_ears(points, outline):
    triangles = []
    outline = list(outline)
    while len(outline) > 3:
        for i in range(len(outline)):
            a, b, c = outline[i - 1], outline[i], outline[(i + 1) % len(outline)]
            if is_ear(points, outline, a, b, c):
                triangles.append((a, b, c))
                del outline[i]
                break
        else:
            raise ValueError("an outline crosses itself")
    return triangles + [tuple(outline)]


def is_ear(points, outline, a, b, c):
    pa, pb, pc = points[a], points[b], points[c]
    if cross(pa, pb, pc) <= 1e-9: return False
    for i in outline:
        p = points[i]
        if i in (a, b, c): continue
        if cross(pa, pb, p) >= 0 and cross(pb, pc, p) >= 0 and cross(pc, pa, p) >= 0: return False
    return True


def in_circle(a, b, c, d):
    """Whether d lies clearly within the circle through a, b and c."""
    rows = [(p[0] - d[0], p[1] - d[1], (p[0] - d[0]) ** 2 + (p[1] - d[1]) ** 2) for p in (a, b, c)]
    (ax, ay, az), (bx, by, bz), (cx, cy, cz) = rows
    return ax * (by * cz - bz * cy) - ay * (bx * cz - bz * cx) + az * (bx * cy - by * cx) > 1e-3


def flipped(points, triangles, fixed):
    """Turns inner edges until no triangle is more of a sliver than it must be."""
    triangles = list(triangles)
    changed = True
    while changed:
        changed = False
        opposite = {}
        for number, triangle in enumerate(triangles):
            for k in range(3):
                opposite[(triangle[k], triangle[(k + 1) % 3])] = (number, triangle[(k + 2) % 3])
        touched = set()
        for (a, b), (left, c) in sorted(opposite.items()):
            if a > b or (b, a) not in opposite or (a, b) in fixed or (b, a) in fixed: continue
            right, d = opposite[(b, a)]
            if left in touched or right in touched: continue
            pa, pb, pc, pd = points[a], points[b], points[c], points[d]
            convex = cross(pc, pa, pd) > 1e-6 and cross(pd, pb, pc) > 1e-6
            if convex and in_circle(pa, pb, pc, pd):
                triangles[left], triangles[right] = (c, a, d), (d, b, c)
                touched |= {left, right}
                changed = True
    return triangles


def triangulated(outer, holes):
    """Points and anticlockwise triangles of a face with holes."""
    points, loops = [], []
    for loop, is_hole in [(outer, False)] + [(hole, True) for hole in holes]:
        indices = list(range(len(points), len(points) + len(loop.points)))
        points += rounded(loop.points)
        loops.append(indices[::-1] if is_hole else indices)
    fixed = {(loop[i - 1], loop[i]) for loop in loops for i in range(len(loop))}
    return points, flipped(points, clipped_ears(points, bridged(points, loops)), fixed)


class Mesh:
    def __init__(self):
        self.positions, self.normals, self.faces = {}, {}, []

    def corner(self, position, normal):
        length = math.sqrt(sum(n * n for n in normal))
        position = tuple(round(v, DIGITS) + 0.0 for v in position)
        normal = tuple(round(v / length, DIGITS) + 0.0 for v in normal)
        return (self.positions.setdefault(position, len(self.positions) + 1),
                self.normals.setdefault(normal, len(self.normals) + 1))

    def add(self, corners):
        corners = [self.corner(*c) for c in corners]
        if len({position for position, _ in corners}) == 3: self.faces.append(corners)

    def face(self, outer, holes, place, normal, turned=False):
        """A plane face; place puts a point of the outline into space, turned makes it face backwards."""
        points, triangles = triangulated(outer, holes)
        for triangle in triangles:
            order = triangle[::-1] if turned else triangle
            self.add([(place(points[i]), normal) for i in order])

    def wall(self, low, high, place, inward=False, is_open=False):
        """The band between an outline and the same outline further on, seen from outside (or inside).

        Both are pairs of an outline and its height; place puts an outline's point at a height into
        space. is_open leaves out the stretch from the last point to the first.
        """
        (bottom, z0), (top, z1) = low, high
        side = -1.0 if inward else 1.0
        count = len(bottom.points)
        for i in range(count - 1 if is_open else count):
            j = (i + 1) % count
            corners = []
            for k, (loop, z) in ((i, low), (j, low), (j, high), (i, high)):
                n = loop.normals[k]
                # The slope of a chamfer: how far the outline moves while the height grows.
                run = (top.points[k][0] - bottom.points[k][0]) * n[0] + (top.points[k][1] - bottom.points[k][1]) * n[1]
                slope = (n[0] * (z1 - z0) * side, n[1] * (z1 - z0) * side)
                corners.append((place(loop.points[k], z), self.direction(place, slope, -run * side)))
            a, b, c, d = corners[::-1] if inward else corners
            self.add([a, b, c])
            self.add([a, c, d])

    @staticmethod
    def direction(place, outline_part, height_part):
        origin, tip = place((0.0, 0.0), 0.0), place(outline_part, height_part)
        return tuple(t - o for t, o in zip(tip, origin))

    def text(self):
        lines = ["# A small machined part, millimetres, y upwards. Made by scripts/make_part.py.", "o part"]
        lines += ["v " + written((x, z, -y)) for x, y, z in self.positions]
        lines += ["vn " + written((x, z, -y)) for x, y, z in self.normals]
        lines += ["f " + " ".join(f"{p}//{n}" for p, n in face) for face in self.faces]
        return "\n".join(lines) + "\n"


def written(vector):
    return " ".join(f"{v + 0.0:.{DIGITS}f}".rstrip("0").rstrip(".") for v in vector)


def upright(point, z):
    """Outlines that lie flat."""
    return (point[0], point[1], z)


def sideways(point, x):
    """Outlines that stand, seen along x."""
    return (x, point[0], point[1])


UP, DOWN = (0.0, 0.0, 1.0), (0.0, 0.0, -1.0)
PLATE_TOP = 14.0
CHAMFER = 2.0


def add_stack(mesh, levels, inward=False):
    """Walls from each (outline, height) to the next; a level at the same height makes a ring."""
    for low, high in zip(levels, levels[1:]):
        if low[1] != high[1]:
            mesh.wall(low, high, upright, inward)
        else:
            outer, inner = (high[0], low[0]) if inward else (low[0], high[0])
            mesh.face(outer, [inner], lambda p, z=low[1]: (p[0], p[1], z), UP)


def add_boss(mesh, outlines, bore, edge):
    """A boss on the plate with a bore down to the underside; edge is the bore's chamfer."""
    add_stack(mesh, outlines)
    top_outline, top = outlines[-1]
    rim = bore.offset(edge)
    mesh.face(top_outline, [rim], lambda p: (p[0], p[1], top), UP)
    add_stack(mesh, [(bore, 0.0), (bore, top - edge), (rim, top)], inward=True)


def main_boss(mesh, centre):
    foot, neck, bore = circle(centre, 26.0, 72), circle(centre, 19.0, 72), circle(centre, 12.0, 72)
    add_boss(mesh, [(foot, PLATE_TOP), (foot, 22.5), (foot.offset(-1.5), 24.0), (neck, 24.0), (neck, 36.0),
                    (neck.offset(-2.0), 38.0)], bore, 1.5)
    return foot, bore


def side_boss(mesh, centre):
    foot, bore = circle(centre, 10.0), circle(centre, 5.0)
    add_boss(mesh, [(foot, PLATE_TOP), (foot, 23.0), (foot.offset(-1.0), 24.0)], bore, 1.0)
    return foot, bore


def bolt_hole(mesh, centre):
    hole, recess = circle(centre, 4.5), circle(centre, 8.0)
    rim = recess.offset(0.5)
    add_stack(mesh, [(hole, 0.0), (hole, 8.0), (recess, 8.0), (recess, PLATE_TOP - 0.5), (rim, PLATE_TOP)], inward=True)
    return rim, hole


def through_slot(mesh, outline):
    rim = outline.offset(1.0)
    add_stack(mesh, [(outline, 0.0), (outline, PLATE_TOP - 1.0), (rim, PLATE_TOP)], inward=True)
    return rim, outline


def lug(mesh, near, far, half_width, axis_height):
    """An upright ear with a cross bore. Its foot is open: the plate's top leaves it out."""
    hole = circle((0.0, axis_height), 7.0)
    points, normals = arc((0.0, axis_height), half_width, 0.0, TAU / 2, 36)
    outline = Loop([(half_width, PLATE_TOP)] + points + [(-half_width, PLATE_TOP)],
                   [(1.0, 0.0)] + normals + [(-1.0, 0.0)])
    # The cross bore's chamfers, then the two cheeks, then the walls.
    rim = hole.offset(1.0)
    for low, high in (((rim, near), (hole, near + 1.0)), ((hole, near + 1.0), (hole, far - 1.0)),
                      ((hole, far - 1.0), (rim, far))):
        mesh.wall(low, high, sideways, inward=True)
    mesh.face(outline, [rim], lambda p: sideways(p, near), (-1.0, 0.0, 0.0), turned=True)
    mesh.face(outline, [rim], lambda p: sideways(p, far), (1.0, 0.0, 0.0))
    mesh.wall((outline, near), (outline, far), sideways, is_open=True)
    corners = [(far, half_width), (near, half_width), (near, -half_width), (far, -half_width)]
    return Loop(corners, [(0.0, 0.0)] * 4)


def part():
    mesh = Mesh()
    outline = rounded_rectangle(140.0, 90.0, 14.0)
    shoulder = outline.offset(-CHAMFER)
    add_stack(mesh, [(outline, 0.0), (outline, PLATE_TOP - CHAMFER), (shoulder, PLATE_TOP)])

    openings = [main_boss(mesh, (-18.0, 0.0)), side_boss(mesh, (24.0, 26.0)), side_boss(mesh, (24.0, -26.0)),
                through_slot(mesh, slot((-56.0, 0.0), 10.0, 28.0))]
    openings += [bolt_hole(mesh, (x, y)) for x in (-56.0, 56.0) for y in (-31.0, 31.0)]
    foot = lug(mesh, 44.0, 58.0, 15.0, 38.0)

    mesh.face(shoulder, [top for top, _ in openings] + [foot], lambda p: (p[0], p[1], PLATE_TOP), UP)
    mesh.face(outline, [bottom for _, bottom in openings], lambda p: (p[0], p[1], 0.0), DOWN, turned=True)
    return mesh.text()


def main(arguments):
    if len(arguments) == 2 and arguments[0] == "--check":
        with open(arguments[1], encoding="ascii") as stored:
            if stored.read() == part(): return 0
        print(f"{arguments[1]} is not what scripts/make_part.py makes: run it again", file=sys.stderr)
        return 1
    if len(arguments) != 1:
        print(__doc__, file=sys.stderr)
        return 2
    with open(arguments[0], "w", encoding="ascii", newline="\n") as target:
        target.write(part())
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
