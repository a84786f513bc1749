#pragma once

#include <array>
#include <map>
#include <vector>

#include "boundaries/cycle_array.h"
#include "oracles/literal_mesh.h"
#include "platform/geometry/point_average3.h"
#include "support/random.h"

/// Selects every live cycle.
void select_all(trCycleArray& set);

/// Three random attributes for each node.
void give_attributes(trTriBlock& block, Random& random);

/// The closed unit cube with n x n cells a face, each of two triangles.
void make_grid_cube(trTriBlock& block, int n);

/// Takes triangles, pairs of them and stars of six out of the faces, no two of which touch. Returns how many holes have how many edges.
std::map<int, int> puncture_flat(trTriBlock& block, Random& random);

/// Deletes the elements round a node.
void open_star(trTriBlock& block, int centre);

/// How many corners two elements share.
int shared_corners(const trTriBlock& block, int e, int f);

/// A level plane, up to a distance of 100; along directions within it there is no point.
struct FloorSurface : zrkSurf {
  explicit FloorSurface(double at = 0.0) : z(at) {}
  int closest_point(const giPoint3& p, giPoint3& q) const override;
  int project(const giPoint3& p, const giVector3& direction, giPoint3& q) const override;
  double z;
};

/// Picks on a cycle, and the arc that they choose.
struct Picks {
  std::array<int, 3> nodes = {-1, -1, -1};
  int mode = 2;

  bool any() const { return nodes[0] > 0; }
  void set_on(trCycle& cycle) const;
  /// The nodes of the arc as their rule is worded; the loop must pass each node once.
  std::vector<int> arc_of(const std::vector<int>& loop, const trTriBlock& block) const;
};

/// None, or two or three nodes of the loop; none where it passes a node twice.
Picks random_picks(const std::vector<int>& loop, Random& random);

/// Filling as its rules are worded.
class LiteralFilling {
 public:
  /// A block whose cycles are detected.
  explicit LiteralFilling(trTriBlock& block);

  void close(const std::vector<int>& v);

  LiteralMesh mesh;
  int closed = 0;
};
