#include "platform/surface/normal_equations.h"

#include <Eigen/SparseCholesky>
#include <cmath>

namespace {

// Control values that come after (0, 0) and are coupled with it, and (0, 0) itself: three more in the row, seven in each of
// three more rows.
constexpr int band = 4 + 3 * 7;

// The place in the band of the control value `di` columns and `dj` rows further on.
int place(int di, int dj) { return dj == 0 ? di : 4 + (dj - 1) * 7 + di + 3; }

}  // namespace

struct NormalEquations::Sparse {
  Eigen::SparseMatrix<double> matrix;  // its lower triangle, column by column in the order of the bands
  Eigen::SimplicialLDLT<Eigen::SparseMatrix<double>, Eigen::Lower> solver;
};

NormalEquations::NormalEquations(int columns, int rows)
    : columns_(columns),
      rows_(rows),
      bands_(static_cast<std::size_t>(columns * rows * band)),
      right_(static_cast<std::size_t>(columns * rows)),
      sparse_(new Sparse) {}

NormalEquations::~NormalEquations() = default;

void NormalEquations::set_start() {
  start_bands_ = bands_;
  start_right_ = right_;
}

void NormalEquations::reset() {
  bands_ = start_bands_;
  right_ = start_right_;
}

void NormalEquations::add(int i, int j, const double (&matrix)[16][16], const double (&right)[16]) {
  for (int b = 0; b < 16; ++b) {
    const int first = (j + b / 4) * columns_ + i + b % 4;
    right_[static_cast<std::size_t>(first)] += right[b];
    double* couplings = &bands_[static_cast<std::size_t>(first * band)];
    for (int a = b; a < 16; ++a) couplings[place(a % 4 - b % 4, a / 4 - b / 4)] += matrix[a][b];
  }
}

// Every coupling is entered, zero or not, so that the order of elimination found the first time serves every time.
void NormalEquations::fill_matrix() {
  Eigen::SparseMatrix<double>& matrix = sparse_->matrix;
  const int n = columns_ * rows_;
  matrix.resize(n, n);
  matrix.reserve(n * band);
  for (int k = 0; k < n; ++k) {
    const double* couplings = &bands_[static_cast<std::size_t>(k * band)];
    matrix.startVec(k);
    for (int dj = 0; dj < 4 && k / columns_ + dj < rows_; ++dj) {
      for (int di = dj == 0 ? 0 : -3; di <= 3; ++di) {
        const int column = k % columns_ + di;
        if (column >= 0 && column < columns_) matrix.insertBack(k + dj * columns_ + di, k) = couplings[place(di, dj)];
      }
    }
  }
  matrix.finalize();
}

bool NormalEquations::solve(std::vector<double>& solution) {
  solution.clear();
  const bool first_time = sparse_->matrix.rows() == 0;
  fill_matrix();
  auto& solver = sparse_->solver;
  if (first_time) solver.analyzePattern(sparse_->matrix);
  solver.factorize(sparse_->matrix);
  if (solver.info() != Eigen::Success || !(solver.vectorD().minCoeff() > 0.0)) return false;
  const Eigen::VectorXd found = solver.solve(Eigen::Map<const Eigen::VectorXd>(right_.data(), columns_ * rows_));
  if (!found.allFinite()) return false;
  solution.assign(found.data(), found.data() + found.size());
  return true;
}
