#include "formats/format_files.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "support/random.h"

namespace {

// A file in memory that can be read, written and sought like one on a disk that has room for `room` bytes.
struct MemoryFile {
  std::string bytes;
  std::size_t at = 0;
  std::size_t room = std::string::npos;
  int closed = 0;

  static MemoryFile& of(void* cookie) { return *static_cast<MemoryFile*>(cookie); }

  static ssize_t read(void* cookie, char* buffer, std::size_t size) {
    MemoryFile& file = of(cookie);
    const std::size_t got = file.bytes.copy(buffer, size, std::min(file.at, file.bytes.size()));
    file.at += got;
    return static_cast<ssize_t>(got);
  }
  static ssize_t write(void* cookie, const char* buffer, std::size_t size) {
    MemoryFile& file = of(cookie);
    if (file.at + size > file.room) return 0;
    if (file.bytes.size() < file.at + size) file.bytes.resize(file.at + size);
    file.bytes.replace(file.at, size, buffer, size);
    file.at += size;
    return static_cast<ssize_t>(size);
  }
  static int seek(void* cookie, off64_t* offset, int whence) {
    MemoryFile& file = of(cookie);
    const std::size_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.at : file.bytes.size();
    file.at = base + static_cast<std::size_t>(*offset);
    *offset = static_cast<off64_t>(file.at);
    return 0;
  }
  static int close(void* cookie) { return ++of(cookie).closed - 1; }

  std::FILE* open(const char* mode) { return fopencookie(this, mode, {read, write, seek, close}); }
};

Written write_with(const Format& format, const trTriBlock& mesh, int flag, double scale, std::size_t room,
                   std::size_t buffer) {
  MemoryFile file;
  file.room = room;
  std::vector<char> space(buffer);
  std::FILE* stream = file.open("wb");
  std::setvbuf(stream, space.data(), buffer == 0 ? _IONBF : _IOFBF, buffer);
  testing::internal::CaptureStderr();
  int result = 0;
  {
    trTriWrite writer(&mesh, stream, scale);
    result = format.write(writer, flag);
  }
  EXPECT_EQ(file.closed, 1);
  return {result, file.bytes, testing::internal::GetCapturedStderr()};
}

}  // namespace

const Format native_format{"native", [](trTriRead& in, const ReadOptions&) { return in.read_native(); },
                           [](trTriWrite& out, int rwrite) { return out.write_native(rwrite); }};
const Format flat_triangle_format{"flat triangle", [](trTriRead& in, const ReadOptions&) { return in.read_tri(); },
                                  [](trTriWrite& out, int) { return out.write_tri(); }};
const Format smooth_triangle_format{"smooth triangle", [](trTriRead& in, const ReadOptions&) { return in.read_tri(); },
                                    [](trTriWrite& out, int) { return out.write_smooth_tri(); }};
const Format mesh_format{"mesh", [](trTriRead& in, const ReadOptions&) { return in.read_mes(); },
                         [](trTriWrite& out, int rwrite) { return out.write_mes(rwrite); }};
const Format kvx_format{"KVX", [](trTriRead& in, const ReadOptions&) { return in.read_kvx(); },
                        [](trTriWrite& out, int) { return out.write_kvx(); }};
const Format stl_format{"STL", [](trTriRead& in, const ReadOptions& of) { return in.read_stl(of.start, of.stop); },
                        [](trTriWrite& out, int positive) { return out.write_stl(positive); }};
const Format ascii_stl_format{"ASCII STL",
                              [](trTriRead& in, const ReadOptions& of) { return in.read_ast(of.start, of.stop); },
                              [](trTriWrite& out, int positive) { return out.write_ast(positive); }};

const Format* const formats[5] = {&native_format, &flat_triangle_format, &smooth_triangle_format, &mesh_format,
                                  &kvx_format};
const Format* const all_formats[7] = {&native_format, &flat_triangle_format, &smooth_triangle_format, &mesh_format,
                                      &kvx_format,    &stl_format,           &ascii_stl_format};

ReadOutcome read_format(const Format& format, trTriBlock& mesh, const std::string& bytes, const ReadOptions& options) {
  CapturedOutput out;
  testing::internal::CaptureStderr();
  MemoryFile file;
  file.bytes = bytes;
  int result = 0;
  {
    trTriRead reader(&mesh, file.open("rb"), options.append, options.read_node_data);
    result = format.read(reader, options);
  }
  EXPECT_EQ(file.closed, 1);
  return {result, out.text(), testing::internal::GetCapturedStderr()};
}

Written write_format(const Format& format, const trTriBlock& mesh, int flag, double scale) {
  return write_with(format, mesh, flag, scale, std::string::npos, 4096);
}

Written write_to_full_disk(const Format& format, const trTriBlock& mesh, std::size_t room, std::size_t buffer) {
  return write_with(format, mesh, 0, 1.0, room, buffer);
}

std::FILE* stream_on(const std::string& bytes) {
  return fmemopen(const_cast<char*>(bytes.data()), bytes.size(), "rb");
}

std::string written_to_stream(const std::function<void(std::FILE*)>& write) {
  MemoryFile file;
  std::FILE* stream = file.open("wb");
  write(stream);
  std::fclose(stream);
  return file.bytes;
}

testing::AssertionResult are_same(const std::string& bytes, const std::string& expected) {
  if (bytes == expected) return testing::AssertionSuccess();
  std::size_t at = 0;
  while (at < bytes.size() && at < expected.size() && bytes[at] == expected[at]) ++at;
  const std::size_t from = at < 30 ? 0 : at - 30;
  return testing::AssertionFailure() << bytes.size() << " bytes instead of " << expected.size() << ", differing from byte " << at << ":\n"
                                     << testing::PrintToString(bytes.substr(from, 90)) << "\ninstead of\n"
                                     << testing::PrintToString(expected.substr(from, 90));
}

std::string content_of(const trTriBlock& mesh) {
  std::ostringstream text;
  text << std::hexfloat << mesh.node_data_size() << " attributes, colour " << mesh.default_colour() << "\n";
  for (int i = 0; i < mesh.node_count(); ++i) {
    if (mesh.node(i).invalid) continue;
    text << "node " << i << ": " << mesh.point(i).x << ' ' << mesh.point(i).y << ' ' << mesh.point(i).z;
    for (int k = 0; k < mesh.node_data_size(); ++k) text << ' ' << (mesh.has_node_data(i) ? mesh.node_data(i).values[k] : 0.0);
    text << "\n";
  }
  for (int e = 0; e < mesh.element_count(); ++e) {
    const trElement& t = mesh.element(e);
    if (t.valid()) text << "element " << e << ": " << t[0] << ' ' << t[1] << ' ' << t[2] << " colour " << mesh.get_element_colour(e) << "\n";
  }
  return text.str();
}

void fill(trTriBlock& mesh, const MeshPlan& plan, Random& random) {
  constexpr int colours[] = {7, 1, 0x7fffffff, 0, 255, 65536};
  const auto decimal = [&] { return random.between(-40000, 40000) / 16.0; };
  for (int i = 1; i <= plan.nodes; ++i) mesh.set_node(i, giPoint3(decimal(), decimal(), decimal()));
  std::vector<bool> used(static_cast<std::size_t>(plan.nodes) + 1);
  const int corner_span = plan.nodes - plan.nodes / 6 - 5;
  for (int e = 1; e <= plan.elements; ++e) {
    int corners[3] = {random.between(1, corner_span), random.between(1, 2), random.between(3, 4)};
    for (int k = 1; k < 3; ++k) corners[k] += corners[0];
    for (int& corner : corners) corner += (corner - 1) / 5;  // no element names node 6, 12 and so on
    mesh.set_element(e, corners[0], corners[1], corners[2]);
    if (plan.colours != 0) mesh.set_element_colour(e, colours[random.below(plan.colours)]);
    if (e % 5 == 2) {
      mesh.delete_element(e);
    } else {
      for (const int corner : corners) used[static_cast<std::size_t>(corner)] = true;
    }
  }
  for (int i = 1; i <= plan.nodes; ++i) {
    if (!used[static_cast<std::size_t>(i)]) mesh.delete_node(i);
  }
  if (plan.attributes == 0) return;
  mesh.set_node_data_size(plan.attributes);
  for (int i = 1; i <= plan.nodes; ++i) {
    for (int k = 0; k < plan.attributes; ++k) mesh.node_data(i).values[k] = random.between(-4000, 4000) / 16.0;
  }
}

std::vector<giPoint3> sample_corners(int k) {
  return {giPoint3(k, 0.0, -0.5), giPoint3(k + 0.25, 1.5, 0.0), giPoint3(k, 2.0, 1024.0)};
}

std::string binary_stl(int facets, std::uint32_t count, const std::string& header) {
  std::string start = header;
  start.resize(80);
  Bytes bytes;
  bytes.text(start).put(count);
  for (int k = 1; k <= facets; ++k) {
    bytes.put(9.0f, 9.0f, 9.0f);
    for (const giPoint3& p : sample_corners(k)) bytes.put(float(p.x), float(p.y), float(p.z));
    bytes.put(std::uint16_t{0xabcd});
  }
  return bytes;
}

std::string ascii_stl(int facets, const std::string& name) {
  std::ostringstream text;
  text << "solid " << name << "\n";
  for (int k = 1; k <= facets; ++k) {
    text << "  facet normal 0 0 1\n    outer loop\n";
    for (const giPoint3& p : sample_corners(k)) text << "      vertex " << p.x << ' ' << p.y << ' ' << p.z << "\n";
    text << "    endloop\n  endfacet\n";
  }
  text << "endsolid " << name << "\n";
  return text.str();
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
