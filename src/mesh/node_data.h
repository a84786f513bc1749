#pragma once

#include "platform/containers/page_arr.h"
#include "platform/utilities/export.h"

/// The attributes of one node: up to five values and how many tuples have been averaged into them.
class trNodeDataTuple {
 public:
  static constexpr int max_values = 5;

  int weight = 0;
  double values[max_values] = {0, 0, 0, 0, 0};

  trNodeDataTuple() = default;
  trNodeDataTuple(const trNodeDataTuple& other) { *this = other; }

  /// Copies the values; the weight becomes 1 whatever the source's weight.
  trNodeDataTuple& operator=(const trNodeDataTuple& other) {
    for (int k = 0; k < max_values; ++k) values[k] = other.values[k];
    weight = 1;
    return *this;
  }

  /// Exchanges values and weights.
  void swap(trNodeDataTuple& other);
};

using trNodeDataTuplecoPageArr = coPageArr<trNodeDataTuple>;

/// Attribute tuples of a block, by node number.
class MENDEX_EXPORT trNodeDataBlock {
 public:
  /// How many of the five values are in use.
  int size() const { return size_; }
  void set_size(int n) { size_ = n; }

  /// Tuple i, growing the array to hold it.
  trNodeDataTuple& data(int i) { return tuples[i]; }
  /// Tuple i without growth; i must be below the count.
  const trNodeDataTuple& data(int i) const { return tuples[i]; }

  /// Whether the tuples differ by less than tol: tol * tol > the sum over the values in use of (b - a) squared.
  int test(int a, int b, double tol) const;

  /// Copies values and weight of tuple src into tuple dst.
  void move(int dst, int src);

  /// Makes dst the mean of both tuples by weight; the weights add up. Nothing happens when both weights are 0.
  void average(int dst, int src);

  trNodeDataTuplecoPageArr tuples;

 private:
  int size_ = 0;
};
