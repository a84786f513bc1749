#include "boundaries/filling_support.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "support/shapes.h"
#include "support/validator.h"

void select_all(trCycleArray& set) {
  set.num_boundaries();
  set.selection.clear();
  for (int i = 0; i < set.cycles.count(); ++i) {
    if (set.cycles[i].start != -1) set.selection.add(i);
  }
}

void give_attributes(trTriBlock& block, Random& random) {
  block.set_node_data_size(3);
  for (int i = 1; i < block.node_count(); ++i) {
    block.node_data(i).weight = random.between(0, 3);
    for (int k = 0; k < 3; ++k) block.node_data(i).values[k] = random.between(-1.0, 1.0);
  }
}

void make_grid_cube(trTriBlock& block, int n) {
  const Shape face = flat_sheet(n, n);
  for (int k = 0; k < 6; ++k) {
    Shape turned = face;
    for (giPoint3& p : turned.points) {
      const double c[3] = {k < 3 ? p.x : p.y, k < 3 ? p.y : p.x, k < 3 ? 1.0 : 0.0};
      p = giPoint3(c[k % 3], c[(k + 1) % 3], c[(k + 2) % 3]);
    }
    add_to(block, turned);
  }
  block.unduplicate_nodes(1e-9);
  block.renumber();
}

namespace {

bool inside_a_face(const giPoint3& p) {
  const double c[3] = {p.x, p.y, p.z};
  return std::count_if(c, c + 3, [](double x) { return x == 0.0 || x == 1.0; }) == 1;
}

}  // namespace

std::map<int, int> puncture_flat(trTriBlock& block, Random& random) {
  std::map<int, int> holes;
  std::set<int> taken;
  for (int tries = 0; tries < 4000; ++tries) {
    std::vector<int> chosen = {random.between(1, block.element_count() - 1)};
    const int centre = block.element(chosen[0])[random.below(3)];
    const int size = tries < 100 ? 2 : random.below(2);  // stars while there is room, then pairs and triangles
    const std::vector<int> around = entries(block.node(centre).elements);
    if (size == 2) chosen = around;
    for (int e : around) {
      if (size == 1 && chosen.size() == 1 && shared_corners(block, e, chosen[0]) == 2) chosen.push_back(e);
    }
    bool free = true;
    std::set<int> corners;
    for (int e : chosen) {
      for (int k = 0; k < 3; ++k) corners.insert(block.element(e)[k]);
    }
    for (int c : corners) free = free && c > 0 && taken.count(c) == 0 && inside_a_face(block.point(c));
    if (!free) continue;
    taken.insert(corners.begin(), corners.end());
    for (int e : chosen) block.delete_element(e);
    ++holes[static_cast<int>(corners.size()) - (size == 2)];
  }
  return holes;
}

void open_star(trTriBlock& block, int centre) {
  for (int e : entries(block.node(centre).elements)) block.delete_element(e);
}

int shared_corners(const trTriBlock& block, int e, int f) {
  int shared = 0;
  for (int k = 0; k < 3; ++k) {
    for (int m = 0; m < 3; ++m) shared += block.element(e)[k] == block.element(f)[m];
  }
  return shared;
}

int FloorSurface::closest_point(const giPoint3& p, giPoint3& q) const {
  if (std::abs(p.z - z) > 100.0) return -1;
  q = giPoint3(p.x, p.y, z);
  return 0;
}

int FloorSurface::project(const giPoint3& p, const giVector3& direction, giPoint3& q) const {
  if (direction.z() == 0.0) return -2;
  q = p + direction * ((z - p.z) / direction.z());
  return 0;
}

void Picks::set_on(trCycle& cycle) const {
  std::copy(nodes.begin(), nodes.end(), cycle.picks);
  cycle.pick_mode = mode;
}

std::vector<int> Picks::arc_of(const std::vector<int>& loop, const trTriBlock& block) const {
  if (!any()) return loop;
  const auto place = [&](int k) {
    return std::find(loop.begin(), loop.end(), nodes[static_cast<std::size_t>(k)]) - loop.begin();
  };
  const auto from = std::min(place(0), place(1));
  const auto to = std::max(place(0), place(1));
  std::vector<int> forward(loop.begin() + from, loop.begin() + to + 1);
  std::vector<int> rest(loop.begin(), loop.begin() + from + 1);
  rest.insert(rest.end(), loop.begin() + to, loop.end());
  if (mode != 2) return mode == 0 ? forward : rest;
  const auto third = place(2);
  if (third != place(0) && third != place(1)) return third > from && third < to ? forward : rest;
  double total = 0.0, inside = 0.0;
  for (std::size_t k = 0; k < loop.size(); ++k) {
    const double length = block.point(loop[k]).distance(block.point(loop[(k + 1) % loop.size()]));
    total += length;
    if (static_cast<std::ptrdiff_t>(k) >= from && static_cast<std::ptrdiff_t>(k) < to) inside += length;
  }
  return inside > total - inside ? rest : forward;
}

Picks random_picks(const std::vector<int>& loop, Random& random) {
  const std::set<int> distinct(loop.begin(), loop.end());
  if (distinct.size() != loop.size() || random.one_in(2)) return {};
  const auto some = [&] { return loop[static_cast<std::size_t>(random.below(static_cast<int>(loop.size())))]; };
  const int a = some(), b = some(), c = some();
  if (a == b) return {};
  return {{a, b, random.one_in(2) ? a : c}, random.one_in(2) ? 2 : random.below(2)};
}

LiteralFilling::LiteralFilling(trTriBlock& block) {
  for (int i = 1; i < block.node_count(); ++i) mesh.set_node(i, block.point(i));
  for (int e = 1; e < block.element_count(); ++e) {
    mesh.set_element(e, block.element(e)[0], block.element(e)[1], block.element(e)[2]);
  }
  mesh.data_size = block.node_data_size();
  for (int i = 1; i < block.node_count() && mesh.data_size > 0; ++i) {
    LiteralMesh::Tuple tuple{block.node_data(i).weight, {}};
    std::copy_n(block.node_data(i).values, 5, tuple.values.begin());
    mesh.set_node_data(i, tuple);
  }
  mesh.build_edges();
}

void LiteralFilling::close(const std::vector<int>& v) {
  ++closed;
  const std::size_t n = v.size();
  if (n == 3) {
    mesh.generate3(v[2], v[1], v[0]);
  } else if (n == 4) {
    mesh.generate4(v[3], v[2], v[1], v[0]);
  } else if (n > 1) {
    giPoint3 sum;
    LiteralMesh::Tuple data{1, {}};
    for (int i : v) {
      const giPoint3& p = LiteralMesh::at(mesh.nodes, i).p;
      sum = giPoint3(sum.x + p.x, sum.y + p.y, sum.z + p.z);
      for (std::size_t k = 0; k < 5 && mesh.data_size > 0; ++k) data.values[k] += LiteralMesh::at(mesh.tuples, i).values[k];
    }
    const double count = static_cast<double>(n);
    const int c = mesh.node_count;
    mesh.set_node(c, giPoint3(sum.x / count, sum.y / count, sum.z / count));
    for (std::size_t i = 0; i < n; ++i) mesh.generate(v[(i + 1) % n], v[i], c);
    if (mesh.data_size > 0) mesh.set_node_data(c, data);
  }
}
