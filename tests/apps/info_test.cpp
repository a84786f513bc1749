// `mendex info`: what it tells, where it tells it, and what it makes of files that are not as they should be.

#include <limits>

#include "apps/reports.h"

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

// Files are independent: one that fails is reported on standard error, the others on standard output, and the worst
// code wins. For people a blank line lies between them.
TEST(MendexInfo, GoesOnAfterAFileThatFails) {
  const Arguments command = {"info", sample("gap_sphere.stl"), "/nonexistent.stl", sample("open_box.ast")};
  const ProcessResult table = run_mendex(command);
  EXPECT_EQ(table.exit_code, 3);
  EXPECT_EQ(table.errors, "mendex: /nonexistent.stl: cannot be read: No such file or directory\n");
  expect_text(table.output, "triangles  224\n");
  expect_text(table.output, "\n\n" + sample("open_box.ast") + ": ASCII STL\n");
  std::istringstream lines(run_mendex({command[0], "--json", command[1], command[2], command[3]}).output);
  for (const int elements : {224, 32}) {
    std::string line;
    ASSERT_TRUE(std::getline(lines, line));
    EXPECT_EQ(Json::parse(line)["elements"], elements);
  }
}

// 100 whole facets and 33 bytes of the 101st, whose first corner was complete: it stays as a node without an element.
TEST(MendexInfo, UsesWhatAFileHoldsAndWarnsOfTheRest) {
  const ProcessResult result = run_mendex({"info", "--json", sample("truncated.stl")});
  EXPECT_EQ(result.exit_code, 0);
  const Json report = Json::parse(result.output);
  EXPECT_EQ(report["elements"], 100);
  EXPECT_EQ(report["nodes"], 301);
  EXPECT_EQ(report["complete"], false);
  EXPECT_EQ(report["warnings"].size(), 2u);
  expect_text(result.errors, "** Error reading element 101 **\n");
  expect_text(result.errors, "of the 204 triangles that it promises, 100 could be read");
  const TestFolder folder;
  const ProcessResult more = run_mendex({"info", "--json", folder.write("more.stl", binary_stl(some_facets(5), "", 3))});
  EXPECT_EQ(Json::parse(more.output)["elements"], 3);
  expect_text(more.errors, "100 bytes beyond the 3 triangles");
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
  EXPECT_EQ(infinite["box"]["max"], Json::parse("[2, null, 0]"));
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

// Units are printed behind what is in them; nothing is converted.
TEST(MendexInfo, NamesTheUnits) {
  const std::string file = sample("bracket_soup.stl");
  const std::string plain = run_mendex({"info", file}).output, named = run_mendex({"info", file, "--units", "mm"}).output;
  std::string without = named;
  for (const std::string unit : {" mm^2", " mm^3", " mm"}) {
    ASSERT_NE(without.find(unit), std::string::npos) << named;
    for (std::size_t at; (at = without.find(unit + "\n")) != std::string::npos;) without.erase(at, unit.size());
  }
  EXPECT_EQ(without, plain);
  EXPECT_EQ(run_mendex({"info", file, "--units", "m m"}).exit_code, 2);
}

TEST(MendexInfo, RefusesWhatIsNoMesh) {
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
  for (const auto& [path, message] : cases) expect_refused({"info", path, "--json"}, {}, 3, "mendex: " + path + ": " + message + "\n");
}

// The library's own account (a file's header among it) is for those who ask; a header cannot send commands to the
// terminal.
TEST(MendexInfo, ShowsTheLibrarysWordsOnlyWhenAsked) {
  const TestFolder folder;
  const std::string file = folder.write("header.stl", binary_stl(some_facets(1), "made by \033[31m hand"));
  EXPECT_EQ(run_mendex({"info", file}).errors, "");
  expect_text(run_mendex({"-v", "info", file}).errors, "made by ?[31m hand");
}
