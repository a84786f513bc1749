#pragma once

#include <string>

#include "mesh_format.h"
#include "session.h"

/// Writes the session's mesh, reads back what was written, and only then lets it take the target's place.
/// Throws, with the target untouched, when anything goes wrong or on interruption.
/// @param positive  whether the written model is moved, by round amounts, so that no coordinate is negative
void write_mesh(Session& session, const std::string& path, MeshFormat format, bool positive);
