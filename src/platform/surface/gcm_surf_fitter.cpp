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

constexpr int least_spans = 8;               // each way; enough for one bulge
constexpr int most_spans = 40;               // each way; bounds time and memory
constexpr double spans_per_edge = 1.4;       // of the boundary: twice as many gain nothing, half as many leave some of its shape
constexpr double steepest_slope = 5.671;     // tangent of 80 degrees
constexpr double greatest_scatter = 0.04;    // 2 % of the extent, which is 2

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

Extent extent_of(const std::vector<FitSample>& points, double FitSample::* coordinate) {
  Extent extent{points.front().*coordinate, points.front().*coordinate};
  for (const FitSample& p : points) {
    extent.low = std::min(extent.low, p.*coordinate);
    extent.high = std::max(extent.high, p.*coordinate);
  }
  return extent;
}

// Knots about `spacing` apart, with some room on both sides.
zrkKnots make_knots(const Extent& extent, double spacing) {
  const double spans = std::ceil(std::min(extent.length() / spacing, 1e6)) + 1.0;
  const int n = std::min(std::max(static_cast<int>(spans), least_spans), most_spans);
  const double step = extent.length() / (n - 1);
  return {extent.low - 0.5 * step, step, n};
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
gcmSurfFitter::Result gcmSurfFitter::soften(FairingProblem& problem, double close_enough) {
  double stiffness = first_stiffness;
  FairingProblem::Misfit stiffer{std::numeric_limits<double>::infinity(), 0.0};
  std::vector<double> stiffer_heights;
  for (int k = 0; k < max_steps; ++k) {
    if (progress_feedback(100 * k / max_steps) != 0) return interrupted;
    const FairingProblem::Step step = problem.step(stiffness);
    if (step == FairingProblem::Step::failed) return bad_fit;
    if (step == FairingProblem::Step::lessened) continue;
    const FairingProblem::Misfit misfit = problem.boundary_misfit();
    const bool scattered = stiffer.root_mean_square <= greatest_scatter && stiffer.scatter > least_scatter;
    if (scattered && misfit.root_mean_square > share_left_of_scatter * stiffer.root_mean_square) {
      problem.set_heights(stiffer_heights);
      break;
    }
    if (misfit.root_mean_square <= close_enough || stiffness <= last_stiffness) break;
    stiffer = misfit;
    stiffer_heights = problem.heights();
    stiffness *= softening;
  }
  return problem.boundary_misfit().root_mean_square <= greatest_scatter ? success : bad_fit;
}

int gcmSurfFitter::fit(const giPoint3coPageArr& ring, const giPoint3coPageArr& boundary, zrkSurfPtr& surface) try {
  const FitSamples samples = make_fit_samples(ring, boundary);
  if (samples.state == FitSamples::State::not_finite) return not_finite;
  if (samples.state == FitSamples::State::too_few) return too_few_points;
  if (turns_away(samples, steepest_slope)) return no_height_field;

  const Extent u = extent_of(samples.points, &FitSample::u);
  const Extent v = extent_of(samples.points, &FitSample::v);
  const double span = 2.0 * (u.length() + v.length()) / (spans_per_edge * std::max(boundary.count(), 1));
  const zrkNurbSurf::Frame frame{samples.plane, samples.scale, make_knots(u, span), make_knots(v, span)};
  FairingProblem problem(samples, frame.u, frame.v);
  const Result result =
      soften(problem, std::min(close_to_heights * root_mean_square_height(samples), close_to_span * span));
  if (result == interrupted) return interrupted;
  if (problem.steepest_slope() > steepest_slope) return no_height_field;
  if (result != success) return result;
  surface = std::make_shared<zrkNurbSurf>(frame, problem.heights());
  return success;
} catch (const std::bad_alloc&) {
  return no_memory;
}
