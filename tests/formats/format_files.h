#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "formats/stl_files.h"

class Random;

/// A format that keeps or drops node numbers, attributes and colours.
struct Format {
  const char* name;
  int (*read)(trTriRead& reader);
  int (*write)(trTriWrite& writer, int rwrite);
};

extern const Format native_format, flat_triangle_format, smooth_triangle_format, mesh_format, kvx_format;

/// All of them.
extern const Format* const formats[5];

/// Reads the bytes, which are at the same time checked to be closed exactly once.
ReadOutcome read_format(const Format& format, trTriBlock& mesh, const std::string& bytes, const ReadOptions& options = {});
Written write_format(const Format& format, const trTriBlock& mesh, int rwrite = 0);

/// Writes to a stream that takes so many bytes and then no more; the result of the writer. Checked like reading.
int write_to_full_disk(const Format& format, const trTriBlock& mesh, std::size_t bytes);

/// Whether two files are the same; if not, where they differ.
testing::AssertionResult are_same(const std::string& bytes, const std::string& expected);

/// Everything of a mesh that a file can hold, for comparing: nodes with attributes, elements with colours, by number.
std::string content_of(const trTriBlock& mesh);

/// A mesh of random triangles with gaps among its nodes and elements, and no loose nodes. Numbers have four decimals at most.
struct MeshPlan {
  int nodes = 20;
  int elements = 30;
  int attributes = 0;
  int colours = 0;  ///< 0: none
};
void fill(trTriBlock& mesh, const MeshPlan& plan, Random& random);

/// Bytes of a binary file, one value after the other.
class Bytes {
 public:
  template <class T>
  Bytes& put(T value) {
    bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
    return *this;
  }
  template <class T, class... More>
  Bytes& put(T value, More... more) {
    return put(value).put(more...);
  }
  Bytes& text(const std::string& text) {
    bytes_ += text;
    return *this;
  }
  operator std::string() const { return bytes_; }

 private:
  std::string bytes_;
};
