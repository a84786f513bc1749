#pragma once

#include <filesystem>
#include <string>

#include "support/bumpy_torus.h"

/// The input of one size and facet order: the soup in memory and the files that hold it.
class Model {
 public:
  Model(std::size_t facets, FacetOrder order, std::filesystem::path folder);
  ~Model();
  Model(const Model&) = delete;
  Model& operator=(const Model&) = delete;

  const Soup& soup() const { return soup_; }
  std::size_t facets() const { return soup_.facets; }
  std::size_t vertices() const { return soup_.vertices; }
  double shortest_edge() const { return soup_.shortest_edge; }
  FacetOrder order() const { return order_; }

  /// The soup as a file, written at the first call.
  const std::filesystem::path& binary_file() const;
  const std::filesystem::path& ascii_file() const;
  /// Where a measure may write; what is there is overwritten.
  const std::filesystem::path& output_file() const { return output_; }
  /// The name of a file that goes with the model.
  std::filesystem::path side_file(const std::string& ending) const;

 private:
  FacetOrder order_;
  Soup soup_;
  std::filesystem::path folder_;
  std::string stem_;
  std::filesystem::path binary_;
  std::filesystem::path ascii_;
  std::filesystem::path output_;
};

const char* name_of(FacetOrder order);

/// The soup as a binary STL file, normals left at 0.
void write_binary_stl(const std::filesystem::path& path, const Soup& soup);
