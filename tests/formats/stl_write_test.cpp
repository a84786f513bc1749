// Writing STL: layout, colours, scale, normals, full disks; what comes back of what was written; locales.

#include <gtest/gtest.h>

#include <cstring>
#include <locale>

#include "formats/format_files.h"
#include "formats/offset.h"
#include "support/comma_locale.h"
#include "support/interrupting_handler.h"
#include "support/marking_hook.h"
#include "support/random.h"
#include "support/shapes.h"

namespace {

// Elements 1 and 3 of three, the second deleted, over points with negative coordinates.
struct Sample : BlockOf {
  Sample() : BlockOf(Shape{{{0, 0, 0}, {2, 0, 0}, {0, 2, 0}, {-0.3, 2, -7}}, {{0, 1, 2}, {0, 1, 3}, {2, 1, 3}}}) {
    delete_element(2);
  }
};

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

// Coordinates that single precision holds, of many magnitudes; zeros of both signs.
Shape single_precision_soup(Random& random, int triangles) {
  Shape shape = clustered_soup(random, triangles, 0.0);
  for (giPoint3& p : shape.points) {
    for (int k = 0; k < 3; ++k) {
      p[k] = double{static_cast<float>(std::ldexp(random.between(-1.0, 1.0), random.between(-20, 20)))};
      if (random.one_in(10)) p[k] = random.one_in(2) ? 0.0 : -0.0;
    }
  }
  return shape;
}

// Groups digits as "1.000.000".
class Grouping : public std::numpunct<char> {
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

}  // namespace

TEST(StlWrite, BinaryHoldsHeaderCountAndValidFacets) {
  const Written written = written_binary(Sample());
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
  BlockOf mesh(Shape{{{0, 0, 0}, {2, 0, 0}, {0, 2e-10, 1e100}}, {{0, 1, 2}}});
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
  Sample mesh;
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
  Sample mesh;
  const std::vector<float> plain = floats_at(written_binary(mesh, 0).bytes, 84 + 12, 9);
  const std::vector<float> moved = floats_at(written_binary(mesh, 1).bytes, 84 + 12, 9);
  EXPECT_EQ(plain, (std::vector<float>{0, 0, 0, 2, 0, 0, 0, 2, 0}));
  EXPECT_EQ(moved, (std::vector<float>{0.5f, 0, 10, 2.5f, 0, 10, 0.5f, 2, 10}));
  EXPECT_NE(written_ascii(mesh, 1).bytes.find("      vertex   5.000000e-01 0.000000e+00 1.000000e+01\n"), std::string::npos);
  EXPECT_EQ(mesh.point(4).z, -7.0);
  EXPECT_NEAR(positive_offset(mesh).length(), std::sqrt(100.25), 1e-12)
      << "no length from before the components changed";
}

// The steps are 1, 2 and 5 times powers of ten. A value that is a step of 2 or 5 goes to the next one; a power of ten
// stays.
TEST(Offset, IsRoundedUpToTheNextStep) {
  const std::pair<double, double> cases[] = {{0.3, 0.5}, {7, 10}, {12, 20}, {1, 1}, {10, 10}, {5, 10}, {2, 5},
                                             {0.5, 1}, {0.1, 0.2}, {20, 50}, {4.9, 5}, {999, 1000}, {1e-3, 2e-3}};
  for (const auto& [value, expected] : cases) EXPECT_DOUBLE_EQ(round_offset_up(value), expected) << "of " << value;
  Random random(11);
  for (int k = 0; k < 20000; ++k) {
    const double value = std::pow(10.0, random.between(-300.0, 300.0));
    const double offset = round_offset_up(value);
    ASSERT_GE(offset, value);
    ASSERT_LE(offset, value * 2.5 * (1.0 + 1e-12));
  }
  EXPECT_GE(round_offset_up(5e-324), 5e-324);
  EXPECT_LE(round_offset_up(5e-324), 5e-323);
  for (const double huge : {std::numeric_limits<double>::max(), HUGE_VAL}) EXPECT_EQ(round_offset_up(huge), HUGE_VAL);
  EXPECT_GT(round_offset_up(std::nan("")), 0.0);
}

// 0.1 and 3 have no exact halves: the product of the rounded factors differs from the rounded product for some coordinates.
TEST(StlWrite, BinaryScalesInSinglePrecisionAndAsciiInDouble) {
  Random random(17);
  int differing = 0;
  for (int k = 0; k < 200; ++k) {
    const double x = random.between(-1000.0, 1000.0);
    const double scale = random.between(0.1, 3.0);
    BlockOf mesh(Shape{{{x, 0, 0}, {0, 1, 0}, {0, 0, 1}}, {{0, 1, 2}}});
    const float single = static_cast<float>(scale) * static_cast<float>(x);
    ASSERT_EQ(floats_at(written_binary(mesh, 0, scale).bytes, 84 + 12, 1)[0], single);
    differing += single != static_cast<float>(scale * x);
    char line[200];
    std::snprintf(line, sizeof line, "      vertex   %e %e %e\n", scale * x, 0.0, 0.0);
    ASSERT_NE(written_ascii(mesh, 0, scale).bytes.find(line), std::string::npos) << line;
  }
  EXPECT_GT(differing, 20);
}

// A cross product of at most 1e-5 is written as it is, a longer one as a unit vector.
TEST(StlWrite, SmallTrianglesHaveTheirRawCrossProductAsNormal) {
  const std::pair<double, float> cases[] = {{1e-3, 1e-6f}, {3e-3, 9e-6f}, {4e-3, 1.0f}};
  for (const auto& [edge, z] : cases) {
    BlockOf mesh(Shape{{{0, 0, 0}, {edge, 0, 0}, {0, edge, 0}}, {{0, 1, 2}}});
    EXPECT_EQ(floats_at(written_binary(mesh).bytes, 84, 3)[2], z) << edge;
    char line[200];
    std::snprintf(line, sizeof line, "facet normal %e %e %e\n", 0.0, -0.0, static_cast<double>(z));
    EXPECT_NE(written_ascii(mesh).bytes.find(line), std::string::npos) << edge;
  }
}

TEST(StlWrite, ReportsProgressAtEveryElementNumberInTranslatedTexts) {
  trTriBlock mesh;
  read_binary(mesh, binary_stl(1500));
  const MarkingHook hook;
  InterruptingHandler handler;
  written_binary(mesh);
  written_ascii(mesh);
  EXPECT_EQ(handler.messages,
            (std::vector<std::string>{"<Writing STL file...", "<Processing 1501 triangles:   1000",
                                      "<Finished writing STL file...", "<Writing ASCII STL file...",
                                      "<Processing 1501 triangles:   1000", "<Finished writing ASCII STL file..."}));
  EXPECT_EQ(handler.percents.back(), 100.0);
}

// Without a buffer the failure is told where the first byte found no room. Behind a buffer it shows at the facet that
// overflows it: 84 bytes and 80 facets are 4084 bytes, the 81st passes 4096. What still fits is told as the buffer is
// emptied, at the last facet.
TEST(StlWrite, AFullDiskIsToldAtTheFacetThatFoundNoRoom) {
  trTriBlock mesh;
  read_binary(mesh, binary_stl(200));
  mesh.delete_element(2);
  mesh.delete_element(200);
  const struct {
    std::size_t buffer, room;
    const char* err;
  } cases[] = {{0, 0, "Error writing file header\n"},
               {0, 79, "Error writing file header\n"},
               {0, 80, "Error writing element count\n"},
               {0, 83, "Error writing element count\n"},
               {0, 84, "** Error occurred writing facet 1 **\n"},
               {0, 133, "** Error occurred writing facet 1 **\n"},
               {0, 134, "** Error occurred writing facet 3 **\n"},
               {0, 84 + 198 * 50 - 1, "** Error occurred writing facet 199 **\n"},
               {0, 84 + 198 * 50, ""},
               {4096, 0, "** Error occurred writing facet 82 **\n"},
               {65536, 0, "** Error occurred writing facet 199 **\n"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.room << " behind " << c.buffer);
    InterruptingHandler handler;
    const Written written = write_to_full_disk(stl_format, mesh, c.room, c.buffer);
    EXPECT_EQ(written.result, *c.err == '\0');
    EXPECT_EQ(written.err, c.err);
    EXPECT_EQ(handler.messages.back() == "Finished writing STL file...", *c.err == '\0');
  }
  EXPECT_EQ(write_to_full_disk(ascii_stl_format, mesh, 100).result, 1) << "text is written blindly";
}

// What was read from a file that this library wrote is written as the same bytes again. Only the first file's normals
// may differ: they come from coordinates in double precision. Single precision is carried over without loss.
TEST(StlRoundTrip, WrittenReadAndWrittenAgainTheBytesAreTheSame) {
  Random random(71);
  const Shape soup = single_precision_soup(random, 400);
  for (const Shape& shape : {closed_box(), sphere(6), punctured_sphere(8, 3), torus(12, 5), soup, Shape()}) {
    BlockOf mesh(shape);
    for (const Format* format : {&stl_format, &ascii_stl_format}) {
      trTriBlock first, second;
      EXPECT_EQ(read_format(*format, first, write_format(*format, mesh, 1).bytes).result, 1);
      EXPECT_EQ(first.valid_elements(), static_cast<int>(shape.triangles.size()));
      const std::string bytes = write_format(*format, first).bytes;
      EXPECT_EQ(read_format(*format, second, bytes).result, 1);
      EXPECT_EQ(geometry_of(second), geometry_of(first));
      EXPECT_TRUE(are_same(write_format(*format, second).bytes, bytes));
    }
  }
  BlockOf mesh(soup);
  trTriBlock read;
  read_binary(read, written_binary(mesh).bytes);
  EXPECT_EQ(geometry_of(read), geometry_of(mesh));
}

TEST(StlLocale, NumbersInMessagesAreNotGrouped) {
  trTriBlock mesh;
  CapturedOutput out;
  out.stream.imbue(std::locale(std::locale::classic(), new Grouping));
  const std::string bytes = binary_stl(1234, 2000);
  {
    trTriRead reader(&mesh, stream_on(bytes), 0, 0);
    EXPECT_EQ(reader.read_stl(1, 0), 0);
  }
  EXPECT_EQ(out.text(), " sample\n** Error reading element 1235 **\n");
}
