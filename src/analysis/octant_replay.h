#pragma once

#include <functional>
#include <vector>

#include "platform/geometry/box3.h"

/// Walks one box and its octants as trBoxChecker does, for pairs that are known beforehand: tells in what order that
/// would find them, without a test of any other pair.
class OctantReplay {
 public:
  /// A pair of elements, by their places in the list of boxes.
  struct Pair {
    int a;
    int b;
    int number;  // what the caller calls it
  };
  enum class Report {
    every_time,  // a pair for each undivided box that both its elements cross
    last_time    // each pair where it is found for the last time
  };

  /// `boxes` are those of all elements that cross the box to be walked.
  OctantReplay(std::vector<giBox3> boxes, int limit, double tol) : boxes_(std::move(boxes)), limit_(limit), tol_(tol) {}

  /// Calls found(number) in the order of the search until it returns false. The pairs must be in the order in which an
  /// undivided box finds them.
  void run(const giBox3& box, const std::vector<Pair>& pairs, Report report,
           const std::function<bool(int)>& found) const;

 private:
  struct Part {
    giBox3 box;
    int depth;
    std::vector<int> members;
    std::vector<Pair> pairs;
  };

  bool split(const Part& whole, std::vector<Part>& parts) const;
  void deal_pairs(const std::vector<Pair>& pairs, Report report, std::vector<Part>& parts) const;

  std::vector<giBox3> boxes_;
  int limit_;
  double tol_;
};
