#pragma once

#include <cstdio>

#include "scene_mesh.h"

/// Writes a 3MF file: the model's text, in double precision, packed in a zip file. Each run of triangles of one colour is an object, with
/// vertices and a material of its own; see SceneMesh::sort_by_colour. False when the stream takes no more, or the model is too large
/// for a zip file.
bool write_3mf(const SceneMesh& mesh, std::FILE* stream);
