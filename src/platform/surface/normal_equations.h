#pragma once

#include <memory>
#include <vector>

/// A symmetric system over the control values of a bicubic B-spline: two of them are coupled when some span is ruled by both,
/// that is when they are at most three columns and three rows apart.
class NormalEquations {
 public:
  NormalEquations(int columns, int rows);
  ~NormalEquations();
  NormalEquations(const NormalEquations&) = delete;
  NormalEquations& operator=(const NormalEquations&) = delete;

  /// Remembers the system as it is, for `reset` to return to.
  void set_start();
  void reset();
  /// Adds the block of the span whose first control value is (i, j): 16 x 16, of which a >= b is read, and 16 to the right side.
  void add(int i, int j, const double (&matrix)[16][16], const double (&right)[16]);
  /// False when the system is not positive definite in floating point, and then the solution is empty.
  bool solve(std::vector<double>& solution);

 private:
  struct Sparse;

  void fill_matrix();

  int columns_;
  int rows_;
  std::vector<double> bands_;  // for each control value its couplings with itself and later ones, by distance
  std::vector<double> right_;
  std::vector<double> start_bands_;
  std::vector<double> start_right_;
  std::unique_ptr<Sparse> sparse_;
};
