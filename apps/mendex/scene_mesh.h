#pragma once

#include <mendexlib.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

/// A mesh in plain arrays, as it comes out of a scene file: vertices counted from 0, three a triangle.
struct SceneMesh {
  std::vector<std::array<double, 3>> points;
  std::vector<std::array<int, 3>> triangles;
  std::vector<int> colours;  // one a triangle, as the library packs them; empty where the scene has none
  std::int64_t other_faces = 0;      // points and lines, which were left out
  std::int64_t collapsed_faces = 0;  // triangles that named a vertex twice, which were left out

  /// Makes one vertex of those at exactly the same place, as formats that give a vertex only one colour or normal repeat them. The one
  /// met first stays; the order of what stays is kept.
  void join_vertices();
  /// Leaves out triangles that name a vertex twice, with their colours.
  void drop_collapsed();

  /// For the way between two processes.
  std::string bytes() const;
  /// False when the bytes are not those of a mesh.
  bool take_bytes(const std::string& bytes);

  /// Puts the arrays into a host's pool.
  void give(giTriBlock& pool) const;
  /// The mesh in a host's pool.
  void take(const giTriBlock& pool);

  /// Sorts the triangles by colour; colours in the order in which they first appear, triangles of one colour in their own.
  void sort_by_colour();
  /// Repeats vertices where triangles of different colours meet, so that no vertex has two, and numbers them in the order of their use.
  void split_by_colour();
};
