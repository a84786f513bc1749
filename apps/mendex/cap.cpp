#include <memory>

#include "arguments.h"
#include "command_line.h"
#include "hole_arguments.h"
#include "verbs.h"

namespace {

struct CapArguments : HoleArguments {
  std::string spacing = "auto";
  bool is_curved = false;
};

std::string spacing_problem(const std::string& text) {
  if (text == "auto") return "";
  const auto length = LengthArgument::parse(text);
  return length && !length->is_zero() ? "" : "'" + text + "' is neither a length above 0 nor auto";
}

}  // namespace

void add_cap_verb(CommandLine& line) {
  const auto arguments = std::make_shared<CapArguments>();
  const VerbOptions verb = line.add_verb("cap", "Close holes with good triangles, flat or following the surface", [arguments](Session& session) {
    const LengthArgument spacing = arguments->spacing == "auto" ? LengthArgument() : *LengthArgument::parse(arguments->spacing);
    return run_closing(session, *arguments, arguments->is_curved ? HoleMethod::curved : HoleMethod::flat, spacing);
  });
  add_hole_arguments(verb, *arguments);
  verb.add_option("--spacing", arguments->spacing,
                  "Distance between new nodes; auto is the mean edge length of each hole")
      .check(spacing_problem)
      .type_name("LENGTH|auto")
      .show_default();
  verb.add_flag("--curved", arguments->is_curved, "Put the new nodes on a smooth surface fitted to the mesh round the hole");
  line.set_notes(verb,
                 "A hole that cannot be capped stays as it was, and the reason is told. Exit code 1 when a hole stays open.",
                 "mendex cap part.stl -o closed.stl --hole 0,2 --curved");
}
