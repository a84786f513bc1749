#pragma once

#include <string>
#include <vector>

/// One file of the project as the checks see it.
struct SourceFile {
  std::string path;                   // relative to the root, for example "src/mesh/node.h"
  std::vector<std::string> includes;  // what its include lines name, quotes and brackets stripped
  int line_count = 0;

  /// The part of the path below `src/`, or nothing for files elsewhere.
  std::string name_in_src() const;
  /// The folder below `src/` ("platform/spatial"), empty for the umbrella header and for files elsewhere.
  std::string folder_in_src() const;
  bool is_header() const;
};

SourceFile parse_source(const std::string& path, const std::string& text);

/// All .h and .cpp files below the given folders of the project, in the order of their paths.
std::vector<SourceFile> read_sources(const std::string& root, const std::vector<std::string>& folders);

std::string read_text(const std::string& path);
