#include <memory>

#include "arguments.h"
#include "command_line.h"
#include "cut_cap.h"
#include "edit_verb.h"
#include "holes.h"
#include "text.h"
#include "verbs.h"

namespace {

struct SliceArguments : EditArguments {
  char axis = 'z';
  std::string at;
  std::string keep;
  bool caps = false;

  CutPlane plane() const { return {axis_of(axis), numbers_in(at)->front(), keep == "above"}; }
};

std::string place_problem(const std::string& text) {
  const auto numbers = numbers_in(text);
  return numbers && numbers->size() == 1 ? "" : "'" + text + "' is not a number";
}

std::vector<EditResult> slice(trControl& control, const SliceArguments& arguments, CutCap& cap) {
  const CutPlane plane = arguments.plane();
  const int nodes = control.triblock().node_count();
  control.action_slice(plane.axis, plane.at, plane.keeps_above ? 0 : 1);
  if (tr_interrupt()) return {};
  if (control.triblock().valid_elements() == 0) {
    throw Failure(ExitCode::wrong_usage, "no triangle is left " + arguments.keep + " " + arguments.axis + " = " + arguments.at);
  }
  int on_plane = 0;
  for (int i = nodes; i < control.triblock().node_count(); ++i) on_plane += !control.triblock().node(i).invalid;
  std::vector<EditResult> results = {{"nodes made in the plane", on_plane}};
  if (!arguments.caps) return results;
  cap = cap_cut(control, plane);
  results.push_back({"boundaries in the plane closed", cap.error == at2_success ? cap.loops : 0});
  results.push_back({"triangles made to close them", cap.triangles});
  return results;
}

ExitCode run_slice(Session& session, const SliceArguments& arguments) {
  CutCap cap;
  const ExitCode code = run_edit(session, arguments, "slicing", [&](trControl& control) {
    std::vector<EditResult> results = slice(control, arguments, cap);
    if (cap.error != at2_success && cap.error != at2_interrupted) {
      session.messages.warning("the cut stays open, " + counted(cap.loops, "boundary", "boundaries") + ": " + reason_of(cap.error));
    } else if (cap.open_edges > 0) {
      session.messages.warning("the cut stays open, " + counted(cap.open_edges, "edge", "edges") + ": it runs into a boundary that was there before");
    }
    return results;
  });
  return cap.error == at2_success && cap.open_edges == 0 ? code : ExitCode::defects_found;
}

}  // namespace

void add_slice_verb(CommandLine& line) {
  const auto arguments = std::make_shared<SliceArguments>();
  const VerbOptions verb = line.add_verb("slice", "Cut with a plane across an axis and keep one side",
                                         [arguments](Session& session) { return run_slice(session, *arguments); });
  add_edit_arguments(verb, *arguments, true);
  add_axis(verb, arguments->axis);
  verb.add_option("--at", arguments->at, "Where the plane meets the axis, in the units of the model")
      .required()
      .check(place_problem)
      .type_name("LENGTH");
  verb.add_option("--keep", arguments->keep, "Which side stays: what has larger coordinates, or smaller ones")
      .required()
      .one_of({"above", "below"})
      .type_name("above|below");
  verb.add_flag("--cap", arguments->caps, "Close the cut with flat triangles; a loop inside another one stays a hole of the area");
  line.set_notes(verb,
                 "Exit code 1 when the cut was to be closed and stays open, 2 when no triangle is left.",
                 "mendex slice part.stl --axis z --at 12.5 --keep below --cap -o lower.stl");
}
