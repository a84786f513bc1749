// Makes the small broken models of this folder: make_samples FOLDER
//
// Each shape is built sound and then broken in one known way. Coordinates lie on a grid of 1/1024, so that the files
// come out the same, byte for byte, on every machine, whatever the last bit of its sines.

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace {

struct Point {
  double x, y, z;
};

using Facet = std::array<Point, 3>;
using Facets = std::vector<Facet>;

double on_grid(double v) { return std::round(v * 1024.0) / 1024.0; }

void add_quad(Facets& facets, const Point& a, const Point& b, const Point& c, const Point& d) {
  facets.push_back({a, b, c});
  facets.push_back({a, c, d});
}

// --- shapes ---

// The surface of a set of cubes of edge `size` on a grid of at most 16 x 16 x 16, facing outward.
Facets surface_of_cubes(double size, const std::function<bool(int, int, int)>& is_solid) {
  Facets facets;
  const int n = 16;
  const auto solid = [&](int x, int y, int z) {
    return x >= 0 && y >= 0 && z >= 0 && x < n && y < n && z < n && is_solid(x, y, z);
  };
  const auto corner = [&](int x, int y, int z) { return Point{x * size, y * size, z * size}; };
  for (int z = 0; z < n; ++z) {
    for (int y = 0; y < n; ++y) {
      for (int x = 0; x < n; ++x) {
        if (!solid(x, y, z)) continue;
        const auto at = [&](int dx, int dy, int dz) { return corner(x + dx, y + dy, z + dz); };
        if (!solid(x - 1, y, z)) add_quad(facets, at(0, 0, 0), at(0, 0, 1), at(0, 1, 1), at(0, 1, 0));
        if (!solid(x + 1, y, z)) add_quad(facets, at(1, 0, 0), at(1, 1, 0), at(1, 1, 1), at(1, 0, 1));
        if (!solid(x, y - 1, z)) add_quad(facets, at(0, 0, 0), at(1, 0, 0), at(1, 0, 1), at(0, 0, 1));
        if (!solid(x, y + 1, z)) add_quad(facets, at(0, 1, 0), at(0, 1, 1), at(1, 1, 1), at(1, 1, 0));
        if (!solid(x, y, z - 1)) add_quad(facets, at(0, 0, 0), at(0, 1, 0), at(1, 1, 0), at(1, 0, 0));
        if (!solid(x, y, z + 1)) add_quad(facets, at(0, 0, 1), at(1, 0, 1), at(1, 1, 1), at(0, 1, 1));
      }
    }
  }
  return facets;
}

// A closed grid: `point(i, j)` for i below columns and j from 0 to rows, columns going round. Rows that shrink to a
// point give one facet a column instead of two.
Facets surface_of_grid(int columns, int rows, const std::function<Point(int, int)>& point) {
  Facets facets;
  const auto same = [](const Point& a, const Point& b) { return a.x == b.x && a.y == b.y && a.z == b.z; };
  for (int j = 0; j < rows; ++j) {
    for (int i = 0; i < columns; ++i) {
      const Point a = point(i, j), b = point((i + 1) % columns, j);
      const Point c = point((i + 1) % columns, j + 1), d = point(i, j + 1);
      if (!same(a, b)) facets.push_back({a, b, c});
      if (!same(c, d)) facets.push_back({a, c, d});
    }
  }
  return facets;
}

const double pi = 3.14159265358979323846;

// --- the models ---

// An angle bracket of cubes of edge 5 with a hole in each arm: volume (4 * 5 - 1 + 4 * 4 - 1) * 125 = 4250.
Facets bracket() {
  return surface_of_cubes(5.0, [](int x, int y, int z) {
    const bool in_base = z == 0 && x < 5 && y < 4 && !(x == 3 && y == 1);
    const bool in_wall = x == 0 && z > 0 && z < 5 && y < 4 && !(z == 3 && y == 2);
    return in_base || in_wall;
  });
}

// A ball of radius 10 whose corners were rounded differently in each facet, each coordinate by up to 0.0004.
Facets gap_sphere() {
  Facets facets = surface_of_grid(16, 8, [](int i, int j) {
    const double round = 2.0 * pi * i / 16, down = pi - pi * j / 8;
    const double radius = 10.0 * std::sin(down);
    return Point{on_grid(radius * std::cos(round)), on_grid(radius * std::sin(round)), on_grid(10.0 * std::cos(down))};
  });
  std::uint32_t state = 20;
  const auto noise = [&state] {
    state = state * 1664525u + 1013904223u;
    return (static_cast<int>(state >> 24) - 128) / 128.0 * 0.0004;
  };
  for (Facet& facet : facets) {
    for (Point& p : facet) p = {p.x + noise(), p.y + noise(), p.z + noise()};
  }
  return facets;
}

// A ring (radii 8 and 3) with a facet of a zero-length side beside every fifth sound one.
Facets torus_collapsed() {
  const Facets sound = surface_of_grid(16, 10, [](int i, int j) {
    const double round = 2.0 * pi * i / 16, across = 2.0 * pi * (j % 10) / 10;
    const double radius = 8.0 + 3.0 * std::cos(across);
    return Point{on_grid(radius * std::cos(round)), on_grid(radius * std::sin(round)), on_grid(3.0 * std::sin(across))};
  });
  Facets facets;
  for (std::size_t k = 0; k < sound.size(); ++k) {
    facets.push_back(sound[k]);
    const Facet& f = sound[k];
    if (k % 5 == 2) facets.push_back({f[0], f[1], f[1]});
    if (k % 50 == 4) facets.push_back({f[2], f[2], f[2]});
  }
  return facets;
}

// A box of 30 x 20 x 10 without its lid.
Facets open_box() {
  const Facets closed = surface_of_cubes(10.0, [](int x, int y, int z) { return x < 3 && y < 2 && z < 1; });
  Facets facets;
  for (const Facet& f : closed) {
    if (!(f[0].z == 10.0 && f[1].z == 10.0 && f[2].z == 10.0)) facets.push_back(f);
  }
  return facets;
}

// A ring (radii 8 and 3) as a careless exporter leaves it: the columns from 12 on are a piece of their own that stands off by 3/1024,
// a patch is missing and a single facet, eight facets look inward, one is there twice, and one sticks out like a fin.
Facets broken_ring() {
  constexpr int columns = 24, rows = 12;
  const auto point = [](int i, int j) {
    const double round = 2.0 * pi * i / columns, across = 2.0 * pi * (j % rows) / rows;
    const double radius = 8.0 + 3.0 * std::cos(across);
    return Point{on_grid(radius * std::cos(round)), on_grid(radius * std::sin(round)), on_grid(3.0 * std::sin(across))};
  };
  const Facets sound = surface_of_grid(columns, rows, point);
  Facets facets;
  for (std::size_t k = 0; k < sound.size(); ++k) {
    const int column = static_cast<int>(k / 2) % columns, row = static_cast<int>(k / 2) / columns;
    const bool is_missing = (column >= 19 && column <= 21 && row >= 1 && row <= 2) || k == 2 * (3 * columns + 4);
    if (is_missing) continue;
    Facet facet = sound[k];
    for (Point& p : facet) p.z += column >= 12 ? 3.0 / 1024.0 : 0.0;
    if (column >= 14 && column <= 15 && row >= 1 && row <= 2) std::swap(facet[1], facet[2]);
    facets.push_back(facet);
    if (k == 2 * (2 * columns + 2)) facets.push_back(facet);
  }
  const Point a = point(0, 2), b = point(1, 2);
  facets.push_back({a, b, {on_grid(1.3 * a.x), on_grid(1.3 * a.y), on_grid(a.z + 1.5)}});
  return facets;
}

// --- files ---

Point normal_of(const Facet& f) {
  const Point u{f[1].x - f[0].x, f[1].y - f[0].y, f[1].z - f[0].z};
  const Point v{f[2].x - f[0].x, f[2].y - f[0].y, f[2].z - f[0].z};
  const Point n{u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
  const double length = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
  return length > 0.0 ? Point{n.x / length, n.y / length, n.z / length} : Point{0.0, 0.0, 0.0};
}

void append_number(std::string& bytes, std::uint32_t value, int size) {
  for (int k = 0; k < size; ++k) bytes += static_cast<char>(value >> (8 * k));
}

void append_point(std::string& bytes, const Point& p) {
  for (const double v : {p.x, p.y, p.z}) {
    const float narrow = static_cast<float>(v == 0.0 ? 0.0 : v);  // no negative zeros
    std::uint32_t bits;
    static_assert(sizeof bits == sizeof narrow, "IEEE single precision");
    std::memcpy(&bits, &narrow, sizeof bits);
    append_number(bytes, bits, 4);
  }
}

std::string binary_stl(const Facets& facets, const std::string& title) {
  std::string bytes = title;
  bytes.resize(80, '\0');
  append_number(bytes, static_cast<std::uint32_t>(facets.size()), 4);
  for (const Facet& f : facets) {
    append_point(bytes, normal_of(f));
    for (const Point& p : f) append_point(bytes, p);
    append_number(bytes, 0, 2);
  }
  return bytes;
}

std::string ascii_stl(const Facets& facets, const std::string& title) {
  std::string text = "solid " + title + "\n";
  const auto append = [&text](const char* before, const Point& p) {
    char line[120];
    std::snprintf(line, sizeof line, "%s %g %g %g\n", before, p.x + 0.0, p.y + 0.0, p.z + 0.0);
    text += line;
  };
  for (const Facet& f : facets) {
    append("  facet normal", normal_of(f));
    text += "    outer loop\n";
    for (const Point& p : f) append("      vertex", p);
    text += "    endloop\n  endfacet\n";
  }
  return text + "endsolid " + title + "\n";
}

bool write_file(const std::string& path, const std::string& bytes) {
  FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return false;
  const bool is_written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  return std::fclose(file) == 0 && is_written;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: make_samples FOLDER\n", stderr);
    return 2;
  }
  const std::string whole = binary_stl(bracket(), "bracket, cut off");
  const std::array<std::pair<const char*, std::string>, 6> files = {{
      {"bracket_soup.stl", binary_stl(bracket(), "solid bracket")},  // many exporters begin binary files with "solid"
      {"gap_sphere.stl", binary_stl(gap_sphere(), "sphere with gaps")},
      {"torus_collapsed.stl", binary_stl(torus_collapsed(), "torus with collapsed facets")},
      {"open_box.ast", ascii_stl(open_box(), "open box, a facet per line and a vertex per corner")},
      {"broken_ring.stl", binary_stl(broken_ring(), "ring with six kinds of defects")},
      {"truncated.stl", whole.substr(0, 84 + 100 * 50 + 33)},  // within facet 101
  }};
  for (const auto& [name, bytes] : files) {
    if (write_file(std::string(argv[1]) + "/" + name, bytes)) continue;
    std::fprintf(stderr, "make_samples: cannot write %s\n", name);
    return 4;
  }
  return 0;
}
