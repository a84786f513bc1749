#include "support/breakages.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <set>

#include "support/random.h"

namespace {

using Triangle = std::array<int, 3>;

giPoint3 in_single_precision(const giPoint3& p) {
  return giPoint3(static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z));
}

giPoint3 between(const giPoint3& a, const giPoint3& b, double share) { return in_single_precision(a + (b - a) * share); }

Corners reversed(const Corners& c) { return {c[0], c[2], c[1]}; }

// Breaks a closed model in places that are no neighbours.
class Breaker {
 public:
  Breaker(Shape shape, std::uint64_t seed) : random_(seed), shape_(std::move(shape)), claimed_(shape_.points.size()), touched_(shape_.triangles.size()) {
    around_.resize(shape_.points.size());
    for (int t = 0; t < triangle_total(); ++t) {
      pieces_.push_back({corners(t)});
      for (std::size_t k = 0; k < 3; ++k) {
        around_[at(triangle(t)[k])].push_back(t);
        by_edge_[{triangle(t)[k], triangle(t)[(k + 1) % 3]}] = t;
      }
    }
  }

  void make(Breakage kind) {
    switch (kind) {
      case Breakage::holes: return repeat(5, [&] { make_hole(); });
      case Breakage::patches: return repeat(3, [&] { cut_patch(); });
      case Breakage::flipped: return repeat(std::max(1, triangle_total() / 60), [&] { flip(); });
      case Breakage::repeated: return repeat(8, [&] { copy(); });
      case Breakage::fins: return repeat(5, [&] { add_fin(); });
      case Breakage::degenerate: return repeat(6, [&] { random_.one_in(2) ? add_collapsed() : add_needle(); });
      case Breakage::several:
        for (const Breakage each : all_breakages) {
          if (each != Breakage::several) make(each);
        }
    }
  }

  BrokenModel take() {
    BrokenModel model;
    model.defects = defects_;
    model.gap = gap_;
    for (const std::vector<Corners>& pieces : pieces_) {
      for (const Corners& piece : pieces) add(model.broken, piece);
    }
    for (const Corners& piece : extra_) add(model.broken, piece);
    model.broken = shuffled(model.broken, random_.bits());
    std::set<int> near;
    for (int t = 0; t < triangle_total(); ++t) {
      if (touched_[at(t)]) near.insert(triangle(t).begin(), triangle(t).end());
    }
    for (int t = 0; t < triangle_total(); ++t) {
      if (std::none_of(triangle(t).begin(), triangle(t).end(), [&](int p) { return near.count(p) != 0; })) model.untouched.push_back(corners(t));
    }
    model.original = std::move(shape_);
    return model;
  }

 private:
  static std::size_t at(int index) { return static_cast<std::size_t>(index); }
  int triangle_total() const { return static_cast<int>(shape_.triangles.size()); }
  const Triangle& triangle(int t) const { return shape_.triangles[at(t)]; }
  const giPoint3& point(int p) const { return shape_.points[at(p)]; }
  Corners corners(int t) const { return {point(triangle(t)[0]), point(triangle(t)[1]), point(triangle(t)[2])}; }
  int across(int a, int b) const { return by_edge_.at({b, a}); }

  template <class Work>
  void repeat(int most, Work work) {
    for (int k = random_.between(1, most); k > 0; --k) work();
  }

  static void add(Shape& soup, const Corners& corners) {
    const int first = static_cast<int>(soup.points.size());
    soup.points.insert(soup.points.end(), corners.begin(), corners.end());
    soup.triangles.push_back({first, first + 1, first + 2});
  }

  // So many triangles round one, nearest first.
  std::vector<int> grown(int seed, int count) const {
    std::vector<int> region = {seed};
    std::set<int> seen = {seed};
    for (std::size_t k = 0; k < region.size() && static_cast<int>(region.size()) < count; ++k) {
      const Triangle t = triangle(region[k]);
      for (std::size_t c = 0; c < 3 && static_cast<int>(region.size()) < count; ++c) {
        const int other = across(t[c], t[(c + 1) % 3]);
        if (seen.insert(other).second) region.push_back(other);
      }
    }
    return region;
  }

  // The edges of the region's triangles whose other triangle lies outside, each as start and end.
  std::map<int, int> rim_of(const std::vector<int>& region) const {
    const std::set<int> inside(region.begin(), region.end());
    std::map<int, int> rim;
    for (const int t : region) {
      for (std::size_t c = 0; c < 3; ++c) {
        const int a = triangle(t)[c], b = triangle(t)[(c + 1) % 3];
        if (inside.count(across(a, b)) == 0 && !rim.emplace(a, b).second) return {};  // it meets itself in a point
      }
    }
    return rim;
  }

  // Whether its rim is one loop and it is no ring: points - edges + triangles = 1.
  bool is_disk(const std::vector<int>& region) const {
    const std::map<int, int> rim = rim_of(region);
    if (rim.empty()) return false;
    std::size_t length = 0;
    int p = rim.begin()->first;
    do {
      p = rim.at(p);
      ++length;
    } while (p != rim.begin()->first);
    std::set<int> points;
    for (const int t : region) points.insert(triangle(t).begin(), triangle(t).end());
    const std::size_t edges = (3 * region.size() + rim.size()) / 2;
    return length == rim.size() && points.size() + region.size() == edges + 1;
  }

  std::set<int> points_round(const std::vector<int>& region) const {
    std::set<int> points;
    for (const int t : region) {
      for (const int p : triangle(t)) {
        for (const int other : around_[at(p)]) points.insert(triangle(other).begin(), triangle(other).end());
      }
    }
    return points;
  }

  // A region of about so many triangles, none of them near a place taken before; empty when there is no room.
  std::vector<int> claim(int count) {
    for (int attempt = 0; attempt < 400; ++attempt) {
      if (attempt % 50 == 49) count = (count + 1) / 2;
      const std::vector<int> region = grown(random_.below(triangle_total()), count);
      if (!is_disk(region)) continue;
      const std::set<int> points = points_round(region);
      if (std::any_of(points.begin(), points.end(), [&](int p) { return claimed_[at(p)]; })) continue;
      for (const int p : points) claimed_[at(p)] = true;
      for (const int t : region) touched_[at(t)] = true;
      ++defects_;
      return region;
    }
    return {};
  }

  // Sizes of all orders of magnitude; all holes together take at most 4 %.
  void make_hole() {
    const double most = std::max(1.0, 0.015 * triangle_total());
    const int size = static_cast<int>(std::pow(most, random_.unit()) + 0.5);
    if (removed_ > 0 && removed_ + size > triangle_total() / 25) return;
    for (const int t : claim(size)) {
      pieces_[at(t)].clear();
      ++removed_;
    }
  }

  void cut_patch() {
    const std::vector<int> region = claim(random_.between(4, std::max(5, triangle_total() / 40)));
    if (region.empty()) return;
    const std::map<int, int> rim = rim_of(region);
    std::map<int, giPoint3> moved;
    const double most = random_.between(0.005, 0.03) * shortest_edge(region);
    for (const auto& [a, b] : rim) moved[a] = jittered(point(a), most);
    for (const int t : region) {
      for (std::size_t c = 0; c < 3; ++c) {
        const auto found = moved.find(triangle(t)[c]);
        if (found != moved.end()) pieces_[at(t)][0][c] = found->second;
      }
    }
    std::set<int> split;
    for (const auto& [a, b] : rim) {
      const int choice = random_.below(3);
      if (choice == 0) split_edge(split, by_edge_.at({a, b}), a);
      if (choice == 1) split_edge(split, across(a, b), b);
    }
  }

  double shortest_edge(const std::vector<int>& region) const {
    double shortest = 1e300;
    for (const int t : region) {
      for (std::size_t c = 0; c < 3; ++c) shortest = std::min(shortest, (point(triangle(t)[c]) - point(triangle(t)[(c + 1) % 3])).length());
    }
    return shortest;
  }

  giPoint3 jittered(const giPoint3& p, double most) {
    const double side = most / std::sqrt(3.0);
    const giVector3 step(random_.between(-side, side), random_.between(-side, side), random_.between(-side, side));
    const giPoint3 moved = in_single_precision(p + step);
    gap_ = std::max(gap_, (moved - p).length());
    return moved;
  }

  // Makes two triangles of one, by a point on its edge that starts at a corner; once for each triangle.
  void split_edge(std::set<int>& done, int t, int start) {
    if (!done.insert(t).second) return;
    touched_[at(t)] = true;
    const std::size_t c = static_cast<std::size_t>(std::find(triangle(t).begin(), triangle(t).end(), start) - triangle(t).begin());
    const Corners whole = pieces_[at(t)][0];
    const giPoint3 &a = whole[c], &b = whole[(c + 1) % 3], &tip = whole[(c + 2) % 3];
    const giPoint3 middle = between(a, b, random_.between(0.3, 0.7));
    pieces_[at(t)] = {{a, middle, tip}, {middle, b, tip}};
  }

  void flip() {
    for (const int t : claim(1)) pieces_[at(t)][0] = reversed(pieces_[at(t)][0]);
  }

  // Copies begin at any corner.
  void copy() {
    for (const int t : claim(1)) {
      repeat(3, [&] {
        Corners twin = corners(t);
        std::rotate(twin.begin(), twin.begin() + random_.below(3), twin.end());
        extra_.push_back(twin);
      });
    }
  }

  // On the edge between two triangles, pointing outward, leaning to a side.
  void add_fin() {
    const std::vector<int> region = claim(2);
    if (region.size() != 2) return;
    const Triangle t = triangle(region[0]);
    std::size_t c = 0;
    while (across(t[c], t[(c + 1) % 3]) != region[1]) ++c;
    const giPoint3 a = point(t[c]), b = point(t[(c + 1) % 3]);
    const giVector3 up = normal_of(region[0]) + normal_of(region[1]);
    const double height = random_.between(0.3, 1.0) * (b - a).length() / up.length();
    const giPoint3 tip = in_single_precision(a + (b - a) * random_.between(0.2, 0.8) + up * height);
    std::vector<Corners> flap = {{a, b, tip}};
    if (random_.one_in(2)) flap.push_back({tip, b, in_single_precision(b + (tip - a))});
    extra_.insert(extra_.end(), flap.begin(), flap.end());
    if (random_.one_in(2)) return;
    for (const Corners& side : flap) extra_.push_back(reversed(side));
  }

  giVector3 normal_of(int t) const {
    const Corners c = corners(t);
    giVector3 normal = (c[1] - c[0]).cross(c[2] - c[0]);
    normal.make_unit();
    return normal;
  }

  void add_collapsed() {
    for (const int t : claim(1)) {
      const Corners c = corners(t);
      extra_.push_back(random_.one_in(4) ? Corners{c[0], c[0], c[0]} : Corners{c[0], c[0], c[1]});
    }
  }

  void add_needle() {
    for (const int t : claim(1)) {
      std::set<int> split;
      const int start = triangle(t)[at(random_.below(3))];
      split_edge(split, t, start);
      const Corners first = pieces_[at(t)][0], second = pieces_[at(t)][1];
      pieces_[at(t)].push_back({first[0], second[1], first[1]});
    }
  }

  Random random_;
  Shape shape_;
  std::vector<std::vector<int>> around_;          // triangles, by point
  std::map<std::pair<int, int>, int> by_edge_;    // triangle, by directed edge
  std::vector<bool> claimed_;                     // points too near a broken place for another
  std::vector<bool> touched_;                     // triangles
  std::vector<std::vector<Corners>> pieces_;      // what became of each triangle
  std::vector<Corners> extra_;
  int defects_ = 0;
  int removed_ = 0;
  double gap_ = 0.0;
};

Shape base_shape(int which, Random& random, std::string& name) {
  const auto named = [&name](const char* shape, int size) {
    name = std::string(shape) + " " + std::to_string(size);
    return size;
  };
  switch (which) {
    case 0: return sphere(named("sphere", random.between(9, 30)));
    case 1: {
      const int around = named("torus", random.between(16, 60));
      return torus(around, std::max(8, around / 2));
    }
    case 2: return fine_box(named("box", random.between(5, 18)));
    default: return bumpy_sphere(named("bumpy sphere", random.between(400, 4000)));
  }
}

// Somewhere, of some size.
void place(Shape& shape, Random& random) {
  const double scale = std::pow(10.0, random.between(-1.0, 2.0));
  const giVector3 step(random.between(-3.0, 3.0), random.between(-3.0, 3.0), random.between(-3.0, 3.0));
  for (giPoint3& p : shape.points) p = in_single_precision(giPoint3(0, 0, 0) + ((p - giPoint3(0, 0, 0)) + step) * scale);
}

}  // namespace

const char* name_of(Breakage kind) {
  constexpr const char* names[] = {"holes", "patches", "flipped", "repeated", "fins", "degenerate", "several"};
  return names[static_cast<std::size_t>(kind)];
}

double volume_of(const Shape& shape) {
  double volume = 0.0;
  const giPoint3 base = shape.points.front();
  for (const Triangle& t : shape.triangles) {
    const auto from_base = [&](std::size_t k) { return shape.points[static_cast<std::size_t>(t[k])] - base; };
    volume += from_base(0).dot(from_base(1).cross(from_base(2))) / 6.0;
  }
  return volume;
}

Shape fine_box(int n) {
  Shape box;
  std::map<std::array<int, 3>, int> numbers;
  const auto point = [&](std::size_t axis, int u, int v, int w) {
    std::array<int, 3> place = {};
    place[axis] = w;
    place[(axis + 1) % 3] = u;
    place[(axis + 2) % 3] = v;
    const auto [found, is_new] = numbers.emplace(place, static_cast<int>(box.points.size()));
    if (is_new) box.points.emplace_back(place[0], place[1], place[2]);
    return found->second;
  };
  for (std::size_t axis = 0; axis < 3; ++axis) {
    for (int k = 0; k < 2 * n * n; ++k) {
      const int u = k / 2 / n, v = k / 2 % n, w = k % 2 == 0 ? 0 : n;
      int a = point(axis, u, v, w), b = point(axis, u + 1, v, w), c = point(axis, u + 1, v + 1, w), d = point(axis, u, v + 1, w);
      if (w == 0) std::swap(b, d);
      box.triangles.push_back({a, b, c});
      box.triangles.push_back({a, c, d});
    }
  }
  return box;
}

BrokenModel broken_model(int number, std::uint64_t seed) {
  Random random(seed * 1000003 + static_cast<std::uint64_t>(number));
  constexpr int kinds = static_cast<int>(std::size(all_breakages));
  constexpr int shapes = 4;
  const Breakage kind = all_breakages[number % kinds];
  std::string name;
  Shape shape = base_shape(number / kinds % shapes, random, name);
  place(shape, random);
  Breaker breaker(std::move(shape), random.bits());
  breaker.make(kind);
  BrokenModel model = breaker.take();
  model.name = name + ", " + name_of(kind);
  model.kind = kind;
  model.volume = volume_of(model.original);
  return model;
}
