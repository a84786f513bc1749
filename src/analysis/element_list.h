#pragma once

#include <cstdio>

#include "platform/containers/number_arrays.h"
#include "platform/utilities/export.h"

class trControl;
class trTriBlock;

/// A list of defective triangles that remembers whether it still describes the mesh and searches anew only when asked
/// and stale.
///
/// The block is not owned and must outlive the list. A list does not watch the mesh: whoever edits it tells the lists
/// (the controller does so after each of its actions).
class MENDEX_EXPORT trElementList {
 public:
  /// A new list is stale.
  explicit trElementList(trTriBlock* block) : triblock(block) {}
  trElementList(const trElementList&) = delete;
  trElementList& operator=(const trElementList&) = delete;
  virtual ~trElementList();

  /// Searches when the list is stale. 1 when the list is not empty; 0 when it is empty, and when the search was
  /// interrupted, which leaves the list stale.
  int detect_elements();

  /// Deletes the listed triangles from the mesh, after a search when the list is stale; then the list is empty, and not
  /// stale.
  ///
  /// The next invalidation, of whatever cause, is ignored: it stands for the change that the deletion itself made.
  /// @return 1 when the list held anything; 0 also when the search was interrupted, and then nothing is deleted
  int delete_elements();

  /// Draws the outlines of the listed triangles, after a search when the list is stale. See
  /// trTriBlock::picture_elements.
  void karn_picture(std::FILE* file);

  /// The element numbers found by the last search.
  const intcoPageArr& elements() const { return elements_; }
  /// Whether the list must be searched anew before it is used.
  int stale() const { return stale_; }

 protected:
  /// Fills `elements_` from the mesh.
  virtual void find_elements() = 0;

  /// Makes the list stale; directly after its own deletion only ends that exemption.
  void invalidate();

  /// Prints the label and the count, or that there is none yet.
  void print_count(const char* label) const;

  trTriBlock* triblock;

 private:
  friend class trControl;

  int stale_ = 1;
  int cleaned = 0;  // 1 from the list's own deletion until the next invalidation

 protected:
  intcoPageArr elements_;
};
