#include "apps/test_files.h"

#include "build_paths.h"

#include <stdlib.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>

TestFolder::TestFolder() {
  char name[] = "/tmp/mendex-test-XXXXXX";
  folder_ = mkdtemp(name);
}

TestFolder::~TestFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::string TestFolder::write(const std::string& name, const std::string& contents) const {
  std::ofstream(path(name), std::ios::binary) << contents;
  return path(name);
}

std::vector<std::string> TestFolder::names() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder_))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::string contents_of_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string sample(const std::string& name) { return MENDEX_SOURCE_DIR "/samples/" + name; }

std::string binary_stl(const std::vector<FacetCorners>& facets, const std::string& header, long count) {
  std::string bytes = header;
  bytes.resize(80, '\0');
  const auto promised = static_cast<std::uint32_t>(count < 0 ? static_cast<long>(facets.size()) : count);
  bytes.append(reinterpret_cast<const char*>(&promised), 4);
  for (const FacetCorners& corners : facets) {
    char record[50] = {};
    std::memcpy(record + 12, corners.data(), 36);
    bytes.append(record, sizeof record);
  }
  return bytes;
}

std::vector<FacetCorners> some_facets(int n) {
  std::vector<FacetCorners> facets;
  for (int k = 0; k < n; ++k) {
    const auto x = static_cast<float>(k);
    facets.push_back({x, 0, 0, x + 1, 0, 0, x, 1, 0});
  }
  return facets;
}

std::string ascii_facet(const FacetCorners& corners, const std::string& line_end) {
  std::string text = "facet normal 0 0 1" + line_end + "outer loop" + line_end;
  for (int k = 0; k < 9; k += 3) {
    char line[100];
    std::snprintf(line, sizeof line, "vertex %.9g %.9g %.9g", static_cast<double>(corners[k]),
                  static_cast<double>(corners[k + 1]), static_cast<double>(corners[k + 2]));
    text += line + line_end;
  }
  return text + "endloop" + line_end + "endfacet" + line_end;
}
