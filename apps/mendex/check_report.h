#pragma once

#include <string>

#include "mesh_check.h"

/// The account of a check for people: several lines, each ended.
std::string text_of_check(const Session& session, const std::string& file, const ReadOutcome& read, const CheckLimits& limits,
                          const MeshCheck& check);

/// The same as one JSON object on one line, without line end. Counts by name; under "found" the numbers and places of what was found.
std::string json_of_check(const Session& session, const std::string& file, const ReadOutcome& read, const CheckLimits& limits,
                          const MeshCheck& check);
