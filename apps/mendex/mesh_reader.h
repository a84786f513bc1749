#pragma once

#include <string>

#include "mesh_format.h"
#include "session.h"

/// How a file was read.
struct ReadOutcome {
  MeshFormat format;
  bool is_complete;  // false: damaged, and only what stands before the damage was read
};

/// How a file is to be read.
struct ReadRequest {
  std::string path;
  bool is_appended = false;       // to the session's mesh, which is replaced otherwise
  bool keeps_attributes = false;  // node attributes that the file has
  int first_facet = 1;            // of STL, counted from 1
  int last_facet = 0;             // 0: up to the end
  bool* replaces = nullptr;       // receives true as soon as the session's mesh is not what it was any more
};

/// Reads a file, whose format is told by its content, into the session's mesh.
///
/// A damaged file gives what could be read, with a warning. Throws when it gives nothing, or on interruption.
ReadOutcome read_mesh(Session& session, const ReadRequest& request);
inline ReadOutcome read_mesh(Session& session, const std::string& path) { return read_mesh(session, ReadRequest{path}); }
