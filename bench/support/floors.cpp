#include "support/floors.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "support/check.h"
#include "support/files.h"
#include "support/stl_bytes.h"

namespace {

constexpr std::uint32_t empty_slot = 0xffffffffu;
constexpr std::size_t records_per_block = 1024;

std::uint64_t bits_of(double value) {
  value += 0.0;  // both zeros are one number
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

std::uint64_t hash_of(const FlatPoint& p) {
  std::uint64_t h = bits_of(p.x) * 0x9e3779b97f4a7c15u;
  h = ((h ^ (h >> 32)) + bits_of(p.y)) * 0xbf58476d1ce4e5b9u;
  h = ((h ^ (h >> 32)) + bits_of(p.z)) * 0x94d049bb133111ebu;
  return h ^ (h >> 32);
}

bool equal(const FlatPoint& a, const FlatPoint& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

// Indices into an array of distinct points, found by coordinates.
class IndexTable {
 public:
  IndexTable() { clear(first_size); }

  // The index of p among vertices[0 .. count), which is appended when it is new.
  std::uint32_t find_or_append(const FlatPoint& p, FlatPoint* vertices, std::size_t& count) {
    std::size_t slot = hash_of(p) & mask_;
    while (slots_[slot] != empty_slot) {
      if (equal(vertices[slots_[slot]], p)) return slots_[slot];
      slot = (slot + 1) & mask_;
    }
    const auto index = static_cast<std::uint32_t>(count);
    vertices[count++] = p;
    slots_[slot] = index;
    if (2 * count > slots_.size()) grow(vertices, count);
    return index;
  }

 private:
  static constexpr std::size_t first_size = 1024;

  void clear(std::size_t size) {
    Buffer<std::uint32_t> fresh(size);
    std::memset(fresh.data(), 0xff, size * sizeof(std::uint32_t));
    slots_.swap(fresh);
    mask_ = size - 1;
  }

  void grow(const FlatPoint* vertices, std::size_t count) {
    clear(4 * slots_.size());
    for (std::size_t i = 0; i < count; ++i) {
      std::size_t slot = hash_of(vertices[i]) & mask_;
      while (slots_[slot] != empty_slot) slot = (slot + 1) & mask_;
      slots_[slot] = static_cast<std::uint32_t>(i);
    }
  }

  Buffer<std::uint32_t> slots_;
  std::size_t mask_ = 0;
};

void compute_normal(const FlatPoint& a, const FlatPoint& b, const FlatPoint& c, float normal[3]) {
  const double ux = b.x - a.x, uy = b.y - a.y, uz = b.z - a.z;
  const double vx = c.x - a.x, vy = c.y - a.y, vz = c.z - a.z;
  const double x = uy * vz - uz * vy, y = uz * vx - ux * vz, z = ux * vy - uy * vx;
  const double length = std::sqrt(x * x + y * y + z * z);
  const double scale = length > 1e-5 ? 1.0 / length : 1.0;
  normal[0] = static_cast<float>(x * scale);
  normal[1] = static_cast<float>(y * scale);
  normal[2] = static_cast<float>(z * scale);
}

}  // namespace

FlatSoup parse_flat(const std::filesystem::path& path) {
  FlatSoup soup;
  const File file = open_file(path, "rb");
  char preamble[stl_preamble_bytes];
  if (std::fread(preamble, 1, sizeof preamble, file.get()) != sizeof preamble) return soup;
  soup.corners = Buffer<float>(std::size_t{9} * stl_facet_count(preamble));
  float* next = soup.corners.data();
  char block[records_per_block * stl_record_bytes];
  while (const std::size_t got = std::fread(block, stl_record_bytes, records_per_block, file.get())) {
    for (std::size_t k = 0; k < got; ++k, next += 9) {
      std::memcpy(next, block + k * stl_record_bytes + stl_normal_bytes, stl_corner_bytes);
    }
    soup.facets += got;
  }
  return soup;
}

Buffer<FlatPoint> corner_points(const Soup& soup) {
  Buffer<FlatPoint> points(3 * soup.facets);
  for (std::size_t i = 0; i < points.size(); ++i) {
    const float* p = &soup.corners[3 * i];
    points[i] = {p[0], p[1], p[2]};
  }
  return points;
}

FlatMesh merge_flat(const FlatPoint* points, std::size_t facets) {
  FlatMesh mesh;
  mesh.facets = facets;
  mesh.vertices = Buffer<FlatPoint>(3 * facets);  // room for all; what is not used is never touched
  mesh.corners = Buffer<std::uint32_t>(3 * facets);
  IndexTable table;
  for (std::size_t i = 0; i < 3 * facets; ++i) {
    mesh.corners[i] = table.find_or_append(points[i], mesh.vertices.data(), mesh.vertex_count);
  }
  return mesh;
}

void write_flat(const FlatMesh& mesh, std::FILE* file) {
  char preamble[stl_preamble_bytes] = "torus";
  const auto count = static_cast<std::uint32_t>(mesh.facets);
  std::memcpy(preamble + stl_header_bytes, &count, sizeof count);
  std::fwrite(preamble, 1, sizeof preamble, file);
  char record[stl_record_bytes] = {};
  for (std::size_t f = 0; f < mesh.facets; ++f) {
    float numbers[12];
    const FlatPoint* corner[3];
    for (std::size_t k = 0; k < 3; ++k) corner[k] = &mesh.vertices[mesh.corners[3 * f + k]];
    compute_normal(*corner[0], *corner[1], *corner[2], numbers);
    for (std::size_t k = 0; k < 3; ++k) {
      numbers[3 + 3 * k] = static_cast<float>(corner[k]->x);
      numbers[4 + 3 * k] = static_cast<float>(corner[k]->y);
      numbers[5 + 3 * k] = static_cast<float>(corner[k]->z);
    }
    std::memcpy(record, numbers, sizeof numbers);
    std::fwrite(record, 1, sizeof record, file);
  }
}

void write_flat_ascii(const FlatMesh& mesh, std::FILE* file) {
  std::fputs("solid torus\n", file);
  for (std::size_t f = 0; f < mesh.facets; ++f) {
    const FlatPoint* corner[3];
    for (std::size_t k = 0; k < 3; ++k) corner[k] = &mesh.vertices[mesh.corners[3 * f + k]];
    float n[3];
    compute_normal(*corner[0], *corner[1], *corner[2], n);
    std::fprintf(file, "  facet normal %e %e %e\n    outer loop\n", static_cast<double>(n[0]),
                 static_cast<double>(n[1]), static_cast<double>(n[2]));
    for (const FlatPoint* p : corner) std::fprintf(file, "      vertex   %e %e %e\n", p->x, p->y, p->z);
    std::fputs("    endloop\n  endfacet\n", file);
  }
  std::fputs("endsolid\n", file);
}

void save_flat(const FlatMesh& mesh, const std::filesystem::path& path) {
  const File file = open_file(path, "wb");
  const std::uint64_t counts[2] = {mesh.facets, mesh.vertex_count};
  std::fwrite(counts, sizeof counts, 1, file.get());
  std::fwrite(mesh.vertices.data(), sizeof(FlatPoint), mesh.vertex_count, file.get());
  std::fwrite(mesh.corners.data(), sizeof(std::uint32_t), 3 * mesh.facets, file.get());
}

FlatMesh load_flat(const std::filesystem::path& path) {
  const File file = open_file(path, "rb");
  std::uint64_t counts[2] = {};
  require(std::fread(counts, sizeof counts, 1, file.get()) == 1, "counts of a flat mesh");
  FlatMesh mesh;
  mesh.facets = counts[0];
  mesh.vertex_count = counts[1];
  mesh.vertices = Buffer<FlatPoint>(mesh.vertex_count);
  mesh.corners = Buffer<std::uint32_t>(3 * mesh.facets);
  require(std::fread(mesh.vertices.data(), sizeof(FlatPoint), mesh.vertex_count, file.get()) == mesh.vertex_count &&
              std::fread(mesh.corners.data(), sizeof(std::uint32_t), 3 * mesh.facets, file.get()) == 3 * mesh.facets,
          "size of a flat mesh");
  return mesh;
}

Soup soup_of(const FlatMesh& mesh) {
  Soup soup;
  soup.facets = mesh.facets;
  soup.vertices = mesh.vertex_count;
  soup.corners = Buffer<float>(9 * mesh.facets);
  for (std::size_t i = 0; i < 3 * mesh.facets; ++i) {
    const FlatPoint& p = mesh.vertices[mesh.corners[i]];
    soup.corners[3 * i] = static_cast<float>(p.x);
    soup.corners[3 * i + 1] = static_cast<float>(p.y);
    soup.corners[3 * i + 2] = static_cast<float>(p.z);
  }
  return soup;
}

Buffer<std::uint32_t> link_flat(const FlatMesh& mesh) {
  const std::size_t count = 3 * mesh.facets;
  const auto end_of = [&](std::size_t h) { return mesh.corners[h % 3 == 2 ? h - 2 : h + 1]; };
  Buffer<std::uint32_t> first(mesh.vertex_count + 2);
  std::memset(first.data(), 0, first.size() * sizeof(std::uint32_t));
  for (std::size_t h = 0; h < count; ++h) ++first[std::min(mesh.corners[h], end_of(h)) + 2];
  for (std::size_t v = 2; v < first.size(); ++v) first[v] += first[v - 1];
  Buffer<std::uint32_t> sorted(count);
  for (std::size_t h = 0; h < count; ++h)
    sorted[first[std::min(mesh.corners[h], end_of(h)) + 1]++] = static_cast<std::uint32_t>(h);
  Buffer<std::uint32_t> links(count);
  std::memset(links.data(), 0xff, count * sizeof(std::uint32_t));
  for (std::size_t v = 0; v < mesh.vertex_count; ++v) {
    for (std::uint32_t i = first[v]; i < first[v + 1]; ++i) {
      const std::uint32_t h = sorted[i];
      if (links[h] != empty_link) continue;
      for (std::uint32_t j = i + 1; j < first[v + 1]; ++j) {
        const std::uint32_t g = sorted[j];
        if (links[g] != empty_link || mesh.corners[g] != end_of(h) || end_of(g) != mesh.corners[h]) continue;
        links[h] = g;
        links[g] = h;
        break;
      }
    }
  }
  return links;
}

bool is_closed(const FlatMesh& mesh) {
  const auto mixed = [](std::uint64_t a, std::uint64_t b) {
    std::uint64_t h = (a << 32 | b) * 0xbf58476d1ce4e5b9u;
    h = (h ^ (h >> 31)) * 0x94d049bb133111ebu;
    return h ^ (h >> 29);
  };
  std::uint64_t sum = 0;
  for (std::size_t f = 0; f < mesh.facets; ++f) {
    for (std::size_t k = 0; k < 3; ++k) {
      const std::uint64_t from = mesh.corners[3 * f + k];
      const std::uint64_t to = mesh.corners[3 * f + (k + 1) % 3];
      if (from == to) return false;
      sum += mixed(from, to) - mixed(to, from);
    }
  }
  return sum == 0;
}
