#pragma once

#include <mendexlib.h>

#include <vector>

/// The elements of a mesh at one time.
class ElementSnapshot {
 public:
  explicit ElementSnapshot(const trTriBlock& mesh);

  /// The elements that were there and are gone.
  std::vector<int> deleted_since() const;
  /// The elements that are there still, but whose corners run another way.
  std::vector<int> reversed_since() const;

 private:
  template <class Differs>
  std::vector<int> those(Differs differs) const;

  const trTriBlock& mesh_;
  std::vector<trElement> elements_;
};
