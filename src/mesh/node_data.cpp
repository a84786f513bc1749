#include "mesh/node_data.h"

#include <utility>

void trNodeDataTuple::swap(trNodeDataTuple& other) {
  for (int k = 0; k < max_values; ++k) std::swap(values[k], other.values[k]);
  std::swap(weight, other.weight);
}

int trNodeDataBlock::test(int a, int b, double tol) const {
  double difference_sq = 0.0;
  for (int k = 0; k < size_ && k < trNodeDataTuple::max_values; ++k) {
    const double difference = tuples[b].values[k] - tuples[a].values[k];
    difference_sq += difference * difference;
  }
  return tol * tol > difference_sq;
}

void trNodeDataBlock::move(int dst, int src) {
  const trNodeDataTuple& from = data(src);
  trNodeDataTuple& to = data(dst);
  to = from;
  to.weight = from.weight;
}

void trNodeDataBlock::average(int dst, int src) {
  const trNodeDataTuple& from = data(src);
  trNodeDataTuple& to = data(dst);
  const int wd = to.weight;
  const int ws = from.weight;
  if (wd == 0 && ws == 0) return;
  const double sum = static_cast<double>(ws) + wd;
  for (int k = 0; k < trNodeDataTuple::max_values; ++k) {
    to.values[k] = (from.values[k] * ws + to.values[k] * wd) / sum;
  }
  to.weight = ut_numeric_cast<int>(static_cast<long long>(ws) + wd);
}
