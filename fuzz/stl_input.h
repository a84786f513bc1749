#pragma once

// What the fuzz targets of the STL readers do with an input; the tests do the same with the inputs that are kept.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <streambuf>
#include <string>

#include "formats/tri_read.h"
#include "formats/tri_write.h"
#include "mesh/tri_block.h"
#include "progress/output.h"
#include "progress/progress.h"

/// Swallows what the library prints.
class SilentOutput : public std::streambuf {
 public:
  SilentOutput() : stream_(this) { tr_set_output(&stream_); }
  SilentOutput(const SilentOutput&) = delete;
  SilentOutput& operator=(const SilentOutput&) = delete;
  ~SilentOutput() override { tr_set_output(nullptr); }

 private:
  int overflow(int c) override { return c; }
  std::streamsize xsputn(const char*, std::streamsize n) override { return n; }

  std::ostream stream_;
};

/// Stops at a poll (never for 0).
class StoppingHandler : public trBreakHandler {
 public:
  explicit StoppingHandler(int stop_at) : polls_left_(stop_at) {}
  int interrupt_callback() override { return --polls_left_ == 0; }

 private:
  int polls_left_;
};

/// An input: four bytes that say how to read, then the file.
struct StlInput {
  StlInput(const std::uint8_t* data, std::size_t size) {
    const auto byte = [&](std::size_t k) { return k < size ? data[k] : std::uint8_t{0}; };
    start = static_cast<std::int8_t>(byte(0));
    stop = static_cast<std::int8_t>(byte(1));
    append = byte(2) & 1;
    read_node_data = byte(2) >> 1 & 1;
    node_data_size = (byte(2) >> 2) % 6;
    stop_at = byte(3);
    file.assign(reinterpret_cast<const char*>(data) + (size < 4 ? size : 4), size < 4 ? 0 : size - 4);
  }

  int start, stop, append, read_node_data, node_data_size;
  int stop_at;  // the poll at which the host asks to stop; 0: none
  std::string file;
};

/// Says what is wrong with a mesh that was read from `bytes` bytes, or null. `nodes` and `elements` are the counts before the read.
inline const char* fault_in(const trTriBlock& mesh, int nodes, int elements, std::size_t bytes) {
  if (mesh.node_count() < nodes || mesh.element_count() < elements) return "an array has shrunk";
  if (!mesh.node(0).invalid || mesh.element(0).valid()) return "slot 0 is in use";
  const int made = mesh.element_count() - elements;
  const int loose = mesh.node_count() - nodes - 3 * made;
  if (loose < 0 || loose > 3) return "a facet did not make three nodes";
  if (static_cast<std::size_t>(made) > bytes / 26) return "there are more facets than the file can hold";
  for (int e = elements; e < mesh.element_count(); ++e) {
    for (int k = 0; k < 3; ++k) {
      if (mesh.element(e)[k] != nodes + 3 * (e - elements) + k) return "a facet has nodes other than its own";
    }
  }
  for (int i = nodes; i < mesh.node_count(); ++i) {
    if (mesh.node(i).invalid || mesh.node(i).coords != &mesh.points().at(i)) return "a node is not valid";
    if (mesh.node(i).coords->invalid()) return "a node has the coordinates that mark invalid points";
  }
  return nullptr;
}

using StlReader = int (trTriRead::*)(int, int);
using StlWriter = int (trTriWrite::*)(int);

/// Writes the mesh and reads it again: the same number of facets must come back.
inline const char* fault_in_round_trip(const trTriBlock& mesh, StlWriter write, StlReader read) {
  char* buffer = nullptr;
  std::size_t size = 0;
  bool is_written = false;
  {
    trTriWrite writer(&mesh, open_memstream(&buffer, &size), 1.0);
    is_written = (writer.*write)(1) == 1;
  }
  trTriBlock again;
  bool is_read = false;
  {
    trTriRead reader(&again, fmemopen(buffer, size, "rb"), 0, 0);
    is_read = (reader.*read)(1, 0) == 1;
  }
  std::free(buffer);
  if (!is_written) return "the mesh could not be written";
  if (!is_read) return "what was written could not be read";
  return again.valid_elements() == mesh.valid_elements() ? nullptr : "facets were lost in writing or reading";
}

/// Reads the input and says what is wrong with what came of it, or null.
inline const char* fault_of_stl_input(const StlInput& input, StlReader read) {
  const SilentOutput silence;
  trTriBlock mesh;
  if (input.append) {
    mesh.set_node(4, giPoint3(1.0, 2.0, 3.0));
    mesh.set_element(2, 4, 4, 4);
    mesh.set_node_data_size(input.node_data_size);
  }
  const int nodes = mesh.node_count();
  const int elements = mesh.element_count();
  {
    const StoppingHandler handler(input.stop_at);
    std::string file = input.file;
    trTriRead reader(&mesh, fmemopen(file.data(), file.size(), "rb"), input.append, input.read_node_data);
    const int result = (reader.*read)(input.start, input.stop);
    if (result != 0 && result != 1) return "the result is neither 0 nor 1";
  }
  if (const char* fault = fault_in(mesh, input.append ? nodes : 1, input.append ? elements : 1, input.file.size())) return fault;
  if (const char* fault = fault_in_round_trip(mesh, &trTriWrite::write_stl, &trTriRead::read_stl)) return fault;
  return fault_in_round_trip(mesh, &trTriWrite::write_ast, &trTriRead::read_ast);
}
