#pragma once

#include <cstdio>
#include <cstring>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "formats/tri_read.h"
#include "formats/tri_write.h"
#include "mesh/tri_block.h"
#include "support/captured_output.h"

/// An open stream on the bytes, which must outlive it.
std::FILE* stream_on(const std::string& bytes);

/// The three coordinates of a corner or normal.
struct Triple {
  float x, y, z;
};

/// Facet number k of the files made here: a triangle of its own for every k, with coordinates that single precision holds.
std::vector<Triple> sample_corners(int k);

/// A binary file with sample facets 1 to `facets` and `count` in the field for their number.
std::string binary_stl(int facets, std::uint32_t count, const std::string& header = "sample");
inline std::string binary_stl(int facets) { return binary_stl(facets, static_cast<std::uint32_t>(facets)); }

/// The same facets as text.
std::string ascii_stl(int facets, const std::string& name = "sample");

struct ReadOptions {
  int start = 1;
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

ReadOutcome read_binary(trTriBlock& mesh, const std::string& bytes, const ReadOptions& options = {});
ReadOutcome read_ascii(trTriBlock& mesh, const std::string& text, const ReadOptions& options = {});

/// The bytes that a writer leaves, and what it returned.
struct Written {
  int result;
  std::string bytes;
};

Written written_binary(const trTriBlock& mesh, int positive = 0, double scale = 1.0);
Written written_ascii(const trTriBlock& mesh, int positive = 0, double scale = 1.0);

/// Every valid element's corners and, behind them, every valid node that no element uses, all as bits.
std::vector<double> geometry_of(const trTriBlock& mesh);

/// The numbers k of the sample facets that the mesh holds, in order; -1 for any other facet.
std::vector<int> sample_facets_in(const trTriBlock& mesh);
