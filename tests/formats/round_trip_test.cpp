// What comes back of what was written, for every format but STL, and what each loses.

#include <gtest/gtest.h>

#include "formats/format_files.h"
#include "oracles/literal_format_writers.h"
#include "support/comma_locale.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

// A mesh of either kind and both ways to number it, again and again.
void for_plans(const std::function<void(trTriBlock& mesh, int colours, int rwrite)>& check) {
  Random random(4711);
  for (const int attributes : {0, 1, 2, 3, 4, 5}) {
    for (const int colours : {0, 1, 2, 6}) {
      for (const int rwrite : {0, 1}) {
        SCOPED_TRACE(testing::Message() << attributes << " attributes, " << colours << " colours, rwrite " << rwrite);
        trTriBlock mesh;
        fill(mesh, {20, 30, attributes, colours}, random);
        check(mesh, colours, rwrite);
      }
    }
  }
}

}  // namespace

TEST(FormatRoundTrip, WhatWasReadIsWrittenAgainByteForByte) {
  for_plans([](trTriBlock& mesh, int colours, int rwrite) {
    for (const Format* format : formats) {
      SCOPED_TRACE(format->name);
      const Written first = write_format(*format, mesh, rwrite);
      EXPECT_EQ(first.result, 1);
      trTriBlock again;
      EXPECT_EQ(read_format(*format, again, first.bytes, {1, 0, 0, 1}).result, 1);
      EXPECT_TRUE(is_sound(again));
      EXPECT_EQ(again.valid_elements(), mesh.valid_elements());
      if (format == &native_format && colours > 1) continue;  // colours that are lost: see below
      EXPECT_TRUE(are_same(write_format(*format, again, rwrite).bytes, first.bytes));
    }
  });
}

// Gaps among the numbers stay, and coordinates and attributes come back to the bit.
TEST(FormatRoundTrip, NativeFilesKeepNumbersAndBits) {
  Random random(1);
  trTriBlock mesh;
  fill(mesh, {20, 30, 5, 1}, random);
  const double odd[] = {1.0 / 3.0, -0.0, 5e-324, std::numeric_limits<double>::infinity(), std::nextafter(1e300, 0.0)};
  for (int i = 1; i < mesh.node_count(); ++i) {
    if (mesh.node(i).invalid) continue;
    mesh.set_node(i, giPoint3(odd[i % 5], odd[(i + 1) % 5], odd[(i + 2) % 5]));
    mesh.node_data(i).values[4] = odd[i % 4];
  }
  trTriBlock again;
  read_format(native_format, again, write_format(native_format, mesh).bytes, {1, 0, 0, 1});
  EXPECT_EQ(content_of(again), content_of(mesh));
  EXPECT_LT(mesh.valid_elements(), mesh.element_count() - 1) << "the mesh has no gaps";
  EXPECT_LT(mesh.valid_nodes(), mesh.node_count() - 1);
}

// Native files list no elements of the commonest colour, which becomes the default; a mesh gives -1 to elements that it passes over on
// its way to a listed one. So the commonest colour is lost below the highest number listed.
TEST(FormatRoundTrip, NativeFilesLoseTheCommonestColourBelowTheHighestNumberListed) {
  struct Case {
    std::vector<int> colours;
    std::vector<int> read_back;
  };
  constexpr int red_of_128 = static_cast<int>(0x80000000u);
  for (const Case& c : {
           Case{{5, 5, 9, 5, 5}, {-1, -1, 9, 5, 5}},
           Case{{5, 5, 5, 5, 9}, {-1, -1, -1, -1, 9}},
           Case{{9, 5, 5, 5, 5}, {9, 5, 5, 5, 5}},
           Case{{9, 5}, {-1, 5}},  // of a tie the first counts as the commonest
           Case{{5, red_of_128, 5}, {-1, red_of_128, 5}},
           Case{{5, -1, -1}, {5, -1, -1}},  // the commonest is -1: no default, and elements that are not listed have none
           Case{{red_of_128, 5, 5}, {-1, -1, -1}},  // a negative default counts as no colours
           Case{{-1, 5, 5}, {-1, -1, -1}},
       }) {
    BlockOf mesh(flat_sheet(3, 1));
    for (int e = 6; e > static_cast<int>(c.colours.size()); --e) mesh.delete_element(e);
    for (std::size_t k = 0; k < c.colours.size(); ++k) mesh.set_element_colour(static_cast<int>(k) + 1, c.colours[k]);
    trTriBlock again;
    read_format(native_format, again, write_format(native_format, mesh).bytes);
    std::vector<int> read_back;
    for (std::size_t k = 0; k < c.colours.size(); ++k) read_back.push_back(again.get_element_colour(static_cast<int>(k) + 1));
    EXPECT_EQ(read_back, c.read_back) << testing::PrintToString(c.colours);
  }
}

// Mesh files keep every colour from 0 up; elements of a group with a negative one are not read.
TEST(FormatRoundTrip, MeshFilesLoseElementsOfNegativeColours) {
  for (const int rwrite : {0, 1}) {
    BlockOf mesh(flat_sheet(2, 1));
    const int colours[] = {3, static_cast<int>(0xff000000u), -1, 0x7fffffff};
    for (int e = 1; e <= 4; ++e) mesh.set_element_colour(e, colours[e - 1]);
    trTriBlock again;
    read_format(mesh_format, again, write_format(mesh_format, mesh, rwrite).bytes);
    EXPECT_EQ(again.valid_elements(), 2);
    EXPECT_EQ(again.get_element_colour(1), 3);
    EXPECT_EQ(again.get_element_colour(4), 0x7fffffff);
  }
}

// A mesh without colours is written in colour 1, and so comes back coloured.
TEST(FormatRoundTrip, MeshFilesColourPlainMeshes) {
  BlockOf mesh(flat_sheet(1, 1));
  trTriBlock again;
  read_format(mesh_format, again, write_format(mesh_format, mesh).bytes);
  EXPECT_EQ(again.default_colour(), 1);
}

TEST(FormatRoundTrip, ListsAndGroupsAreThoseOfPassesOverAllElements) {
  Random random(99);
  int several = 0;
  for (int round = 0; round < 200; ++round) {
    trTriBlock mesh;
    fill(mesh, {20, random.between(1, 40), random.between(0, 5), random.between(0, 6)}, random);
    if (round % 3 == 0) mesh.delete_element(1);
    if (round % 5 == 0) mesh.set_element_colour(random.between(1, mesh.element_count()), -1);
    if (mesh.valid_elements() == 0) continue;
    for (const int rwrite : {0, 1}) {
      EXPECT_TRUE(are_same(write_format(native_format, mesh, rwrite).bytes, literal_native(mesh, rwrite))) << round;
      EXPECT_TRUE(are_same(write_format(mesh_format, mesh, rwrite).bytes, literal_mesh_file(mesh, rwrite))) << round;
    }
    several += mesh.default_colour() >= 0;
  }
  EXPECT_GE(several, 100);
}

// Every part that is appended keeps its triangles, and none of them meets another part.
TEST(FormatAppending, TheSameFileTwiceMakesThreeSeparateParts) {
  Random random(5);
  for (const Format* format : formats) {
    SCOPED_TRACE(format->name);
    trTriBlock source;
    fill(source, {20, 30, 2, 6}, random);
    const std::string bytes = write_format(*format, source).bytes;
    trTriBlock once, thrice;
    read_format(*format, once, bytes, {1, 0, 0, 1});
    for (const int append : {0, 1, 1}) EXPECT_EQ(read_format(*format, thrice, bytes, {1, 0, append, 1}).result, 1);
    EXPECT_TRUE(is_sound(thrice));
    EXPECT_EQ(thrice.valid_nodes(), 3 * once.valid_nodes());
    const std::vector<double> part = geometry_of(once);
    std::vector<double> expected;
    for (int k = 0; k < 3; ++k) expected.insert(expected.end(), part.begin(), part.end());
    EXPECT_EQ(geometry_of(thrice), expected);
    const int elements = once.element_count();
    for (int e = elements; e < thrice.element_count(); ++e) {
      const trElement& t = thrice.element(e);
      if (!t.valid()) continue;
      EXPECT_GE(std::min({t[0], t[1], t[2]}), once.node_count());
    }
  }
}

TEST(FormatLocale, ACommaAsDecimalPointAndLineEndsOfOtherSystemsChangeNothing) {
  Random random(3);
  trTriBlock mesh;
  fill(mesh, {20, 30, 2, 6}, random);
  std::vector<std::string> files, contents;
  for (const Format* format : all_formats) {
    files.push_back(write_format(*format, mesh).bytes);
    trTriBlock plain;
    read_format(*format, plain, files.back(), {1, 0, 0, 1});
    contents.push_back(content_of(plain));
  }
  const CommaLocale locale;
  if (!locale.is_set()) GTEST_SKIP() << "no locale with a comma as decimal point is installed or can be made";
  for (std::size_t k = 0; k < files.size(); ++k) {
    SCOPED_TRACE(all_formats[k]->name);
    EXPECT_TRUE(are_same(write_format(*all_formats[k], mesh).bytes, files[k]));
    std::vector<std::string> variants{files[k]};
    if (k != 0 && k != 4 && k != 5) {  // text
      std::string returns;
      for (const char c : files[k]) returns += c == '\n' ? "\r\n" : std::string(1, c);
      variants.push_back(returns);
      variants.push_back(files[k].substr(0, files[k].size() - 1));
    }
    for (const std::string& variant : variants) {
      trTriBlock read;
      EXPECT_EQ(read_format(*all_formats[k], read, variant, {1, 0, 0, 1}).result, 1);
      EXPECT_TRUE(content_of(read) == contents[k]);
    }
  }
}
