#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "failure.h"
#include "length_argument.h"
#include "session.h"
#include "verb_options.h"

/// What every verb takes that changes a mesh: a file, where the result goes, how it is told.
struct EditArguments {
  std::string input;
  std::string output;
  std::optional<LengthArgument> tolerance;  // nodes up to this far apart are merged before
  bool is_json = false;
};

/// One thing that an edit did, for its report: "triangles turned over", 12. Beside it the length or ratio that ruled it, if any.
struct EditResult {
  std::string what;
  long long count = 0;
  std::optional<double> limit = {};
};

/// Adds the options for these. With `welds` nodes are merged first, by default exact copies; there is an option for more.
void add_edit_arguments(VerbOptions verb, EditArguments& arguments, bool welds);

/// Reads, merges, edits in an undo bracket, writes, and tells what the mesh was like before and after and what was done.
/// Throws on interruption, and then nothing is written.
ExitCode run_edit(Session& session, const EditArguments& arguments, const std::string& name,
                  const std::function<std::vector<EditResult>(trControl&)>& edit);
