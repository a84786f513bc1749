#include "support/punched.h"

#include <vector>

#include "support/blocks.h"
#include "support/check.h"

namespace {

// Takes stars of eight triangles out of the surface, spread over it and no two touching; returns how many.
class HolePunch {
 public:
  explicit HolePunch(trTriBlock& block) : block_(block), taken_(static_cast<std::size_t>(block.node_count())) {}

  int punch(int wanted) {
    const int step = block_.node_count() / wanted < 1 ? 1 : block_.node_count() / wanted;
    int made = 0;
    for (int offset = 0; offset < step && made < wanted; ++offset) {
      for (int n = 1 + offset; n < block_.node_count() && made < wanted; n += step) made += punch_round(n);
    }
    return made;
  }

 private:
  // The star of a node with six neighbours, and two more triangles beside it, make a hole of eight edges.
  bool punch_round(int centre) {
    std::vector<int> chosen = elements_round(centre);
    if (chosen.size() != 6) return false;
    const std::vector<int> star = chosen;
    for (int e : star) {
      if (chosen.size() < hole_rim) add_neighbour_across_rim(e, centre, chosen);
    }
    if (chosen.size() != hole_rim || !are_free(chosen)) return false;
    for (int e : chosen) {
      for (int k = 0; k < 3; ++k) taken_[static_cast<std::size_t>(block_.element(e)[k])] = true;
    }
    for (int e : chosen) block_.delete_element(e);
    return true;
  }

  std::vector<int> elements_round(int n) const {
    std::vector<int> all;
    trIntListIT it(block_.node(n).elements);
    while (++it) {
      if (block_.element(it()).valid()) all.push_back(it());
    }
    return all;
  }

  void add_neighbour_across_rim(int e, int centre, std::vector<int>& chosen) const {
    const trElement& t = block_.element(e);
    int k = 0;
    while (t[k] != centre) ++k;
    const int a = t[(k + 1) % 3], b = t[(k + 2) % 3];
    for (int f : elements_round(a)) {
      const trElement& u = block_.element(f);
      for (int m = 0; m < 3; ++m) {
        if (u[m] != b || u[(m + 1) % 3] != a) continue;
        if (!touches(chosen, u[(m + 2) % 3])) chosen.push_back(f);
      }
    }
  }

  bool touches(const std::vector<int>& chosen, int n) const {
    for (int e : chosen) {
      const trElement& t = block_.element(e);
      if (t[0] == n || t[1] == n || t[2] == n) return true;
    }
    return false;
  }

  bool are_free(const std::vector<int>& chosen) const {
    for (int e : chosen) {
      const trElement& t = block_.element(e);
      for (int k = 0; k < 3; ++k) {
        if (taken_[static_cast<std::size_t>(t[k])]) return false;
      }
    }
    return true;
  }

  trTriBlock& block_;
  std::vector<bool> taken_;
};

}  // namespace

int holes_in(const Model& model) { return model.facets() < 50000 ? 100 : 1000; }

Block punched_block(const Model& model) {
  Block block = merged_block(model);
  block->build_edges();
  block->reference_elements();
  require(HolePunch(*block).punch(holes_in(model)) == holes_in(model), "holes to be filled");
  return block;
}
