#include "formats/stl_files.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

void append_bytes(std::string& bytes, const void* value, std::size_t size) {
  bytes.append(static_cast<const char*>(value), size);
}

ReadOutcome read_with(int (trTriRead::*member)(int, int), trTriBlock& mesh, const std::string& bytes, const ReadOptions& options) {
  CapturedOutput out;
  testing::internal::CaptureStderr();
  int result = 0;
  {
    trTriRead reader(&mesh, stream_on(bytes), options.append, options.read_node_data);
    result = (reader.*member)(options.start, options.stop);
  }
  return {result, out.text(), testing::internal::GetCapturedStderr()};
}

Written written_with(int (trTriWrite::*member)(int), const trTriBlock& mesh, int positive, double scale) {
  char* buffer = nullptr;
  std::size_t size = 0;
  int result = 0;
  {
    trTriWrite writer(&mesh, open_memstream(&buffer, &size), scale);
    result = (writer.*member)(positive);
  }
  const std::string bytes(buffer, size);
  std::free(buffer);
  return {result, bytes};
}

}  // namespace

std::FILE* stream_on(const std::string& bytes) {
  return fmemopen(const_cast<char*>(bytes.data()), bytes.size(), "rb");
}

std::vector<Triple> sample_corners(int k) {
  const auto x = static_cast<float>(k);
  return {{x, 0.0f, -0.5f}, {x + 0.25f, 1.5f, 0.0f}, {x, 2.0f, 1024.0f}};
}

std::string binary_stl(int facets, std::uint32_t count, const std::string& header) {
  std::string bytes = header;
  bytes.resize(80);
  append_bytes(bytes, &count, 4);
  for (int k = 1; k <= facets; ++k) {
    const Triple normal{9.0f, 9.0f, 9.0f};
    append_bytes(bytes, &normal, 12);
    for (const Triple& corner : sample_corners(k)) append_bytes(bytes, &corner, 12);
    const std::uint16_t attribute = 0xabcd;
    append_bytes(bytes, &attribute, 2);
  }
  return bytes;
}

std::string ascii_stl(int facets, const std::string& name) {
  std::ostringstream text;
  text << "solid " << name << "\n";
  for (int k = 1; k <= facets; ++k) {
    text << "  facet normal 0 0 1\n    outer loop\n";
    for (const Triple& corner : sample_corners(k)) text << "      vertex " << corner.x << ' ' << corner.y << ' ' << corner.z << "\n";
    text << "    endloop\n  endfacet\n";
  }
  text << "endsolid " << name << "\n";
  return text.str();
}

ReadOutcome read_binary(trTriBlock& mesh, const std::string& bytes, const ReadOptions& options) {
  return read_with(&trTriRead::read_stl, mesh, bytes, options);
}

ReadOutcome read_ascii(trTriBlock& mesh, const std::string& text, const ReadOptions& options) {
  return read_with(&trTriRead::read_ast, mesh, text, options);
}

Written written_binary(const trTriBlock& mesh, int positive, double scale) {
  return written_with(&trTriWrite::write_stl, mesh, positive, scale);
}

Written written_ascii(const trTriBlock& mesh, int positive, double scale) {
  return written_with(&trTriWrite::write_ast, mesh, positive, scale);
}

std::vector<double> geometry_of(const trTriBlock& mesh) {
  std::vector<double> numbers;
  std::vector<bool> used(static_cast<std::size_t>(mesh.node_count()));
  const auto add_node = [&](int i) {
    const giPoint3& p = *mesh.node(i).coords;
    numbers.insert(numbers.end(), {p.x, p.y, p.z});
  };
  for (int e = 1; e < mesh.element_count(); ++e) {
    if (!mesh.element(e).valid()) continue;
    for (int k = 0; k < 3; ++k) {
      used[static_cast<std::size_t>(mesh.element(e)[k])] = true;
      add_node(mesh.element(e)[k]);
    }
  }
  for (int i = 1; i < mesh.node_count(); ++i) {
    if (!mesh.node(i).invalid && !used[static_cast<std::size_t>(i)]) add_node(i);
  }
  return numbers;
}

std::vector<int> sample_facets_in(const trTriBlock& mesh) {
  std::vector<int> facets;
  for (int e = 1; e < mesh.element_count(); ++e) {
    if (!mesh.element(e).valid()) continue;
    const auto k = static_cast<int>(mesh.point(mesh.element(e)[0]).x);
    bool is_sample = true;
    const std::vector<Triple> corners = sample_corners(k);
    for (int c = 0; c < 3; ++c) {
      const giPoint3& p = mesh.point(mesh.element(e)[c]);
      const Triple& expected = corners[static_cast<std::size_t>(c)];
      is_sample = is_sample && p.x == double{expected.x} && p.y == double{expected.y} && p.z == double{expected.z};
    }
    facets.push_back(is_sample ? k : -1);
  }
  return facets;
}
