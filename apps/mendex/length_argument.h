#pragma once

#include <mendexlib.h>

#include <optional>
#include <string>

/// A length as people give it: `0.01` in the units of the model, `1e-5d` as a share of the diagonal of its bounding box, `0.2e` as a
/// share of its median edge length. Never negative, always finite.
class LengthArgument {
 public:
  /// In the units of the model.
  LengthArgument(double length = 0.0) : factor_(length) {}  // NOLINT: a plain number is a length

  /// Nothing where that is not what the text is.
  static std::optional<LengthArgument> parse(const std::string& text);
  /// What is wrong with a text, or nothing.
  static std::string problem(const std::string& text);

  /// The length in the units of the mesh; 0 for one without triangles where the length is a share. Throws a Failure where such a
  /// share has no finite value. Cost: of a share of the median edge O(n) time and 24 bytes a triangle, freed again.
  double resolve(const trTriBlock& mesh) const;

  /// As it was given.
  const std::string& text() const { return text_; }
  /// Whether what it amounts to depends on the model.
  bool is_relative() const { return unit_ != Unit::model; }
  bool is_zero() const { return factor_ == 0.0; }

 private:
  enum class Unit { model, diagonal, edge };

  double measure_of(const trTriBlock& mesh) const;

  double factor_;
  Unit unit_ = Unit::model;
  std::string text_;
};

/// The diagonal of the bounding box; 0 without nodes.
double diagonal_of(const trTriBlock& mesh);
/// The median length of the sides of all valid triangles, of which a side shared by two counts twice; 0 without triangles. Sides that
/// have no finite length do not count.
double median_edge_of(const trTriBlock& mesh);
