// `mendex info`: what it tells, where it tells it, and what it makes of files that are not as they should be.

#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>

#include "apps/process.h"
#include "apps/test_files.h"

namespace {

using Json = nlohmann::json;

std::vector<Json> lines_of(const std::string& output) {
  std::vector<Json> lines;
  std::istringstream stream(output);
  for (std::string line; std::getline(stream, line);) lines.push_back(Json::parse(line));
  return lines;
}

// The report on one file that can be read.
Json info(const std::string& path) {
  const ProcessResult result = run_mendex({"info", "--json", path});
  EXPECT_EQ(result.exit_code, 0) << result.errors;
  const std::vector<Json> lines = lines_of(result.output);
  EXPECT_EQ(lines.size(), 1u) << result.output;
  return lines.empty() ? Json() : lines[0];
}

}  // namespace

// An angle bracket of 34 cubes of edge 5: five by four in the base and four by four in the wall, less a hole in each.
TEST(MendexInfo, TellsCountsAndMassPropertiesOfTheBracket) {
  const Json report = info(sample("bracket_soup.stl"));
  EXPECT_EQ(report["file"], sample("bracket_soup.stl"));
  EXPECT_EQ(report["format"], "binary STL");
  EXPECT_EQ(report["elements"], 204);
  EXPECT_EQ(report["max_element"], 204);
  EXPECT_EQ(report["nodes"], 3 * 204);
  EXPECT_EQ(report["max_node"], 3 * 204);
  EXPECT_NEAR(report["area"].get<double>(), 102 * 25.0, 1e-9);
  EXPECT_NEAR(report["volume"].get<double>(), 34 * 125.0, 1e-9);
  EXPECT_NEAR(report["min_aspect"].get<double>(), report["mean_aspect"].get<double>(), 1e-12);  // all facets are alike
  EXPECT_EQ(report["box"], Json::parse(R"({"min": [0, 0, 0], "max": [25, 20, 25]})"));
  // y: 36 cubes about 10 on average, less the holes at 7.5 and 12.5.
  EXPECT_NEAR(report["centre"][1].get<double>(), (36 * 10.0 - 7.5 - 12.5) / 34, 1e-9);
  EXPECT_EQ(report["complete"], true);
  EXPECT_EQ(report["warnings"], Json::array());
}

// A report for people names the same numbers, and nothing but the report is on standard output.
TEST(MendexInfo, PrintsATableForPeople) {
  const ProcessResult result = run_mendex({"info", sample("bracket_soup.stl"), sample("open_box.ast")});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.errors, "");
  for (const char* part : {"bracket_soup.stl: binary STL\n", "triangles  204\n", "volume     4250\n",
                           "to         25  20  25\n", "\n\n", "open_box.ast: ASCII STL\n", "triangles  32\n"}) {
    EXPECT_NE(result.output.find(part), std::string::npos) << part << "is missing in\n" << result.output;
  }
}

// Files are independent: one that fails is reported on standard error, the others on standard output, and the worst
// code wins.
TEST(MendexInfo, GoesOnAfterAFileThatFails) {
  const ProcessResult result =
      run_mendex({"info", sample("gap_sphere.stl"), "/nonexistent.stl", sample("open_box.ast"), "--json"});
  EXPECT_EQ(result.exit_code, 3);
  EXPECT_EQ(result.errors, "mendex: /nonexistent.stl: cannot be read: No such file or directory\n");
  const std::vector<Json> lines = lines_of(result.output);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0]["elements"], 224);
  EXPECT_EQ(lines[1]["format"], "ASCII STL");
}

// 100 whole facets and 33 bytes of the 101st, whose first corner was complete: it stays as a node without an element.
TEST(MendexInfo, UsesWhatATruncatedFileStillHolds) {
  const ProcessResult result = run_mendex({"info", "--json", sample("truncated.stl")});
  EXPECT_EQ(result.exit_code, 0);
  const Json report = lines_of(result.output).at(0);
  EXPECT_EQ(report["elements"], 100);
  EXPECT_EQ(report["nodes"], 301);
  EXPECT_EQ(report["complete"], false);
  EXPECT_EQ(report["warnings"].size(), 2u);
  EXPECT_NE(result.errors.find("** Error reading element 101 **\n"), std::string::npos) << result.errors;
  EXPECT_NE(result.errors.find("of the 204 triangles that it promises, 100 could be read"), std::string::npos)
      << result.errors;
}

TEST(MendexInfo, WarnsOfTrianglesBeyondThePromisedOnes) {
  const TestFolder folder;
  const std::string file = folder.write("more.stl", binary_stl(some_facets(5), "", 3));
  const ProcessResult result = run_mendex({"info", "--json", file});
  EXPECT_EQ(lines_of(result.output).at(0)["elements"], 3);
  EXPECT_NE(result.errors.find("100 bytes beyond the 3 triangles"), std::string::npos) << result.errors;
}

// JSON knows no infinities: what cannot be computed is null, and the line stays parseable.
TEST(MendexInfo, NumbersThatAreNotFiniteAreNull) {
  const TestFolder folder;
  const Json empty = info(folder.write("empty.stl", binary_stl({})));
  EXPECT_EQ(empty["elements"], 0);
  EXPECT_TRUE(empty["mean_aspect"].is_null());
  EXPECT_EQ(empty["box"]["min"], Json::parse("[null, null, null]"));
  std::vector<FacetCorners> facets = some_facets(2);
  facets[1][4] = std::numeric_limits<float>::infinity();
  const Json infinite = info(folder.write("infinite.stl", binary_stl(facets)));
  EXPECT_EQ(infinite["elements"], 2);
  EXPECT_TRUE(infinite["area"].is_null());
  EXPECT_TRUE(infinite["box"]["max"][1].is_null());
  EXPECT_EQ(infinite["box"]["max"][0], 2.0);
}

// Names are bytes to the system: blanks, a leading dash, a line end and bytes that are no UTF-8 reach the report
// unharmed or replaced, and cannot forge a line of output.
TEST(MendexInfo, TakesFilesOfAnyName) {
  const TestFolder folder;
  const std::string stl = contents_of_file(sample("bracket_soup.stl"));
  for (const std::string name : {"two words.stl", "line\nend.stl", "\xff\xfe.stl", "caf\xc3\xa9.STL", "noextension"}) {
    const std::string path = folder.write(name, stl);
    EXPECT_EQ(info(path)["elements"], 204) << name;
    EXPECT_EQ(run_mendex({"info", path}).output.find("\nend.stl"), std::string::npos);
  }
  folder.write("-dash.stl", stl);
  ProcessSetup setup = mendex_setup({"info", "--json", "--", "-dash.stl"});
  setup.folder = folder.path("");
  EXPECT_EQ(run_process(setup).exit_code, 0);
}

TEST(MendexInfo, RefusesWhatIsNoStlFile) {
  const TestFolder folder;
  const std::string text(2000, 'x');
  const std::string unknown = "is neither STL, binary or ASCII, nor a mesh in another known format: nothing known begins at byte 0";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {folder.path("missing.stl"), "cannot be read: No such file or directory"},
      {folder.path(""), "cannot be read: Is a directory"},
      {folder.write("empty.stl", ""), unknown},
      {folder.write("short.stl", std::string(83, '\0')), unknown},
      {folder.write("text.stl", text), unknown},
      {folder.write("none.stl", binary_stl({}, "", 7)), "the file is damaged at byte 84: no triangle could be read"},
      {folder.write("bad.ast", "solid s\nfacet normal 0 0 1\nvertex 1 2 x\n"), "the file is damaged in line 3: no triangle could be read"},
      // The line counts in the file as it is, with the names of solids.
      {folder.write("named.ast", "\xef\xbb\xbfsolid a facet of rock\r\nendsolid\r\nsolid b\r\nfacet normal\r\nouter loop vertex 1 2 3 4 5 6 end\r\n"),
       "the file is damaged in line 5: no triangle could be read"},
  };
  for (const auto& [path, message] : cases) {
    const ProcessResult result = run_mendex({"info", path, "--json"});
    EXPECT_EQ(result.exit_code, 3) << path;
    EXPECT_EQ(result.output, "") << path;
    EXPECT_NE(result.errors.find("mendex: " + path + ": " + message + "\n"), std::string::npos) << result.errors;
  }
}

// The library's own account (a file's header among it) is for those who ask; a header cannot send commands to the
// terminal.
TEST(MendexInfo, ShowsTheLibrarysWordsOnlyWhenAsked) {
  const TestFolder folder;
  const std::string file = folder.write("header.stl", binary_stl(some_facets(1), "made by \033[31m hand"));
  EXPECT_EQ(run_mendex({"info", file}).errors, "");
  const std::string verbose = run_mendex({"-v", "info", file}).errors;
  EXPECT_NE(verbose.find("made by ?[31m hand"), std::string::npos) << verbose;
}
