#include <memory>

#include "command_line.h"
#include "hole_arguments.h"
#include "verbs.h"

void add_fill_verb(CommandLine& line) {
  const auto arguments = std::make_shared<HoleArguments>();
  const VerbOptions verb = line.add_verb("fill", "Close holes by a triangle, two, or a fan round a new node", [arguments](Session& session) {
    return run_closing(session, *arguments, HoleMethod::fan, LengthArgument());
  });
  add_hole_arguments(verb, *arguments);
  line.set_notes(verb,
                 "For small holes; mendex cap makes better triangles over large ones. Exit code 1 when a hole stays open.",
                 "mendex fill part.stl -o closed.stl --max-edges 12");
}
