#include "analysis/fan_search.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>

#include "platform/spatial/morton_order.h"

namespace {

// Farther out rounding is no longer small beside the tolerance, and no bound is tried.
constexpr double farthest_coordinate = 1e7;
// Bounds what a few additions and products of coordinates and distances lose.
constexpr double rounding = 64.0 * DBL_EPSILON;

bool is_near(const giPoint3& p) {
  return std::fabs(p.x) <= farthest_coordinate && std::fabs(p.y) <= farthest_coordinate &&
         std::fabs(p.z) <= farthest_coordinate;
}

bool is_near(const CutTriangle& t) { return is_near(t.p[0]) && is_near(t.p[1]) && is_near(t.p[2]); }

// How far from a triangle with a normal a point may lie that `segment_meets` takes to be in it, given that it lies
// within `spread` of the corners; infinite where rounding leaves no bound.
//
// With L the longest side, h the height over it and e the rounding unit, the unit normal is off by e L / h. The point
// is within twice the tolerance of the plane, for a segment may end at just the tolerance. In the plane it is within
// the tolerance of a corner; or in the ball over a side of length l, and so near its line that l times the distance is
// below the tolerance; or the three areas have one sign. These are computed to within (e + e L / h) spread^2: if that
// is below the tolerance, which they exceed, the point is inside. Else a point at distance r from the triangle has an
// area of at least r h / 2 of the wrong sign, which bounds r.
double reach_of(const CutTriangle& t, double spread, double tol) {
  constexpr double unit = 16.0 * DBL_EPSILON;
  double sides[3];
  for (int i = 0; i < 3; ++i) sides[i] = t.p[i].distance(t.p[(i + 1) % 3]);
  const double longest = *std::max_element(sides, sides + 3);
  const double height = (t.p[1] - t.p[0]).cross(t.p[2] - t.p[1]).length() / longest;
  const double turn = unit * longest / height;
  const double off_plane = 2.0 * tol + turn * spread + rounding * (farthest_coordinate + spread);
  double beyond = tol;
  if ((unit + turn) * spread * spread > tol / 4.0) {
    if (!(height * height >= 16.0 * unit * longest * spread)) return HUGE_VAL;
    beyond = std::max(beyond, 8.0 * unit * longest * longest * longest / (height * height));
  }
  for (const double side : sides) beyond = std::max(beyond, std::min(side / 2.0, tol / side + off_plane));
  return off_plane + beyond;
}

// Of the origin from the segment between two points.
double distance_to_segment(const giVector3& p, const giVector3& q) {
  const giVector3 along = q - p;
  const double foot = -p.dot(along) / along.length_sq();
  if (foot > 0.0 && foot < 1.0) return (p + foot * along).length();
  return std::min(p.length(), q.length());
}

FloatBox all_directions() { return FloatFrame().map(giPoint3(-2.0, -2.0, -2.0), giPoint3(2.0, 2.0, 2.0)); }

std::array<int, 3> sorted_nodes(const CutTriangle& t) {
  std::array<int, 3> nodes = {t.nodes[0], t.nodes[1], t.nodes[2]};
  std::sort(nodes.begin(), nodes.end());
  return nodes;
}

bool is_collapsed(const CutTriangle& t) {
  return t.nodes[0] == t.nodes[1] || t.nodes[1] == t.nodes[2] || t.nodes[2] == t.nodes[0];
}

}  // namespace

FanSearch::FanSearch(const CutField& field, int hub, const std::vector<int>& positions, double tol)
    : field_(field), hub_(hub), node_(field.hub_node(hub)), tol_(tol) {
  for (const int position : positions) {
    const int* nodes = field.triangle(position).nodes;
    const int corner = nodes[0] == node_ ? 0 : (nodes[1] == node_ ? 1 : 2);
    const Member member{position, {nodes[(corner + 1) % 3], nodes[(corner + 2) % 3]}, true};
    const bool again = member.others[0] == node_ || member.others[1] == node_;
    const int number = static_cast<int>(members_.size());
    members_.push_back({member.position, {member.others[0], member.others[1]}, !again});
    if (member.others[0] != node_) partners_.push_back({member.others[0], number});
    if (member.others[1] != node_ && member.others[1] != member.others[0])
      partners_.push_back({member.others[1], number});
  }
  std::sort(partners_.begin(), partners_.end());
}

void FanSearch::run(Visitor& visitor) {
  test_one_shared(visitor);
  test_equal_triangles(visitor);
  test_collapsed(visitor);
}

// Of the corners from the hub, leaving out triangles for which nothing is bounded.
double FanSearch::greatest_distance() const {
  double greatest_sq = 0.0;
  const giPoint3& apex = field_.block().point(node_);
  for (const Member& member : members_) {
    const CutTriangle& t = field_.triangle(member.position);
    if (!is_near(t)) continue;
    for (const giPoint3& p : t.p) greatest_sq = std::max(greatest_sq, p.distance_sq(apex));
  }
  return std::sqrt(greatest_sq);
}

std::vector<FloatBox> FanSearch::direction_boxes() const {
  const double spread = 2.0 * greatest_distance();
  std::vector<double> reaches;
  double greatest = 0.0;
  for (const Member& member : members_) {
    const CutTriangle& t = field_.triangle(member.position);
    reaches.push_back(t.has_normal && is_near(t) ? reach_of(t, spread, tol_) : 0.0);
    if (std::isfinite(reaches.back())) greatest = std::max(greatest, reaches.back());
  }
  std::vector<FloatBox> boxes;
  for (std::size_t m = 0; m < members_.size(); ++m) {
    boxes.push_back(std::isfinite(reaches[m]) ? direction_box(members_[m], greatest) : all_directions());
  }
  return boxes;
}

// The arc of the directions p / |p| from the apex over the side is bounded by its ends and by how far it bulges over
// their chord: at most chord^2 / 7, for arcs of up to 60 degrees. Points no more than `reach` apart, one of them at the
// distance r from the apex, have directions no more than 2 reach / r apart.
FloatBox FanSearch::direction_box(const Member& member, double reach) const {
  const CutTriangle& t = field_.triangle(member.position);
  const giPoint3& apex = field_.block().point(node_);
  if (!is_near(t)) return all_directions();
  giVector3 p = field_.block().point(member.others[0]) - apex;
  giVector3 q = field_.block().point(member.others[1]) - apex;
  const double nearest = 0.9 * distance_to_segment(p, q);
  p.make_unit();
  q.make_unit();
  const double chord_sq = (p - q).length_sq();
  const double slack = chord_sq / 7.0 + 2.0 * (reach + rounding * farthest_coordinate) / nearest + 1e-12;
  if (!(chord_sq <= 1.0 && slack <= 1.0)) return all_directions();
  giBox3 box;
  box.merge(giPoint3(p.x(), p.y(), p.z()));
  box.merge(giPoint3(q.x(), q.y(), q.z()));
  box.grow(slack);
  return FloatFrame().map(box.min(), box.max());
}

// 0 with a normal, 1 without, 2 and more: those that share one more node with very many others.
std::vector<int> FanSearch::groups() const {
  std::vector<int> groups;
  for (const Member& member : members_) groups.push_back(field_.triangle(member.position).has_normal ? 0 : 1);
  int next = 2;
  for (std::size_t from = 0, to = 0; from < partners_.size(); from = to) {
    while (to < partners_.size() && partners_[to].node == partners_[from].node) ++to;
    if (to - from <= static_cast<std::size_t>(CutField::hub_size)) continue;
    for (std::size_t k = from; k < to; ++k) {
      int& group = groups[static_cast<std::size_t>(partners_[k].member)];
      if (group < 2) group = next;
    }
    ++next;
  }
  return groups;
}

// Members in the order of their groups, with the pairs of groups from 1 on left out: these share two nodes or have no
// normal.
class FanSearch::DirectionWalk {
 public:
  DirectionWalk(const FanSearch& fan, std::vector<int> order, const std::vector<int>& groups, Visitor& visitor)
      : fan_(fan), order_(std::move(order)), visitor_(visitor) {
    for (const int member : order_) group_.push_back(groups[static_cast<std::size_t>(member)]);
  }

  bool enter(int a) {
    if (visitor_.stops()) return false;
    const int first = a * BoxBlock::width;
    const int last = last_in(a);
    same_ = Stretch();
    settled_ = is_settled(a);
    if (first > last || group(first) == 0 || group(first) != group(last)) return true;
    const auto run = std::equal_range(group_.begin(), group_.end(), group(first));
    same_ = {static_cast<int>(run.first - group_.begin()), static_cast<int>(run.second - group_.begin()) - 1};
    return true;
  }
  bool skip(int first, int last) const {
    if (settled_ && first == last && is_settled(first)) return true;
    return same_.holds(first * BoxBlock::width, last_in(last));
  }
  void visit(int i, int j) {
    const int a = order_[static_cast<std::size_t>(i)];
    const int b = order_[static_cast<std::size_t>(j)];
    if (!is_one_pair(equal_nodes(fan_.triangle(a), fan_.triangle(b)))) return;
    visitor_.test(position(i), position(j));
  }

 private:
  int group(int i) const { return group_[static_cast<std::size_t>(i)]; }
  bool is_settled(int block) const {
    for (int i = block * BoxBlock::width; i <= last_in(block); ++i) {
      if (!visitor_.is_settled(position(i))) return false;
    }
    return true;
  }
  int position(int i) const {
    return fan_.members_[static_cast<std::size_t>(order_[static_cast<std::size_t>(i)])].position;
  }
  int last_in(int block) const { return std::min((block + 1) * BoxBlock::width, static_cast<int>(order_.size())) - 1; }

  const FanSearch& fan_;
  std::vector<int> order_;
  std::vector<int> group_;  // of each, ascending
  Visitor& visitor_;
  bool settled_ = false;  // whether all of the entered block are
  Stretch same_;          // the group that the entered block lies in
};

// Triangles that name the hub twice match every other one at least twice, so only the others can have one match.
void FanSearch::test_one_shared(Visitor& visitor) const {
  const std::vector<FloatBox> boxes = direction_boxes();
  const std::vector<int> group = groups();
  std::vector<int> order;
  for (const int m : morton_order(boxes)) {
    if (members_[static_cast<std::size_t>(m)].single) order.push_back(m);
  }
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
    return group[static_cast<std::size_t>(a)] < group[static_cast<std::size_t>(b)];
  });
  std::vector<FloatBox> ordered;
  for (const int m : order) ordered.push_back(boxes[static_cast<std::size_t>(m)]);
  DirectionWalk walk(*this, order, group, visitor);
  walk_box_pairs(BoxBlocks(ordered), walk);
}

void FanSearch::test_equal_triangles(Visitor& visitor) const {
  struct Entry {
    std::array<int, 3> nodes;
    int position;
    bool operator<(const Entry& e) const { return nodes != e.nodes ? nodes < e.nodes : position < e.position; }
  };
  std::vector<Entry> entries;
  for (const Member& member : members_) {
    entries.push_back({sorted_nodes(field_.triangle(member.position)), member.position});
  }
  std::sort(entries.begin(), entries.end());
  std::vector<int> run;
  for (std::size_t k = 0; k < entries.size(); ++k) {
    run.push_back(entries[k].position);
    if (k + 1 < entries.size() && entries[k + 1].nodes == entries[k].nodes) continue;
    test_run(run, visitor);
    run.clear();
  }
}

void FanSearch::test_run(const std::vector<int>& positions, Visitor& visitor) const {
  std::size_t settled = 0;  // positions before this one are settled
  for (std::size_t i = 0; i + 1 < positions.size() && !visitor.stops(); ++i) {
    while (settled < positions.size() && visitor.is_settled(positions[settled])) ++settled;
    if (settled == positions.size()) return;
    for (std::size_t j = i + 1; j < positions.size(); ++j) test_if_ours(positions[i], positions[j], visitor);
  }
}

// A triangle that names only the hub and one more node matches those that name both three times or more.
void FanSearch::test_collapsed(Visitor& visitor) const {
  for (const Member& member : members_) {
    if (visitor.stops()) return;
    if (!is_collapsed(field_.triangle(member.position))) continue;
    const int other = member.others[0] != node_ ? member.others[0] : member.others[1];
    auto partner = std::lower_bound(partners_.begin(), partners_.end(), Partner{other, 0});
    for (; partner != partners_.end() && partner->node == other; ++partner) {
      if (is_collapsed(triangle(partner->member))) continue;
      test_if_ours(member.position, members_[static_cast<std::size_t>(partner->member)].position, visitor);
    }
  }
}

void FanSearch::test_if_ours(int i, int j, Visitor& visitor) const {
  if (field_.shared_hub(field_.triangle(i), field_.triangle(j)) == hub_) visitor.test(i, j);
}
