#include "platform/surface/zrk_nurb_surf.h"

#include <utility>

#include "platform/surface/cubic_basis.h"

namespace {

constexpr int coarse_nodes = 17;        // of the grid of start points, each way
constexpr int max_newton_steps = 40;    // a regular closest point takes about five
constexpr int max_halvings = 12;        // of a step that moves away
constexpr int max_bisections = 100;     // more than the bits of a double
constexpr int samples_per_span = 4;     // along a line

double coarse_parameter(const zrkKnots& knots, int node) {
  return knots.start + knots.step * knots.spans * node / (coarse_nodes - 1);
}

// Shortens the interval [t0, t1] to where low <= start + slope * t <= high.
bool cut_interval(double start, double slope, double low, double high, double& t0, double& t1) {
  if (slope == 0.0) return start >= low && start <= high;
  double a = (low - start) / slope;
  double b = (high - start) / slope;
  if (a > b) std::swap(a, b);
  t0 = std::max(t0, a);
  t1 = std::min(t1, b);
  return t0 <= t1;
}

}  // namespace

struct zrkNurbSurf::Local {
  double u, v, z;
  bool is_finite() const { return std::isfinite(u) && std::isfinite(v) && std::isfinite(z); }
};

struct zrkNurbSurf::Height {
  double z, u, v, uu, uv, vv;
};

struct zrkNurbSurf::Distance {
  zrkUV at;
  double squared;
  double gradient[2];      // halved
  double hessian[3];       // halved; uu, uv, vv
  double metric[3];        // the part of it that is always positive definite
};

struct zrkNurbSurf::Line {
  Local p;
  Local d;
  double t0, t1;
};

zrkNurbSurf::zrkNurbSurf(const Frame& frame, std::vector<double> heights) : frame_(frame), heights_(std::move(heights)) {
  heights_.resize(static_cast<std::size_t>(frame_.u.controls() * frame_.v.controls()));
  // The B-splines add up to one and are nowhere negative: the surface lies between its control values.
  const auto [low, high] = std::minmax_element(heights_.begin(), heights_.end());
  lowest_ = *low;
  highest_ = *high;
  coarse_.reserve(coarse_nodes * coarse_nodes);
  for (int j = 0; j < coarse_nodes; ++j) {
    for (int i = 0; i < coarse_nodes; ++i) {
      coarse_.push_back(height(coarse_parameter(frame_.u, i), coarse_parameter(frame_.v, j)));
    }
  }
}

zrkNurbSurf::~zrkNurbSurf() = default;

zrkNurbSurf::Local zrkNurbSurf::to_local(const giPoint3& p) const {
  const giPoint3 work = frame_.plane.to_work(p);
  return {work.x / frame_.scale, work.y / frame_.scale, work.z / frame_.scale};
}

giPoint3 zrkNurbSurf::to_world(const Local& p) const {
  return frame_.plane.to_world(giPoint3(p.u * frame_.scale, p.v * frame_.scale, p.z * frame_.scale));
}

zrkUV zrkNurbSurf::foot(const giPoint3& p) const {
  const Local local = to_local(p);
  return {local.u, local.v};
}

double zrkNurbSurf::height(double u, double v) const {
  const int i = frame_.u.span(u);
  const int j = frame_.v.span(v);
  const CubicBasis bu(frame_.u, i, u);
  const CubicBasis bv(frame_.v, j, v);
  double z = 0.0;
  for (int l = 0; l < 4; ++l) {
    const double* row = &heights_[static_cast<std::size_t>((j + l) * frame_.u.controls() + i)];
    z += bv.d[0][l] * (bu.d[0][0] * row[0] + bu.d[0][1] * row[1] + bu.d[0][2] * row[2] + bu.d[0][3] * row[3]);
  }
  return z;
}

zrkNurbSurf::Height zrkNurbSurf::height_with_derivatives(double u, double v) const {
  const int i = frame_.u.span(u);
  const int j = frame_.v.span(v);
  const CubicBasis bu(frame_.u, i, u);
  const CubicBasis bv(frame_.v, j, v);
  Height h{};
  for (int l = 0; l < 4; ++l) {
    const double* row = &heights_[static_cast<std::size_t>((j + l) * frame_.u.controls() + i)];
    double sum[3];
    for (int order = 0; order < 3; ++order) {
      const double* b = bu.d[order];
      sum[order] = b[0] * row[0] + b[1] * row[1] + b[2] * row[2] + b[3] * row[3];
    }
    h.z += bv.d[0][l] * sum[0];
    h.u += bv.d[0][l] * sum[1];
    h.v += bv.d[1][l] * sum[0];
    h.uu += bv.d[0][l] * sum[2];
    h.uv += bv.d[1][l] * sum[1];
    h.vv += bv.d[2][l] * sum[0];
  }
  return h;
}

zrkSurfPoint zrkNurbSurf::evaluate(const zrkUV& uv) const {
  zrkSurfPoint point;
  point.uv = {frame_.u.clamped(uv.u), frame_.v.clamped(uv.v)};
  const Height h = height_with_derivatives(point.uv.u, point.uv.v);
  const auto vector = [&](double u, double v, double z) { return frame_.plane.to_world(giVector3(u, v, z)) * frame_.scale; };
  point.position = to_world({point.uv.u, point.uv.v, h.z});
  point.du = vector(1.0, 0.0, h.u);
  point.dv = vector(0.0, 1.0, h.v);
  point.duu = vector(0.0, 0.0, h.uu);
  point.duv = vector(0.0, 0.0, h.uv);
  point.dvv = vector(0.0, 0.0, h.vv);
  return point;
}

zrkNurbSurf::Distance zrkNurbSurf::distance(const Local& p, const zrkUV& uv) const {
  const Height h = height_with_derivatives(uv.u, uv.v);
  const double du = uv.u - p.u;
  const double dv = uv.v - p.v;
  const double dz = h.z - p.z;
  Distance at{};
  at.at = uv;
  at.squared = du * du + dv * dv + dz * dz;
  at.gradient[0] = du + dz * h.u;
  at.gradient[1] = dv + dz * h.v;
  const double second[3] = {h.uu, h.uv, h.vv};
  const double metric[3] = {1.0 + h.u * h.u, h.u * h.v, 1.0 + h.v * h.v};
  for (int k = 0; k < 3; ++k) {
    at.metric[k] = metric[k];
    at.hessian[k] = metric[k] + dz * second[k];
  }
  return at;
}

// Starts at the foot, unless a node of the coarse grid is nearer to p. A nearer node lies within the distance of the foot's point.
zrkUV zrkNurbSurf::closest_start(const Local& p) const {
  zrkUV best{frame_.u.clamped(p.u), frame_.v.clamped(p.v)};
  const auto squared = [&](double u, double v, double z) {
    return (u - p.u) * (u - p.u) + (v - p.v) * (v - p.v) + (z - p.z) * (z - p.z);
  };
  double least = squared(best.u, best.v, height(best.u, best.v));
  for (int j = 0; j < coarse_nodes; ++j) {
    const double v = coarse_parameter(frame_.v, j);
    if ((v - p.v) * (v - p.v) >= least) continue;
    for (int i = 0; i < coarse_nodes; ++i) {
      const double u = coarse_parameter(frame_.u, i);
      const double found = squared(u, v, coarse_[static_cast<std::size_t>(j * coarse_nodes + i)]);
      if (found >= least) continue;
      least = found;
      best = {u, v};
    }
  }
  return best;
}

// One Newton step, or a Gauss-Newton step where the distance is not convex. A parameter that is at its end and would leave stays.
zrkUV zrkNurbSurf::newton_step(const Distance& at) const {
  const auto held = [](const zrkKnots& knots, double t, double gradient) {
    return (t <= knots.start && gradient > 0.0) || (t >= knots.end() && gradient < 0.0);
  };
  const bool u_held = held(frame_.u, at.at.u, at.gradient[0]);
  const bool v_held = held(frame_.v, at.at.v, at.gradient[1]);
  const double* h = at.hessian;
  const double* m = at.metric;
  const bool convex = h[0] > 1e-3 * m[0] && h[2] > 1e-3 * m[2] && h[0] * h[2] - h[1] * h[1] > 1e-3 * (m[0] * m[2] - m[1] * m[1]);
  if (!convex) h = m;
  if (u_held && v_held) return {0.0, 0.0};
  if (u_held) return {0.0, -at.gradient[1] / h[2]};
  if (v_held) return {-at.gradient[0] / h[0], 0.0};
  const double determinant = h[0] * h[2] - h[1] * h[1];
  return {(h[1] * at.gradient[1] - h[2] * at.gradient[0]) / determinant,
          (h[1] * at.gradient[0] - h[0] * at.gradient[1]) / determinant};
}

int zrkNurbSurf::closest_point(const giPoint3& p, giPoint3& q) const {
  const Local local = to_local(p);
  if (!local.is_finite()) return -1;
  Distance at = distance(local, closest_start(local));
  if (!std::isfinite(at.squared)) return -1;
  for (int step = 0; step < max_newton_steps; ++step) {
    zrkUV move = newton_step(at);
    bool moved = false;
    for (int k = 0; k < max_halvings && !moved; ++k) {
      const zrkUV next{frame_.u.clamped(at.at.u + move.u), frame_.v.clamped(at.at.v + move.v)};
      if (next == at.at) break;
      const Distance there = distance(local, next);
      moved = there.squared < at.squared;
      if (moved) at = there;
      move = {move.u / 2.0, move.v / 2.0};
    }
    if (!moved) break;
  }
  q = to_world({at.at.u, at.at.v, height(at.at.u, at.at.v)});
  return 0;
}

bool zrkNurbSurf::cut_to_surface(Line& line) const {
  const double slack = 1e-12 * (1.0 + highest_ - lowest_);
  return cut_interval(line.p.u, line.d.u, frame_.u.start, frame_.u.end(), line.t0, line.t1) &&
         cut_interval(line.p.v, line.d.v, frame_.v.start, frame_.v.end(), line.t0, line.t1) &&
         cut_interval(line.p.z, line.d.z, lowest_ - slack, highest_ + slack, line.t0, line.t1);
}

double zrkNurbSurf::above(const Line& line, double t) const {
  return line.p.z + t * line.d.z -
         height(frame_.u.clamped(line.p.u + t * line.d.u), frame_.v.clamped(line.p.v + t * line.d.v));
}

// The meeting between two places of the line on different sides of the surface: false position as modified by M. Dowell and
// P. Jarratt ("A modified regula falsi method", 1971), with a bisection every fourth time, which bounds the number of steps.
double zrkNurbSurf::crossing(const Line& line, double low, double high) const {
  const double enough = 1e-15 * (1.0 + std::fabs(line.p.z));
  double f_low = above(line, low);
  double f_high = above(line, high);
  int last_side = 0;
  for (int k = 0; k < max_bisections; ++k) {
    double t = low - f_low * ((high - low) / (f_high - f_low));
    if (k % 4 == 3 || !(t > low && t < high)) t = low + 0.5 * (high - low);
    if (!(t > low && t < high)) break;
    const double f = above(line, t);
    if (std::fabs(f) <= enough) return t;
    const int side = (f > 0.0) == (f_low > 0.0) ? -1 : 1;
    (side < 0 ? low : high) = t;
    (side < 0 ? f_low : f_high) = f;
    if (side == last_side) (side < 0 ? f_high : f_low) *= 0.5;
    last_side = side;
  }
  return low;
}

int zrkNurbSurf::project(const giPoint3& p, const giVector3& direction, giPoint3& q) const {
  const double length = std::max({std::fabs(direction.x()), std::fabs(direction.y()), std::fabs(direction.z())});
  if (!(length > 0.0 && std::isfinite(length))) return -1;
  const giVector3 d = frame_.plane.to_work(giUnitVec3(giVector3(direction.x() / length, direction.y() / length,
                                                                direction.z() / length)).vector());
  Line line{to_local(p), {d.x(), d.y(), d.z()}, -DBL_MAX, DBL_MAX};
  if (!line.p.is_finite() || !line.d.is_finite()) return -1;
  if (!cut_to_surface(line)) return -2;

  const double u_spans = std::fabs(line.t1 - line.t0) * std::fabs(line.d.u) / frame_.u.step;
  const double v_spans = std::fabs(line.t1 - line.t0) * std::fabs(line.d.v) / frame_.v.step;
  const int pieces = 1 + static_cast<int>(samples_per_span * std::min(1e5, u_spans + v_spans));
  double best = DBL_MAX;
  double t = line.t0;
  double f = above(line, t);
  for (int k = 1; k <= pieces; ++k) {
    const double next = k == pieces ? line.t1 : line.t0 + (line.t1 - line.t0) * k / pieces;
    const double f_next = above(line, next);
    const bool meets = (f <= 0.0 && f_next >= 0.0) || (f >= 0.0 && f_next <= 0.0);
    const double nearest = t <= 0.0 && next >= 0.0 ? 0.0 : std::min(std::fabs(t), std::fabs(next));
    if (meets && nearest < std::fabs(best)) {
      const double found = f == 0.0 ? t : (f_next == 0.0 ? next : crossing(line, t, next));
      if (std::fabs(found) < std::fabs(best)) best = found;
    }
    t = next;
    f = f_next;
  }
  if (best == DBL_MAX) return -2;
  const double u = frame_.u.clamped(line.p.u + best * line.d.u);
  const double v = frame_.v.clamped(line.p.v + best * line.d.v);
  q = to_world({u, v, height(u, v)});
  return 0;
}
