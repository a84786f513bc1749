#include "repair_report.h"

#include <algorithm>

#include "json_values.h"
#include "messages.h"
#include "text.h"

namespace {

// "collapsed triangles deleted" is "collapsed triangle deleted" of one: the first word in the plural.
std::string singular_of(const std::string& what) {
  const std::size_t end = std::min(what.find("s "), what.size() - 1);
  const bool is_in_ies = end >= 2 && what.compare(end - 2, 2, "ie") == 0;
  return is_in_ies ? what.substr(0, end - 2) + "y" + what.substr(end + 1) : what.substr(0, end) + what.substr(end + 1);
}

std::string text_of_parameter(const std::pair<std::string, double>& parameter, const Units& units) {
  const auto& [name, value] = parameter;
  return name + " " + (name == "area" ? units.area(value, 4) : units.length(value, 4));
}

std::string text_of_step(const StepAccount& step, const Units& units) {
  std::string text = formatted("  %-7s %-14s", name_of(step.step), name_of(step.result));
  for (std::size_t k = 0; k < step.counts.size(); ++k) {
    const auto& [what, number] = step.counts[k];
    text += (k == 0 ? "" : ", ") + counted(number, singular_of(what).c_str(), what.c_str());
  }
  if (!step.counts.empty() && !step.parameters.empty()) {
    for (std::size_t k = 0; k < step.parameters.size(); ++k) {
      text += (k == 0 ? " (" : ", ") + text_of_parameter(step.parameters[k], units);
    }
    text += ")";
  }
  while (!text.empty() && text.back() == ' ') text.pop_back();
  text += "\n";
  for (const std::string& refused : step.refused) text += std::string(10, ' ') + "refused: " + refused + "\n";
  return text;
}

std::string text_of_states(const RepairState& before, const RepairState& after, const Units& units) {
  std::string text = formatted("  %-16s %14s %14s\n", "", "before", "after");
  const auto row = [&text](const char* name, int a, int b) { text += formatted("  %-16s %14d %14d\n", name, a, b); };
  const auto measure = [&text](const std::string& name, double a, double b) { text += formatted("  %-16s %14.7g %14.7g\n", name.c_str(), a, b); };
  row("triangles", before.triangles, after.triangles);
  row("nodes", before.nodes, after.nodes);
  row("shells", before.shells, after.shells);
  row("closed shells", before.closed_shells, after.closed_shells);
  row("inside out", before.inside_out, after.inside_out);
  row("boundaries", before.boundaries, after.boundaries);
  row("open edges", before.edges.open, after.edges.open);
  row("opposed edges", before.edges.opposed, after.edges.opposed);
  row("sick edges", before.edges.sick, after.edges.sick);
  measure("area" + units.of_area(), before.area, after.area);
  measure("volume" + units.of_volume(), before.volume, after.volume);
  return text;
}

// Holes that took the first method are many and of no interest.
std::string text_of_holes(const std::vector<HoleFate>& holes) {
  constexpr int most_shown = 20;
  std::string text;
  int shown = 0, of_interest = 0;
  for (const HoleFate& fate : holes) {
    if (fate.kind == HoleFate::Kind::closed && fate.reason.empty()) continue;
    if (++of_interest > most_shown) continue;
    ++shown;
    const char* const what = fate.kind == HoleFate::Kind::closed ? name_of(fate.method)
                             : fate.kind == HoleFate::Kind::kept ? "kept open"
                                                                 : "refused";
    text += formatted("  hole of %d edges round ", fate.hole.edges()) + place(fate.hole.at) + ": " + what + " (" + fate.reason + ")\n";
  }
  if (of_interest > shown) text += formatted("  ... and %d more; --json lists all\n", of_interest - shown);
  return text;
}

std::string text_of_verdict(const RepairReport& report) {
  const RepairAccount& account = *report.account;
  std::string text;
  for (const std::string& passed : account.budget.passed) text += "  limit passed: " + passed + "\n";
  if (account.is_sound()) {
    text += account.sheets == 0 ? "  sound: closed, consistent, outward\n"
                                : "  sound but for " + counted(account.sheets, "rim of an open sheet", "rims of open sheets") + "\n";
  } else {
    text += "  " + counted(account.defect_count, "defect", "defects") + " left\n";
    std::size_t shown = 0;
    for (const LeftDefect& defect : account.defects) {
      constexpr std::size_t most_shown = 10;
      if (++shown > most_shown) break;
      text += "    " + defect.kind + " round " + place(defect.at) + (defect.reason.empty() ? "" : ": " + defect.reason) + "\n";
    }
  }
  return text;
}

Json json_of(const RepairState& state) {
  return {{"triangles", state.triangles},
          {"nodes", state.nodes},
          {"shells", state.shells},
          {"closed_shells", state.closed_shells},
          {"inside_out_shells", state.inside_out},
          {"boundaries", state.boundaries},
          {"open_edges", state.edges.open},
          {"opposed_edges", state.edges.opposed},
          {"sick_edges", state.edges.sick},
          {"area", number(state.area)},
          {"volume", number(state.volume)}};
}

Json json_of(const StepAccount& step) {
  Json parameters = Json::object(), counts = Json::object();
  for (const auto& [name, value] : step.parameters) parameters.set(name, number(value));
  for (const auto& [name, value] : step.counts) counts.set(name, value);
  return {{"name", name_of(step.step)}, {"result", name_of(step.result)}, {"parameters", parameters},
          {"counts", counts},           {"refused", step.refused},        {"milliseconds", number(step.milliseconds)}};
}

Json json_of(const HoleFate& fate) {
  const bool is_closed = fate.kind == HoleFate::Kind::closed;
  return {{"edges", fate.hole.edges()},
          {"position", triple(fate.hole.at)},
          {"length", number(fate.hole.length)},
          {"result", is_closed ? "closed" : fate.kind == HoleFate::Kind::kept ? "kept" : "refused"},
          {"method", is_closed ? Json(name_of(fate.method)) : Json(nullptr)},
          {"spacing", is_closed && fate.method != HoleMethod::fan ? number(fate.spacing) : Json(nullptr)},
          {"triangles", fate.triangles},
          {"nodes", fate.nodes},
          {"reason", fate.reason.empty() ? Json(nullptr) : Json(fate.reason)}};
}

Json json_of(const LeftDefect& defect) {
  return {{"kind", defect.kind}, {"numbers", defect.nodes}, {"position", triple(defect.at)}, {"measure", number(defect.measure)}, {"reason", defect.reason}};
}

Json json_of(const BudgetAccount& budget) {
  return {{"moved", number(budget.moved)},
          {"removed_area", number(budget.removed_area)},
          {"new_area", number(budget.new_area)},
          {"volume_change", number(budget.volume_change)},
          {"passed", budget.passed}};
}

template <class List>
Json list_of(const List& items) {
  Json list = Json::array();
  for (const auto& item : items) list.push_back(json_of(item));
  return list;
}

}  // namespace

std::string text_of_repair(const Session& session, const RepairReport& report) {
  const RepairAccount& account = *report.account;
  std::string text = printable(report.input) + ": " + name_of(report.read->format) + (report.read->is_complete ? "\n" : ", damaged\n");
  for (const StepAccount& step : account.steps) text += text_of_step(step, session.units);
  text += text_of_holes(account.holes);
  text += text_of_states(account.before, account.after, session.units);
  text += text_of_verdict(report);
  if (report.written) {
    text += printable(report.output) + ": " + name_of(*report.written) + ", written and read back\n";
    if (!report.backup.empty()) text += printable(report.backup) + ": what was there before\n";
  } else {
    text += "nothing written\n";
  }
  return text;
}

std::string json_of_repair(const Session& session, const RepairReport& report) {
  const bool has_account = report.account.has_value();
  const Json nothing(nullptr);
  return line_of({{"schema", "mendex.report/1"},
                  {"tool", {{"name", "mendex"}, {"version", MENDEX_VERSION}}},
                  {"input",
                   {{"path", report.input},
                    {"format", report.read ? Json(name_of(report.read->format)) : nothing},
                    {"bytes", report.input_bytes ? Json(*report.input_bytes) : nothing},
                    {"complete", report.read ? Json(report.read->is_complete) : nothing}}},
                  {"units", session.units.name().empty() ? nothing : Json(session.units.name())},
                  {"before", has_account ? json_of(report.account->before) : nothing},
                  {"steps", has_account ? list_of(report.account->steps) : Json::array()},
                  {"holes", has_account ? list_of(report.account->holes) : Json::array()},
                  {"defects", has_account ? list_of(report.account->defects) : Json::array()},
                  {"defect_count", has_account ? Json(report.account->defect_count) : nothing},
                  {"budget", has_account ? json_of(report.account->budget) : nothing},
                  {"after", has_account ? json_of(report.account->after) : nothing},
                  {"output",
                   {{"path", report.output.empty() ? nothing : Json(report.output)},
                    {"format", report.written ? Json(name_of(*report.written)) : nothing},
                    {"verified", report.written.has_value()},
                    {"backup", report.backup.empty() ? nothing : Json(report.backup)}}},
                  {"warnings", session.messages.warnings()},
                  {"error", report.error.empty() ? nothing : Json(report.error)},
                  {"exit", static_cast<int>(report.exit)}});
}
