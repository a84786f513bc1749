#pragma once

#include "platform/containers/number_arrays.h"
#include "platform/containers/int_set.h"
#include "platform/utilities/export.h"

/// An undirected edge and the numbers of the elements on it.
class MENDEX_EXPORT trEdgeConnection {
 public:
  trEdgeConnection() : trEdgeConnection(0, 0) {}
  trEdgeConnection(int start, int end) : start_node_(start), end_node_(end), triangles_(4, 50) {}

  int start_node() const { return start_node_; }
  int end_node() const { return end_node_; }

  void add_triangle(int element) { triangles_.add(element); }
  int number_triangles() const { return triangles_.count(); }
  const intcoSet& triangles() const { return triangles_; }

  /// Appends the element numbers to `list`, in the order of the set; returns the list's new count.
  int triangles(intcoPageArr& list) const;

  /// Whether the ends are a and b, in either order.
  int check(int a, int b) const {
    return (start_node_ == a && end_node_ == b) || (start_node_ == b && end_node_ == a);
  }

  /// The same two ends in either order; the elements are not compared.
  bool operator==(const trEdgeConnection& other) const { return check(other.start_node_, other.end_node_) != 0; }
  bool operator!=(const trEdgeConnection& other) const { return !(*this == other); }

  /// Both ends, the number of elements and every element number, joined by exclusive or. Unlike equality it sees the elements:
  /// two edges meet in a set only when their elements agree in number and in the exclusive or of their numbers.
  int co_hash() const;

  /// Where a set looks for the edge first: both ends as one number, so that edges without elements spread too. The same for both orders
  /// of the ends.
  int co_spread() const {
    const unsigned low = static_cast<unsigned>(start_node_ < end_node_ ? start_node_ : end_node_);
    const unsigned high = static_cast<unsigned>(start_node_ < end_node_ ? end_node_ : start_node_);
    return static_cast<int>(low * 0x9e3779b1u + high);
  }

 private:
  int start_node_;
  int end_node_;
  intcoSet triangles_;
};

/// What sets of edges hash by.
inline int co_hash(const trEdgeConnection& edge) { return edge.co_hash(); }
