#include "tables.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

void print_growth(double growth) {
  if (std::isnan(growth)) {
    std::printf(" |");
  } else {
    std::printf(" %.2f |", growth);
  }
}

void print_time_row(const RunFacts& facts, const Measure& measure, FacetOrder order) {
  const Results& results = facts.results;
  const std::size_t judged = facts.judged_size;
  std::printf("| %s | %s |", measure.name.c_str(), name_of(order));
  for (const std::size_t facets : facts.sizes) {
    std::printf(" %.1f |", results.seconds(measure.name, facets, order) * 1e9 / static_cast<double>(facets));
  }
  const double growth = results.growth(measure.name, growth_start, order);
  print_growth(growth);
  std::printf(" %.0f |", results.bytes(measure.name, judged, order) / static_cast<double>(judged));
  if (measure.is_floor()) {
    std::printf(" | | |\n");
    return;
  }
  std::printf(" %s | %.2f | %.2f |\n", measure.yardstick.c_str(), results.ratio(measure.name, measure.yardstick, judged, order),
              results.median(measure.name, judged, order) / results.median(measure.yardstick, judged, order));
}

}  // namespace

void print_times(const RunFacts& facts, const std::vector<Measure>& measures) {
  if (measures.empty()) return;
  std::printf("### Time\nNanoseconds of processor time a triangle, the least of several interleaved runs; bytes a triangle above what was in use,"
              " and ratios, at %zu triangles.\n\n| measure | order |",
              facts.judged_size);
  for (const std::size_t facets : facts.sizes) std::printf(" %zu |", facets);
  std::printf(" growth | bytes more | yardstick | ratio | ratio of medians |\n|---|---|");
  for (std::size_t k = 0; k < facts.sizes.size() + 5; ++k) std::printf("%s", k == facts.sizes.size() + 2 ? "---|" : "--:|");
  std::printf("\n");
  for (const Measure& measure : measures) {
    for (const FacetOrder order : orders) {
      if (!measure.is_peer()) print_time_row(facts, measure, order);
    }
  }
}

void print_peers(const RunFacts& facts, const std::vector<Measure>& measures) {
  if (std::none_of(measures.begin(), measures.end(), [](const Measure& m) { return m.is_peer(); })) return;
  std::printf("\n### Peers\nNanoseconds a triangle that the peer takes, and the time of ours over it; bytes a triangle as above.\n\n| operation and peer | order |");
  std::vector<std::size_t> sizes;
  for (const std::size_t facets : facts.sizes) {
    if (facets <= facts.judged_size) sizes.push_back(facets);
  }
  for (const std::size_t facets : sizes) std::printf(" %zu | ratio |", facets);
  std::printf(" growth | bytes more | ours |\n|---|---|");
  for (std::size_t k = 0; k < 2 * sizes.size() + 3; ++k) std::printf("--:|");
  std::printf("\n");
  const Results& results = facts.results;
  for (const Measure& peer : measures) {
    for (const FacetOrder order : orders) {
      if (!peer.is_peer()) continue;
      std::printf("| %s | %s |", peer.name.c_str(), name_of(order));
      for (const std::size_t facets : sizes) {
        std::printf(" %.1f | %.2f |", results.seconds(peer.name, facets, order) * 1e9 / static_cast<double>(facets),
                    results.ratio(peer.peer_of, peer.name, facets, order));
      }
      const double growth = results.growth(peer.name, growth_start, order);
      print_growth(growth);
      const auto bytes = [&](const std::string& name) {
        return results.bytes(name, facts.judged_size, order) / static_cast<double>(facts.judged_size);
      };
      std::printf(" %.0f | %.0f |\n", bytes(peer.name), bytes(peer.peer_of));
    }
  }
}

void print_memory(const std::vector<MemoryLine>& lines) {
  if (lines.empty()) return;
  std::printf(
      "\n### Memory\nPeak bytes a triangle, in processes of their own.\n\n| triangles | order | tolerance | after reading | more while merging "
      "| more for the boundary, unmerged | reading a file / after it |\n|--:|---|---|--:|--:|--:|--:|\n");
  for (const MemoryLine& line : lines) {
    std::printf("| %zu | %s | %s | %.1f | %.1f | %.1f | %.2f |\n", line.facets, name_of(line.order), line.tolerance,
                line.use.after_reading, line.use.while_merging, line.use.boundary_of_soup, line.use.file_reading);
  }
}

int print_goals(const std::vector<GoalLine>& goals, std::size_t judged_size) {
  int missed = 0;
  std::printf("\n### Goals\nRatios at %zu triangles; growth from 10^5 triangles up, the worst and all beyond the limit.\n\n| goal | limit | measured | |\n|---|--:|--:|---|\n", judged_size);
  for (const GoalLine& goal : goals) {
    if (std::isnan(goal.value)) continue;
    std::printf("| %s | %s %.4g | %.3g | %s |\n", goal.text.c_str(), goal.at_least ? "at least" : "at most", goal.limit,
                goal.value, goal.met() ? "met" : "MISSED");
    if (!goal.met()) ++missed;
  }
  return missed;
}
