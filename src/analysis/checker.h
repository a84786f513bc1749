#pragma once

#include "mesh/tri_block.h"
#include "platform/containers/int_table.h"

/// Counts the triangles on the edges that leave one node and reports the sick ones: all triangles of an edge that more
/// than two share, or all but the two largest. Of equally large ones those entered earlier stay.
///
/// One object serves node after node; it allocates only for the longest list of edges it meets.
class Checker {
 public:
  /// @param mode  0 reports every triangle on a crowded edge, any other value keeps the two largest
  Checker(const trTriBlock* block, intcoPageArr* found, int select) : mode(select), triblock(block), result(found) {}

  /// Forgets the edges of the last node.
  void start_node();
  /// Enters a triangle on the edge from `node` to `other`.
  void enter(int node, int elem, int other);
  void add_sick(int elem) { (*result)[result->count()] = elem; }

 private:
  // Above so many edges they are looked up by hash.
  static constexpr int longest_search = 64;

  int find(int other) const;
  void append(int elem, int other);
  void enter_crowded(int k, int elem);

  int mode;
  const trTriBlock* triblock;
  intcoPageArr* result;

  // One entry for each edge seen from the node.
  intcoPageArr other_node;   // its far end
  intcoPageArr first_elem;   // the two triangles kept for it; 0: none yet
  intcoPageArr second_elem;  // with mode, once three were entered: the largest so far, not smaller than the first
  intcoPageArr count;        // how many triangles were entered

  intintcoTable places_;  // far end -> entry; empty while there are few entries
};
