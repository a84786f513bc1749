// The shell's commands that tell about the mesh and change nothing.

#include <mendexlib.h>

#include <algorithm>
#include <cstdio>

#include "arguments.h"
#include "check_report.h"
#include "failure.h"
#include "interruption.h"
#include "section_output.h"
#include "command_shell.h"
#include "shell_words.h"
#include "text.h"

namespace {

using Action = ShellCommand::Action;

// The shape statistics are only made where the register commands go to a file.
Action parse_info(CommandShell& shell, ShellWords& words) {
  const int level = words.take("full");
  const double tolerance = words.has_number() ? words.limit("a limit") : shell.limits.small;
  const std::string path = words.is_empty() ? "" : words.text("a file");
  return [&shell, level, tolerance, path] {
    shell.show([&] {
      if (path.empty()) return shell.control.action_info(level, tolerance, level == 0 ? nullptr : std::fopen("/dev/null", "w"));
      shell.write_through(path, [&](std::FILE* file) { shell.control.action_info(level, tolerance, file); });
    });
  };
}

void check(CommandShell& shell, bool is_strict) {
  if (shell.mesh.valid_elements() == 0) throw Failure(ExitCode::defects_found, "there is no triangle; read a file first");
  const MeshCheck found = check_mesh(shell.session, shell.limits);
  const bool has_name = !shell.file.empty();
  shell.result(text_of_check(shell.session, has_name ? shell.file : "the mesh", shell.read, shell.limits, found));
  if (is_strict && found.has_defects()) throw Failure(ExitCode::defects_found, "the mesh has defects");
}

Action parse_check(CommandShell& shell, ShellWords& words) {
  const bool is_strict = words.take("strict");
  return [&shell, is_strict] { check(shell, is_strict); };
}

using Finder = void (*)(const trTriBlock& mesh, const CheckLimits& limits, intcoPageArr& found);

constexpr Finder finders[] = {
    [](const trTriBlock& mesh, const CheckLimits&, intcoPageArr& found) { mesh.find_sick(found, 0); },
    [](const trTriBlock& mesh, const CheckLimits& limits, intcoPageArr& found) { mesh.find_thin(limits.small, 0, found); },
    [](const trTriBlock& mesh, const CheckLimits& limits, intcoPageArr& found) { mesh.find_thin(limits.thin, 1, found); },
    [](const trTriBlock& mesh, const CheckLimits& limits, intcoPageArr& found) {
      mesh.find_overlapping(giAngle::from_degrees(limits.overlap_deg), found);
    },
    [](const trTriBlock& mesh, const CheckLimits&, intcoPageArr& found) { mesh.find_intersecting(found, 1000); },
    [](const trTriBlock& mesh, const CheckLimits& limits, intcoPageArr& found) { mesh.find_overhanging(found, limits.up); }};

void find(CommandShell& shell, Finder finder) {
  intcoPageArr found;
  finder(shell.mesh, shell.limits, found);
  Interruption::check();
  std::vector<int> numbers;
  for (int k = 0; k < found.count(); ++k) numbers.push_back(found[k]);
  std::sort(numbers.begin(), numbers.end());
  std::string text = counted(found.count(), "triangle", "triangles") + (numbers.empty() ? "" : ":");
  for (const int number : numbers) text += " " + std::to_string(number);
  shell.result(text + "\n");
}

Action parse_find(CommandShell& shell, ShellWords& words) {
  const Finder finder = finders[words.choice({"sick", "small", "thin", "overlapping", "intersecting", "overhanging"})];
  return [&shell, finder] { find(shell, finder); };
}

Action parse_section(CommandShell& shell, ShellWords& words) {
  const char axis = "xyz"[words.choice({"x", "y", "z"})];
  const double at = words.number("a place on the axis");
  const std::string path = words.is_empty() ? "" : words.text("a file");
  section_format_of(path, 1);
  return [&shell, axis, at, path] {
    const SectionDrawing drawing{shell.file, axis, {section_at(shell.mesh, axis_of(axis), at)}};
    Interruption::check();
    const SectionAt& cut = drawing.cuts.front();
    if (!path.empty()) return write_sections(shell.session, path, drawing);
    shell.result(counted(static_cast<long long>(cut.lines.size()), "polyline", "polylines") +
                 formatted(", %d closed, length %.9g\n", cut.closed(), cut.length()));
  };
}

}  // namespace

ShellCommandGroup shell_report_commands() {
  return {"Reports",
         {{"info", nullptr, "[full] [TOL] [FILE]",
           "Statistics, full ones with shapes compared with TOL; register commands go to FILE",
           "info full", false, parse_info},
          {"check", nullptr, "[strict]",
           "Tell what is wrong with the mesh; strict fails where anything is",
           "check", false, parse_check},
          {"find", nullptr, "sick|small|thin|overlapping|intersecting|overhanging",
           "List the numbers of triangles of one kind, as told by limits",
           "find thin", false, parse_find},
          {"section", nullptr, "x|y|z VALUE [FILE]",
           "Cut with a plane across an axis, and write the outlines to FILE (.svg, .json, .pic)",
           "section z 5 cut.svg", false, parse_section}}};
}
