#include "platform/triangulation/planar_mesh.h"

#include "platform/triangulation/exact_predicates.h"

PlanarMesh::PlanarMesh(const giPoint2& low, const giPoint2& high) {
  points_ = {low, giPoint2(high.x, low.y), high, giPoint2(low.x, high.y)};
  leaving_.assign(corner_nodes, none);
  set_triangle(add_triangle(Region::unknown), 0, 1, 2);
  set_triangle(add_triangle(Region::unknown), 0, 2, 3);
  join(2, 3);
}

void PlanarMesh::reserve(int nodes) {
  points_.reserve(at(nodes));
  leaving_.reserve(at(nodes));
  region_.reserve(2 * at(nodes));
  start_.reserve(6 * at(nodes));
  mate_.reserve(6 * at(nodes));
  side_.reserve(6 * at(nodes));
}

int PlanarMesh::add_triangle(Region region) {
  region_.push_back(region);
  start_.resize(start_.size() + 3, none);
  mate_.resize(mate_.size() + 3, none);
  side_.resize(side_.size() + 3, Side::loose);
  return triangle_count() - 1;
}

void PlanarMesh::set_triangle(int triangle, int a, int b, int c) {
  const int half = 3 * triangle;
  start_[at(half)] = a;
  start_[at(half + 1)] = b;
  start_[at(half + 2)] = c;
  leaving_[at(a)] = half;
  leaving_[at(b)] = half + 1;
  leaving_[at(c)] = half + 2;
}

void PlanarMesh::join(int half, int other) {
  mate_[at(half)] = other;
  if (other != none) mate_[at(other)] = half;
}

// --- finding points
// ---------------------------------------------------------------------------------------------------------------

// `side` holds the orientation of the point against each edge, none of them negative.
PlanarMesh::Place PlanarMesh::place_in(int triangle, const double* side) const {
  int zeros = 0, zero = 0, other = 0;
  for (int k = 0; k < 3; ++k) {
    if (side[k] == 0.0) {
      ++zeros;
      zero = 3 * triangle + k;
    } else {
      other = 3 * triangle + k;
    }
  }
  if (zeros == 0) return {PlaceKind::in_triangle, 3 * triangle};
  if (zeros == 1) return {PlaceKind::on_edge, zero};
  return {PlaceKind::on_node, previous(other)};
}

PlanarMesh::Place PlanarMesh::search_all(const giPoint2& p) const {
  for (int t = 0; t < triangle_count(); ++t) {
    double side[3];
    for (int k = 0; k < 3; ++k) side[k] = orientation(point(start(3 * t + k)), point(end(3 * t + k)), p);
    if (side[0] >= 0.0 && side[1] >= 0.0 && side[2] >= 0.0) return place_in(t, side);
  }
  return {PlaceKind::outside, none};
}

// The walk of O. Devillers, S. Pion, M. Teillaud, Walking in a triangulation, 2001, which remembers where it came from
// and tries the edges from a random one on. It ends with probability one; the bound turns the improbable into a slow
// search.
PlanarMesh::Place PlanarMesh::locate(const giPoint2& p, int from_triangle) {
  int t = from_triangle;
  int came_from = none;
  for (int steps = 4 * triangle_count() + 64; steps > 0; --steps) {
    random_ = random_ * 1664525u + 1013904223u;
    int k = static_cast<int>(random_ >> 16) % 3;
    double side[3] = {1.0, 1.0, 1.0};
    int exit = none;
    for (int tried = 0; tried < 3 && exit == none; ++tried, k = k == 2 ? 0 : k + 1) {
      const int half = 3 * t + k;
      if (half == came_from) continue;
      side[k] = orientation(point(start(half)), point(end(half)), p);
      if (side[k] < 0.0) exit = half;
    }
    if (exit == none) return place_in(t, side);
    came_from = mate(exit);
    if (came_from == none) return {PlaceKind::outside, none};
    t = triangle(came_from);
  }
  return search_all(p);
}

// The edge through which the line from `from` to the target leaves the triangle; `none` when the target lies in it.
// `side` holds the target's orientation against each edge.
int PlanarMesh::exit_towards(const giPoint2& target, const giPoint2& from, const double* side, int triangle) const {
  for (int k = 0; k < 3; ++k) {
    if (side[k] >= 0.0) continue;
    const int half = 3 * triangle + k, after = next(half);
    if (side[after - 3 * triangle] >= 0.0 && side[previous(half) - 3 * triangle] >= 0.0) return half;
    if (side[after - 3 * triangle] >= 0.0) continue;
    // Two edges face the target; the line passes their common node on one side.
    return orientation(from, target, point(start(after))) > 0.0 ? half : after;
  }
  return none;
}

PlanarMesh::Place PlanarMesh::locate_straight(const giPoint2& target, int from_triangle) const {
  const int first = 3 * from_triangle;
  const giPoint2 &a = point(start(first)), &b = point(start(first + 1)), &c = point(start(first + 2));
  const giPoint2 middle((a.x + b.x + c.x) / 3.0, (a.y + b.y + c.y) / 3.0);
  int t = from_triangle;
  for (int steps = triangle_count(); steps > 0; --steps) {
    double side[3];
    for (int k = 0; k < 3; ++k) side[k] = orientation(point(start(3 * t + k)), point(end(3 * t + k)), target);
    const int exit = exit_towards(target, middle, side, t);
    if (exit == none) return place_in(t, side);
    if (is_fixed(exit) || mate(exit) == none) break;
    t = triangle(mate(exit));
  }
  return {PlaceKind::outside, none};
}

// --- inserting and turning
// --------------------------------------------------------------------------------------------------------

int PlanarMesh::insert(const giPoint2& p, const Place& place) {
  const int node = node_count();
  points_.push_back(p);
  leaving_.push_back(none);
  const int h0 = place.half, h1 = next(h0), h2 = previous(h0);
  const int a = start(h0), b = start(h1), c = start(h2);
  const int t = triangle(h0);
  const int t1 = add_triangle(region(t)), t2 = add_triangle(region(t));
  const int over_bc = mate(h1), over_ca = mate(h2), over_ab = mate(h0);
  const Side side_ab = side_[at(h0)], side_bc = side_[at(h1)], side_ca = side_[at(h2)];
  const int rim[3] = {3 * t, 3 * t1, 3 * t2};  // the edges opposite the node
  set_triangle(t, a, b, node);
  set_triangle(t1, b, c, node);
  set_triangle(t2, c, a, node);
  const int over[3] = {over_ab, over_bc, over_ca};
  const Side sides[3] = {side_ab, side_bc, side_ca};
  for (int k = 0; k < 3; ++k) {
    join(rim[k], over[k]);
    side_[at(rim[k])] = sides[k];
    side_[at(rim[k] + 1)] = side_[at(rim[k] + 2)] = Side::loose;
    join(rim[k] + 1, rim[(k + 1) % 3] + 2);
    pending_.push_back(rim[k]);
  }
  if (place.kind == PlaceKind::on_edge) {  // the triangle without area goes
    turn(rim[0]);
    pending_.push_back(previous(rim[0]));
    pending_.push_back(next(mate(rim[0])));
  }
  turn_around(node);
  return node;
}

// Exchanges the diagonal a-b of the quadrangle a, d, b, c for d-c. The half-edge keeps its number; afterwards it runs
// from d to c, and the half-edges previous(half) and next(mate(half)) are those opposite c.
void PlanarMesh::turn(int half) {
  const int h_next = next(half), h_previous = previous(half);
  const int other = mate(half), o_next = next(other), o_previous = previous(other);
  const int a = start(half), b = start(other), c = start(h_previous), d = start(o_previous);
  const int moved[4] = {h_next, h_previous, o_next, o_previous};  // bc, ca, ad, db
  int mates[4];
  Side sides[4];
  for (int k = 0; k < 4; ++k) {
    mates[k] = mate(moved[k]);
    sides[k] = side_[at(moved[k])];
  }
  const int target[4] = {o_previous, h_next, h_previous, o_next};
  for (int k = 0; k < 4; ++k) {
    join(target[k], mates[k]);
    side_[at(target[k])] = sides[k];
  }
  start_[at(half)] = start_[at(o_next)] = d;
  start_[at(other)] = start_[at(h_next)] = c;
  start_[at(h_previous)] = a;
  start_[at(o_previous)] = b;
  leaving_[at(a)] = h_previous;
  leaving_[at(b)] = o_previous;
  leaving_[at(c)] = h_next;
  leaving_[at(d)] = half;
}

// Tests the pending edges, all opposite the new node; the node beyond such an edge is the only one its circle can hold.
void PlanarMesh::turn_around(int node) {
  while (!pending_.empty()) {
    const int half = pending_.back();
    pending_.pop_back();
    const int other = mate(half);
    if (other == none || is_fixed(half)) continue;
    // An edge turned since does not face the node any more.
    if (apex(half) != node) continue;
    if (in_circle(point(start(half)), point(end(half)), point(node), point(apex(other))) <= 0.0) continue;
    turn(half);
    pending_.push_back(previous(half));
    pending_.push_back(next(other));
  }
}

void PlanarMesh::turn_pending() {
  while (!pending_.empty()) {
    const int half = pending_.back();
    pending_.pop_back();
    const int other = mate(half);
    if (other == none || is_fixed(half)) continue;
    if (in_circle(point(start(half)), point(end(half)), point(apex(half)), point(apex(other))) <= 0.0) continue;
    turn(half);
    for (const int edge : {next(half), previous(half), next(other), previous(other)}) pending_.push_back(edge);
  }
}

void PlanarMesh::restore_around(int node) {
  const int first = leaving(node);
  int half = first;
  do {
    pending_.push_back(half);
    pending_.push_back(next(half));
    half = next_leaving(half);
  } while (half != first && half != none);
  turn_pending();
}
