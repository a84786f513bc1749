#include "hole_report.h"

#include <cstdio>

#include "json_values.h"
#include "messages.h"
#include "text.h"

namespace {

const char* verb_of(HoleMethod method) { return method == HoleMethod::fan ? "filled" : "capped"; }

std::string line_of_hole(const HoleAccount& account, const HoleOutcome& outcome, const Units& units) {
  std::string line = formatted("  %6d %8d %10d %8d  ", outcome.hole.number, outcome.hole.edges(), outcome.triangles, outcome.nodes);
  if (!outcome.refused.empty()) return line + "refused: " + outcome.refused + "\n";
  line += verb_of(account.method);
  if (account.method != HoleMethod::fan) line += ", spacing " + units.length(outcome.spacing, 4);
  return line + ", round " + place(outcome.hole.at) + "\n";
}

std::string table_of_holes(const HoleAccount& account, const Units& units) {
  constexpr int most_shown = 20;
  std::string text = formatted("  %6s %8s %10s %8s\n", "hole", "edges", "triangles", "nodes");
  int shown = 0;
  for (const HoleOutcome& outcome : account.holes.outcomes) {
    if (outcome.refused.empty() && ++shown > most_shown) continue;
    text += line_of_hole(account, outcome, units);
  }
  if (shown > most_shown) text += formatted("  ... and %d more that were %s; --json lists all\n", shown - most_shown, verb_of(account.method));
  return text;
}

}  // namespace

std::string text_of_closing(const Session& session, const HoleAccount& account) {
  const ClosedHoles& holes = account.holes;
  std::string text = printable(account.input) + ": " + name_of(account.read.format) + (account.read.is_complete ? "\n" : ", damaged\n");
  long long triangles = 0, nodes = 0;
  for (const HoleOutcome& outcome : holes.outcomes) {
    triangles += outcome.triangles;
    nodes += outcome.nodes;
  }
  if (account.tolerance != exact_copies) text += "  merged up to " + session.units.length(account.tolerance, 6) + " apart\n";
  if (!holes.outcomes.empty()) text += table_of_holes(account, session.units);
  text += formatted("  %d of %s %s, %s and %s added", holes.closed(),
                    counted(static_cast<long long>(holes.outcomes.size()), "hole", "holes").c_str(), verb_of(account.method),
                    counted(triangles, "triangle", "triangles").c_str(), counted(nodes, "node", "nodes").c_str());
  if (holes.passed_over > 0) text += formatted("; %d not chosen", holes.passed_over);
  text += "\n";
  text += holes.boundaries_left == 0 ? "  no boundary left\n"
                                     : formatted("  %s left, %d free edges\n", counted(holes.boundaries_left, "boundary", "boundaries").c_str(),
                                                 holes.free_edges_left);
  return text + printable(account.output) + ": " + name_of(account.written) + ", written\n";
}

std::string json_of_closing(const Session& session, const HoleAccount& account) {
  Json list = Json::array();
  for (const HoleOutcome& outcome : account.holes.outcomes) {
    list.push_back({{"number", outcome.hole.number},
                    {"edges", outcome.hole.edges()},
                    {"length", number(outcome.hole.length)},
                    {"at", triple(outcome.hole.at)},
                    {"closed", outcome.refused.empty()},
                    {"refused", outcome.refused.empty() ? Json(nullptr) : Json(outcome.refused)},
                    {"spacing", account.method == HoleMethod::fan ? Json(nullptr) : number(outcome.spacing)},
                    {"triangles", outcome.triangles},
                    {"nodes", outcome.nodes}});
  }
  return line_of({{"file", account.input},
                  {"format", name_of(account.read.format)},
                  {"output", account.output},
                  {"output_format", name_of(account.written)},
                  {"method", name_of(account.method)},
                  {"weld", number(account.tolerance)},
                  {"holes", list},
                  {"closed", account.holes.closed()},
                  {"refused", account.holes.refused()},
                  {"not_chosen", account.holes.passed_over},
                  {"boundaries_left", account.holes.boundaries_left},
                  {"free_edges_left", account.holes.free_edges_left},
                  {"complete", account.read.is_complete},
                  {"warnings", session.messages.warnings()}});
}
