#pragma once

#include <cmath>

#include "mesh/element.h"
#include "mesh/measures.h"
#include "platform/geometry/point3.h"

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

static_assert(sizeof(CutTriangle) == 112, "two triangles fill less than four cache lines");

/// How many pairs (node of one, node of the other) are equal, and the last of them in the order of the first triangle,
/// then of the second; `last` is 0 when there is none.
struct SharedNodes {
  int count = 0;
  int last = 0;

  SharedNodes(const int* a, const int* b) {
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        count += a[i] == b[j];
        last = a[i] == b[j] ? a[i] : last;
      }
    }
  }
};

/// Whether the segment from p to q, whose ends lie at signed distances dp and dq from the plane of the triangle with
/// unit normal n, meets the triangle. Lengths, and areas twice as large as a triangle's, below tol are as good as zero.
inline bool segment_meets(const giPoint3& p, const giPoint3& q, double dp, double dq, const giPoint3* tri,
                          const giVector3& n, double tol) {
  if ((dp > tol && dq > tol) || (dp < -tol && dq < -tol)) return false;
  dp = std::fabs(dp);
  dq = std::fabs(dq);
  giPoint3 x;
  if (dp < tol && dq < tol) {
    x = giPoint3((p.x + q.x) / 2.0, (p.y + q.y) / 2.0, (p.z + q.z) / 2.0);
  } else if (dp < tol) {
    x = p;
  } else if (dq < tol) {
    x = q;
  } else {
    x = gi_interpolate(p, q, dp / (dp + dq));
  }
  const giVector3 v[3] = {tri[0] - x, tri[1] - x, tri[2] - x};
  int above = 0;
  int below = 0;
  for (int i = 0; i < 3; ++i) {
    const giVector3& from = v[i];
    const giVector3& to = v[(i + 1) % 3];
    const double c = n.dot(from.cross(to));
    if (std::fabs(c) < tol) {
      // x lies on the line of this side: at a corner, between the corners, or beyond them.
      const double d = from.dot(to);
      if (d < tol && (from.length() < tol || to.length() < tol)) return true;
      if (d < 0.0) return true;
      continue;
    }
    above += c > 0.0;
    below += c < 0.0;
  }
  return above == 3 || below == 3;
}

/// The exact test of two triangles with the nodes that they share, which are not two: those share an edge.
class TriangleCut {
 public:
  TriangleCut(SharedNodes shared, double tol) : shared_(shared), tol_(tol) {}

  bool test(const CutTriangle& a, const CutTriangle& b) const {
    if (shared_.count == 0 && (lies_aside(a, b) || lies_aside(b, a))) return false;
    return sides_meet(a, b) || sides_meet(b, a);
  }

 private:
  static double distance(const giPoint3& p, const CutTriangle& from) {
    return giVector3(from.normal[0], from.normal[1], from.normal[2]).dot(p - from.p[0]);
  }
  // Whether a lies on one side of the plane of b, and clear of it.
  bool lies_aside(const CutTriangle& a, const CutTriangle& b) const {
    if (!b.has_normal) return false;
    const double d[3] = {distance(a.p[0], b), distance(a.p[1], b), distance(a.p[2], b)};
    return (d[0] > tol_ && d[1] > tol_ && d[2] > tol_) || (d[0] < -tol_ && d[1] < -tol_ && d[2] < -tol_);
  }
  // Whether a side of a that does not touch the common node meets b.
  bool sides_meet(const CutTriangle& a, const CutTriangle& b) const {
    if (!b.has_normal) return false;
    for (int i = 0; i < 3; ++i) {
      const int k = (i + 1) % 3;
      if (shared_.count != 0 && (a.nodes[i] == shared_.last || a.nodes[k] == shared_.last)) continue;
      const giVector3 n(b.normal[0], b.normal[1], b.normal[2]);
      if (segment_meets(a.p[i], a.p[k], distance(a.p[i], b), distance(a.p[k], b), b.p, n, tol_)) return true;
    }
    return false;
  }

  SharedNodes shared_;
  double tol_;
};
