#include "platform/surface/gcm_surf_fitter.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <new>
#include <vector>

#include "platform/surface/fairing_problem.h"
#include "platform/surface/fit_samples.h"
#include "platform/surface/zrk_nurb_surf.h"

namespace {

constexpr int least_spans = 8;               // each way, unless it is the narrow one; enough for a bulge
constexpr int most_spans = 40;               // each way; bounds time and memory
constexpr double spans_per_edge = 1.4;       // of the boundary: twice as many gain nothing, half as many leave some of its shape
constexpr double steepest_slope = 5.671;     // tangent of 80 degrees
constexpr double greatest_scatter = 0.02;    // of the boundary's extent

// What may be left at the boundary, of the heights' own variation and of a span.
constexpr double close_to_heights = 1e-3;
constexpr double close_to_span = 5e-3;

// From a stiffness at which the samples hardly bend the surface to one at which it follows every knot.
constexpr double first_stiffness = 1e-3;
constexpr double last_stiffness = 1e-10;
constexpr double softening = 0.1;
// A tenth of the stiffness leaves a shape at a third of the distance or less, but scatter nearly where it was.
constexpr double share_left_of_scatter = 0.65;
constexpr double least_scatter = 1.0;        // from which on what is left is scatter rather than shape
constexpr int max_steps = 48;                // of all stiffnesses together; about 15 are usual

struct Extent {
  double low = 0.0;
  double high = 0.0;
  double length() const { return high - low; }
};

// Of the samples from `first` on.
Extent extent_of(const FitSamples& samples, int first, double FitSample::* coordinate) {
  Extent extent{samples.points.back().*coordinate, samples.points.back().*coordinate};
  for (int k = first; k < samples.count(); ++k) {
    const double t = samples.points[static_cast<std::size_t>(k)].*coordinate;
    extent.low = std::min(extent.low, t);
    extent.high = std::max(extent.high, t);
  }
  return extent;
}

// Knots about `span` apart, with room for half a span on both sides. Across a long and narrow hole they are no closer than along it
// at the most: knots that lie much closer one way than the other leave the equations without digits.
zrkKnots make_knots(const Extent& extent, double longer, double span) {
  const double step = std::max(std::min(span, extent.length() / (least_spans - 1)), longer / (most_spans - 1));
  const int n = 1 + std::max(1, static_cast<int>(std::ceil(extent.length() / step * (1.0 - 1e-12))));
  return {0.5 * (extent.low + extent.high - step * n), step, n};
}

double root_mean_square_height(const FitSamples& samples) {
  double sum = 0.0;
  for (const FitSample& p : samples.points) sum += p.z * p.z;
  return std::sqrt(sum / samples.count());
}

}  // namespace

gcmSurfFitter::~gcmSurfFitter() = default;

int gcmSurfFitter::progress_feedback(int) { return 0; }

// The stiffest surface that leaves the boundary points in place. Where they scatter, it is the last one before a softening that did
// no more than make it follow the scatter.
gcmSurfFitter::Result gcmSurfFitter::soften(FairingProblem& problem, const Limits& limits) {
  double stiffness = first_stiffness;
  FairingProblem::Misfit stiffer{std::numeric_limits<double>::infinity(), 0.0};
  std::vector<double> stiffer_heights;
  bool scatters = false;
  for (int k = 0; k < max_steps; ++k) {
    if (progress_feedback(100 * k / max_steps) != 0) return interrupted;
    const FairingProblem::Step step = problem.step(stiffness);
    if (step == FairingProblem::Step::failed) return bad_fit;
    if (step == FairingProblem::Step::lessened) continue;
    const FairingProblem::Misfit misfit = problem.boundary_misfit();
    scatters = stiffer.scatter > least_scatter &&
               misfit.root_mean_square > share_left_of_scatter * stiffer.root_mean_square;
    if (scatters && stiffer.root_mean_square <= limits.greatest) {
      problem.set_heights(stiffer_heights);
      break;
    }
    if (misfit.root_mean_square <= limits.close_enough || stiffness <= last_stiffness) break;
    stiffer = misfit;
    stiffer_heights = problem.heights();
    stiffness *= softening;
  }
  const FairingProblem::Misfit left = problem.boundary_misfit();
  // Steep waves through points that scatter are no sign of a surface that turns away.
  if (problem.steepest_slope() > steepest_slope) return scatters ? bad_fit : no_height_field;
  return left.root_mean_square <= limits.greatest ? success : bad_fit;
}

int gcmSurfFitter::fit(const giPoint3coPageArr& ring, const giPoint3coPageArr& boundary, zrkSurfPtr& surface) try {
  const FitSamples samples = make_fit_samples(ring, boundary);
  if (samples.state == FitSamples::State::not_finite) return not_finite;
  if (samples.state == FitSamples::State::too_few) return too_few_points;
  if (turns_away(samples, steepest_slope)) return no_height_field;

  const Extent u = extent_of(samples, 0, &FitSample::u);
  const Extent v = extent_of(samples, 0, &FitSample::v);
  const double longer = std::max(u.length(), v.length());
  const double span = 2.0 * (u.length() + v.length()) / (spans_per_edge * (samples.count() - samples.boundary_start));
  const zrkNurbSurf::Frame frame{samples.plane, samples.scale, make_knots(u, longer, span), make_knots(v, longer, span)};
  FairingProblem problem(samples, frame.u, frame.v);
  const double boundary_extent = std::max(extent_of(samples, samples.boundary_start, &FitSample::u).length(),
                                          extent_of(samples, samples.boundary_start, &FitSample::v).length());
  const Result result = soften(problem, {std::min(close_to_heights * root_mean_square_height(samples), close_to_span * span),
                                         greatest_scatter * boundary_extent});
  if (result != success) return result;
  surface = std::make_shared<zrkNurbSurf>(frame, problem.heights());
  return success;
} catch (const std::bad_alloc&) {
  return no_memory;
}
