#!/usr/bin/env python3
"""Draws a model before and after its repair, side by side, as SVG. Needs nothing but Python.

usage, from the top folder:
  mendex repair samples/broken_ring.stl -o sound.stl
  python3 docs/images/repair_picture.py samples/broken_ring.stl sound.stl docs/images/repair.svg

Both are binary STL. Red: edges that have no neighbour running them the other way. Orange: the inner side of the surface.
"""

import math
import struct
import sys

AZIMUTH_DEG, ELEVATION_DEG = -82.0, 44.0  # where the viewer stands
PANEL, MARGIN, CAPTION = 420, 14, 34       # pixels


def read_stl(path):
    with open(path, "rb") as file:
        data = file.read()
    (count,) = struct.unpack_from("<I", data, 80)
    facets = []
    for k in range(count):
        v = struct.unpack_from("<12f", data, 84 + 50 * k)[3:]
        facets.append((v[0:3], v[3:6], v[6:9]))
    return facets


def lonely_edges(facets):
    """The directed edges that are run more often than the other way."""
    uses = {}
    for f in facets:
        for k in range(3):
            edge = (f[k], f[(k + 1) % 3])
            uses[edge] = uses.get(edge, 0) + 1
    return {edge for edge, count in uses.items() if count != uses.get((edge[1], edge[0]), 0)}


def sub(a, b):
    return tuple(x - y for x, y in zip(a, b))


def dot(a, b):
    return sum(x * y for x, y in zip(a, b))


def unit(a):
    length = math.sqrt(dot(a, a))
    return tuple(x / length for x in a) if length > 0 else a


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


class View:
    def __init__(self):
        a, e = math.radians(AZIMUTH_DEG), math.radians(ELEVATION_DEG)
        self.toward = (math.cos(a) * math.cos(e), math.sin(a) * math.cos(e), math.sin(e))
        self.right = (-math.sin(a), math.cos(a), 0.0)
        self.up = cross(self.toward, self.right)
        self.light = unit(tuple(0.6 * t - 0.5 * r + 0.8 * u for t, r, u in zip(self.toward, self.right, self.up)))

    def flat(self, p):
        return dot(p, self.right), -dot(p, self.up)


def items_of(facets, view):
    """What is drawn, from the back to the front: (depth, order, shape)."""
    lonely = lonely_edges(facets)
    items = []
    for f in facets:
        normal = unit(cross(sub(f[1], f[0]), sub(f[2], f[0])))
        is_front = dot(normal, view.toward) > 0
        light = abs(dot(normal, view.light)) if not is_front else max(0.0, dot(normal, view.light))
        tint = 0.45 + 0.55 * light
        base = (150, 185, 225) if is_front else (245, 170, 80)
        colour = "#%02x%02x%02x" % tuple(int(c * tint) for c in base)
        depth = dot(tuple(sum(p[k] for p in f) / 3 for k in range(3)), view.toward)
        items.append((depth, 0, "face", f, colour))
        for k in range(3):
            a, b = f[k], f[(k + 1) % 3]
            if (a, b) in lonely:
                middle = tuple((x + y) / 2 for x, y in zip(a, b))
                items.append((dot(middle, view.toward) + 0.6, 1, "edge", (a, b), None))
    items.sort(key=lambda item: item[:2])
    return items


def panel(facets, view, frame, left, caption):
    low_x, low_y, scale = frame

    def place(p):
        x, y = view.flat(p)
        return "%.1f %.1f" % (left + (x - low_x) * scale, CAPTION + (y - low_y) * scale)

    out = ['<text x="%d" y="22">%s</text>' % (left, caption)]
    for _, _, kind, points, colour in items_of(facets, view):
        path = "L".join(place(p) for p in points)
        if kind == "face":
            out.append('<path d="M%sZ" fill="%s"/>' % (path, colour))
        else:
            out.append('<path class="r" d="M%s"/>' % path)
    return out


def main(broken_path, sound_path, out_path):
    view = View()
    broken, sound = read_stl(broken_path), read_stl(sound_path)
    flat = [view.flat(p) for f in broken + sound for p in f]
    low_x, low_y = min(x for x, _ in flat), min(y for _, y in flat)
    wide, high = max(x for x, _ in flat) - low_x, max(y for _, y in flat) - low_y
    scale = PANEL / wide
    width, height = 2 * PANEL + 3 * MARGIN, CAPTION + high * scale + MARGIN
    lines = ['<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 %d %.0f" width="%d" height="%.0f">' % (width, height, width, height),
             "<title>A model before and after mendex repair</title>",
             "<style>path{stroke:#445;stroke-width:.35;stroke-linejoin:round}.r{stroke:#d00;stroke-width:2.2;stroke-linecap:round;"
             "fill:none}text{font:15px sans-serif;fill:#222}</style>",
             '<rect width="100%" height="100%" fill="#fff"/>']
    lines += panel(broken, view, (low_x, low_y, scale), MARGIN, "before: %d open edges (red)" % len(lonely_edges(broken)))
    lines += panel(sound, view, (low_x, low_y, scale), 2 * MARGIN + PANEL, "after: %d" % len(lonely_edges(sound)))
    lines.append("</svg>")
    with open(out_path, "w", encoding="ascii", newline="\n") as file:
        file.write("\n".join(lines) + "\n")


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    main(*sys.argv[1:])
