// ADMesh's library.
#include <admesh/stl.h>

#include <cmath>
#include <cstdlib>
#include <string>
#include <utility>

#include "peers/driver.h"
#include "support/check.h"

namespace {

class Facets {
 public:
  explicit Facets(const char* file) : name_(file) { stl_open(&stl, name_.data()); }
  ~Facets() { stl_close(&stl); }
  Facets(const Facets&) = delete;
  Facets& operator=(const Facets&) = delete;

  double count() const { return stl.stats.number_of_facets; }
  double unconnected() const { return stl.stats.number_of_facets - stl.stats.connected_facets_3_edge; }

  double volume() const {
    double sum = 0.0;
    for (int f = 0; f < stl.stats.number_of_facets; ++f) {
      const stl_vertex& a = stl.facet_start[f].vertex[0];
      const stl_vertex& b = stl.facet_start[f].vertex[1];
      const stl_vertex& c = stl.facet_start[f].vertex[2];
      const double x = double(b.y) * c.z - double(b.z) * c.y, y = double(b.z) * c.x - double(b.x) * c.z;
      sum += a.x * x + a.y * y + a.z * (double(b.x) * c.y - double(b.y) * c.x);
    }
    return std::abs(sum) / 6.0;
  }

  stl_file stl;

 private:
  std::string name_;
};

Report read(const char* input, const char*) {
  std::string name = input;
  stl_file stl;
  const Cost cost = cost_of([&] { stl_open(&stl, name.data()); });
  const double count = stl.stats.number_of_facets;
  stl_close(&stl);
  return {cost, {count}};
}

Report write(const char* input, const char* output) {
  Facets facets(input);
  return {cost_of([&] { stl_write_binary(&facets.stl, output, "torus"); }), {}};
}

// Facets find their neighbours by equal edges, in one step.
Report link(const char* input, const char*) {
  Facets facets(input);
  const Cost cost = cost_of([&] { stl_check_facets_exact(&facets.stl); });
  return {cost, {facets.count(), facets.unconnected()}};
}

Report link_nearby(const char* input, const char* tol) {
  Facets facets(input);
  const Cost cost = cost_of([&] { stl_check_facets_nearby(&facets.stl, std::strtof(tol, nullptr)); });
  return {cost, {facets.count(), facets.unconnected()}};
}

// Every third facet is turned over before; neighbours are known.
Report orient(const char* input, const char*) {
  Facets facets(input);
  for (int f = 0; f < facets.stl.stats.number_of_facets; f += 3) {
    std::swap(facets.stl.facet_start[f].vertex[0], facets.stl.facet_start[f].vertex[1]);
  }
  stl_check_facets_exact(&facets.stl);
  const Cost cost = cost_of([&] { stl_fix_normal_directions(&facets.stl); });
  return {cost, {facets.volume()}};
}

Report fill(const char* input, const char*) {
  Facets facets(input);
  stl_check_facets_exact(&facets.stl);
  const double before = facets.unconnected();
  const Cost cost = cost_of([&] { stl_fill_holes(&facets.stl); });
  require(before > 0.0, "there was no hole");
  return {cost, {facets.unconnected()}};
}

}  // namespace

int main(int argc, char** argv) {
  return run_driver(argc, argv,
                    {{"read", read}, {"write", write}, {"link", link}, {"link_nearby", link_nearby}, {"orient", orient}, {"fill", fill}});
}
