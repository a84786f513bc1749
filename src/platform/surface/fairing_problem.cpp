#include "platform/surface/fairing_problem.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "platform/surface/cubic_basis.h"
#include "platform/surface/curvature_change.h"

namespace {

// Nodes of the quadrature in a span: Gauss's two each way, and the middle, which has most of the weight. The third derivatives of a
// cubic spline are step functions, right in the middle of a span and wrong towards its ends by an amount that would outweigh the
// energy sought where the surface is steep. The middle alone is blind to heights that alternate from one control value to the next.
constexpr double node_u[] = {0.2113248654051871, 0.7886751345948129, 0.2113248654051871, 0.7886751345948129, 0.5};
constexpr double node_v[] = {0.2113248654051871, 0.2113248654051871, 0.7886751345948129, 0.7886751345948129, 0.5};
constexpr double node_share[] = {0.025, 0.025, 0.025, 0.025, 0.9};

// Bending as a share of the change of curvature, inside and outside the hull. Both only settle what is open: ten times as much
// is not to be seen in the surface, and with a thousandth the system loses its last digits.
constexpr double bending_inside = 1e-5;
constexpr double bending_outside = 1e-6;

// A step that lessens the sum by less than this share was the last.
constexpr double settled_share = 1e-3;
constexpr int max_halvings = 8;

// Orders along u and v of the nine derivatives.
constexpr int orders[height_derivative_count][2] = {{1, 0}, {0, 1}, {2, 0}, {1, 1}, {0, 2}, {3, 0}, {2, 1}, {1, 2}, {0, 3}};

HeightDerivatives derivatives_of(const double (&values)[16], const double (&node)[height_derivative_count][16]) {
  double d[height_derivative_count] = {};
  for (int m = 0; m < height_derivative_count; ++m) {
    for (int k = 0; k < 16; ++k) d[m] += node[m][k] * values[k];
  }
  return {d[0], d[1], d[2], d[3], d[4], d[5], d[6], d[7], d[8]};
}

template <int n>
double sum_of_squares(const EnergyPart (&parts)[n]) {
  double sum = 0.0;
  for (const EnergyPart& part : parts) sum += part.value * part.value;
  return sum;
}

}  // namespace

// What one span adds to the equations.
struct FairingProblem::Block {
  double matrix[16][16] = {};
  double right[16] = {};

  // weight * (row . x - target)^2
  void add(const double (&row)[16], double target, double weight) {
    for (int a = 0; a < 16; ++a) {
      const double weighted = weight * row[a];
      for (int b = 0; b <= a; ++b) matrix[a][b] += weighted * row[b];
      right[a] += weighted * target;
    }
  }

  // The equations are for the new control values rather than for their change: the target of a part is what its linear form takes
  // at the present values, less the part itself.
  void add(const EnergyPart& part, const double (&node)[height_derivative_count][16], const double (&values)[16], double weight) {
    double row[16] = {};
    double present = 0.0;
    for (int d = 0; d < height_derivative_count; ++d) {
      if (part.by[d] == 0.0) continue;
      for (int k = 0; k < 16; ++k) row[k] += part.by[d] * node[d][k];
    }
    for (int k = 0; k < 16; ++k) present += row[k] * values[k];
    add(row, present - part.value, weight);
  }
};

FairingProblem::FairingProblem(const FitSamples& samples, const zrkKnots& u, const zrkKnots& v)
    : samples_(samples),
      u_(u),
      v_(v),
      equations_(u.controls(), v.controls()),
      heights_(static_cast<std::size_t>(u.controls() * v.controls())) {
  bases_.reserve(samples.points.size());
  for (const FitSample& p : samples.points) {
    const int i = u.span(p.u);
    const int j = v.span(p.v);
    const CubicBasis bu(u, i, p.u);
    const CubicBasis bv(v, j, p.v);
    SampleBasis basis{i, j, {}};
    for (int k = 0; k < 16; ++k) basis.weight[k] = bu.d[0][k % 4] * bv.d[0][k / 4];
    bases_.push_back(basis);
  }
  for (int node = 0; node < nodes_in_span; ++node) {
    const CubicBasis bu(node_u[node], u.step);
    const CubicBasis bv(node_v[node], v.step);
    node_weights_[node] = node_share[node] * u.step * v.step;
    for (int d = 0; d < height_derivative_count; ++d) {
      for (int k = 0; k < 16; ++k) nodes_[node][d][k] = bu.d[orders[d][0]][k % 4] * bv.d[orders[d][1]][k / 4];
    }
  }
  list_places();
  add_samples();
  equations_.set_start();
}

void FairingProblem::list_places() {
  const std::vector<FitSample> hull = convex_hull(samples_.points);
  for (int j = 0; j < v_.spans; ++j) {
    HullRow rows[nodes_in_span];
    for (int node = 0; node < nodes_in_span; ++node) rows[node] = hull_row(hull, v_.start + v_.step * (j + node_v[node]));
    for (int i = 0; i < u_.spans; ++i) {
      for (int node = 0; node < nodes_in_span; ++node) {
        const double u = u_.start + u_.step * (i + node_u[node]);
        const bool inside = u >= rows[node].low && u <= rows[node].high;
        places_.push_back({i, j, node, inside, ThirdOrderMetric(0.0, 0.0)});
      }
    }
  }
}

void FairingProblem::gather(const std::vector<double>& heights, int i, int j, double (&values)[16]) const {
  for (int k = 0; k < 16; ++k) values[k] = heights[static_cast<std::size_t>((j + k / 4) * u_.controls() + i + k % 4)];
}

double FairingProblem::residual(const std::vector<double>& heights, int sample) const {
  const SampleBasis& basis = bases_[static_cast<std::size_t>(sample)];
  double values[16] = {};
  gather(heights, basis.i, basis.j, values);
  double z = 0.0;
  for (int k = 0; k < 16; ++k) z += basis.weight[k] * values[k];
  return z - samples_.points[static_cast<std::size_t>(sample)].z;
}

double FairingProblem::objective(const std::vector<double>& heights, double stiffness) const {
  double misfit = 0.0;
  for (int k = 0; k < samples_.count(); ++k) misfit += residual(heights, k) * residual(heights, k);
  double energy = 0.0;
  double values[16] = {};
  for (const Place& place : places_) {
    if (place.node == 0) gather(heights, place.i, place.j, values);
    const HeightDerivatives z = derivatives_of(values, nodes_[place.node]);
    double density = (place.inside ? bending_inside : bending_outside) * sum_of_squares(Bending(z).parts);
    if (place.inside) density += sum_of_squares(CurvatureChange(z, place.metric).parts);
    energy += node_weights_[place.node] * density;
  }
  return misfit / samples_.count() + stiffness * energy;
}

void FairingProblem::add_samples() {
  const double weight = 1.0 / samples_.count();
  for (int k = 0; k < samples_.count(); ++k) {
    const SampleBasis& basis = bases_[static_cast<std::size_t>(k)];
    Block block;
    block.add(basis.weight, samples_.points[static_cast<std::size_t>(k)].z, weight);
    equations_.add(basis.i, basis.j, block.matrix, block.right);
  }
}

void FairingProblem::add_fairing(double stiffness) {
  Block block;
  double values[16] = {};
  for (Place& place : places_) {
    if (place.node == 0) {
      block = Block();
      gather(heights_, place.i, place.j, values);
    }
    const auto& node = nodes_[place.node];
    const HeightDerivatives z = derivatives_of(values, node);
    place.metric = ThirdOrderMetric(z.u, z.v);
    const double weight = stiffness * node_weights_[place.node];
    const double bending = weight * (place.inside ? bending_inside : bending_outside);
    for (const EnergyPart& part : Bending(z).parts) block.add(part, node, values, bending);
    if (place.inside) {
      for (const EnergyPart& part : CurvatureChange(z, place.metric).parts) block.add(part, node, values, weight);
    }
    if (place.node == nodes_in_span - 1) equations_.add(place.i, place.j, block.matrix, block.right);
  }
}

FairingProblem::Step FairingProblem::step(double stiffness) {
  equations_.reset();
  add_fairing(stiffness);
  std::vector<double> next;
  if (!equations_.solve(next)) return Step::failed;
  if (!started_) {
    started_ = true;
    heights_ = next;
    return Step::lessened;
  }
  const double present = objective(heights_, stiffness);
  for (int k = 0; k < max_halvings; ++k) {
    const double reached = objective(next, stiffness);
    if (reached < present) {
      heights_ = next;
      return reached < (1.0 - settled_share) * present ? Step::lessened : Step::settled;
    }
    for (std::size_t c = 0; c < next.size(); ++c) next[c] = 0.5 * (next[c] + heights_[c]);
  }
  return Step::settled;
}

FairingProblem::Misfit FairingProblem::boundary_misfit() const {
  double sum = 0.0;
  double changes = 0.0;
  const int count = samples_.count() - samples_.boundary_start;
  if (count == 0) return {0.0, 0.0};
  double last = residual(heights_, samples_.count() - 1);
  for (int k = samples_.boundary_start; k < samples_.count(); ++k) {
    const double next = residual(heights_, k);
    sum += next * next;
    changes += (next - last) * (next - last);
    last = next;
  }
  return {std::sqrt(sum / count), sum > 0.0 ? changes / sum : 0.0};
}

double FairingProblem::slope(int sample) const {
  const FitSample& p = samples_.points[static_cast<std::size_t>(sample)];
  const SampleBasis& basis = bases_[static_cast<std::size_t>(sample)];
  const CubicBasis bu(u_, basis.i, p.u);
  const CubicBasis bv(v_, basis.j, p.v);
  double values[16] = {};
  gather(heights_, basis.i, basis.j, values);
  double zu = 0.0;
  double zv = 0.0;
  for (int k = 0; k < 16; ++k) {
    zu += bu.d[1][k % 4] * bv.d[0][k / 4] * values[k];
    zv += bu.d[0][k % 4] * bv.d[1][k / 4] * values[k];
  }
  return std::sqrt(zu * zu + zv * zv);
}

double FairingProblem::steepest_slope() const {
  std::vector<double> slopes;
  for (int k = 0; k < samples_.count(); ++k) slopes.push_back(slope(k));
  const std::size_t place = slopes.size() - 1 - slopes.size() / 16;
  std::nth_element(slopes.begin(), slopes.begin() + static_cast<std::ptrdiff_t>(place), slopes.end());
  return slopes[place];
}
