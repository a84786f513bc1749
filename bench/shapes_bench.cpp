// Searches by the shape of elements and their neighbours, swapping, orientation.
#include <algorithm>
#include <cmath>

#include "mesh/aspect_utils.h"
#include "measure.h"
#include "support/blocks.h"
#include "support/check.h"
#include "support/timing.h"

namespace {

constexpr double thin_tolerance = 0.3;

// The least aspect and how many lie below the tolerance, each element measured on its own.
void check_thin(const trTriBlock& block, double least, int found) {
  double expected_least = HUGE_VAL;
  int expected = 0;
  for (int e = 1; e < block.element_count(); ++e) {
    const trElement& t = block.element(e);
    if (!t.valid()) continue;
    const giLength aspect = trAspectUtils::triangle_aspect(block.point(t[0]), block.point(t[1]), block.point(t[2]));
    expected_least = std::min(expected_least, aspect.value());
    expected += aspect.is_below(thin_tolerance);
  }
  require(least == expected_least && found == expected, "thin elements");
}

Cost time_find_thin(const Model& model) {
  const Block block = merged_block(model);
  intcoPageArr out;
  double least = 0.0;
  const Cost cost = cost_of([&] { least = block->find_thin(thin_tolerance, 1, out); });
  check_thin(*block, least, out.count());
  return cost;
}

Cost time_find_overhanging(const Model& model) {
  const Block block = merged_block(model);
  intcoPageArr out;
  const Cost cost = cost_of([&] { block->find_overhanging(out, giUnitVec3(gi_z_axis)); });
  const double share = static_cast<double>(out.count()) / static_cast<double>(model.facets());
  require(share > 0.4 && share < 0.6, "overhanging elements of a torus");
  return cost;
}

Cost time_find_overlapping(const Model& model) {
  const Block block = merged_block(model);
  intcoPageArr out;
  giAngle sharpest;
  const Cost cost = cost_of([&] { sharpest = block->find_overlapping(giAngle::from_degrees(2.5), out); });
  int count = 0;
  const double least_dot = block->min_dotp(-2.0, count);
  require(std::abs(std::cos(sharpest.radians()) + least_dot) < 1e-12 && out.count() == 0, "overlapping elements");
  return cost;
}

// Every third element of the closed surface is turned over, which a single pass must put right.
Cost time_orient_normals(const Model& model) {
  const Block block = merged_block(model);
  const double volume = block->volume();
  for (int e = 1; e < block->element_count(); e += 3) block->reverse_element(e);
  int reversed = 0;
  const Cost cost = cost_of([&] { reversed = block->orient_normals(); });
  require(reversed == 1 && std::abs(block->volume() - volume) <= 1e-9 * volume, "orientation");
  return cost;
}

Cost time_swap_elements(const Model& model) {
  const Block block = merged_block(model);
  intcoPageArr out;
  const double area = block->surface_area();
  const int elements = block->valid_elements();
  const Cost cost = cost_of([&] { block->swap_elements(thin_tolerance); });
  require(block->valid_elements() == elements && std::abs(block->surface_area() - area) < 0.05 * area, "swapped elements");
  return cost;
}

}  // namespace

void add_shapes_measures(std::vector<Measure>& list) {
  list.push_back({"find_thin", "flat_parse", time_find_thin});
  list.push_back({"find_overhanging", "flat_parse", time_find_overhanging});
  list.push_back({"find_overlapping", "flat_parse", time_find_overlapping});
  list.push_back({"orient_normals", "flat_parse", time_orient_normals});
  list.push_back({"swap_elements", "flat_parse", time_swap_elements});
}
