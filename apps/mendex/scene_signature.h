#pragma once

#include <optional>
#include <string_view>

#include "mesh_format.h"

/// The format of a scene file that begins with `head`, where its beginning tells.
std::optional<MeshFormat> scene_of_signature(std::string_view head);
