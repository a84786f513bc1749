#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "apps/process.h"
#include "apps/test_files.h"
#include "support/shapes.h"

using Json = nlohmann::json;
using Arguments = std::vector<std::string>;

/// Runs `mendex` with these arguments and --json, which must end with that code (-1: any), and reads what it prints.
inline Json report_of(Arguments arguments, int exit_code = 0) {
  arguments.insert(arguments.begin() + 1, "--json");
  const ProcessResult result = run_mendex(arguments);
  if (exit_code >= 0) { EXPECT_EQ(result.exit_code, exit_code) << result.errors; }
  return Json::parse(result.output, nullptr, false);
}

inline Json info(const std::string& path) { return report_of({"info", path}); }

/// What `mendex check` says, whatever its code.
inline Json check(const std::string& path, Arguments options = {}) {
  options.insert(options.begin(), {"check", path});
  return report_of(options, -1);
}

/// The count in the entry of "done" that tells of this; -1 without one.
inline int count_of(const Json& report, const std::string& what) {
  for (const Json& done : report["done"]) {
    if (done["what"] == what) return done["count"];
  }
  return -1;
}

inline void expect_text(const std::string& text, const std::string& part) {
  EXPECT_NE(text.find(part), std::string::npos) << "'" << part << "' is missing in\n" << text;
}

/// Runs `mendex` with these and more arguments, which must end with that code and a text among its errors.
inline void expect_refused(Arguments arguments, const Arguments& more, int exit_code, const std::string& text = "") {
  arguments.insert(arguments.end(), more.begin(), more.end());
  const ProcessResult result = run_mendex(arguments);
  EXPECT_EQ(result.exit_code, exit_code) << testing::PrintToString(more);
  EXPECT_EQ(result.output, "") << testing::PrintToString(more);
  expect_text(result.errors, text);
}

inline void turn_over(FacetCorners& facet) { std::swap_ranges(facet.begin() + 3, facet.begin() + 6, facet.begin() + 6); }

inline std::vector<FacetCorners> facets_of(const Shape& shape) {
  std::vector<FacetCorners> facets;
  for (const auto& t : shape.triangles) {
    FacetCorners corners{};
    for (std::size_t k = 0; k < 9; ++k) corners[k] = static_cast<float>(shape.points[static_cast<std::size_t>(t[k / 3])][static_cast<int>(k % 3)]);
    facets.push_back(corners);
  }
  return facets;
}

/// A binary STL file of all of them.
inline std::string stl_of(const TestFolder& folder, const std::string& name, const std::vector<Shape>& shapes) {
  std::vector<FacetCorners> facets;
  for (const Shape& shape : shapes) {
    const std::vector<FacetCorners> more = facets_of(shape);
    facets.insert(facets.end(), more.begin(), more.end());
  }
  return folder.write(name, binary_stl(facets));
}
