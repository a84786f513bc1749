#include "goals.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "measure.h"

namespace {

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

  using Names = std::vector<std::string>;

  void at_most(const std::string& text, double limit, double value, Names measures = {}) {
    lines_.push_back({text, limit, false, value, std::move(measures)});
  }
  void at_least(const std::string& text, double limit, double value, Names measures = {}) {
    lines_.push_back({text, limit, true, value, std::move(measures)});
  }

  void ratio(const std::string& measure, const std::string& yardstick, FacetOrder order, double limit) {
    at_most(measure + " / " + yardstick + ", " + name_of(order), limit,
            facts_.results.ratio(measure, yardstick, facts_.judged_size, order), {measure, yardstick});
  }

  void ratio(const std::string& measure, const std::string& yardstick, double limit) {
    for (const FacetOrder order : orders) ratio(measure, yardstick, order, limit);
  }

  void rate(const TextFormat& format, std::size_t facets) {
    for (const FacetOrder order : orders) {
      at_least(std::string(format.measure) + ", MB/s, " + name_of(order), format.megabytes_a_second,
               format.bytes_a_facet * static_cast<double>(facets) / 1e6 / seconds(format.measure, order), {format.measure});
    }
  }

  void shuffled_against_ordered(const std::string& measure, double limit) {
    at_most(measure + ", shuffled / ordered", limit,
            seconds(measure, FacetOrder::shuffled) / seconds(measure, FacetOrder::ordered), {measure});
  }

  // What recording adds to an edit, at most 0.6 of the edit alone, or what new memory as large as the record takes to touch where that is
  // more: edits of a few nanoseconds take less than that themselves.
  void recording(const std::string& journalled, const std::string& edit) {
    const double new_bytes = facts_.results.bytes("new_pages", facts_.judged_size, FacetOrder::ordered);
    for (const FacetOrder order : orders) {
      const double alone = seconds(edit, order);
      const double touch = seconds("new_pages", order) * facts_.results.bytes(journalled, facts_.judged_size, order) / new_bytes;
      at_most("what " + journalled + " adds to " + edit + ", of what it may, " + name_of(order), 1.0,
              std::isnan(touch) ? not_measured : (seconds(journalled, order) - alone) / std::max(0.6 * alone, touch),
              {journalled, edit, "new_pages"});
    }
  }

  double seconds(const std::string& measure, FacetOrder order) const {
    return facts_.results.seconds(measure, facts_.judged_size, order);
  }

  // Ours over the fastest of the peers that ran.
  void peer(const std::string& measure, FacetOrder order, double limit) {
    double least = not_measured;
    std::string fastest;
    for (const Measure& other : all_measures()) {
      if (other.peer_of != measure || !(facts_.results.seconds(other.name, facts_.judged_size, order) > 0.0)) continue;
      const double time = facts_.results.seconds(other.name, facts_.judged_size, order);
      if (time >= least) continue;
      least = time;
      fastest = other.name;
    }
    at_most(measure + " / " + fastest + ", " + name_of(order), limit, seconds(measure, order) / least, {measure, fastest});
  }

  void peer(const std::string& measure, double limit) {
    for (const FacetOrder order : orders) peer(measure, order, limit);
  }

  // The worst exponent of any operation, and every other that is above the limit. In order: shuffled, plain loops exceed it as well,
  // since each step waits for memory beyond the caches.
  void growth(double limit) {
    std::vector<GoalLine> found;
    for (const Measure& measure : all_measures()) {
      if (measure.is_floor() || measure.is_peer() || measure.is_scattered) continue;
      const double exponent = facts_.results.growth(measure.name, growth_start, FacetOrder::ordered);
      if (!std::isnan(exponent)) found.push_back({"growth exponent, " + measure.name + ", ordered", limit, false, exponent, {}});
    }
    for (GoalLine& line : worst_and_missed(std::move(found))) lines_.push_back(std::move(line));
  }

  // The most bytes a triangle, above what was in use before.
  void bytes(const std::string& measure, double limit) {
    for (const FacetOrder order : orders) {
      at_most(measure + ", bytes a triangle, " + name_of(order), limit,
              facts_.results.bytes(measure, facts_.judged_size, order) / static_cast<double>(facts_.judged_size));
    }
  }

  std::vector<GoalLine> take() { return std::move(lines_); }

 private:
  const RunFacts& facts_;
  std::vector<GoalLine> lines_;
};

// Beside what a user would take instead. An operation of ours also numbers, journals and keeps lists, hence limits above 1; what misses
// its limit by the fastest of them is too slow for anybody. Floors stand for peers that no driver here can time.
void judge_peers(Judge& judge) {
  judge.peer("read_stl", 1.8);
  judge.peer("unduplicate_0.1_edge", 0.45);
  judge.peer("unduplicate_exact", FacetOrder::shuffled, 1.5);
  judge.peer("merge_and_link", FacetOrder::shuffled, 1.0);
  judge.peer("build_edges", FacetOrder::shuffled, 1.0);
  judge.ratio("build_edges", "flat_link", FacetOrder::shuffled, 2.0);
  judge.peer("find_sick", 10.0);
  judge.peer("orient_normals", 3.5);
  for (const char* measure : {"isect_clean", "isect_overlapping"}) {
    judge.peer(measure, FacetOrder::ordered, 0.5);
    judge.peer(measure, FacetOrder::shuffled, 0.35);
  }
  judge.peer("fill_1000_holes_journalled", 5.0);
  judge.peer("close_cracks", 3.0);
  for (const char* measure : {"close_t_junctions", "write_stl"}) judge.peer(measure, 1.0);
  judge.peer("weld_file", FacetOrder::ordered, 1.0);
  judge.peer("weld_file", FacetOrder::shuffled, 0.25);
}

// The worst of all lines from the judged size up: memory comes in pieces of up to 2 MiB, which count in small models.
void judge_memory(Judge& judge, const RunFacts& facts) {
  MemoryUse worst{not_measured, not_measured, not_measured, not_measured};
  for (const MemoryLine& line : facts.memory) {
    if (line.facets < facts.judged_size) continue;
    worst.after_reading = std::fmax(worst.after_reading, line.use.after_reading);
    worst.while_merging = std::fmax(worst.while_merging, line.use.while_merging);
    worst.file_reading = std::fmax(worst.file_reading, line.use.file_reading);
    worst.boundary_of_soup = std::fmax(worst.boundary_of_soup, line.use.boundary_of_soup);
  }
  judge.at_most("bytes a triangle, after reading", 220.0, worst.after_reading);
  judge.at_most("bytes a triangle more, while merging", 60.0, worst.while_merging);
  judge.at_most("memory while reading a file / after it, worst format", 1.1, worst.file_reading);
  judge.at_most("bytes a triangle more, boundary of a soup", 150.0, worst.boundary_of_soup);
  if (facts.judged_size < growth_start) return;
  for (const char* measure : {"repair_file", "repair_strips_file"}) judge.bytes(measure, 450.0);
}

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
  judge.recording("merge_journalled", "unduplicate_exact");
  for (const char* edit : {"reverse", "delete_all", "transform", "renumber"}) judge.recording(std::string(edit) + "_journalled", edit);
  for (const auto& [nodes, limit] : {std::pair<std::size_t, double>{100'000, 1.0}, {1'000'000, 12.0}}) {
    judge.at_most("seconds, cap_round of " + std::to_string(nodes) + " nodes", limit,
                  facts.results.seconds("cap_round", nodes, FacetOrder::ordered));
  }
  judge.ratio("slice", "flat_parse", 10.0);
  judge.ratio("section", "flat_parse", 2.0);
  judge.at_most("fit_surface, 10^4 points, seconds", 0.5,
                facts.results.seconds("fit_surface", 10'000, FacetOrder::ordered));
  judge_peers(judge);
  judge.growth(growth_limit);
  judge_memory(judge, facts);
  return judge.take();
}

std::vector<GoalLine> worst_and_missed(std::vector<GoalLine> lines) {
  std::sort(lines.begin(), lines.end(), [](const GoalLine& a, const GoalLine& b) { return a.value > b.value; });
  while (lines.size() > 1 && lines.back().met()) lines.pop_back();
  return lines;
}
