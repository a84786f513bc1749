#pragma once

#include <cstdint>
#include <filesystem>

#include "support/buffer.h"
#include "support/model.h"

/// The plain loops that the library is compared with. They do the least that the task needs, on flat arrays, without
/// lists, journal, stable numbers, progress or interruption.

struct FlatPoint {
  double x, y, z;
};

/// Nine floats a facet.
struct FlatSoup {
  std::size_t facets = 0;
  Buffer<float> corners;
};

/// Distinct points in order of first use, and three of their indices a facet.
struct FlatMesh {
  std::size_t facets = 0;
  std::size_t vertex_count = 0;
  Buffer<FlatPoint> vertices;
  Buffer<std::uint32_t> corners;
};

/// Flat parse: reads a binary STL file through a block buffer into a flat array.
FlatSoup parse_flat(const std::filesystem::path& path);

/// The corners of a soup in double precision, as a loaded block has them.
Buffer<FlatPoint> corner_points(const Soup& soup);

/// Hash merge: gives equal points one index. An open-addressing table of indices with linear probing, at most half
/// full, keyed on the three coordinates.
FlatMesh merge_flat(const FlatPoint* points, std::size_t facets);

/// A flat mesh as a file, for programs beside this one.
void save_flat(const FlatMesh& mesh, const std::filesystem::path& path);
FlatMesh load_flat(const std::filesystem::path& path);

/// The corners of a flat mesh as single-precision facets, as a file has them.
Soup soup_of(const FlatMesh& mesh);

/// Computes the normals and writes the records of a binary STL file.
void write_flat(const FlatMesh& mesh, std::FILE* file);

/// The same as ASCII STL, a formatted print a line.
void write_flat_ascii(const FlatMesh& mesh, std::FILE* file);

/// Links half-edges: for each corner the half-edge against the one that leaves it, empty_link where there is none. Half-edges are sorted
/// by their lower vertex, by counting, and looked for among those of that vertex.
Buffer<std::uint32_t> link_flat(const FlatMesh& mesh);
constexpr std::uint32_t empty_link = 0xffffffffu;

/// Whether every directed edge has its opposite, as it is in a closed surface. (By a sum over hashed edges: a surface
/// that is not closed passes with probability 2^-64.)
bool is_closed(const FlatMesh& mesh);
