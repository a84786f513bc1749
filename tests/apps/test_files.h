#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <vector>

/// A folder of its own for each test, removed at the end.
class TestFolder {
 public:
  TestFolder();
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;
  ~TestFolder();

  /// The path of a file in the folder.
  std::string path(const std::string& name) const { return (folder_ / name).string(); }

  /// Writes a file and returns its path.
  std::string write(const std::string& name, const std::string& contents) const;

  /// The names of what is in the folder, hidden files included, in order.
  std::vector<std::string> names() const;

 private:
  std::filesystem::path folder_;
};

std::string contents_of_file(const std::string& path);

/// The path of a committed sample model.
std::string sample(const std::string& name);

using FacetCorners = std::array<float, 9>;

/// A binary STL file; a `count` other than -1 is written in place of the true one.
std::string binary_stl(const std::vector<FacetCorners>& facets, const std::string& header = "", long count = -1);

/// Facets of a fan in the plane z = 0, all different.
std::vector<FacetCorners> some_facets(int n);

/// One facet in ASCII STL, each line ended by `line_end`.
std::string ascii_facet(const FacetCorners& corners, const std::string& line_end = "\n");
