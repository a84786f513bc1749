#pragma once

#include <vector>

#include "platform/surface/curvature_change.h"
#include "platform/surface/fit_samples.h"
#include "platform/surface/normal_equations.h"
#include "platform/surface/zrk_knots.h"

/// The search for the fair surface through samples: a bicubic B-spline height field z that makes
///
///   mean over the samples of (z - sample)^2  +  stiffness * (change of curvature  +  a little bending)
///
/// least. The change of curvature is the integral, over the convex hull of the samples, of the squared covariant derivative of
/// the second fundamental form: it vanishes for planes, spheres and circular cylinders in whatever position, which a plate's
/// bending energy does not, so that a hole in one of them is filled with the very same (compare H. Moreton and C. Sequin,
/// "Functional optimization for fair surface design", 1992). Bending, the thin plate's energy, decides what neither the samples
/// nor the curvature decide, and holds the surface outside the hull.
///
/// The sum is not quadratic in the control values; it is lessened by Gauss-Newton steps, each a sparse linear system, which after
/// the first are shortened until the sum gets less. The metric in which lengths are taken is that of the surface from which a step
/// starts: so a surface gains nothing by growing steep, and a step is the same as that of the linear problem where it is flat.
class FairingProblem {
 public:
  FairingProblem(const FitSamples& samples, const zrkKnots& u, const zrkKnots& v);

  /// Whether a step from the present surface lessened the sum by a thousandth or more.
  enum class Step { lessened, settled, failed };
  Step step(double stiffness);

  /// What is left at the boundary points.
  struct Misfit {
    double root_mean_square;
    /// Mean square of its change from one point to the next over its own mean square: 2 when the points scatter each for itself,
    /// next to nothing when the surface misses their common shape (after J. Durbin and G. Watson, "Testing for serial correlation
    /// in least squares regression", 1950).
    double scatter;
  };
  Misfit boundary_misfit() const;
  /// The largest slope at the samples, of all but the steepest sixteenth of them, as a tangent.
  double steepest_slope() const;
  const std::vector<double>& heights() const { return heights_; }
  void set_heights(const std::vector<double>& heights) { heights_ = heights; }

 private:
  static constexpr int nodes_in_span = 5;  // of the quadrature
  struct Block;
  struct SampleBasis {
    int i, j;  // the span
    double weight[16];
  };
  struct Place {
    int i, j;                 // the span
    int node;                 // of the quadrature, in the span
    bool inside;              // the hull
    ThirdOrderMetric metric;  // of the surface from which the last step started
  };

  void list_places();
  void add_samples();
  void add_fairing(double stiffness);
  double objective(const std::vector<double>& heights, double stiffness) const;
  double residual(const std::vector<double>& heights, int sample) const;
  double slope(int sample) const;
  void gather(const std::vector<double>& heights, int i, int j, double (&values)[16]) const;

  const FitSamples& samples_;
  zrkKnots u_;
  zrkKnots v_;
  std::vector<SampleBasis> bases_;
  double nodes_[nodes_in_span][height_derivative_count][16];  // of each control value, alike in every span
  double node_weights_[nodes_in_span];
  std::vector<Place> places_;    // in the order of the spans
  NormalEquations equations_;
  std::vector<double> heights_;
  bool started_ = false;
};
