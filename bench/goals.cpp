#include "goals.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "measure.h"

namespace {

constexpr FacetOrder orders[] = {FacetOrder::ordered, FacetOrder::shuffled};
constexpr const char* merges[] = {"unduplicate_exact", "unduplicate_1e-6_edge", "unduplicate_0.1_edge"};

// Text formats: what a triangle of the merged mesh, with its half of a vertex, takes in the file.
struct TextFormat {
  const char* measure;
  double bytes_a_facet;
  double megabytes_a_second;
};
constexpr TextFormat text_formats[] = {
    {"read_tri", 50 + 156 / 2.0, 100.0},         {"read_mes", 33 + 57 / 2.0, 100.0},
    {"write_smooth_tri", 50 + 156 / 2.0, 80.0},  {"write_tri", 50 + 3 * 156.0, 80.0},
    {"write_mes", 33 + 57 / 2.0, 80.0},
};

// The lines of one run, put together goal by goal.
class Judge {
 public:
  explicit Judge(const RunFacts& facts) : facts_(facts) {}

  void at_most(const std::string& text, double limit, double value) { lines_.push_back({text, limit, false, value}); }
  void at_least(const std::string& text, double limit, double value) { lines_.push_back({text, limit, true, value}); }

  void ratio(const std::string& measure, const std::string& yardstick, FacetOrder order, double limit) {
    at_most(measure + " / " + yardstick + ", " + name_of(order), limit,
            facts_.results.ratio(measure, yardstick, facts_.judged_size, order));
  }

  void ratio(const std::string& measure, const std::string& yardstick, double limit) {
    for (const FacetOrder order : orders) ratio(measure, yardstick, order, limit);
  }

  void rate(const TextFormat& format, std::size_t facets) {
    for (const FacetOrder order : orders) {
      at_least(std::string(format.measure) + ", MB/s, " + name_of(order), format.megabytes_a_second,
               format.bytes_a_facet * static_cast<double>(facets) / 1e6 / seconds(format.measure, order));
    }
  }

  void shuffled_against_ordered(const std::string& measure, double limit) {
    at_most(measure + ", shuffled / ordered", limit,
            seconds(measure, FacetOrder::shuffled) / seconds(measure, FacetOrder::ordered));
  }

  double seconds(const std::string& measure, FacetOrder order) const {
    return facts_.results.seconds(measure, facts_.judged_size, order);
  }

  // The worst exponent of any operation, and every other that is above the limit.
  void growth(double limit) {
    if (facts_.largest_size <= growth_start) return;
    std::vector<GoalLine> found;
    for (const Measure& measure : all_measures()) {
      if (measure.is_floor()) continue;
      for (const FacetOrder order : orders) {
        const double exponent = facts_.results.growth(measure.name, growth_start, facts_.largest_size, order);
        if (!std::isnan(exponent))
          found.push_back({"growth exponent, " + measure.name + ", " + name_of(order), limit, false, exponent});
      }
    }
    std::sort(found.begin(), found.end(), [](const GoalLine& a, const GoalLine& b) { return a.value > b.value; });
    for (std::size_t k = 0; k < found.size(); ++k) {
      if (k == 0 || !found[k].met()) lines_.push_back(found[k]);
    }
  }

  std::vector<GoalLine> take() { return std::move(lines_); }

 private:
  const RunFacts& facts_;
  std::vector<GoalLine> lines_;
};

}  // namespace

std::vector<GoalLine> judge_goals(const RunFacts& facts) {
  Judge judge(facts);
  judge.ratio("read_stl", "flat_parse", 6.0);
  for (const FacetOrder order : orders) {
    if (facts.ascii_bytes == 0.0) break;
    judge.at_least(std::string("read_ast, MB/s, ") + name_of(order), 150.0,
                   facts.ascii_bytes / 1e6 / judge.seconds("read_ast", order));
  }
  for (const char* measure : {"read_native", "write_native"}) judge.ratio(measure, "flat_parse", 5.0);
  for (const char* measure : {"read_kvx", "write_kvx"}) judge.ratio(measure, "flat_parse", 6.0);
  for (const TextFormat& format : text_formats) judge.rate(format, facts.judged_size);
  for (const char* merge : merges) judge.ratio(merge, "hash_merge", 4.0);
  for (const char* merge : merges) judge.shuffled_against_ordered(merge, 1.5);
  judge.ratio("build_edges", "flat_parse", FacetOrder::ordered, 5.0);
  judge.ratio("build_edges", "flat_parse", FacetOrder::shuffled, 12.0);
  judge.ratio("reference_elements", "flat_parse", FacetOrder::ordered, 5.0 * 2.0 / 3.0);
  judge.ratio("reference_elements", "flat_parse", FacetOrder::shuffled, 12.0 * 2.0 / 3.0);
  judge.ratio("find_sick", "flat_parse", 6.0);
  for (const char* measure : {"isect_clean", "isect_overlapping"}) {
    judge.ratio(measure, "flat_parse", FacetOrder::ordered, 28.0);
    judge.ratio(measure, "flat_parse", FacetOrder::shuffled, 36.0);
  }
  for (const char* measure : {"isect_sheet", "isect_graded"}) judge.ratio(measure, "flat_parse", 60.0);
  judge.ratio("isect_fan", "flat_parse", 6.0);  // of a tenth of the triangles
  judge.ratio("isect_clean", "isect_clean_cgal", 0.5);
  judge.ratio("isect_overlapping", "isect_overlapping_cgal", 0.5);
  judge.ratio("write_stl", "flat_write", 2.0);
  judge.ratio("write_ast", "flat_write_ascii", 2.0);
  judge.ratio("find_thin", "flat_parse", 3.0);
  judge.ratio("find_overhanging", "flat_parse", 2.0);
  judge.ratio("find_overlapping", "flat_parse", 8.0);
  judge.ratio("orient_normals", "flat_parse", 6.0);
  judge.ratio("detect_cycles", "flat_parse", 1.0);
  judge.ratio("detect_cycles_unbuilt", "build_edges", 1.5);
  judge.ratio("detect_cycles_soup", "flat_parse", 20.0);
  for (const char* measure : {"merge_boundary_strips", "superstitch_strips"}) judge.ratio(measure, "flat_parse", 3.5);
  for (const char* measure : {"merge_boundary_soup", "superstitch_soup", "stitch_soup"}) {
    judge.ratio(measure, "unduplicate_1e-6_edge", 100.0);
  }
  judge.ratio("fill_1000_holes", "flat_parse", 1.0);
  for (const char* measure : {"fill_triblock", "give_triblock"}) judge.ratio(measure, "flat_parse", 5.0);
  judge.ratio("transform", "flat_parse", 3.0);
  judge.ratio("undo_merge", "flat_parse", 8.0);
  judge.ratio("redo_merge", "flat_parse", 8.0);
  judge.ratio("merge_journalled", "unduplicate_exact", 1.6);
  for (const char* edit : {"reverse", "delete_all", "transform", "renumber"}) {
    judge.ratio(std::string(edit) + "_journalled", edit, 1.6);
  }
  for (const auto& [nodes, limit] : {std::pair<std::size_t, double>{100'000, 1.0}, {1'000'000, 12.0}}) {
    judge.at_most("seconds, cap_round of " + std::to_string(nodes) + " nodes", limit,
                  facts.results.seconds("cap_round", nodes, FacetOrder::ordered));
  }
  judge.ratio("slice", "flat_parse", 10.0);
  judge.ratio("section", "flat_parse", 2.0);
  judge.at_most("fit_surface, 10^4 points, seconds", 0.5,
                facts.results.seconds("fit_surface", 10'000, FacetOrder::ordered));
  judge.growth(1.15);
  if (facts.memory) {
    judge.at_most("bytes a triangle, after reading", 220.0, facts.memory->after_reading);
    judge.at_most("bytes a triangle more, while merging", 60.0, facts.memory->while_merging);
    judge.at_most("memory while reading a file / after it, worst format", 1.1, facts.memory->file_reading);
    judge.at_most("bytes a triangle more, boundary of a soup", 150.0, facts.memory->boundary_of_soup);
  }
  return judge.take();
}
