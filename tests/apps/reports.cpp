#include "apps/reports.h"

Json report_of(Arguments arguments, int exit_code) {
  arguments.insert(arguments.begin() + 1, "--json");
  const ProcessResult result = run_mendex(arguments);
  if (exit_code >= 0) { EXPECT_EQ(result.exit_code, exit_code) << result.errors; }
  return Json::parse(result.output);
}

Json info(const std::string& path) { return report_of({"info", path}); }

Json check(const std::string& path, Arguments options) {
  options.insert(options.begin(), {"check", path});
  return report_of(options, -1);
}

int count_of(const Json& report, const std::string& what) {
  for (const Json& done : report["done"].elements()) {
    if (done["what"] == what) return done["count"].get<int>();
  }
  return -1;
}

void expect_text(const std::string& text, const std::string& part) {
  EXPECT_NE(text.find(part), std::string::npos) << "'" << part << "' is missing in\n" << text;
}

void expect_refused(Arguments arguments, const Arguments& more, int exit_code, const std::string& text) {
  arguments.insert(arguments.end(), more.begin(), more.end());
  const ProcessResult result = run_mendex(arguments);
  EXPECT_EQ(result.exit_code, exit_code) << testing::PrintToString(more);
  EXPECT_EQ(result.output, "") << testing::PrintToString(more);
  expect_text(result.errors, text);
}

void turn_over(FacetCorners& facet) { std::swap_ranges(facet.begin() + 3, facet.begin() + 6, facet.begin() + 6); }

std::vector<FacetCorners> facets_of(const Shape& shape) {
  std::vector<FacetCorners> facets;
  for (const auto& t : shape.triangles) {
    FacetCorners corners{};
    for (std::size_t k = 0; k < 9; ++k) corners[k] = static_cast<float>(shape.points[static_cast<std::size_t>(t[k / 3])][static_cast<int>(k % 3)]);
    facets.push_back(corners);
  }
  return facets;
}

std::string stl_of(const TestFolder& folder, const std::string& name, const std::vector<Shape>& shapes) {
  std::vector<FacetCorners> facets;
  for (const Shape& shape : shapes) {
    const std::vector<FacetCorners> more = facets_of(shape);
    facets.insert(facets.end(), more.begin(), more.end());
  }
  return folder.write(name, binary_stl(facets));
}
