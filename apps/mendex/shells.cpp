#include "shells.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

// One of the three sides of an element.
struct EdgeUse {
  int low;
  int high;
  int element;
  bool is_upward;  // the element runs it from the low node to the high one
};

bool is_same_edge(const EdgeUse& a, const EdgeUse& b) { return a.low == b.low && a.high == b.high; }

std::vector<EdgeUse> edge_uses(const trTriBlock& mesh) {
  std::vector<EdgeUse> uses;
  uses.reserve(3 * static_cast<std::size_t>(mesh.element_count()));
  for (int e = 1; e < mesh.element_count(); ++e) {
    const trElement& t = mesh.element(e);
    if (!t.valid()) continue;
    for (int k = 0; k < 3; ++k) {
      const int a = t[k], b = t[(k + 1) % 3];
      uses.push_back({std::min(a, b), std::max(a, b), e, a < b});
    }
  }
  std::sort(uses.begin(), uses.end(), [](const EdgeUse& a, const EdgeUse& b) {
    return a.low != b.low ? a.low < b.low : (a.high != b.high ? a.high < b.high : a.element < b.element);
  });
  return uses;
}

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

bool is_paired(const EdgeUse* first, const EdgeUse* last) {
  return last - first == 2 && first[0].is_upward != first[1].is_upward;
}

}  // namespace

std::vector<Shell> find_shells(const trTriBlock& mesh) {
  const std::vector<EdgeUse> uses = edge_uses(mesh);
  JoinedElements joined(mesh.element_count());
  std::vector<int> unpaired;  // elements at edges that keep a shell from being closed
  for (const EdgeUse *first = uses.data(), *end = first + uses.size(); first != end;) {
    const EdgeUse* last = first + 1;
    for (; last != end && is_same_edge(*first, *last); ++last) joined.join(first->element, last->element);
    if (!is_paired(first, last)) unpaired.push_back(first->element);
    first = last;
  }
  std::vector<Shell> shells;
  std::vector<int> shell_of_root(static_cast<std::size_t>(mesh.element_count()), -1);
  const auto shell_of = [&](int e) -> int& { return shell_of_root[static_cast<std::size_t>(joined.root(e))]; };
  for (int e = 1; e < mesh.element_count(); ++e) {
    const trElement& t = mesh.element(e);
    if (!t.valid()) continue;
    int& number = shell_of(e);
    if (number < 0) {
      number = static_cast<int>(shells.size());
      shells.emplace_back();
      shells.back().first_element = e;
    }
    Shell& shell = shells[static_cast<std::size_t>(number)];
    ++shell.elements;
    const giPoint3 corners[3] = {mesh.point(t[0]), mesh.point(t[1]), mesh.point(t[2])};
    for (const giPoint3& p : corners) shell.box.merge(p);
    shell.volume += volume_seen_from(mesh.point(mesh.element(shell.first_element)[0]), corners) / 6.0;
  }
  for (const int e : unpaired) shells[static_cast<std::size_t>(shell_of(e))].is_closed = false;
  return shells;
}

int count_inside_out(const std::vector<Shell>& shells) {
  std::vector<const Shell*> outward, inward;
  for (const Shell& shell : shells) {
    if (shell.is_closed) (shell.volume < 0.0 ? inward : outward).push_back(&shell);
  }
  const std::size_t looked_at = std::min<std::size_t>(outward.size(), 1000);
  std::partial_sort(outward.begin(), outward.begin() + static_cast<std::ptrdiff_t>(looked_at), outward.end(),
                    [](const Shell* a, const Shell* b) { return a->volume > b->volume; });
  outward.resize(looked_at);
  return static_cast<int>(std::count_if(inward.begin(), inward.end(), [&outward](const Shell* cavity) {
    return std::none_of(outward.begin(), outward.end(), [cavity](const Shell* around) {
      return around->box.contains(cavity->box.min(), 0.0) && around->box.contains(cavity->box.max(), 0.0);
    });
  }));
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
