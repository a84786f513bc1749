#include <gtest/gtest.h>

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

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) text.replace(at, from.size(), to);
  return text;
}

const char* const one_facet = "facet vertex 1 2 3 vertex 4 5 6 vertex 7 8 9 endfacet ";

}  // namespace

TEST(StlAsciiRead, MakesThreeNodesAndOneElementOfEveryFacet) {
  trTriBlock mesh;
  mesh.set_node(5, giPoint3(1, 1, 1));
  const ReadOutcome read = read_ascii(mesh, ascii_stl(3));
  EXPECT_EQ(read.result, 1);
  EXPECT_EQ(read.out, "");
  EXPECT_EQ(mesh.node_count(), 10);
  EXPECT_EQ(mesh.element_count(), 4);
  EXPECT_EQ(mesh.element(3)[2], 9);
  EXPECT_EQ(sample_facets_in(mesh), numbers(1, 3));
  EXPECT_TRUE(is_sound(mesh));
}

// The total is not known: -1 in the text, and percentages that mean nothing. The end of the file is found by one poll more.
TEST(StlAsciiRead, ReportsProgressAndPollsAtEveryFacet) {
  for (const int append : {0, 1}) {
    InterruptingHandler handler;
    trTriBlock mesh;
    ReadOptions options;
    options.append = append;
    read_ascii(mesh, ascii_stl(2001), options);
    EXPECT_EQ(handler.polls, 2002);
    EXPECT_EQ(handler.messages, (std::vector<std::string>{append ? "Appending ASCII STL file ..." : "Reading ASCII STL file ...",
                                                          "Processing -1 triangles:     0", "Processing -1 triangles:   1000",
                                                          "Processing -1 triangles:   2000", "Finished reading ASCII STL file"}));
    EXPECT_EQ(handler.percents, (std::vector<double>{0, 0, -100000, -200000, 100}));
  }
}

// A stop below start is no limit here, and a start below 1 is never met: all is read and nothing kept.
TEST(StlAsciiRead, KeepsTheFacetsFromStartToStop) {
  struct Case {
    int start, stop;
    int first, last;  // kept
    int polls;
  };
  const Case cases[] = {{1, 0, 1, 10, 11}, {3, 5, 3, 5, 5},    {3, 0, 3, 10, 11},  {1, 1, 1, 1, 1},   {10, 10, 10, 10, 10},
                        {3, 2, 3, 10, 11}, {11, 0, 1, 0, 11},  {1, 99, 1, 10, 11}, {0, 0, 1, 0, 11},  {-5, 4, 1, 0, 4},
                        {1, -1, 1, 10, 11}, {2, -7, 2, 10, 11}, {INT_MAX, INT_MAX, 1, 0, 11}, {INT_MIN, INT_MIN, 1, 0, 11}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.start << " to " << c.stop);
    InterruptingHandler handler;
    trTriBlock mesh;
    ReadOptions options;
    options.start = c.start;
    options.stop = c.stop;
    EXPECT_EQ(read_ascii(mesh, ascii_stl(10), options).result, 1);
    EXPECT_EQ(sample_facets_in(mesh), numbers(c.first, c.last));
    EXPECT_EQ(mesh.node_count(), 1 + 3 * static_cast<int>(numbers(c.first, c.last).size()));
    EXPECT_EQ(handler.polls, c.polls);
  }
}

TEST(StlAsciiRead, AppendingNumbersOnAndDeletesNodeAttributes) {
  trTriBlock mesh;
  read_ascii(mesh, ascii_stl(1));
  mesh.set_node_data_size(3);
  ReadOptions options;
  options.append = 1;
  const ReadOutcome read = read_ascii(mesh, ascii_stl(2), options);
  EXPECT_EQ(read.out, " Insufficient node data in new triangles.\n Node attributes have been deleted.\n");
  EXPECT_EQ(sample_facets_in(mesh), (std::vector<int>{1, 1, 2}));
  EXPECT_EQ(mesh.element(2)[0], 4);
  EXPECT_EQ(mesh.node_data_size(), 0);
}

// Line ends of any system or none, keywords in any case, no "solid", no normal, several solids: all the same facets.
TEST(StlAsciiRead, TheFormOfTheTextDoesNotMatter) {
  const std::string plain = ascii_stl(3);
  std::string upper = plain;
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  const std::pair<const char*, std::string> forms[] = {
      {"plain", plain},
      {"CR LF", replaced(plain, "\n", "\r\n")},
      {"CR", replaced(plain, "\n", "\r")},
      {"one line", replaced(plain, "\n", " ")},
      {"tabs", replaced(plain, " ", "\t")},
      {"upper case", upper},
      {"mixed case", replaced(replaced(plain, "vertex", "Vertex"), "facet", "fAcEt")},
      {"bare keywords", replaced(replaced(plain, "outer loop", ""), "normal 0 0 1", "")},
      {"no final line end", plain.substr(0, plain.size() - 1)},
      {"no endsolid", plain.substr(0, plain.find("endsolid"))},
      {"ends with endfacet", plain.substr(0, plain.rfind("endfacet") + 8)},
      {"junk between", replaced(plain, "outer", "%s 1e5 \x01\xff outer")},
      {"senseless normal", replaced(plain, "0 0 1", "nan what 1e999")},
  };
  for (const auto& [name, text] : forms) {
    SCOPED_TRACE(name);
    trTriBlock mesh;
    const ReadOutcome read = read_ascii(mesh, text);
    EXPECT_EQ(read.result, 1);
    EXPECT_EQ(read.out, "");
    EXPECT_EQ(sample_facets_in(mesh), numbers(1, 3));
  }
}

// The words "facet", "vertex" and "endfacet" count wherever they stand, in the name of the solid too.
TEST(StlAsciiRead, KeywordsInANameBreakTheRead) {
  const std::pair<const char*, const char*> cases[] = {
      {"vertex", "*** Error: expected 'facet' but found 'vertex' ***\n*** Error: problem reading facet 1 ***\n"},
      {"endFacet", "*** Error: expected 'facet' but found 'endfacet' ***\n*** Error: problem reading facet 1 ***\n"},
      {"facet of a gem", "*** Error: expected 'vertex' but found 'facet' ***\n*** Error: problem reading facet 1 ***\n"},
  };
  for (const auto& [name, out] : cases) {
    trTriBlock mesh;
    const ReadOutcome read = read_ascii(mesh, ascii_stl(1, name));
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.out, out);
    EXPECT_EQ(mesh.node_count(), 1);
  }
}

// One good facet, then one that is not: the first is stored, of the other nothing, and nothing is read behind it.
TEST(StlAsciiRead, ReadingEndsAtTheFirstMalformedFacet) {
  const std::string end = "*** Error: unexpected end of file ***\n";
  const std::string bad_number = "*** Error: problem reading vertex coordinates ***\n";
  const auto expected = [](const std::string& sought, const std::string& found) {
    return "*** Error: expected '" + sought + "' but found '" + found + "' ***\n";
  };
  const std::pair<std::string, std::string> cases[] = {
      {"facet", end},
      {"facet vertex 1 2 3", end},
      {"facet vertex 1 2 3 vertex", bad_number},
      {"facet vertex 1 2 3 vertex 4 5", bad_number},
      {"facet vertex 1 2 3 vertex 4 5 six " + std::string(one_facet), bad_number},
      {"facet vertex 1 2 1e vertex", bad_number},
      {"facet vertex 1 2 3 vertex 4 5 6 vertex 7 8 9", end},
      {"facet vertex 1 2 3 vertex 4 5 6 vertex 7 8 9 endloop end", end},
      {"facet vertex 1 2 3 vertex 4 5 6 vertex 7 8 9 endface t", end},
      {"facet vertex 1 2 3 vertex 4 5 6 vertex 7 8 9 vertex 1 1 1 endfacet", expected("endfacet", "vertex")},
      {"facet vertex 1 2 3 vertex 4 5 6 endfacet " + std::string(one_facet), expected("vertex", "endfacet")},
      {"facet vertex 1 2 3 facet", expected("vertex", "facet")},
      {"endfacet", expected("facet", "endfacet")},
      {"VERTEX 1 2 3", expected("facet", "vertex")},
  };
  for (const auto& [text, out] : cases) {
    SCOPED_TRACE(text);
    InterruptingHandler handler;
    trTriBlock mesh;
    const ReadOutcome read = read_ascii(mesh, one_facet + text);
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.out, out + "*** Error: problem reading facet 2 ***\n");
    EXPECT_EQ(mesh.node_count(), 4);
    EXPECT_EQ(mesh.element_count(), 2);
    EXPECT_EQ(handler.polls, 2);
    EXPECT_EQ(handler.messages.back(), "Finished reading ASCII STL file");
    EXPECT_EQ(handler.percents.back(), 100.0);
  }
}

// A facet that is skipped is read all the same, so its faults count.
TEST(StlAsciiRead, FaultsOfSkippedFacetsCount) {
  trTriBlock mesh;
  ReadOptions options;
  options.start = 3;
  EXPECT_EQ(read_ascii(mesh, "facet vertex 1 x", options).out,
            "*** Error: problem reading vertex coordinates ***\n*** Error: problem reading facet 1 ***\n");
}

TEST(StlAsciiRead, TextsWithoutFacetsMakeAnEmptyMesh) {
  for (const std::string& text : {std::string(), std::string("solid nothing\nendsolid"), std::string(300000, 'x'), std::string(300000, '\0'),
                                  std::string(300000, '\n')}) {
    trTriBlock mesh;
    mesh.set_node(1, giPoint3());
    const ReadOutcome read = read_ascii(mesh, text);
    EXPECT_EQ(read.result, 1);
    EXPECT_EQ(read.out, "");
    EXPECT_EQ(mesh.node_count(), 1);
  }
}

// Numbers end where they cannot go on: nothing need stand between them.
TEST(StlAsciiRead, NumbersAreTakenAsFarAsTheyGo) {
  trTriBlock mesh;
  EXPECT_EQ(read_ascii(mesh, "facet vertex 1.5.25-3 vertex+4,", {}).result, 0);
  EXPECT_EQ(read_ascii(mesh, "facet vertex 1.5.25-3 vertex +4\v\f5 0x10abc vertex inf -nan 1e400endfacet", {}).result, 1);
  EXPECT_EQ(mesh.point(1).x, 1.5);
  EXPECT_EQ(mesh.point(1).y, 0.25);
  EXPECT_EQ(mesh.point(1).z, -3.0);
  EXPECT_EQ(mesh.point(2).z, double{0x10abc});
  EXPECT_EQ(mesh.point(3).x, HUGE_VAL);
  EXPECT_TRUE(std::isnan(mesh.point(3).y));
  EXPECT_EQ(mesh.point(3).z, HUGE_VAL);
}

TEST(StlAsciiRead, EveryTextIsTranslated) {
  const MarkingHook hook;
  InterruptingHandler handler;
  trTriBlock mesh;
  EXPECT_EQ(read_ascii(mesh, "facet facet").out, "<*** Error: expected 'vertex<' but found 'facet<' ***\n<*** Error: problem reading facet 1< ***\n");
  EXPECT_EQ(read_ascii(mesh, "facet").out, "<*** Error: <unexpected end of file< ***\n<*** Error: problem reading facet 1< ***\n");
  EXPECT_EQ(handler.messages.front(), "<Reading ASCII STL file ...");
  EXPECT_EQ(handler.messages.back(), "<Finished reading ASCII STL file");
}
