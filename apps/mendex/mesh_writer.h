#pragma once

#include <string>

#include "mesh_format.h"
#include "session.h"

/// What is to be written where.
struct WriteRequest {
  std::string path;
  MeshFormat format;
  bool is_positive = false;  // STL moved, by round amounts, to where no coordinate is negative
  std::string input;         // the file that the mesh was read from
  bool is_renumbered = false;  // native and mesh files: nodes and elements numbered anew
  bool is_smooth = true;       // triangle files: shared vertices with averaged normals
};

/// Writes the session's mesh, reads back what was written, and only then lets it take the target's place.
/// Throws, with the target untouched, when anything goes wrong or on interruption.
void write_mesh(Session& session, const WriteRequest& request);
