#include "growth_inputs.h"

#include <algorithm>
#include <cmath>

#include "support/blocks.h"
#include "support/cut_torus.h"
#include "support/meshes.h"

namespace {

namespace fs = std::filesystem;

Block bumpy(std::size_t facets, const fs::path&, GrowthScale& scale) {
  const Soup soup = bumpy_torus(facets, FacetOrder::ordered);
  scale = {soup.shortest_edge, soup.shortest_edge};
  const Buffer<FlatPoint> corners = corner_points(soup);
  return block_of(mesh_of(merge_flat(corners.data(), facets)), FacetOrder::ordered);
}

Block soup(std::size_t facets, const fs::path&, GrowthScale& scale) {
  const Soup soup = bumpy_torus(facets, FacetOrder::ordered);
  scale = {soup.shortest_edge, soup.shortest_edge};
  return block_of(unmerged(corner_points(soup).data(), facets), FacetOrder::ordered);
}

// The facets of the soup by the x, y and z of their first corners.
Block sorted(std::size_t facets, const fs::path&, GrowthScale& scale) {
  const Soup soup = bumpy_torus(facets, FacetOrder::ordered);
  scale = {soup.shortest_edge, soup.shortest_edge};
  struct Facet {
    FlatPoint corners[3];
  };
  const Buffer<FlatPoint> corners = corner_points(soup);
  std::vector<Facet> sorted(facets);
  for (std::size_t k = 0; k < 3 * facets; ++k) sorted[k / 3].corners[k % 3] = corners[k];
  std::sort(sorted.begin(), sorted.end(), [](const Facet& f, const Facet& g) {
    const FlatPoint &a = f.corners[0], &b = g.corners[0];
    return a.x != b.x ? a.x < b.x : a.y != b.y ? a.y < b.y : a.z < b.z;
  });
  return block_of(unmerged(sorted[0].corners, facets), FacetOrder::ordered);
}

Block patches(std::size_t facets, const fs::path& folder, GrowthScale& scale) {
  const Model model(facets, FacetOrder::ordered, folder);
  scale = {model.shortest_edge(), 1.0};
  return cut_torus(model, Cuts::growing).block;
}

Block sheet(std::size_t facets, const fs::path&, GrowthScale& scale) {
  scale.edge = 10.0 / std::sqrt(static_cast<double>(facets) / 2.0);
  scale.spacing = 2.0 * scale.edge;
  return block_of(flat_sheet(facets), FacetOrder::ordered);
}

Block hub(std::size_t facets, const fs::path&, GrowthScale& scale) {
  scale = {16.0 * 3.14 / static_cast<double>(facets), 1.25};
  return block_of(fan(facets), FacetOrder::ordered);
}

Block loose(std::size_t facets, const fs::path&, GrowthScale& scale) {
  scale = {0.2, 0.4};
  return block_of(loose_triangles(facets), FacetOrder::ordered);
}

}  // namespace

const std::vector<GrowthInput>& growth_inputs() {
  static const std::vector<GrowthInput> inputs = {{"bumpy", false, bumpy}, {"soup", false, soup}, {"patches", false, patches},
                                                  {"sheet", false, sheet}, {"sorted", false, sorted}, {"hub", true, hub},
                                                  {"loose", true, loose}};
  return inputs;
}
