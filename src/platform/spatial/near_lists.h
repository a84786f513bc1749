#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// For each of many items the few numbers that a search found near it; longer lists are not kept.
///
/// Searches that are made one after the other for neighbours in space find what they need in the caches, where searches in the order
/// in which items are dealt with would wait for memory. So the searches are made ahead, in the order of space, and kept here. What was
/// found may have changed when its turn comes: whoever asks has to look.
/// Cost: O(1) an entry; 9 bytes an item and 4 an entry.
class NearLists {
 public:
  /// Lists for items 0 to n - 1, all unknown.
  explicit NearLists(std::size_t n) : starts_(n), counts_(n, unknown) {}

  /// Makes the list of item k. search(take) calls take(number) for what it finds, and ends when that returns false.
  template <class Search>
  void fill(int k, Search search) {
    const std::size_t start = numbers_.size();
    search([&](int number) {
      numbers_.push_back(number);
      return numbers_.size() - start <= longest;
    });
    const std::size_t count = numbers_.size() - start;
    starts_[static_cast<std::size_t>(k)] = start;
    if (count <= longest) {
      counts_[static_cast<std::size_t>(k)] = static_cast<std::uint8_t>(count);
    } else {
      numbers_.resize(start);
    }
  }

  /// Whether the list of item k is there; else it was too long, or not made.
  bool has(int k) const { return counts_[static_cast<std::size_t>(k)] != unknown; }

  /// Calls visit(number) for the list of item k, which must be there.
  template <class Visit>
  void visit(int k, Visit visit) const {
    const std::size_t start = starts_[static_cast<std::size_t>(k)];
    for (std::size_t at = start; at < start + counts_[static_cast<std::size_t>(k)]; ++at) visit(numbers_[at]);
  }

 private:
  static constexpr std::size_t longest = 12;
  static constexpr std::uint8_t unknown = 255;

  std::vector<std::size_t> starts_;
  std::vector<std::uint8_t> counts_;
  std::vector<int> numbers_;
};
