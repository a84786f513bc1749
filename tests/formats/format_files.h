#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "formats/tri_read.h"
#include "formats/tri_write.h"
#include "mesh/tri_block.h"
#include "support/captured_output.h"

class Random;

struct ReadOptions {
  int start = 1;  ///< first and last facet, for STL only
  int stop = 0;
  int append = 0;
  int read_node_data = 0;
};

/// What a read returned and printed.
struct ReadOutcome {
  int result;
  std::string out;
  std::string err;
};

/// The bytes that a writer leaves, and what it returned and told.
struct Written {
  int result;
  std::string bytes;
  std::string err;
};

struct Format {
  const char* name;
  int (*read)(trTriRead& reader, const ReadOptions& options);
  int (*write)(trTriWrite& writer, int flag);  // rwrite, or positive for STL
};

extern const Format native_format, flat_triangle_format, smooth_triangle_format, mesh_format, kvx_format, stl_format,
    ascii_stl_format;

/// Those that keep or drop node numbers, attributes and colours; with STL all.
extern const Format* const formats[5];
extern const Format* const all_formats[7];

/// Reads the bytes, which are at the same time checked to be closed exactly once.
ReadOutcome read_format(const Format& format, trTriBlock& mesh, const std::string& bytes, const ReadOptions& options = {});
Written write_format(const Format& format, const trTriBlock& mesh, int flag = 0, double scale = 1.0);

/// Writes through a buffer of that size, 0 for none, to a stream that takes so many bytes and then no more. Checked
/// like reading.
Written write_to_full_disk(const Format& format, const trTriBlock& mesh, std::size_t room, std::size_t buffer = 4096);

inline ReadOutcome read_binary(trTriBlock& mesh, const std::string& bytes, const ReadOptions& options = {}) {
  return read_format(stl_format, mesh, bytes, options);
}
inline ReadOutcome read_ascii(trTriBlock& mesh, const std::string& text, const ReadOptions& options = {}) {
  return read_format(ascii_stl_format, mesh, text, options);
}
inline Written written_binary(const trTriBlock& mesh, int positive = 0, double scale = 1.0) {
  return write_format(stl_format, mesh, positive, scale);
}
inline Written written_ascii(const trTriBlock& mesh, int positive = 0, double scale = 1.0) {
  return write_format(ascii_stl_format, mesh, positive, scale);
}

/// An open stream on the bytes, which must outlive it.
std::FILE* stream_on(const std::string& bytes);

/// What is written to a stream.
std::string written_to_stream(const std::function<void(std::FILE*)>& write);

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

/// The corners of facet number k of the files made here: a triangle of its own for every k, with coordinates that
/// single precision holds.
std::vector<giPoint3> sample_corners(int k);

/// A binary file with sample facets 1 to `facets` and `count` in the field for their number.
std::string binary_stl(int facets, std::uint32_t count, const std::string& header = "sample");
inline std::string binary_stl(int facets) { return binary_stl(facets, static_cast<std::uint32_t>(facets)); }

/// The same facets as text.
std::string ascii_stl(int facets, const std::string& name = "sample");

/// Every valid element's corners and, behind them, every valid node that no element uses, all as bits.
std::vector<double> geometry_of(const trTriBlock& mesh);

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
