#pragma once

#include <memory>
#include <new>

#include "platform/containers/number_arrays.h"
#include "platform/utilities/export.h"

/// A list of node numbers that is mostly empty: an `intcoPageArr` made on first use, and until then one null pointer. A
/// mesh of loose triangles has a cycle for each, and each cycle has two such lists.
class MENDEX_EXPORT trCycleNodes {
 public:
  trCycleNodes() = default;
  trCycleNodes(const trCycleNodes& other) { *this = other.array(); }
  trCycleNodes(trCycleNodes&&) noexcept = default;
  trCycleNodes& operator=(const trCycleNodes& other) { return *this = other.array(); }
  trCycleNodes& operator=(trCycleNodes&&) noexcept = default;
  ~trCycleNodes() = default;

  /// Copies an array; without memory the list becomes empty.
  trCycleNodes& operator=(const intcoPageArr& other);

  int count() const { return nodes_ == nullptr ? 0 : nodes_->count(); }
  /// Entry i, which must be below the count.
  int operator[](int i) const { return nodes_->at(i); }

  /// Adds a number at the end. Without memory it is dropped.
  void append(int node);
  /// Lowers the count to n if it was higher.
  void shrink(int n);
  void clear() { nodes_.reset(); }
  /// Whether the number is in the list.
  int member(int node) const;

  /// The list as an array; a common empty one when there are no entries.
  const intcoPageArr& array() const;
  operator const intcoPageArr&() const { return array(); }

 private:
  intcoPageArr* made();

  std::unique_ptr<intcoPageArr> nodes_;
};
