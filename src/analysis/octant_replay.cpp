#include "analysis/octant_replay.h"

#include <numeric>
#include <utility>

#include "analysis/octants.h"

void OctantReplay::run(const giBox3& box, const std::vector<Pair>& pairs, Report report,
                       const std::function<bool(int)>& found) const {
  std::vector<Part> pending(1);
  pending[0] = {box, 0, std::vector<int>(boxes_.size()), pairs};
  std::iota(pending[0].members.begin(), pending[0].members.end(), 0);
  std::vector<Part> parts;
  while (!pending.empty()) {
    const Part part = std::move(pending.back());
    pending.pop_back();
    if (!split(part, parts)) {
      for (const Pair& pair : part.pairs) {
        if (!found(pair.number)) return;
      }
      continue;
    }
    deal_pairs(part.pairs, report, parts);
    for (std::size_t o = parts.size(); o-- > 0;) {
      if (!parts[o].pairs.empty()) pending.push_back(std::move(parts[o]));
    }
  }
}

// The octants with their elements, where the checker would divide the box.
bool OctantReplay::split(const Part& whole, std::vector<Part>& parts) const {
  const int n = static_cast<int>(whole.members.size());
  if (!Octants::may_split(whole.box, n, limit_, whole.depth, tol_)) return false;
  const Octants octants(whole.box);
  parts.assign(Octants::count, Part());
  int sizes[Octants::count];
  for (int o = 0; o < Octants::count; ++o) {
    Part& part = parts[static_cast<std::size_t>(o)];
    part.box = octants.box(o + 1);
    part.depth = whole.depth + 1;
    for (const int m : whole.members) {
      if (boxes_[static_cast<std::size_t>(m)].crosses(part.box, tol_)) part.members.push_back(m);
    }
    sizes[o] = static_cast<int>(part.members.size());
  }
  return Octants::pays(sizes, n);
}

void OctantReplay::deal_pairs(const std::vector<Pair>& pairs, Report report, std::vector<Part>& parts) const {
  for (const Pair& pair : pairs) {
    for (std::size_t o = parts.size(); o-- > 0;) {
      if (!boxes_[static_cast<std::size_t>(pair.a)].crosses(parts[o].box, tol_)) continue;
      if (!boxes_[static_cast<std::size_t>(pair.b)].crosses(parts[o].box, tol_)) continue;
      parts[o].pairs.push_back(pair);
      if (report == Report::last_time) break;
    }
  }
}
