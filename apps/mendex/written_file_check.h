#pragma once

#include <mendexlib.h>

#include "mesh_format.h"

/// Compares a file just written with the mesh it came from, in one pass over both.
///
/// Binary STL: size, facet count, and every coordinate as the format rounds it (not the coordinates when the model was
/// moved). ASCII STL: number of lines and the closing word. The other formats: the file is read back, and number, order
/// and corners of the triangles compared, as the format rounds them.
class WrittenFileCheck {
 public:
  WrittenFileCheck(const trTriBlock& mesh, int file, MeshFormat format, bool positive);

  bool is_sound() const { return is_sound_; }

  /// Whether a finite coordinate is beyond the range of the format.
  bool has_overflow() const { return has_overflow_; }

 private:
  bool check_binary(bool positive);
  bool check_facets(const char* records, int count, int& element);
  bool check_corner(const char* record, const giPoint3& point);
  bool check_ascii() const;
  bool check_by_reading(MeshFormat format) const;

  const trTriBlock& mesh_;
  int file_;
  bool is_sound_ = false;
  bool has_overflow_ = false;
};
