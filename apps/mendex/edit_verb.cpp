#include "edit_verb.h"

#include <cstdio>

#include "arguments.h"
#include "interruption.h"
#include "json_values.h"
#include "mesh_writer.h"
#include "text.h"
#include "verbs.h"

namespace {

// What is told of a mesh before and after.
struct MeshState {
  int triangles = 0;
  int nodes = 0;
  int boundaries = -1;  // -1: not looked for, since in loose triangles they tell nothing
  int free_edges = -1;
};

struct EditAccount {
  ReadOutcome read;
  MeshFormat written;
  double tolerance = exact_copies;  // as used
  MeshState before;
  MeshState after;
  std::vector<EditResult> results;
};

MeshState state_of(Session& session, const EditArguments& arguments) {
  trCycleArray& cycles = session.control.cycles();
  MeshState state;
  state.triangles = session.mesh.valid_elements();
  state.nodes = session.mesh.valid_nodes();
  if (!arguments.tolerance) return state;
  state.boundaries = cycles.num_boundaries();
  state.free_edges = cycles.num_edges();
  Interruption::check();
  return state;
}

std::string text_of(const Session& session, const EditArguments& arguments, const EditAccount& account) {
  std::string text = printable(arguments.input) + ": " + name_of(account.read.format) + (account.read.is_complete ? "\n" : ", damaged\n");
  const auto row = [&text](const char* name, int before, int after) { text += formatted("  %-12s %12d %12d\n", name, before, after); };
  text += formatted("  %-12s %12s %12s\n", "", "before", "after");
  row("triangles", account.before.triangles, account.after.triangles);
  row("nodes", account.before.nodes, account.after.nodes);
  if (account.before.boundaries >= 0) {
    row("boundaries", account.before.boundaries, account.after.boundaries);
    row("free edges", account.before.free_edges, account.after.free_edges);
  }
  if (account.tolerance != exact_copies) text += "  merged up to " + session.units.length(account.tolerance, 6) + " apart\n";
  for (const EditResult& result : account.results) {
    text += formatted("  %lld %s", result.count, result.what.c_str()) + (result.limit ? ", below " + session.units.length(*result.limit, 6) + "\n" : "\n");
  }
  return text + printable(arguments.output) + ": " + name_of(account.written) + ", written\n";
}

Json json_of(const MeshState& state) {
  const auto found = [](int count) { return count < 0 ? Json(nullptr) : Json(count); };
  return {{"elements", state.triangles}, {"nodes", state.nodes}, {"boundaries", found(state.boundaries)}, {"free_edges", found(state.free_edges)}};
}

std::string json_of(const Session& session, const EditArguments& arguments, const EditAccount& account) {
  Json done = Json::array();
  for (const EditResult& result : account.results) {
    Json entry = {{"what", result.what}, {"count", result.count}};
    if (result.limit) entry.set("limit", number(*result.limit));
    done.push_back(std::move(entry));
  }
  return line_of({{"file", arguments.input},
                  {"format", name_of(account.read.format)},
                  {"output", arguments.output},
                  {"output_format", name_of(account.written)},
                  {"weld", arguments.tolerance ? number(account.tolerance) : Json(nullptr)},
                  {"before", json_of(account.before)},
                  {"after", json_of(account.after)},
                  {"done", done},
                  {"complete", account.read.is_complete},
                  {"warnings", session.messages.warnings()}});
}

}  // namespace

void add_edit_arguments(VerbOptions verb, EditArguments& arguments, bool welds) {
  add_input(verb, arguments.input);
  add_output(verb, arguments.output);
  if (welds) {
    arguments.tolerance = exact_copies;
    add_length(verb, "--weld", *arguments.tolerance, "Merge nodes up to this far apart first; without it only exact copies");
  }
  verb.add_flag("--json", arguments.is_json, "Print one JSON object with what was done");
}

ExitCode run_edit(Session& session, const EditArguments& arguments, const std::string& name,
                  const std::function<std::vector<EditResult>(trControl&)>& edit) {
  const MeshFormat format = output_format(arguments.output);
  EditAccount account{read_mesh(session, arguments.input), format, exact_copies, {}, {}, {}};
  if (arguments.tolerance) {
    session.progress.begin("merging " + arguments.input);
    account.tolerance = arguments.tolerance->resolve(session.mesh);
    session.mesh.unduplicate_nodes(account.tolerance);
    Interruption::check();
  }
  session.progress.begin("measuring " + arguments.input);
  account.before = state_of(session, arguments);
  session.progress.begin(name + " " + arguments.input);
  session.control.start_undo(utString(name.c_str()));
  account.results = edit(session.control);
  session.control.finish_undo(!Interruption::requested());
  Interruption::check();
  if (account.before.triangles > 0 && session.mesh.valid_elements() == 0) {
    throw Failure(ExitCode::wrong_usage, "no triangle would be left; nothing is written");
  }
  session.progress.begin("measuring " + arguments.input);
  account.after = state_of(session, arguments);
  write_mesh(session, {arguments.output, format, false, arguments.input});
  session.progress.erase();
  if (arguments.is_json) {
    std::printf("%s\n", json_of(session, arguments, account).c_str());
  } else if (!session.is_quiet) {
    std::printf("%s", text_of(session, arguments, account).c_str());
  }
  return ExitCode::done;
}
