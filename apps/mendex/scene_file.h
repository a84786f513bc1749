#pragma once

#include <cstdio>
#include <string>

#include "mesh_format.h"
#include "scene_mesh.h"

// The formats of other programs, through the Open Asset Import Library. Only the files behind this header know it.

/// Whether this build has the importer.
bool has_scene_importer();

/// Whether the importer knows files by that extension (without the dot, in lower case); never those of STL.
bool is_scene_extension(const std::string& extension);

/// A scene file to be read.
struct SceneSource {
  std::string path;      // what files beside it (materials, buffers) are looked for beside
  MeshFormat format;
  std::string contents;  // of the whole file
};

/// How the parts of a scene become one mesh.
enum class SceneCorners {
  joined,  // vertices at the same place become one where the format repeats them, collapsed triangles are left out
  as_read  // each triangle as it stands in the file
};

/// Reads a scene: the meshes of all its nodes, each moved to where its node stands, joined in one; polygons cut into triangles.
///
/// The importer runs in a process of its own, with bounds on its time and memory, so that a file on which it crashes or hangs is an
/// unreadable file like any other. Throws, as on interruption; a scene without triangles is returned as it is.
SceneMesh read_scene(const SceneSource& source, SceneCorners corners);

/// Writes a mesh, whose colours are kept as the format can: OBJ and PLY have them in vertices, none of which may have two, see
/// SceneMesh::split_by_colour; 3MF, glTF and COLLADA have a part for each colour, see SceneMesh::sort_by_colour. Throws what prevents it.
void write_scene(const SceneMesh& mesh, MeshFormat format, std::FILE* stream);
