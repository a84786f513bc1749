#include "shells.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>

namespace {

// One of the three sides of an element, kept with the lower of its nodes.
struct EdgeUse {
  int high;
  std::uint32_t side;

  EdgeUse() = default;
  EdgeUse(int a, int b, int e) : high(std::max(a, b)), side(static_cast<std::uint32_t>(e) << 1 | (a < b ? 1U : 0U)) {}

  int element() const { return static_cast<int>(side >> 1); }
  /// Whether the element runs it from the low node to the high one.
  bool is_upward() const { return (side & 1U) != 0; }
};

// The sides of all elements by their lower nodes; those of one node by the higher, and then by the element.
class EdgeUses {
 public:
  explicit EdgeUses(const trTriBlock& mesh) : starts_(static_cast<std::size_t>(mesh.node_count()) + 1) {
    for_each_side(mesh, [this](int a, int b, int) { ++starts_[lower(a, b) + 1]; });
    for (std::size_t i = 1; i < starts_.size(); ++i) starts_[i] += starts_[i - 1];
    uses_.resize(starts_.back());
    std::vector<std::size_t> next(starts_.begin(), starts_.end() - 1);
    for_each_side(mesh, [&](int a, int b, int e) { uses_[next[lower(a, b)]++] = EdgeUse(a, b, e); });
    for (std::size_t i = 0; i + 1 < starts_.size(); ++i) sort_uses(uses_.data() + starts_[i], uses_.data() + starts_[i + 1]);
  }

  /// Calls `see` for each edge with the range of its uses.
  template <class See>
  void for_each_edge(See see) const {
    for (std::size_t i = 0; i + 1 < starts_.size(); ++i) {
      const EdgeUse* const end = uses_.data() + starts_[i + 1];
      for (const EdgeUse* first = uses_.data() + starts_[i]; first != end;) {
        const EdgeUse* last = first + 1;
        while (last != end && last->high == first->high) ++last;
        see(first, last);
        first = last;
      }
    }
  }

 private:
  static std::size_t lower(int a, int b) { return static_cast<std::size_t>(std::min(a, b)); }

  template <class See>
  static void for_each_side(const trTriBlock& mesh, See see) {
    for (int e = 1; e < mesh.element_count(); ++e) {
      const trElement& t = mesh.element(e);
      for (int k = 0; k < 3 && t.valid(); ++k) see(t[k], t[(k + 1) % 3], e);
    }
  }

  // They come by elements. A node has few as a rule.
  static void sort_uses(EdgeUse* first, EdgeUse* last) {
    constexpr std::ptrdiff_t few = 24;
    const auto is_before = [](const EdgeUse& a, const EdgeUse& b) { return a.high < b.high; };
    if (last - first > few) {
      std::stable_sort(first, last, is_before);
      return;
    }
    for (EdgeUse* at = first; at != last; ++at) {
      const EdgeUse use = *at;
      EdgeUse* place = at;
      for (; place != first && is_before(use, place[-1]); --place) *place = place[-1];
      *place = use;
    }
  }

  std::vector<std::size_t> starts_;
  std::vector<EdgeUse> uses_;
};

// Sets of elements that are joined; each is known by its lowest number.
class JoinedElements {
 public:
  explicit JoinedElements(int count) : parents_(static_cast<std::size_t>(count)) {
    std::iota(parents_.begin(), parents_.end(), 0);
  }

  int root(int e) {
    while (parent(e) != e) e = parent(e) = parent(parent(e));
    return e;
  }
  void join(int a, int b) {
    a = root(a);
    b = root(b);
    parent(std::max(a, b)) = std::min(a, b);
  }

 private:
  int& parent(int e) { return parents_[static_cast<std::size_t>(e)]; }

  std::vector<int> parents_;
};

// Six times the volume between a triangle and a point: a point of the shell itself keeps far models exact.
double volume_seen_from(const giPoint3& origin, const giPoint3 corners[3]) {
  const giVector3 a = corners[0] - origin, b = corners[1] - origin, c = corners[2] - origin;
  return a.dot(b.cross(c));
}

// What is wrong with an edge, in the number that counts it; null for nothing.
int EdgeCensus::*fault_of(const EdgeUse* first, const EdgeUse* last) {
  if (last - first == 1) return &EdgeCensus::open;
  if (last - first > 2) return &EdgeCensus::sick;
  return first[0].is_upward() == first[1].is_upward() ? &EdgeCensus::opposed : nullptr;
}

struct FaultyEdge {
  int element;
  int EdgeCensus::*fault;
};

void take_in(Shell& shell, const trTriBlock& mesh, int e) {
  const trElement& t = mesh.element(e);
  const giPoint3 corners[3] = {mesh.point(t[0]), mesh.point(t[1]), mesh.point(t[2])};
  for (const giPoint3& p : corners) shell.box.merge(p);
  ++shell.elements;
  shell.area += area_of(mesh, e);
  shell.volume += volume_seen_from(mesh.point(mesh.element(shell.first_element)[0]), corners) / 6.0;
}

}  // namespace

ShellSurvey survey_shells(const trTriBlock& mesh) {
  JoinedElements joined(mesh.element_count());
  std::vector<FaultyEdge> faults;
  EdgeUses(mesh).for_each_edge([&](const EdgeUse* first, const EdgeUse* last) {
    for (const EdgeUse* use = first + 1; use < last; ++use) joined.join(first->element(), use->element());
    int EdgeCensus::*const fault = fault_of(first, last);
    if (fault != nullptr) faults.push_back({first->element(), fault});
  });
  ShellSurvey survey;
  survey.shell_of.assign(static_cast<std::size_t>(mesh.element_count()), -1);
  for (int e = 1; e < mesh.element_count(); ++e) {
    if (!mesh.element(e).valid()) continue;
    const int root = joined.root(e);  // the lowest of the shell, so it came before
    int& number = survey.shell_of[static_cast<std::size_t>(e)];
    number = root == e ? static_cast<int>(survey.shells.size()) : survey.shell_of[static_cast<std::size_t>(root)];
    if (root == e) {
      survey.shells.emplace_back();
      survey.shells.back().first_element = e;
    }
    take_in(survey.shells[static_cast<std::size_t>(number)], mesh, e);
  }
  for (const FaultyEdge& edge : faults) {
    Shell& shell = survey.shells[static_cast<std::size_t>(survey.shell_of[static_cast<std::size_t>(edge.element)])];
    ++(shell.edges.*edge.fault);
    ++(survey.edges.*edge.fault);
    shell.is_closed = false;
  }
  return survey;
}

std::vector<int> inside_out_shells(const std::vector<Shell>& shells) {
  std::vector<const Shell*> outward;
  std::vector<int> inward;
  for (const Shell& shell : shells) {
    if (!shell.is_closed) continue;
    if (shell.volume < 0.0) {
      inward.push_back(static_cast<int>(&shell - shells.data()));
    } else {
      outward.push_back(&shell);
    }
  }
  const std::size_t looked_at = std::min<std::size_t>(outward.size(), 1000);
  std::partial_sort(outward.begin(), outward.begin() + static_cast<std::ptrdiff_t>(looked_at), outward.end(),
                    [](const Shell* a, const Shell* b) { return a->volume > b->volume; });
  outward.resize(looked_at);
  const auto is_cavity = [&](int inner) {
    const giBox3& box = shells[static_cast<std::size_t>(inner)].box;
    return std::any_of(outward.begin(), outward.end(), [&box](const Shell* around) {
      return around->box.contains(box.min(), 0.0) && around->box.contains(box.max(), 0.0);
    });
  };
  inward.erase(std::remove_if(inward.begin(), inward.end(), is_cavity), inward.end());
  return inward;
}

double area_of(const trTriBlock& mesh, int element) {
  const trElement& t = mesh.element(element);
  const giPoint3& a = mesh.point(t[0]);
  return 0.5 * (mesh.point(t[1]) - a).cross(mesh.point(t[2]) - a).length();
}

giPoint3 middle_of(const trTriBlock& mesh, int element) {
  const trElement& t = mesh.element(element);
  giPoint3 middle;
  for (int k = 0; k < 3; ++k) {
    const giPoint3& p = mesh.point(t[k]);
    middle = giPoint3(middle.x + p.x / 3.0, middle.y + p.y / 3.0, middle.z + p.z / 3.0);
  }
  return middle;
}
