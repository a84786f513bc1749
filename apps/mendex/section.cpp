#include <cstdio>
#include <memory>

#include "arguments.h"
#include "command_line.h"
#include "interruption.h"
#include "json_values.h"
#include "mesh_reader.h"
#include "section_output.h"
#include "text.h"
#include "verbs.h"

namespace {

struct SectionArguments {
  std::string input;
  std::string output;
  char axis = 'z';
  std::string at;
  bool is_json = false;
};

std::string places_problem(const std::string& text) {
  return numbers_in(text) ? "" : "'" + text + "' is not a list of numbers such as 0,2.5,5";
}

// Lengths up to the tolerance of sections count as none, which takes the details off a small model.
void warn_of_small_model(Session& session) {
  const giBox3& box = session.mesh.box();
  if (box.is_empty()) return;
  const double size = (box.max() - box.min()).length();
  if (size < 1e-2) session.messages.warning(formatted("lengths up to 1e-5 count as none, which is coarse for a model of size %.3g", size));
}

std::string text_of(const SectionArguments& arguments, const ReadOutcome& read, const SectionDrawing& drawing) {
  std::string text = printable(arguments.input) + ": " + name_of(read.format) + (read.is_complete ? "\n" : ", damaged\n");
  text += formatted("  %12c %12s %12s %16s\n", drawing.axis, "polylines", "closed", "length");
  for (const SectionAt& cut : drawing.cuts) {
    text += formatted("  %12.9g %12zu %12d %16.9g\n", cut.at, cut.lines.size(), cut.closed(), cut.length());
  }
  if (!arguments.output.empty()) text += printable(arguments.output) + ": written\n";
  return text;
}

std::string json_of(const Session& session, const SectionArguments& arguments, const ReadOutcome& read, const SectionDrawing& drawing) {
  Json sections = Json::array();
  for (const SectionAt& cut : drawing.cuts) {
    Json lengths = Json::array();
    for (const SectionLine& line : cut.lines) lengths.push_back({{"closed", line.is_closed}, {"points", line.points.size()}, {"length", number(line.length)}});
    sections.push_back({{"at", cut.at}, {"closed", cut.closed()}, {"length", number(cut.length())}, {"polylines", lengths}});
  }
  return line_of({{"file", arguments.input},
                  {"format", name_of(read.format)},
                  {"output", arguments.output.empty() ? Json(nullptr) : Json(arguments.output)},
                  {"axis", std::string(1, drawing.axis)},
                  {"sections", sections},
                  {"complete", read.is_complete},
                  {"warnings", session.messages.warnings()}});
}

ExitCode run_section(Session& session, const SectionArguments& arguments) {
  const std::vector<double> heights = *numbers_in(arguments.at);
  const SectionFormat format = section_format_of(arguments.output, heights.size());
  const ReadOutcome read = read_mesh(session, arguments.input);
  warn_of_small_model(session);
  session.progress.begin("cutting " + arguments.input);
  SectionDrawing drawing{arguments.input, arguments.axis, {}};
  for (const double at : heights) {
    drawing.cuts.push_back(section_at(session.mesh, axis_of(arguments.axis), at));
    Interruption::check();
  }
  if (format != SectionFormat::none) write_sections(session, arguments.output, drawing);
  session.progress.erase();
  if (arguments.is_json) {
    std::printf("%s\n", json_of(session, arguments, read, drawing).c_str());
  } else if (!session.is_quiet || format == SectionFormat::none) {
    std::printf("%s", text_of(arguments, read, drawing).c_str());
  }
  return ExitCode::done;
}

}  // namespace

void add_section_verb(CommandLine& line) {
  const auto arguments = std::make_shared<SectionArguments>();
  const VerbOptions verb = line.add_verb("section", "Outlines of the cuts with planes across an axis",
                                         [arguments](Session& session) { return run_section(session, *arguments); });
  add_input(verb, arguments->input);
  verb.add_option("-o,--output", arguments->output,
                  "File for the outlines: .svg to look at, .json with all points, or .pic,\n"
                  "commands that draw one cut; without it they are only counted")
      .type_name("PATH");
  add_axis(verb, arguments->axis);
  verb.add_option("--at", arguments->at, "Where the planes meet the axis, in the units of the model")
      .required()
      .check(places_problem)
      .type_name("LENGTH[,LENGTH...]");
  verb.add_flag("--json", arguments->is_json, "Print one JSON object with the number of points and the length of each outline");
  line.set_notes(verb,
                 "Where the mesh is closed, outlines are. Nothing is merged first: ends of outlines within 1e-5 of each other are one.",
                 "mendex section part.stl --axis z --at 0.5,5,9.5 -o part.svg");
}
