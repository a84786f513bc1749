// The surface that a hole is closed with: fitting it, and moving new nodes onto it.
#include <cmath>

#include "measure.h"
#include "platform/surface/gcm_surf_fitter.h"
#include "platform/surface/zrk_nurb_surf.h"
#include "support/check.h"
#include "support/timing.h"

namespace {

// Round a hole of half-angle 0.5 in the unit sphere: as many points as the model has facets, half of them on the boundary. The others lie
// an edge away, but not nearer than where they tell the slope.
struct Hole {
  giPoint3coPageArr ring;
  giPoint3coPageArr boundary;

  explicit Hole(std::size_t points) {
    const int count = static_cast<int>(points / 2);
    const double step = 2.0 * std::acos(-1.0) / count;
    for (int k = 0; k < count; ++k) {
      boundary[k] = at(0.5, k * step);
      ring[k] = at(0.5 + std::fmax(0.433 * step, 1e-5), (k + 0.5) * step);
    }
  }

  static giPoint3 at(double polar, double turn) {
    return giPoint3(std::sin(polar) * std::cos(turn), std::sin(polar) * std::sin(turn), std::cos(polar));
  }
};

zrkSurfPtr fitted(const Hole& hole) {
  zrkSurfPtr surface;
  require(gcmSurfFitter().fit(hole.ring, hole.boundary, surface) == 0, "fit");
  return surface;
}

void check_point(const giPoint3& p) {
  require(std::fabs(p.distance(giPoint3()) - 1.0) < 0.02 * (1.0 - std::cos(0.5)), "distance of the surface from the sphere");
}

Cost time_fit(const Model& model) {
  const Hole hole(model.facets());
  zrkSurfPtr surface;
  const Cost cost = cost_of([&] { surface = fitted(hole); });
  giPoint3 top;
  require(surface->closest_point(giPoint3(0.0, 0.0, 1.0), top) == 0, "closest point");
  check_point(top);
  return cost;
}

// Points over the hole, on a spiral: one for each facet of the model.
template <class Query>
Cost time_queries(const Model& model, Query&& query) {
  const zrkSurfPtr surface = fitted(Hole(1000));
  const int count = static_cast<int>(model.facets());
  giPoint3coPageArr points;
  points.expand(count);
  const Cost cost = cost_of([&] {
    for (int k = 0; k < count; ++k) {
      const giPoint3 p = Hole::at(0.48 * std::sqrt((k + 0.5) / count), 2.4 * k);
      require(query(*surface, giPoint3(p.x, p.y, 0.9), points.at(k)) == 0, "query");
    }
  });
  for (int k = 0; k < count; k += 97) check_point(points[k]);
  return cost;
}

Cost time_projection(const Model& model) {
  return time_queries(model, [](const zrkSurf& surface, const giPoint3& p, giPoint3& q) {
    return surface.project(p, giVector3(0.0, 0.0, 1.0), q);
  });
}

Cost time_closest(const Model& model) {
  return time_queries(model,
                      [](const zrkSurf& surface, const giPoint3& p, giPoint3& q) { return surface.closest_point(p, q); });
}

}  // namespace

void add_surface_measures(std::vector<Measure>& list) {
  list.push_back({"fit_surface", "flat_parse", time_fit});
  list.push_back({"project_on_surface", "flat_parse", time_projection});
  list.push_back({"closest_on_surface", "flat_parse", time_closest});
}
