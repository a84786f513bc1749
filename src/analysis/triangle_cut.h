#pragma once

#include <cstddef>

#include "mesh/element.h"
#include "mesh/measures.h"
#include "platform/geometry/point3.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// What tells whether one triangle cuts another, gathered in one place.
struct CutTriangle {
  giPoint3 p[3];
  double normal[3];  // of unit length, where there is one
  int nodes[3];
  int has_normal;

  void set(const trElement& t, const giPoint3& a, const giPoint3& b, const giPoint3& c, double tol) {
    p[0] = a;
    p[1] = b;
    p[2] = c;
    giVector3 n;
    has_normal = tr_compute_normal(a, b, c, tol, n);
    for (int k = 0; k < 3; ++k) {
      normal[k] = n[k];
      nodes[k] = t[k];
    }
  }
};

static_assert(sizeof(CutTriangle) == 112 && offsetof(CutTriangle, nodes) == 96,
              "a quarter of a cache line from the nodes on");

/// Which nodes of two triangles are equal: bit 4 i + j stands for node i of the first and node j of the second.
inline unsigned equal_nodes(const CutTriangle& a, const CutTriangle& b) {
#if defined(__SSE2__)
  // The fourth number loaded is not a node; its bit is dropped.
  const __m128i nodes = _mm_loadu_si128(
      reinterpret_cast<const __m128i*>(reinterpret_cast<const char*>(&b) + offsetof(CutTriangle, nodes)));
  const auto equal_to = [nodes](int node) {
    return static_cast<unsigned>(_mm_movemask_ps(_mm_castsi128_ps(_mm_cmpeq_epi32(nodes, _mm_set1_epi32(node))))) & 7u;
  };
  return equal_to(a.nodes[0]) | equal_to(a.nodes[1]) << 4 | equal_to(a.nodes[2]) << 8;
#else
  unsigned equal = 0;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) equal |= static_cast<unsigned>(a.nodes[i] == b.nodes[j]) << (4 * i + j);
  }
  return equal;
#endif
}

/// Whether just one pair is equal, or just two, as where triangles share an edge.
inline bool is_one_pair(unsigned equal) { return equal != 0 && (equal & (equal - 1)) == 0; }
inline bool is_two_pairs(unsigned equal) { return is_one_pair(equal & (equal - 1)); }
/// The corner of the first triangle in the last of them, in the order of the first triangle, then of the second; and
/// the corner of the second.
inline int last_equal_corner(unsigned equal) { return (31 - __builtin_clz(equal)) >> 2; }
inline int last_equal_other_corner(unsigned equal) { return (31 - __builtin_clz(equal)) & 3; }

/// Whether the segment from p to q, whose ends lie at signed distances dp and dq from the plane of the triangle with
/// unit normal n, meets the triangle. Lengths, and areas twice as large as a triangle's, below tol are as good as zero.
/// The first form takes it that the ends do not lie clear of the plane on one side of it.
bool crossing_in_triangle(const giPoint3& p, const giPoint3& q, double dp, double dq, const giPoint3* tri,
                          const giVector3& n, double tol);
inline bool segment_meets(const giPoint3& p, const giPoint3& q, double dp, double dq, const giPoint3* tri,
                          const giVector3& n, double tol) {
  if ((dp > tol && dq > tol) || (dp < -tol && dq < -tol)) return false;
  return crossing_in_triangle(p, q, dp, dq, tri, n, tol);
}

/// The exact test. The triangles must not share an edge (two pairs of equal nodes): those do not cut each other.
class TriangleCut {
 public:
  explicit TriangleCut(double tol) : tol_(tol) {}

  /// `equal` is what equal_nodes(a, b) says.
  bool test(const CutTriangle& a, const CutTriangle& b, unsigned equal) const {
    if (equal == 0) {
      if (lies_aside(a, b) || lies_aside(b, a)) return false;
      return sides_meet(a, b, nullptr) || sides_meet(b, a, nullptr);
    }
    const int corner = last_equal_corner(equal);
    if (is_one_pair(equal)) {
      return side_meets(a, (corner + 1) % 3, b) || side_meets(b, (last_equal_other_corner(equal) + 1) % 3, a);
    }
    return sides_meet(a, b, &a.nodes[corner]) || sides_meet(b, a, &a.nodes[corner]);
  }

 private:
  static double distance(const giPoint3& p, const CutTriangle& from) {
    const giPoint3& o = from.p[0];
    return from.normal[0] * (p.x - o.x) + from.normal[1] * (p.y - o.y) + from.normal[2] * (p.z - o.z);
  }
  // Whether a lies on one side of the plane of b, and clear of it.
  bool lies_aside(const CutTriangle& a, const CutTriangle& b) const {
    if (!b.has_normal) return false;
    const double d[3] = {distance(a.p[0], b), distance(a.p[1], b), distance(a.p[2], b)};
    return (d[0] > tol_ && d[1] > tol_ && d[2] > tol_) || (d[0] < -tol_ && d[1] < -tol_ && d[2] < -tol_);
  }
  // Whether the side of a from corner i to the next one meets b.
  bool side_meets(const CutTriangle& a, int i, const CutTriangle& b) const {
    if (!b.has_normal) return false;
    const giPoint3& p = a.p[i];
    const giPoint3& q = a.p[(i + 1) % 3];
    const giVector3 n(b.normal[0], b.normal[1], b.normal[2]);
    return segment_meets(p, q, distance(p, b), distance(q, b), b.p, n, tol_);
  }
  // Whether a side of a that does not touch the common node meets b.
  bool sides_meet(const CutTriangle& a, const CutTriangle& b, const int* common) const {
    for (int i = 0; i < 3; ++i) {
      if (common != nullptr && (a.nodes[i] == *common || a.nodes[(i + 1) % 3] == *common)) continue;
      if (side_meets(a, i, b)) return true;
    }
    return false;
  }

  double tol_;
};
