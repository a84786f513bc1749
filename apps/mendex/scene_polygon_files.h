#pragma once

#include <cstdio>

#include "scene_mesh.h"

// The plain formats of polygons, which are written in double precision. False when the stream takes no more.

/// Colours stand behind the vertices, as components from 0 to 1; see SceneMesh::split_by_colour.
bool write_obj(const SceneMesh& mesh, std::FILE* stream);
/// Binary, little-endian; colours stand in the vertices.
bool write_ply(const SceneMesh& mesh, std::FILE* stream);
/// Colours stand behind the triangles, as components from 0 to 255.
bool write_off(const SceneMesh& mesh, std::FILE* stream);
