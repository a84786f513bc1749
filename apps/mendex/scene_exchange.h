#pragma once

#include "input_file.h"
#include "mesh_reader.h"
#include "scene_file.h"
#include "session.h"

/// Reads a scene, already told by its beginning, into the session's mesh, as a host gives it. Warns of what was left out.
void read_scene_mesh(Session& session, InputFile& file, const ReadRequest& request, MeshFormat format);

/// The session's mesh as a scene file of the format will hold it. Numbers the mesh anew where it has gaps.
SceneMesh scene_of_mesh(Session& session, MeshFormat format);

/// Whether the scene file reads back as the mesh that was written to it, as the format rounds.
bool reads_back(const SceneMesh& written, MeshFormat format, int file);
