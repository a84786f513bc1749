// KVX files: their layout byte by byte, normals, and every way in which a file may lie about itself.

#include <gtest/gtest.h>

#include <cstring>

#include "formats/format_files.h"
#include "platform/kvx/kvx_file_read.h"
#include "platform/kvx/kvx_file_write.h"
#include "platform/kvx/kvx_layout.h"
#include "support/interrupting_handler.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

std::string summed(const std::string& bytes) { return Bytes().text(bytes).put(kvx::checksum_of(bytes.data(), bytes.size())); }

std::string chunk(std::uint32_t layout, std::uint32_t entries, const std::string& content) {
  const std::string head = Bytes().put(layout, entries);
  const std::string all = head + content;
  return Bytes().text(head).put(kvx::checksum_of(all.data(), all.size())).text(content);
}

std::string block(int nodes, int triangles, int normals, const std::string& chunks) {
  return Bytes().text("BLOK").put(nodes, triangles, normals).put(kvx::checksum_of(std::string(Bytes().put(nodes, triangles, normals)).data(), 12)).text(chunks);
}

std::string file_of(const std::string& text, int blocks, const std::string& content, int missing_bytes = 0) {
  const auto text_bytes = static_cast<std::uint32_t>(text.size());
  const std::int64_t length = static_cast<std::int64_t>(32 + text.size() + content.size()) + missing_bytes;
  return summed(Bytes().text("KVX\r\n\x1a\n\x01").put(text_bytes).text(text).put(blocks, 0).put(length)) + content;
}

std::string floats(const std::vector<float>& values) {
  Bytes bytes;
  for (const float value : values) bytes.put(value);
  return bytes;
}

const std::string one_triangle = chunk(1, 3, floats({0, 0, 0, 1, 0, 0, 0, 1, 0}));

// A stream that cannot tell its length, like a pipe.
std::FILE* pipe_of(const std::string& bytes) {
  struct Source {
    std::string bytes;
    std::size_t at = 0;
  };
  const auto read = [](void* cookie, char* buffer, std::size_t size) {
    auto* source = static_cast<Source*>(cookie);
    const std::size_t got = source->bytes.copy(buffer, size, source->at);
    source->at += got;
    return static_cast<ssize_t>(got);
  };
  const auto close = [](void* cookie) {
    delete static_cast<Source*>(cookie);
    return 0;
  };
  return fopencookie(new Source{bytes}, "rb", {read, nullptr, nullptr, close});
}

}  // namespace

// The definition, bit by bit, of as many bytes as make several steps of the tables and a rest, in one go and in two.
TEST(Kvx, ChecksumIsCrc32) {
  const auto literal = [](const std::string& bytes) {
    std::uint32_t crc = ~0u;
    for (const char byte : bytes) {
      crc ^= static_cast<unsigned char>(byte);
      for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1u) != 0 ? 0xedb88320u : 0u);
    }
    return ~crc;
  };
  EXPECT_EQ(kvx::checksum_of("123456789", 9), 0xcbf43926u) << "the catalogued value";
  std::string bytes;
  for (unsigned n = 0; n < 70; ++n) {
    const std::size_t half = bytes.size() / 2;
    EXPECT_EQ(kvx::checksum_of(bytes.data(), bytes.size()), literal(bytes)) << n << " bytes";
    EXPECT_EQ(kvx::checksum_of(bytes.data() + half, n - half, kvx::checksum_of(bytes.data(), half)), literal(bytes)) << n << " bytes";
    bytes.push_back(static_cast<char>(n * n * 37 + 11));
  }
}

// Coordinates that single precision holds are stored so, a chunk of nodes at a time; triangles with three nodes of their own take nothing.
TEST(Kvx, LayoutToTheByte) {
  trTriBlock mesh;
  mesh.set_node(1, giPoint3());
  mesh.set_node(2, giPoint3(1.0, 0.0, 0.0));
  mesh.set_node(3, giPoint3(0.0, 1.0, 0.0));
  mesh.set_element(2, 1, 2, 3);
  EXPECT_TRUE(are_same(write_format(kvx_format, mesh).bytes, file_of("Created by MendEX2410", 1, block(3, 1, 0, one_triangle + chunk(3, 1, "")))));
  mesh.set_node(3, giPoint3(0.0, 0.1, 0.0));
  Bytes doubles;
  for (const double value : {0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.1, 0.0}) doubles.put(value);
  EXPECT_TRUE(are_same(write_format(kvx_format, mesh).bytes, file_of("Created by MendEX2410", 1, block(3, 1, 0, chunk(2, 3, doubles) + chunk(3, 1, "")))));
}

// Every triangle comes back with three nodes of its own, to the bit. Chunks of 4096 nodes whose coordinates single precision holds,
// infinite ones too, take half the room, and triangles with three nodes of their own take none.
TEST(Kvx, TrianglesComeBackToTheBit) {
  Random random(31);
  trTriBlock mesh;
  const double odd[] = {1e300, -0.0, 5e-324, 1.0 / 3.0, std::numeric_limits<double>::infinity(), std::nan("7")};
  constexpr int triangles = 5000;
  constexpr int doubles = 9000;  // nodes that need double precision, and so do the chunks that they stand in
  for (int i = 1; i <= 3 * triangles; ++i) {
    const double x = i / 3 % 2000 == 7 ? odd[random.below(6)] : random.between(-1000.0, 1000.0);
    const double small = i % 100 == 0 ? -std::numeric_limits<double>::infinity() : static_cast<double>(static_cast<float>(random.unit()));
    mesh.set_node(i, giPoint3(i <= doubles ? x : small, i, small));
  }
  for (int e = 1; e <= triangles; ++e) mesh.set_element(e, 3 * e, 3 * e - 1, 3 * e - 2);
  mesh.delete_element(4);
  trTriBlock again;
  const std::string bytes = write_format(kvx_format, mesh).bytes;
  constexpr std::size_t heads = 12 * (4 + 2) + 20 + 53;  // of chunks, block and file
  EXPECT_EQ(bytes.size(), heads + 24 * 3 * 4096 + 12 * (3 * (triangles - 1) - 3 * 4096));
  EXPECT_EQ(read_format(kvx_format, again, bytes).result, 1);
  const std::vector<double> before = geometry_of(mesh), after = geometry_of(again);
  ASSERT_EQ(after.size() + 9, before.size()) << "only the nodes of the deleted element are missing";
  EXPECT_EQ(std::memcmp(before.data(), after.data(), after.size() * sizeof(double)), 0);
  EXPECT_EQ(again.node_count(), 1 + 3 * (triangles - 1));
}

TEST(Kvx, NormalsAndListedTrianglesAreKeptByTheLibrary) {
  for (const double z : {0.5, 0.1}) {
    const std::string bytes = written_to_stream([z](std::FILE* stream) {
      vrpKVXFileWrite out(stream, 0);
      EXPECT_EQ(out.write_header("text") | out.new_block(4, 2, 1), 0);
      for (int k = 0; k < 4; ++k) {
        EXPECT_EQ(out.write_node(giPoint3(k, 2 * k, z), giVector3(0.0, z, -k), vrp_kvx_exact_nodes), 0);
      }
      EXPECT_EQ(out.write_tri(0, 1, 2) | out.write_tri(3, 2, 1) | out.write_end(), 0);
    });
    std::FILE* file = stream_on(bytes);
    vrpKVXFileRead in(file);
    const char* text = nullptr;
    int blocks = 0, version = 0, flags = -1, nodes = 0, triangles = 0, normals = 0;
    EXPECT_EQ(in.read_header(text, blocks, version, flags) | in.read_block(nodes, triangles, normals), 0);
    EXPECT_STREQ(text, "text");
    EXPECT_EQ((std::vector<int>{blocks, version, flags, nodes, triangles, normals}), (std::vector<int>{1, 1, 0, 4, 2, 1}));
    for (int k = 0; k < 4; ++k) {
      double v[6];
      EXPECT_EQ(in.read_node(v[0], v[1], v[2], v[3], v[4], v[5]), 0);
      EXPECT_EQ(std::vector<double>(v, v + 6), (std::vector<double>{1.0 * k, 2.0 * k, z, 0.0, z, -1.0 * k}));
    }
    int t[6];
    EXPECT_EQ(in.read_tri(t[0], t[1], t[2]) | in.read_tri(t[3], t[4], t[5]), 0);
    EXPECT_EQ(std::vector<int>(t, t + 6), (std::vector<int>{0, 1, 2, 3, 2, 1}));
    EXPECT_NE(in.read_tri(t[0], t[1], t[2]), 0) << "there are only two";
    std::fclose(file);

    trTriBlock mesh;
    EXPECT_EQ(read_format(kvx_format, mesh, bytes).result, 1);
    EXPECT_EQ(mesh.node_data_size(), 0);
    EXPECT_EQ(mesh.element(2)[0], 4);
    EXPECT_EQ(mesh.point(4), giPoint3(3.0, 6.0, z));
  }
}

// Each letter is an operation: header, block of one node and one triangle, or of -1 nodes (B), node, node with a normal
// (v), triangle of that node, or of one that is not there (+ and -), end.
// All but the last of a case are taken; once an operation was refused, all that follow are.
TEST(Kvx, AWriterTakesWhatItsBlockAnnouncedAndNothingElse) {
  const std::map<char, std::function<int(vrpKVXFileWrite&)>> operations = {
      {'h', [](vrpKVXFileWrite& out) { return out.write_header(nullptr); }},
      {'b', [](vrpKVXFileWrite& out) { return out.new_block(1, 1, 0); }},
      {'B', [](vrpKVXFileWrite& out) { return out.new_block(-1, 0, 0); }},
      {'n', [](vrpKVXFileWrite& out) { return out.write_node(giPoint3(), vrp_kvx_exact_nodes); }},
      {'v', [](vrpKVXFileWrite& out) { return out.write_node(giPoint3(), giVector3(), vrp_kvx_exact_nodes); }},
      {'t', [](vrpKVXFileWrite& out) { return out.write_tri(0, 0, 0); }},
      {'+', [](vrpKVXFileWrite& out) { return out.write_tri(0, 0, 1); }},
      {'-', [](vrpKVXFileWrite& out) { return out.write_tri(-1, 0, 0); }},
      {'e', [](vrpKVXFileWrite& out) { return out.write_end(); }},
  };
  for (const std::string uses : {"b", "e", "hh", "hn", "hB", "hbt", "hbnn", "hbv", "hbn+", "hbn-", "hbntt", "hbnb",
                                 "hbne", "hbntee"}) {
    SCOPED_TRACE(uses);
    written_to_stream([&](std::FILE* file) {
      vrpKVXFileWrite out(file, 0);
      for (std::size_t k = 0; k < uses.size(); ++k) {
        EXPECT_EQ(operations.at(uses[k])(out) != 0, k + 1 == uses.size()) << "step " << k;
      }
      EXPECT_NE(out.write_end(), 0);
    });
  }
}

// Every file here has the right checksums. Reading fails without a word and keeps what it had read.
TEST(Kvx, FilesThatLie) {
  const std::string plain = chunk(3, 1, "");
  const auto listed = [](int a, int b, int c) { return chunk(4, 1, Bytes().put(a, b, c)); };
  const struct {
    const char* what;
    std::string bytes;
    int result, nodes, elements, valid;
  } cases[] = {
      {"nothing wrong", file_of("", 1, block(3, 1, 0, one_triangle + plain)), 1, 3, 1, 1},
      {"something behind it", file_of("", 1, block(3, 1, 0, one_triangle + plain)) + "more", 1, 3, 1, 1},
      {"no blocks", file_of("", 0, ""), 1, 0, 0, 0},
      {"unfinished", file_of("", -1, block(3, 1, 0, one_triangle + plain)), 0, 0, 0, 0},
      {"length above that of the file", file_of("", 1, block(3, 1, 0, one_triangle + plain), 1), 0, 0, 0, 0},
      {"other version", "KVX\r\n\x1a\n\x02" + file_of("", 0, "").substr(8), 0, 0, 0, 0},
      {"long text", file_of(std::string(4097, 't'), 0, ""), 0, 0, 0, 0},
      {"more blocks than there are", file_of("", INT_MAX, block(3, 1, 0, one_triangle + plain)), 0, 3, 1, 1},
      {"more nodes than bytes", file_of("", 1, block(INT_MAX, 1, 0, one_triangle + plain)), 0, 0, 0, 0},
      {"negative nodes", file_of("", 1, block(-3, 1, 0, one_triangle + plain)), 0, 0, 0, 0},
      {"more triangles than bytes", file_of("", 1, block(3, INT_MAX, 0, one_triangle + plain)), 0, 0, 0, 0},
      {"negative triangles", file_of("", 1, block(3, INT_MIN, 0, one_triangle + plain)), 0, 0, 0, 0},
      {"odd normals", file_of("", 1, block(3, 1, 2, one_triangle + one_triangle + plain)), 0, 0, 0, 0},
      {"odd normals that are there", file_of("", 1, block(3, 1, 2, chunk(1, 3, std::string(72, '\0')) + plain)), 0, 0, 0, 0},
      {"fewer nodes than promised", file_of("", 1, block(4, 1, 0, one_triangle + plain)), 0, 3, 0, 0},
      {"empty chunk", file_of("", 1, block(3, 1, 0, chunk(1, 0, "") + one_triangle + plain)), 0, 0, 0, 0},
      {"chunk beyond the block", file_of("", 1, block(2, 0, 0, one_triangle)), 0, 0, 0, 0},
      {"chunk of no layout", file_of("", 1, block(3, 1, 0, chunk(5, 3, std::string(36, '\0')) + plain)), 0, 0, 0, 0},
      {"triangles for nodes", file_of("", 1, block(3, 1, 0, chunk(4, 3, std::string(36, '\0')) + plain)), 0, 0, 0, 0},
      {"nodes for triangles", file_of("", 1, block(3, 1, 0, one_triangle + chunk(1, 1, floats({0, 0, 0})))), 0, 3, 0, 0},
      {"plain triangles without nodes", file_of("", 1, block(3, 2, 0, one_triangle + chunk(3, 2, "") + std::string(12, '\0'))), 0, 3, 0, 0},
      {"triangle that repeats a node", file_of("", 1, block(3, 2, 0, one_triangle + listed(0, 1, 1) + listed(2, 1, 0))), 1, 3, 2, 1},
      {"nodes of no block", file_of("", 1, block(3, 3, 0, one_triangle + listed(0, 1, 3) + listed(-1, 1, 0) + listed(INT_MIN, INT_MAX, 0))), 1, 3, 0, 0},
      {"two blocks", file_of("", 2, block(3, 1, 0, one_triangle + plain) + block(3, 1, 0, one_triangle + listed(2, 1, 0))), 1, 6, 2, 2},
      {"nodes of the block before", file_of("", 2, block(3, 0, 0, one_triangle) + block(0, 1, 0, listed(0, 1, 2))), 1, 3, 0, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    trTriBlock mesh;
    const ReadOutcome read = read_format(kvx_format, mesh, c.bytes);
    EXPECT_EQ(read.out + read.err, "");
    EXPECT_EQ(read.result, c.result);
    EXPECT_EQ(mesh.node_count() - 1, c.nodes);
    EXPECT_EQ(mesh.element_count() - 1, c.elements);
    EXPECT_EQ(mesh.valid_elements(), c.valid);
    EXPECT_TRUE(is_sound(mesh));
  }
}

// Where the length of the stream is not known, a file that was cut is read up to the last chunk that is whole.
TEST(Kvx, PipesAreReadWithoutTheirLength) {
  BlockOf mesh(flat_sheet(2, 2));
  const std::string bytes = write_format(kvx_format, mesh).bytes;
  for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
    trTriBlock read;
    trTriRead reader(&read, pipe_of(bytes.substr(0, cut)), 0, 0);
    EXPECT_EQ(reader.read_kvx(), cut == bytes.size());
    EXPECT_TRUE(read.node_count() == 1 || read.node_count() == 25);
    EXPECT_TRUE(is_sound(read));
  }
  trTriBlock read;
  trTriRead reader(&read, pipe_of(file_of("", 1, block(0, INT_MAX, 0, std::string(chunk(3, 4096, ""))))), 0, 0);
  EXPECT_EQ(reader.read_kvx(), 0);
  EXPECT_EQ(read.element_count(), 1);
}

TEST(Kvx, MessagesOfReaderAndWriter) {
  BlockOf mesh(flat_sheet(1, 1));
  InterruptingHandler handler;
  const std::string bytes = write_format(kvx_format, mesh).bytes;
  mesh.set_node_data_size(2);
  EXPECT_EQ(read_format(kvx_format, mesh, bytes, {1, 0, 1, 0}).out, " Insufficient node data in new triangles.\n Node attributes have been deleted.\n");
  EXPECT_EQ(handler.messages,
            (std::vector<std::string>{"Writing KVX file (no normals)...", "Processing 2 triangles:     2", "Finished writing KVX file (no normals)...",
                                      "Appending KVX file...", "Triangle blocks    0/1 Nodes     0/6", "Triangle blocks    0/1 Triangles     0/2",
                                      "Triangle blocks    1/1", "Finished reading KVX file..."}));
}
