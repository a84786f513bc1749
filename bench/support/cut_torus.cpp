#include "support/cut_torus.h"

#include <algorithm>
#include <array>
#include <random>
#include <unordered_map>
#include <vector>

#include "support/check.h"

namespace {

constexpr std::size_t wanted_t_junctions = 5000;
constexpr std::size_t facets_to_a_t_junction = 64;

using Corners = std::array<std::size_t, 3>;

// The grid of the ordered soup: row by row along the torus, two facets a cell.
class Grid {
 public:
  explicit Grid(std::size_t facets) : soup_(bumpy_torus(facets, FacetOrder::ordered)) {
    about_ = cells_in_row();
    along_ = facets / 2 / about_;
  }

  std::size_t about() const { return about_; }
  std::size_t along() const { return along_; }
  double shortest_edge() const { return soup_.shortest_edge; }

  giPoint3 at(std::size_t i, std::size_t j) const { return point(2 * ((i % along_) * about_ + j % about_), 0); }

 private:
  giPoint3 point(std::size_t facet, int corner) const {
    const float* p = &soup_.corners[9 * (facet % soup_.facets) + 3 * static_cast<std::size_t>(corner)];
    return giPoint3(p[0], p[1], p[2]);
  }
  // The last cell of a row ends at the point where the row began.
  std::size_t cells_in_row() const {
    std::size_t j = 0;
    while (point(2 * j + 1, 2) != point(0, 0)) ++j;
    return j + 1;
  }

  Soup soup_;
  std::size_t about_ = 0;
  std::size_t along_ = 0;
};

// Names of the nodes before they are numbered: the points of the rows, those on a cut once for each side, and the
// middles of the edges along the first row of each strip.
class Cutter {
 public:
  Cutter(std::size_t facets, Cuts cuts, Seams seams) : grid_(facets), seams_(seams) {
    const std::size_t wanted = cuts == Cuts::fixed ? wanted_t_junctions : facets / facets_to_a_t_junction;
    cuts_ = std::clamp<std::size_t>(wanted / grid_.about(), 2, grid_.along() / 3);
  }

  std::vector<Corners> triangles() const {
    std::vector<Corners> all;
    for (std::size_t i = 0; i < grid_.along(); ++i) {
      for (std::size_t j = 0; j < grid_.about(); ++j) {
        const std::size_t a = name(i, j, Side::behind), d = name(i, j + 1, Side::behind);
        const std::size_t b = name(i + 1, j, Side::before), c = name(i + 1, j + 1, Side::before);
        all.push_back({a, b, c});
        if (is_cut(i) && seams_ == Seams::t_junctions) {
          all.push_back({a, c, middle(i, j)});
          all.push_back({middle(i, j), c, d});
        } else {
          all.push_back({a, c, d});
        }
      }
    }
    return all;
  }

  giPoint3 place(std::size_t name) const {
    const std::size_t point = name / 3, i = point / grid_.about(), j = point % grid_.about();
    if (name % 3 != 2) return grid_.at(i, j);
    return gi_interpolate(grid_.at(i, j), grid_.at(i, j + 1), 0.5);
  }

  int on_cuts() const { return static_cast<int>(cuts_ * grid_.about()); }
  double shortest_edge() const { return grid_.shortest_edge(); }

 private:
  enum class Side { behind = 0, before = 1 };  // of a cut

  bool is_cut(std::size_t i) const { return i % grid_.along() * cuts_ % grid_.along() < cuts_; }
  std::size_t point(std::size_t i, std::size_t j) const { return i % grid_.along() * grid_.about() + j % grid_.about(); }
  std::size_t name(std::size_t i, std::size_t j, Side side) const { return 3 * point(i, j) + (is_cut(i) && side == Side::before); }
  std::size_t middle(std::size_t i, std::size_t j) const { return 3 * point(i, j) + 2; }

  Grid grid_;
  Seams seams_;
  std::size_t cuts_ = 0;
};

}  // namespace

CutTorus cut_torus(const Model& model, Cuts cuts, Seams seams) {
  const Cutter cutter(model.facets(), cuts, seams);
  std::vector<Corners> triangles = cutter.triangles();
  if (model.order() == FacetOrder::shuffled) std::shuffle(triangles.begin(), triangles.end(), std::mt19937_64(5));
  CutTorus cut;
  cut.block = std::make_unique<trTriBlock>();
  cut.seam_nodes = cutter.on_cuts();
  cut.t_junctions = seams == Seams::t_junctions ? cutter.on_cuts() : 0;
  cut.tolerance = 0.01 * cutter.shortest_edge();
  std::unordered_map<std::size_t, int> numbers;
  const auto number_of = [&](std::size_t name) {
    const auto [found, is_new] = numbers.try_emplace(name, cut.block->node_count());
    if (is_new) cut.block->set_node(found->second, cutter.place(name));
    return found->second;
  };
  for (const Corners& t : triangles) {
    const int a = number_of(t[0]), b = number_of(t[1]), c = number_of(t[2]);
    cut.block->generate(a, b, c);
  }
  return cut;
}
