#pragma once

#include <string>

#include "mesh_format.h"
#include "session.h"

/// How a file was read.
struct ReadOutcome {
  MeshFormat format;
  bool is_complete;  // false: damaged, and only what stands before the damage was read
};

/// Replaces the session's mesh by the contents of a file, whose format is told by its content.
///
/// A damaged file gives what could be read, with a warning. Throws when it gives nothing, or on interruption.
ReadOutcome read_mesh(Session& session, const std::string& path);
