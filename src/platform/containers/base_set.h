#pragma once

#include "platform/utilities/export.h"

/// What every set reports of itself, and the sizes that its table follows.
class MENDEX_EXPORT basecoSet {
 public:
  basecoSet(const basecoSet&) = delete;
  basecoSet& operator=(const basecoSet&) = delete;
  virtual ~basecoSet();

  /// Number of entries.
  int count() const { return count_; }
  /// Percentage of filled slots at which the table doubles.
  int max_load() const { return max_load_; }
  int log2_size() const { return log2_size_; }
  int table_size() const { return 1 << log2_size_; }
  /// Exclusive-or of the hashes of all entries; 0 for an empty set.
  int running_hash() const { return running_hash_; }

  /// Called as entries are added: doubles the table as often as needed for n entries to stay below the load limit.
  virtual void update_size(int n) = 0;

 protected:
  static constexpr int max_log2_size = 30;

  /// @param log2  held within 0 to 30
  /// @param load  held within 1 to 100
  basecoSet(int log2, int load);

  bool overloaded(int n, int log2) const;
  static int clamp_log2(int log2);

  int count_ = 0;
  int max_load_;
  int log2_size_;
  int running_hash_ = 0;
};
