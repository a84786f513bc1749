// Libraries of others beside ours, on the same files and meshes: each run is a driver of bench/peers in a process of its own, which times
// the operation alone. Only drivers that were built take part.
#include <cmath>
#include <cstdio>
#include <fstream>
#include <functional>

#include "measure.h"
#include "support/blocks.h"
#include "support/check.h"
#include "support/child.h"
#include "support/cut_torus.h"
#include "support/files.h"
#include "support/meshes.h"
#include "support/punched.h"

namespace fs = std::filesystem;

namespace {

using Numbers = std::vector<double>;

// Numbers of a result agree to this share: single and double precision differ, and so does what counts as touching.
constexpr double agreement = 1e-3;

// Inputs are made when first asked for and go with the model.
template <class Make>
fs::path made_once(const Model& model, const std::string& ending, Make make) {
  const fs::path path = model.side_file(ending);
  if (!fs::exists(path)) make(path);
  return path;
}

fs::path soup_file(const Model& model) { return model.binary_file(); }

FlatMesh merged_flat(const Model& model) {
  const Buffer<FlatPoint> points = corner_points(model.soup());
  return merge_flat(points.data(), model.facets());
}

FlatMesh crossing_flat(const Model& model) {
  const Buffer<FlatPoint> points = two_surfaces(model);
  return merge_flat(points.data(), points.size() / 3);
}

FlatMesh punched_flat(const Model& model) { return flat_of(*punched_block(model)); }

template <Seams seams>
FlatMesh cut_flat(const Model& model) {
  return flat_of(*cut_torus(model, Cuts::fixed, seams).block);
}

template <FlatMesh (*mesh)(const Model&)>
fs::path flat_file(const Model& model) {
  const char* ending = mesh == merged_flat     ? "merged.flat"
                       : mesh == crossing_flat ? "crossing.flat"
                       : mesh == punched_flat  ? "punched.flat"
                       : mesh == cut_flat<Seams::cracks> ? "cracks.flat" : "t_junctions.flat";
  return made_once(model, ending, [&](const fs::path& path) { save_flat(mesh(model), path); });
}

fs::path punched_stl(const Model& model) {
  return made_once(model, "punched.stl",
                   [&](const fs::path& path) { write_binary_stl(path, soup_of(load_flat(flat_file<punched_flat>(model)))); });
}

std::string nothing(const Model&) { return ""; }
std::string output(const Model& model) { return model.side_file("peer.stl"); }
std::string tolerance_text(double tol) {
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", tol);
  return text;
}
std::string tenth_of_edge(const Model& model) { return tolerance_text(0.1 * model.shortest_edge()); }
std::string seam_tolerance(const Model& model) { return tolerance_text(0.01 * model.shortest_edge()); }

// What the result must be: where counts are not known beforehand, our own result.
Numbers no_facts(const Model&) { return {}; }
Numbers facets(const Model& model) { return {static_cast<double>(model.facets())}; }
Numbers vertices(const Model& model) { return {static_cast<double>(model.vertices())}; }
Numbers facets_and_vertices(const Model& model) { return {facets(model)[0], vertices(model)[0]}; }
Numbers facets_and_none(const Model& model) { return {facets(model)[0], 0.0}; }
Numbers none(const Model&) { return {0.0}; }

Numbers volume(const Model& model) {
  double sum = 0.0;
  for (std::size_t f = 0; f < model.facets(); ++f) {
    const float* p = &model.soup().corners[9 * f];
    const double bx = p[3], by = p[4], bz = p[5], cx = p[6], cy = p[7], cz = p[8];
    sum += p[0] * (by * cz - bz * cy) + p[1] * (bz * cx - bx * cz) + p[2] * (bx * cy - by * cx);
  }
  return {sum / 6.0};
}

Numbers crossing_facets(const Model& model) {
  const fs::path path = made_once(model, "crossing.count", [&](const fs::path& file) {
    intcoPageArr found;
    block_of(mesh_of(load_flat(flat_file<crossing_flat>(model))), FacetOrder::ordered)->find_intersecting(found, 1000);
    std::ofstream(file) << found.count();
  });
  double count = 0.0;
  std::ifstream(path) >> count;
  require(count > 0.0, "surfaces that run through each other do not intersect");
  return {count};
}

struct Peer {
  const char* of;      // the measure of ours
  const char* driver;  // mendex_peer_...
  const char* operation;
  fs::path (*input)(const Model&);
  Numbers (*expected)(const Model&);
  std::string (*extra)(const Model&) = nothing;
};

constexpr Peer peers[] = {
    {"read_stl", "admesh", "read", soup_file, facets},
    {"read_stl", "openmesh", "read", soup_file, facets_and_vertices},
    {"read_stl", "cgal", "read", soup_file, facets},
    {"unduplicate_exact", "cgal", "merge", soup_file, vertices},
    {"unduplicate_0.1_edge", "nanoflann", "merge", soup_file, vertices, tenth_of_edge},
    {"merge_and_link", "admesh", "link", soup_file, facets_and_none},
    {"build_edges", "openmesh", "topology", flat_file<merged_flat>, facets_and_none},
    {"build_edges", "cgal", "topology", flat_file<merged_flat>, facets_and_none},
    {"find_sick", "openmesh", "manifold", flat_file<merged_flat>, facets_and_none},
    {"find_sick", "cgal", "manifold", flat_file<merged_flat>, facets_and_none},
    {"orient_normals", "admesh", "orient", soup_file, volume},
    {"orient_normals", "cgal", "orient", flat_file<merged_flat>, volume},
    {"isect_clean", "cgal", "intersections", flat_file<merged_flat>, none},
    {"isect_overlapping", "cgal", "intersections", flat_file<crossing_flat>, crossing_facets},
    {"fill_1000_holes_journalled", "admesh", "fill", punched_stl, none},
    {"fill_1000_holes_journalled", "cgal", "fill", flat_file<punched_flat>, none},
    {"close_cracks", "cgal", "stitch", flat_file<cut_flat<Seams::cracks>>, none},
    {"close_t_junctions", "cgal", "snap_and_stitch", flat_file<cut_flat<Seams::t_junctions>>, none, seam_tolerance},
    {"write_stl", "admesh", "write", soup_file, no_facts, output},
    {"write_stl", "openmesh", "write", flat_file<merged_flat>, no_facts, output},
    {"write_stl", "cgal", "write", flat_file<merged_flat>, no_facts, output},
};

fs::path driver_of(const Peer& peer) { return beside_this_program(std::string("peers/mendex_peer_") + peer.driver); }

bool agree(const Numbers& facts, const Numbers& expected) {
  if (facts.size() != expected.size()) return false;
  for (std::size_t k = 0; k < facts.size(); ++k) {
    if (!(std::abs(facts[k] - expected[k]) <= agreement * std::abs(expected[k]))) return false;
  }
  return true;
}

Cost run_peer(const Peer& peer, const Model& model) {
  const std::string name = std::string(peer.driver) + ", " + peer.operation;
  const std::string command = quoted(driver_of(peer)) + " " + peer.operation + " " + quoted(peer.input(model)) + " " + peer.extra(model);
  fs::remove(output(model));
  Numbers numbers = numbers_of(command);
  require(numbers.size() >= 2, "the driver failed: " + command);
  const Cost cost{numbers[0], numbers[1]};
  numbers.erase(numbers.begin(), numbers.begin() + 2);
  require(agree(numbers, peer.expected(model)), name + " does not agree: " + command);
  if (peer.extra == output) check_written(output(model), model);
  return cost;
}

}  // namespace

void add_peer_measures(std::vector<Measure>& list) {
  for (const Peer& peer : peers) {
    if (!fs::exists(driver_of(peer))) continue;
    list.push_back({std::string(peer.of) + " by " + peer.driver, "", [&peer](const Model& model) { return run_peer(peer, model); }, peer.of});
  }
}
