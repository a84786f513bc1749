#include <gtest/gtest.h>

#include <cstring>

#include "formats/stl_files.h"
#include "support/interrupting_handler.h"
#include "support/marking_hook.h"
#include "support/validator.h"

namespace {

std::vector<int> numbers(int first, int last) {
  std::vector<int> result;
  for (int k = first; k <= last; ++k) result.push_back(k);
  return result;
}

// A mesh with something in it that a read must either replace or leave in its place.
void put_old_facet(trTriBlock& mesh) {
  for (int k = 1; k <= 3; ++k) mesh.set_node(k, giPoint3(-k, k * k, 0.5));
  mesh.set_element(1, 1, 2, 3);
}

}  // namespace

TEST(StlBinaryRead, MakesThreeNodesAndOneElementOfEveryFacet) {
  trTriBlock mesh;
  put_old_facet(mesh);
  const ReadOutcome read = read_binary(mesh, binary_stl(3));
  EXPECT_EQ(read.result, 1);
  EXPECT_EQ(read.out, " sample\n");
  EXPECT_EQ(read.err, "");
  EXPECT_EQ(mesh.node_count(), 10);
  EXPECT_EQ(mesh.element_count(), 4);
  for (int e = 1; e <= 3; ++e) {
    for (int k = 0; k < 3; ++k) EXPECT_EQ(mesh.element(e)[k], 3 * e - 2 + k);
  }
  EXPECT_EQ(sample_facets_in(mesh), numbers(1, 3));
  EXPECT_EQ(mesh.get_element_colour(1), NO_COLOUR) << "attribute words are no colours";
  EXPECT_TRUE(is_sound(mesh));
}

TEST(StlBinaryRead, ReportsProgressAndPollsAtEveryFacet) {
  for (const int append : {0, 1}) {
    InterruptingHandler handler;
    trTriBlock mesh;
    ReadOptions options;
    options.append = append;
    read_binary(mesh, binary_stl(2001), options);
    EXPECT_EQ(handler.polls, 2001);
    EXPECT_EQ(handler.messages, (std::vector<std::string>{append ? "Appending STL file..." : "Reading STL file...",
                                                          "Processing 2001 triangles:   1000", "Processing 2001 triangles:   2000",
                                                          "Processing 2001 triangles:   2001", "Finished reading STL file..."}));
    EXPECT_EQ(handler.percents.front(), 0.0);
    EXPECT_NEAR(handler.percents[1], 100.0 * 1000 / 2001, 1e-9);
    EXPECT_EQ(handler.percents.back(), 100.0);
  }
}

// `stop` limits how many facets are read, so a stop below start reads some and keeps none. A start below 1 keeps everything, a
// negative stop is no limit.
TEST(StlBinaryRead, KeepsTheFacetsFromStartToStop) {
  struct Case {
    int start, stop;
    int first, last;  // kept
    int polls;        // one for each facet that is read
  };
  const Case cases[] = {{1, 0, 1, 10, 10}, {3, 5, 3, 5, 5},   {3, 0, 3, 10, 10},  {1, 1, 1, 1, 1},    {10, 10, 10, 10, 10},
                        {3, 2, 1, 0, 2},   {11, 0, 1, 0, 10}, {1, 99, 1, 10, 10}, {0, 0, 1, 10, 10},  {-5, 4, 1, 4, 4},
                        {1, -1, 1, 10, 10}, {2, -7, 2, 10, 10}, {INT_MAX, INT_MAX, 1, 0, 10}, {INT_MIN, INT_MIN, 1, 10, 10}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.start << " to " << c.stop);
    InterruptingHandler handler;
    trTriBlock mesh;
    ReadOptions options;
    options.start = c.start;
    options.stop = c.stop;
    EXPECT_EQ(read_binary(mesh, binary_stl(10), options).result, 1);
    EXPECT_EQ(sample_facets_in(mesh), numbers(c.first, c.last));
    EXPECT_EQ(mesh.node_count(), 1 + 3 * static_cast<int>(numbers(c.first, c.last).size())) << "dropped facets must leave no nodes";
    EXPECT_EQ(handler.polls, c.polls);
  }
}

// What lies behind `stop` may be missing or senseless: it is never read.
TEST(StlBinaryRead, FacetsAfterStopAreNotRead) {
  trTriBlock mesh;
  ReadOptions options;
  options.stop = 2;
  EXPECT_EQ(read_binary(mesh, binary_stl(2, 1000), options).result, 1);
  EXPECT_EQ(sample_facets_in(mesh), numbers(1, 2));
}

TEST(StlBinaryRead, AppendingNumbersOnFromTheEndsOfTheArrays) {
  trTriBlock mesh;
  put_old_facet(mesh);
  mesh.set_node(7, giPoint3(1, 1, 1));
  mesh.delete_node(7);
  mesh.undup_tol = 0.5;
  ReadOptions options;
  options.append = 1;
  for (int times = 1; times <= 2; ++times) {
    EXPECT_EQ(read_binary(mesh, binary_stl(2), options).result, 1);
    EXPECT_EQ(mesh.node_count(), 8 + 6 * times) << "no corner is shared, not even with the same file";
    EXPECT_EQ(mesh.element_count(), 2 + 2 * times);
  }
  EXPECT_EQ(mesh.element(2)[0], 8) << "numbering goes on behind deleted nodes";
  EXPECT_EQ(mesh.undup_tol, 0.0);
  EXPECT_EQ(mesh.changed, 1);
  EXPECT_EQ(mesh.element(1)[2], 3);
  EXPECT_TRUE(is_sound(mesh));
}

// Appended triangles carry no attributes, so the mesh keeps none. They go even when nothing can be read.
TEST(StlBinaryRead, AppendingDeletesNodeAttributes) {
  const std::string told = " Insufficient node data in new triangles.\n Node attributes have been deleted.\n";
  for (const std::string& bytes : {binary_stl(1), std::string("short")}) {
    trTriBlock mesh;
    put_old_facet(mesh);
    mesh.set_node_data_size(2);
    ReadOptions options;
    options.append = 1;
    const ReadOutcome read = read_binary(mesh, bytes, options);
    EXPECT_EQ(read.out.substr(0, told.size()), told);
    EXPECT_EQ(mesh.node_data_size(), 0);
    EXPECT_TRUE(mesh.element(1).valid());
  }
}

TEST(StlBinaryRead, WantedAttributesAreMissed) {
  trTriBlock mesh;
  ReadOptions options;
  options.read_node_data = 1;
  EXPECT_EQ(read_binary(mesh, binary_stl(1), options).out, " New triangles have no node attributes.\n sample\n");
}

TEST(StlBinaryRead, EchoesAtMostTheEightyCharactersOfTheHeader) {
  const std::string full(80, 'h');
  const std::pair<std::string, std::string> cases[] = {
      {full, " " + full + "\n"}, {"", " \n"}, {std::string("ab\0cd", 5), " ab\n"}, {"100% of %s", " 100% of %s\n"}};
  for (const auto& [header, out] : cases) {
    trTriBlock mesh;
    EXPECT_EQ(read_binary(mesh, binary_stl(1, 1, header)).out, out);
  }
}

TEST(StlBinaryRead, ACountOfZeroMakesAnEmptyMesh) {
  InterruptingHandler handler;
  trTriBlock mesh;
  put_old_facet(mesh);
  EXPECT_EQ(read_binary(mesh, binary_stl(0)).result, 1);
  EXPECT_EQ(mesh.node_count(), 1);
  EXPECT_EQ(mesh.element_count(), 1);
  EXPECT_EQ(handler.messages, (std::vector<std::string>{"Reading STL file...", "Finished reading STL file..."}));

  put_old_facet(mesh);
  mesh.force_changed_status(0);
  ReadOptions options;
  options.append = 1;
  EXPECT_EQ(read_binary(mesh, binary_stl(0), options).result, 1);
  EXPECT_EQ(mesh.element_count(), 2);
  EXPECT_EQ(mesh.changed, 1);
}

// Cut at every byte. Up to the count nothing is touched; behind it the facets that are whole are stored, and of the one that is cut
// the corners that are whole, as nodes without an element.
TEST(StlBinaryRead, AFileCutAnywhereKeepsWhatIsComplete) {
  const std::string bytes = binary_stl(3);
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    SCOPED_TRACE(length);
    InterruptingHandler handler;
    trTriBlock mesh;
    put_old_facet(mesh);
    const ReadOutcome read = read_binary(mesh, bytes.substr(0, length));
    EXPECT_EQ(read.result, 0);
    if (length < 84) {
      EXPECT_EQ(read.err, length < 80 ? "Error reading file header data\n" : "Error reading facet count\n");
      EXPECT_EQ(read.out, length < 80 ? "" : " sample\n");
      EXPECT_EQ(handler.messages, std::vector<std::string>{"Reading STL file..."});
      EXPECT_EQ(mesh.element_count(), 2);
      continue;
    }
    const int whole = static_cast<int>(length - 84) / 50;
    const int rest = static_cast<int>(length - 84) % 50;
    const int loose = rest < 24 ? 0 : std::min(rest / 12 - 1, 3);
    EXPECT_EQ(read.err, "");
    EXPECT_EQ(read.out, " sample\n** Error reading element " + std::to_string(whole + 1) + " **\n");
    EXPECT_EQ(handler.messages.back(), "Finished reading STL file...");
    EXPECT_EQ(handler.percents.back(), 100.0);
    EXPECT_EQ(sample_facets_in(mesh), numbers(1, whole));
    ASSERT_EQ(mesh.node_count(), 1 + 3 * whole + loose);
    for (int k = 0; k < loose; ++k) {
      EXPECT_EQ(mesh.point(1 + 3 * whole + k).z, sample_corners(whole + 1)[static_cast<std::size_t>(k)].z);
    }
    EXPECT_TRUE(is_sound(mesh));
  }
}

// The corners of a facet that is cut off while facets are skipped leave no nodes.
TEST(StlBinaryRead, AFacetCutWhileSkippingLeavesNothing) {
  trTriBlock mesh;
  ReadOptions options;
  options.start = 3;
  const std::string bytes = binary_stl(3);
  const ReadOutcome read = read_binary(mesh, bytes.substr(0, 84 + 50 + 40), options);
  EXPECT_EQ(read.out, " sample\n** Error reading element 2 **\n");
  EXPECT_EQ(mesh.node_count(), 1);
}

// Nothing may be allocated, reported or read in proportion to what the count claims.
TEST(StlBinaryRead, ACountBeyondTheFileEndsAtOnce) {
  for (const std::uint32_t count : {20000000u, 0x7fffffffu, 0x80000000u, 0xffffffffu}) {
    InterruptingHandler handler;
    trTriBlock mesh;
    const ReadOutcome read = read_binary(mesh, binary_stl(2, count));
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.out, " sample\n** Error reading element 3 **\n");
    EXPECT_EQ(handler.polls, 3);
    EXPECT_EQ(sample_facets_in(mesh), numbers(1, 2));
  }
}

TEST(StlBinaryRead, EveryTextIsTranslated) {
  const MarkingHook hook;
  InterruptingHandler handler;
  trTriBlock mesh;
  mesh.set_node_data_size(1);
  ReadOptions options;
  options.append = 1;
  EXPECT_EQ(read_binary(mesh, binary_stl(1, 2), options).out,
            "< Insufficient node data in new triangles.\n< Node attributes have been deleted.\n sample\n"
            "<** Error reading element 2< **\n");
  EXPECT_EQ(handler.messages.front(), "<Appending STL file...");
  EXPECT_EQ(handler.messages.back(), "<Finished reading STL file...");
  EXPECT_EQ(read_binary(mesh, "").err, "<Error reading file header data\n");
  EXPECT_EQ(read_binary(mesh, std::string(80, 'h')).err, "<Error reading facet count\n");
}

// Coordinates that are no numbers are stored as they are.
TEST(StlBinaryRead, StoresWhatIsNotFinite) {
  std::string bytes = binary_stl(1);
  const float odd[3] = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), -0.0f};
  std::memcpy(&bytes[84 + 12], odd, sizeof odd);
  trTriBlock mesh;
  EXPECT_EQ(read_binary(mesh, bytes).result, 1);
  EXPECT_TRUE(std::isnan(mesh.point(1).x));
  EXPECT_EQ(mesh.point(1).y, HUGE_VAL);
  EXPECT_TRUE(std::signbit(mesh.point(1).z));
}
