#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "report.h"

// What the reports in JSON are made of.

using Json = nlohmann::ordered_json;

/// The number, or null when it is not finite.
Json number(double value);
/// The coordinates of a point; null for those that are not finite or not set.
Json triple(const giPoint3& p);
/// Counts, mass properties and box.
Json statistics(const MeshStatistics& mesh);
/// One line without its end. Text that is not valid UTF-8 has its bad bytes replaced.
std::string line_of(const Json& object);
