#include <gtest/gtest.h>

#include <cstring>

#include "formats/stl_files.h"
#include "support/interrupting_handler.h"
#include "support/marking_hook.h"
#include "support/random.h"

namespace {

// Elements 1 and 3 of three, the second deleted, over points with negative coordinates.
void build_sample(trTriBlock& mesh) {
  mesh.set_node(1, giPoint3(0, 0, 0));
  mesh.set_node(2, giPoint3(2, 0, 0));
  mesh.set_node(3, giPoint3(0, 2, 0));
  mesh.set_node(4, giPoint3(-0.3, 2, -7));
  mesh.set_element(1, 1, 2, 3);
  mesh.set_element(2, 1, 2, 4);
  mesh.set_element(3, 3, 2, 4);
  mesh.delete_element(2);
}

std::vector<float> floats_at(const std::string& bytes, std::size_t at, std::size_t n) {
  std::vector<float> numbers(n);
  std::memcpy(numbers.data(), bytes.data() + at, n * sizeof(float));
  return numbers;
}

std::uint16_t attribute_of(const std::string& bytes, std::size_t facet) {
  std::uint16_t word;
  std::memcpy(&word, bytes.data() + 84 + 50 * facet + 48, 2);
  return word;
}

// A stream without buffer that takes a number of bytes and no more.
class LimitedStream {
 public:
  explicit LimitedStream(std::size_t room) : room_(room) {
    cookie_io_functions_t functions = {};
    functions.write = take;
    file_ = fopencookie(this, "wb", functions);
    std::setvbuf(file_, nullptr, _IONBF, 0);
  }
  LimitedStream(const LimitedStream&) = delete;
  LimitedStream& operator=(const LimitedStream&) = delete;

  std::FILE* file() const { return file_; }

 private:
  static ssize_t take(void* self, const char*, size_t size) {
    std::size_t& room = static_cast<LimitedStream*>(self)->room_;
    const std::size_t taken = std::min(size, room);
    room -= taken;
    return static_cast<ssize_t>(taken);
  }

  std::size_t room_;
  std::FILE* file_;
};

std::string text_of(const char* format, double x, double y, double z) {
  char line[200];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  std::snprintf(line, sizeof line, format, x, y, z);
#pragma GCC diagnostic pop
  return line;
}

}  // namespace

TEST(StlWrite, BinaryHoldsHeaderCountAndValidFacets) {
  trTriBlock mesh;
  build_sample(mesh);
  const Written written = written_binary(mesh);
  EXPECT_EQ(written.result, 1);
  std::string start = "Binary STL file written by Brenko";
  start.resize(80);
  start += std::string("\2\0\0\0", 4);
  ASSERT_EQ(written.bytes.size(), 84u + 2 * 50);
  EXPECT_EQ(written.bytes.substr(0, 84), start);
  EXPECT_EQ(floats_at(written.bytes, 84, 12), (std::vector<float>{0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 2, 0}));
  EXPECT_EQ(attribute_of(written.bytes, 0), 0);
}

TEST(StlWrite, AsciiHoldsTheSameInText) {
  trTriBlock mesh;
  mesh.set_node(1, giPoint3(0, 0, 0));
  mesh.set_node(2, giPoint3(2, 0, 0));
  mesh.set_node(3, giPoint3(0, 2e-10, 1e100));
  mesh.set_element(1, 1, 2, 3);
  const Written written = written_ascii(mesh);
  EXPECT_EQ(written.result, 1);
  EXPECT_EQ(written.bytes,
            "solid brenko\n"
            "  facet normal 0.000000e+00 -1.000000e+00 0.000000e+00\n"
            "    outer loop\n"
            "      vertex   0.000000e+00 0.000000e+00 0.000000e+00\n"
            "      vertex   2.000000e+00 0.000000e+00 0.000000e+00\n"
            "      vertex   0.000000e+00 2.000000e-10 1.000000e+100\n"
            "    endloop\n"
            "  endfacet\n"
            "endsolid\n");
  EXPECT_EQ(written_ascii(trTriBlock()).bytes, "solid brenko\nendsolid\n");
}

// The colour of element 1 decides for all; its low half, blue and alpha, goes into the attribute word. A deleted element 1 has one too.
TEST(StlWrite, ElementOneDecidesWhetherColoursAreWritten) {
  trTriBlock mesh;
  build_sample(mesh);
  mesh.set_element_colour(3, 0x12345678);
  mesh.set_element_colour(1, NO_COLOUR);
  Written written = written_binary(mesh);
  EXPECT_STREQ(written.bytes.c_str(), "Binary STL file written by Brenko");
  EXPECT_EQ(attribute_of(written.bytes, 1), 0);

  mesh.set_element_colour(1, static_cast<int>(0xaabbccddu));
  mesh.set_element_colour(3, NO_COLOUR);
  written = written_binary(mesh);
  EXPECT_STREQ(written.bytes.c_str(), "Binary STL file written by Brenko - COLOR=rgba");
  EXPECT_EQ(attribute_of(written.bytes, 0), 0xccdd);
  EXPECT_EQ(attribute_of(written.bytes, 1), 0xffff);

  mesh.delete_element(1);
  EXPECT_STREQ(written_binary(mesh).bytes.c_str(), "Binary STL file written by Brenko - COLOR=rgba");
}

// The box begins at (-0.3, 0, -7): offsets 0.5, 0 and 10. The mesh itself stays where it is.
TEST(StlWrite, PositiveMovesTheModelByRoundAmounts) {
  trTriBlock mesh;
  build_sample(mesh);
  const std::vector<float> plain = floats_at(written_binary(mesh, 0).bytes, 84 + 12, 9);
  const std::vector<float> moved = floats_at(written_binary(mesh, 1).bytes, 84 + 12, 9);
  EXPECT_EQ(plain, (std::vector<float>{0, 0, 0, 2, 0, 0, 0, 2, 0}));
  EXPECT_EQ(moved, (std::vector<float>{0.5f, 0, 10, 2.5f, 0, 10, 0.5f, 2, 10}));
  EXPECT_NE(written_ascii(mesh, 1).bytes.find("      vertex   5.000000e-01 0.000000e+00 1.000000e+01\n"), std::string::npos);
  EXPECT_EQ(mesh.point(4).z, -7.0);
}

// 0.1 and 3 have no exact halves: the product of the rounded factors differs from the rounded product for some coordinates.
TEST(StlWrite, BinaryScalesInSinglePrecisionAndAsciiInDouble) {
  Random random(17);
  int differing = 0;
  for (int k = 0; k < 200; ++k) {
    const double x = random.between(-1000.0, 1000.0);
    const double scale = random.between(0.1, 3.0);
    trTriBlock mesh;
    mesh.set_node(1, giPoint3(x, 0, 0));
    mesh.set_node(2, giPoint3(0, 1, 0));
    mesh.set_node(3, giPoint3(0, 0, 1));
    mesh.set_element(1, 1, 2, 3);
    const float single = static_cast<float>(scale) * static_cast<float>(x);
    ASSERT_EQ(floats_at(written_binary(mesh, 0, scale).bytes, 84 + 12, 1)[0], single);
    differing += single != static_cast<float>(scale * x);
    const std::string line = text_of("      vertex   %e %e %e\n", scale * x, 0, 0);
    ASSERT_NE(written_ascii(mesh, 0, scale).bytes.find(line), std::string::npos) << line;
  }
  EXPECT_GT(differing, 20);
}

// A cross product of at most 1e-5 is written as it is, a longer one as a unit vector.
TEST(StlWrite, SmallTrianglesHaveTheirRawCrossProductAsNormal) {
  const std::pair<double, float> cases[] = {{1e-3, 1e-6f}, {3e-3, 9e-6f}, {4e-3, 1.0f}, {1.0, 1.0f}};
  for (const auto& [edge, z] : cases) {
    trTriBlock mesh;
    mesh.set_node(1, giPoint3(0, 0, 0));
    mesh.set_node(2, giPoint3(edge, 0, 0));
    mesh.set_node(3, giPoint3(0, edge, 0));
    mesh.set_element(1, 1, 2, 3);
    EXPECT_EQ(floats_at(written_binary(mesh).bytes, 84, 3)[2], z) << edge;
    const std::string line = text_of("facet normal %e %e %e\n", 0, -0.0, static_cast<double>(z));
    EXPECT_NE(written_ascii(mesh).bytes.find(line), std::string::npos) << edge;
  }
}

// The text of a number is that of printf's "%e" in the "C" locale, for every double.
TEST(StlWrite, AsciiNumbersAreThoseOfPrintf) {
  Random random(23);
  std::vector<double> values = {0.0, -0.0, 1e-5, 9.9999995, 9.9999994999, 0.5e-6, 1e100, 1e-100, 5e-324, -1.7976931348623155e308,
                                NAN, -NAN, HUGE_VAL, -HUGE_VAL, 2.5, 1.0000005, 1.0000015};
  for (int k = 0; k < 3000; ++k) {
    const std::uint64_t bits = random.bits();
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    values.push_back(value);
  }
  for (const double value : values) {
    trTriBlock mesh;
    mesh.set_node(1, giPoint3(0, 0, 0));
    mesh.set_node(2, giPoint3(0, 1, value));
    mesh.set_node(3, giPoint3(0, 0, 1));
    mesh.set_element(1, 1, 2, 3);
    const double stored = mesh.point(2).z;
    const std::string line = text_of("      vertex   %e %e %e\n", 0, 1, stored + 0.0);
    ASSERT_NE(written_ascii(mesh).bytes.find(line), std::string::npos) << line << written_ascii(mesh).bytes;
  }
}

TEST(StlWrite, ReportsProgressAtEveryElementNumber) {
  InterruptingHandler handler;
  trTriBlock mesh;
  read_binary(mesh, binary_stl(1500));
  handler.messages.clear();
  written_binary(mesh);
  written_ascii(mesh);
  EXPECT_EQ(handler.messages, (std::vector<std::string>{"Writing STL file...", "Processing 1501 triangles:   1000",
                                                        "Finished writing STL file...", "Writing ASCII STL file...",
                                                        "Processing 1501 triangles:   1000", "Finished writing ASCII STL file..."}));
  EXPECT_EQ(handler.percents.back(), 100.0);
}

// A stream without buffer that takes `room` bytes and no more: the failure is told where the first byte found no room, between values
// too.
TEST(StlWrite, AFullDiskIsToldAtTheFacetThatFoundNoRoom) {
  trTriBlock mesh;
  read_binary(mesh, binary_stl(8));
  mesh.delete_element(2);
  const std::pair<std::size_t, const char*> cases[] = {
      {0, "Error writing file header\n"},           {79, "Error writing file header\n"},
      {80, "Error writing element count\n"},        {83, "Error writing element count\n"},
      {84, "** Error occurred writing facet 1 **\n"}, {133, "** Error occurred writing facet 1 **\n"},
      {134, "** Error occurred writing facet 3 **\n"}, {84 + 7 * 50 - 1, "** Error occurred writing facet 8 **\n"},
      {84 + 7 * 50, ""}};
  for (const auto& [room, err] : cases) {
    SCOPED_TRACE(room);
    LimitedStream stream(room);
    InterruptingHandler handler;
    testing::internal::CaptureStderr();
    {
      trTriWrite writer(&mesh, stream.file(), 1.0);
      EXPECT_EQ(writer.write_stl(0), *err == '\0');
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), err);
    EXPECT_EQ(handler.messages.back() == "Finished writing STL file...", *err == '\0');
  }
}

// Behind a buffer the failure shows at the facet that overflows it: 84 bytes and 80 facets are 4084 bytes, the 81st passes 4096. What
// still fits is told as the buffer is emptied, at the last facet.
TEST(StlWrite, AFullDiskIsToldBehindABufferToo) {
  trTriBlock mesh;
  read_binary(mesh, binary_stl(200));
  mesh.delete_element(200);
  for (const auto& [size, err] : {std::pair<std::size_t, const char*>{4096, "** Error occurred writing facet 81 **\n"},
                                  {65536, "** Error occurred writing facet 199 **\n"}}) {
    std::FILE* full = std::fopen("/dev/full", "wb");
    if (full == nullptr) GTEST_SKIP() << "no /dev/full here";
    std::vector<char> buffer(size);
    std::setvbuf(full, buffer.data(), _IOFBF, size);
    testing::internal::CaptureStderr();
    {
      trTriWrite writer(&mesh, full, 1.0);
      EXPECT_EQ(writer.write_stl(0), 0);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), err);
  }
}

// The text of a facet that finds no room is not missed: ASCII files are written blindly.
TEST(StlWrite, AsciiDoesNotNoticeAFullDisk) {
  trTriBlock mesh;
  read_binary(mesh, binary_stl(8));
  LimitedStream stream(100);
  trTriWrite writer(&mesh, stream.file(), 1.0);
  EXPECT_EQ(writer.write_ast(0), 1);
}

TEST(StlWrite, EveryTextIsTranslated) {
  const MarkingHook hook;
  InterruptingHandler handler;
  trTriBlock mesh;
  written_binary(mesh);
  written_ascii(mesh);
  EXPECT_EQ(handler.messages, (std::vector<std::string>{"<Writing STL file...", "<Finished writing STL file...",
                                                        "<Writing ASCII STL file...", "<Finished writing ASCII STL file..."}));
}
