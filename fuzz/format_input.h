#pragma once

// What the fuzz targets of the formats other than STL do with an input; the tests do the same with the inputs that are kept.

#include <cctype>
#include <cstring>
#include <vector>

#include "platform/kvx/kvx_layout.h"
#include "stl_input.h"

enum class FuzzedFormat { native, triangle, mesh, kvx };

/// An input: two bytes that say how to read, then the file.
struct FormatInput {
  FormatInput(const std::uint8_t* data, std::size_t size) {
    const auto byte = [&](std::size_t k) { return k < size ? data[k] : std::uint8_t{0}; };
    append = byte(0) & 1;
    read_node_data = byte(0) >> 1 & 1;
    node_data_size = (byte(0) >> 2 & 7) % 6;
    mends_checksums = (byte(0) >> 5 & 1) != 0;
    stop_at = byte(1);
    file.assign(reinterpret_cast<const char*>(data) + (size < 2 ? size : 2), size < 2 ? 0 : size - 2);
  }

  int append, read_node_data, node_data_size;
  bool mends_checksums;  // of a KVX file, so that damage gets past them
  int stop_at;           // the poll at which the host asks to stop; 0: none
  std::string file;
};

/// Gives header, blocks and chunks of a KVX file the checksums and the length that they should have, as far as it can be followed.
class KvxMender {
 public:
  explicit KvxMender(std::string& bytes) : bytes_(bytes) {}

  void mend() {
    const std::size_t text_bytes = number(8);
    const std::size_t header = 12 + text_bytes + 16;
    if (text_bytes > kvx::longest_text || header + 4 > bytes_.size()) return;
    const auto length = static_cast<std::int64_t>(bytes_.size());
    std::memcpy(&bytes_[header - 8], &length, sizeof length);
    put(header, kvx::checksum_of(bytes_.data(), header));
    std::size_t at = header + 4;
    while (at + 12 <= bytes_.size()) at = bytes_.compare(at, 4, kvx::block_tag) == 0 ? mended_block(at) : mended_chunk(at);
  }

 private:
  std::uint32_t number(std::size_t at) const {
    std::uint32_t value = 0;
    if (at + sizeof value <= bytes_.size()) std::memcpy(&value, bytes_.data() + at, sizeof value);
    return value;
  }
  void put(std::size_t at, std::uint32_t value) {
    if (at + sizeof value <= bytes_.size()) std::memcpy(&bytes_[at], &value, sizeof value);
  }
  std::size_t mended_block(std::size_t at) {
    values_ = number(at + 12) == 1 ? 6 : 3;
    if (at + 20 <= bytes_.size()) put(at + 16, kvx::checksum_of(bytes_.data() + at + 4, 12));
    return at + 20;
  }
  std::size_t mended_chunk(std::size_t at) {
    constexpr std::size_t value_bytes[] = {0, 4, 8, 0, 4};
    const std::uint32_t layout = number(at);
    const std::size_t values = layout == 4 ? 3 : values_;
    const std::size_t entries = std::size_t{number(at + 4)} * values * (layout <= 4 ? value_bytes[layout] : 0);
    if (entries > bytes_.size() - at - 12) return bytes_.size();
    put(at + 8, kvx::checksum_of(bytes_.data() + at + 12, entries, kvx::checksum_of(bytes_.data() + at, 8)));
    return at + 12 + entries;
  }

  std::string& bytes_;
  std::size_t values_ = 3;
};

/// Whether the file may number a node or element from 2^17 to 2^24. That is legal and takes gigabytes and seconds: tests do it.
inline bool has_large_numbers(FuzzedFormat format, const std::string& file) {
  if (format == FuzzedFormat::native) {
    for (std::size_t at = 80; at + 4 <= file.size(); ++at) {
      std::uint32_t number = 0;
      std::memcpy(&number, file.data() + at, sizeof number);
      if (number >= 1u << 17 && number <= 1u << 24) return true;
    }
    return file.size() > 3 && file[file.size() - 1] > 1;
  }
  if (format != FuzzedFormat::mesh) return false;
  int digits = 0;
  for (const char c : file) {
    digits = std::isdigit(static_cast<unsigned char>(c)) ? digits + 1 : 0;
    if (digits > 5) return true;
  }
  return false;
}

inline const char* fault_in_mesh(const trTriBlock& mesh, std::size_t bytes) {
  if (!mesh.node(0).invalid || mesh.element(0).valid()) return "slot 0 is in use";
  std::size_t nodes = 0, elements = 0;
  for (int i = 1; i < mesh.node_count(); ++i) {
    if (mesh.node(i).invalid) continue;
    ++nodes;
    if (mesh.node(i).coords != &mesh.points().at(i) || mesh.point(i).invalid()) return "a node is not what a valid node is";
  }
  for (int e = 1; e < mesh.element_count(); ++e) {
    const trElement& t = mesh.element(e);
    if (!t.valid()) continue;
    ++elements;
    for (int k = 0; k < 3; ++k) {
      if (t[k] < 1 || t[k] >= mesh.node_count() || mesh.node(t[k]).invalid) return "an element names no node";
    }
    if (t[0] == t[1] || t[1] == t[2] || t[2] == t[0]) return "an element names a node twice";
  }
  return nodes > bytes || elements > bytes ? "there is more than the file can hold" : nullptr;
}

/// The bits of every corner of every element.
inline std::vector<double> corners_of(const trTriBlock& mesh) {
  std::vector<double> corners;
  for (int e = 1; e < mesh.element_count(); ++e) {
    for (int k = 0; k < 3 && mesh.element(e).valid(); ++k) {
      const giPoint3& p = mesh.point(mesh.element(e)[k]);
      corners.insert(corners.end(), {p.x, p.y, p.z});
    }
  }
  return corners;
}

/// Writes the mesh and reads it again. With `is_exact` every bit of it must come back.
template <class Write, class Read>
const char* fault_in_format_round_trip(const trTriBlock& mesh, bool is_exact, Write write, Read read) {
  char* buffer = nullptr;
  std::size_t size = 0;
  bool is_written = false;
  {
    trTriWrite writer(&mesh, open_memstream(&buffer, &size), 1.0);
    is_written = write(writer) == 1;
  }
  trTriBlock again;
  bool is_read = false;
  {
    trTriRead reader(&again, fmemopen(buffer, size, "rb"), 0, 1);
    is_read = read(reader) == 1;
  }
  std::free(buffer);
  if (!is_written) return "the mesh could not be written";
  if (!is_read) return "what was written could not be read";
  if (!is_exact) return nullptr;
  const std::vector<double> before = corners_of(mesh), after = corners_of(again);
  const bool is_same = before.size() == after.size() && (before.empty() || std::memcmp(before.data(), after.data(), before.size() * sizeof(double)) == 0);
  return is_same ? nullptr : "what was read is not what was written";
}

inline const char* fault_in_round_trips(const trTriBlock& mesh) {
  const auto read_native = [](trTriRead& in) { return in.read_native(); };
  const auto read_tri = [](trTriRead& in) { return in.read_tri(); };
  for (const int rwrite : {0, 1}) {
    if (const char* fault = fault_in_format_round_trip(mesh, true, [=](trTriWrite& out) { return out.write_native(rwrite); }, read_native)) return fault;
    const auto write_mesh = [=](trTriWrite& out) { return out.write_mes(rwrite); };
    if (const char* fault = fault_in_format_round_trip(mesh, false, write_mesh, [](trTriRead& in) { return in.read_mes(); })) return fault;
  }
  if (const char* fault = fault_in_format_round_trip(mesh, false, [](trTriWrite& out) { return out.write_tri(); }, read_tri)) return fault;
  if (const char* fault = fault_in_format_round_trip(mesh, false, [](trTriWrite& out) { return out.write_smooth_tri(); }, read_tri)) return fault;
  return fault_in_format_round_trip(mesh, true, [](trTriWrite& out) { return out.write_kvx(); }, [](trTriRead& in) { return in.read_kvx(); });
}

inline int read_fuzzed(FuzzedFormat format, trTriRead& reader) {
  switch (format) {
    case FuzzedFormat::native: return reader.read_native();
    case FuzzedFormat::triangle: return reader.read_tri();
    case FuzzedFormat::mesh: return reader.read_mes();
    default: return reader.read_kvx();
  }
}

/// Reads the input and says what is wrong with what came of it, or null.
inline const char* fault_of_format_input(FuzzedFormat format, FormatInput input) {
  if (has_large_numbers(format, input.file)) return nullptr;
  if (format == FuzzedFormat::kvx && input.mends_checksums) KvxMender(input.file).mend();
  const SilentOutput silence;
  trTriBlock mesh;
  mesh.set_node(4, giPoint3(1.0, 2.0, 3.0));
  mesh.set_node(2, giPoint3(3.0, 2.0, 3.0));
  mesh.set_node(1, giPoint3(3.0, 1.0, 3.0));
  mesh.set_element(2, 4, 2, 1);
  mesh.set_node_data_size(input.node_data_size);
  {
    const StoppingHandler handler(input.stop_at);
    trTriRead reader(&mesh, fmemopen(input.file.data(), input.file.size(), "rb"), input.append, input.read_node_data);
    const int result = read_fuzzed(format, reader);
    if (result != 0 && result != 1) return "the result is neither 0 nor 1";
  }
  if (const char* fault = fault_in_mesh(mesh, input.file.size() + 3)) return fault;
  return fault_in_round_trips(mesh);
}
