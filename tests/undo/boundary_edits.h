#pragma once

#include "support/edit_script.h"

/// Operations on the boundaries of a script's mesh, with random arguments. Some are stopped by the host half-way.
std::vector<EditScript::ForeignEdit> boundary_edits();
