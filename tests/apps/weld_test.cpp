// `mendex weld`: what is merged, what is written, and what is said about it; and what all verbs have in common.

#include <limits>

#include "apps/reports.h"

namespace {

Json weld(const std::string& input, const std::string& output, const Arguments& more = {}) {
  Arguments arguments = {"weld", input, "-o", output};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return report_of(arguments);
}

// The facets of a binary STL file without normals and attributes.
std::string corners_in(const std::string& path) {
  const std::string bytes = contents_of_file(path);
  std::string corners;
  for (std::size_t at = 84; at + 50 <= bytes.size(); at += 50) corners.append(bytes, at + 12, 36);
  return corners;
}

}  // namespace

// Each sample is broken in one way; the numbers are those of the shape it was made from. The highest number stays until the numbers are
// closed up.
TEST(MendexWeld, MendsTheSamples) {
  struct Case {
    const char* file;
    Arguments options;
    int nodes_after, triangles_after, deleted;
  };
  const Case cases[] = {
      {"bracket_soup.stl", {}, 100, 204, 0},                // 102 quads; V = 2 - 2 * 2 holes + E - F = 306 - 204 - 2
      {"gap_sphere.stl", {"--tol", "0.002"}, 114, 224, 0},  // 7 rings of 16 and two poles
      {"torus_collapsed.stl", {}, 160, 320, 64 + 7},        // 16 x 10 nodes; facets with a zero-length side
      {"open_box.ast", {}, 22, 32, 0},                      // 12 + 10 corners of the unit squares
      {"truncated.stl", {}, -1, 100, 0},
  };
  const TestFolder folder;
  for (const Case& c : cases) {
    const Json report = weld(sample(c.file), folder.path("out.stl"), c.options);
    const Json &before = report["before"], &after = report["after"];
    if (c.nodes_after >= 0) { EXPECT_EQ(after["nodes"], c.nodes_after) << c.file; }
    EXPECT_EQ(after["elements"], c.triangles_after) << c.file;
    EXPECT_EQ(report["deleted_elements"], c.deleted) << c.file;
    EXPECT_EQ(report["merged_nodes"].get<int>(), before["nodes"].get<int>() - after["nodes"].get<int>()) << c.file;
    EXPECT_GE(after["max_node"].get<int>(), after["nodes"].get<int>()) << c.file;
    EXPECT_LT(after["max_node"].get<int>(), before["max_node"].get<int>()) << c.file;
    EXPECT_NEAR(after["area"].get<double>(), before["area"].get<double>(), 2e-3 * before["area"].get<double>()) << c.file;
    for (const char* key : {"max_element", "volume", "centre", "min_aspect", "mean_aspect", "box"}) {
      EXPECT_TRUE(before.contains(key) && after.contains(key)) << key;
    }
    EXPECT_EQ(info(folder.path("out.stl"))["elements"], c.triangles_after) << c.file;
  }
}

// Without a tolerance only copies that agree in every bit merge, and a tolerance of 0 merges not even those.
TEST(MendexWeld, ToleranceIsWhatIsAskedFor) {
  const TestFolder folder;
  const std::string out = folder.path("out.stl");
  const int exact = weld(sample("gap_sphere.stl"), out)["merged_nodes"].get<int>();
  const int small = weld(sample("gap_sphere.stl"), out, {"--tol", "1e-4"})["merged_nodes"].get<int>();
  EXPECT_LT(exact, small);
  EXPECT_LT(small, 672 - 114);
  EXPECT_EQ(weld(sample("bracket_soup.stl"), out, {"--tol", "0"})["merged_nodes"], 0);
  EXPECT_EQ(weld(sample("bracket_soup.stl"), out, {"--tol", "1e9"})["after"]["elements"], 0);  // one point is left
}

TEST(MendexWeld, KeepsCoordinatesUnlessAskedToMoveThem) {
  const TestFolder folder;
  std::vector<FacetCorners> facets = some_facets(3);
  for (FacetCorners& corners : facets) corners[0] -= 7, corners[3] -= 7, corners[6] -= 7;
  const std::string input = folder.write("in.stl", binary_stl(facets));
  weld(input, folder.path("same.stl"));
  EXPECT_EQ(corners_in(folder.path("same.stl")), corners_in(input));
  weld(input, folder.path("moved.stl"), {"--positive"});
  EXPECT_EQ(info(folder.path("moved.stl"))["box"]["min"], Json::parse("[3, 0, 0]"));  // by 10, the next round step
}

// Values that compare unlike their bits: writing turns a negative zero into a positive one, and nothing equals a NaN.
TEST(MendexWeld, WritesZerosAndNumbersThatAreNone) {
  const TestFolder folder;
  std::vector<FacetCorners> facets = some_facets(3);
  facets[0][1] = -0.0f;
  facets[1][2] = std::numeric_limits<float>::quiet_NaN();
  facets[2][3] = -std::numeric_limits<float>::infinity();
  const Json report = weld(folder.write("in.stl", binary_stl(facets)), folder.path("out.stl"));
  EXPECT_EQ(report["after"]["elements"], 3);
  EXPECT_EQ(report["warnings"], Json::array());
}

// The output may be the input: the file is whole before it takes the name, and keeps its permissions.
TEST(MendexWeld, WorksInPlace) {
  const TestFolder folder;
  const std::string file = folder.write("model.stl", contents_of_file(sample("torus_collapsed.stl")));
  std::filesystem::permissions(file, std::filesystem::perms(0640));
  EXPECT_EQ(weld(file, file)["deleted_elements"], 71);
  EXPECT_EQ(weld(file, file)["deleted_elements"], 0);
  EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0640));
  EXPECT_EQ(folder.names(), Arguments{"model.stl"});
  const ProcessResult quiet = run_mendex({"-q", "weld", file, "-o", file});
  EXPECT_EQ(quiet.output + quiet.errors, "");
}

// To text and back: coordinates with at most seven digits come back as they were.
TEST(MendexConvert, RoundTripsThroughText) {
  const TestFolder folder;
  const std::string text = folder.path("bracket.AST"), back = folder.path("back.Stl");
  EXPECT_EQ(run_mendex({"convert", sample("bracket_soup.stl"), text}).exit_code, 0);
  EXPECT_EQ(contents_of_file(text).substr(0, 35), "solid brenko\n  facet normal -1.0000");
  EXPECT_EQ(run_mendex({"convert", text, back}).exit_code, 0);
  EXPECT_EQ(corners_in(back), corners_in(sample("bracket_soup.stl")));
}

TEST(MendexUsage, WrongArgumentsEndWithTwoAndTouchNothing) {
  const TestFolder folder;
  const std::string out = folder.path("out.stl"), in = sample("bracket_soup.stl");
  const std::vector<std::pair<Arguments, std::string>> cases = {
      {{}, "Usage: mendex"},
      {{"mend"}, "'mend' is none of info, check, "},
      {{"info"}, "FILE is required"},
      {{"info", in, "--frob"}, "--frob"},
      {{"weld", in}, "--output is required"},
      {{"weld", in, "-o", out, "--tol", "-1"}, "'-1' is not a length from 0 up"},
      {{"weld", in, "-o", out, "--tol", "1mm"}, "'1mm' is not"},
      {{"weld", in, "-o", folder.path("out.step")}, "supported are .mnx, .mes, .tri, .stl, .ast, .kvx"},
      {{"convert", in, folder.path("out")}, "supported are .mnx, .mes, .tri, .stl, .ast, .kvx"},
      {{"convert", in, folder.path("stl/.ast/out")}, "supported are"},
      {{"convert", in}, "OUT is required"},
  };
  for (const auto& [arguments, message] : cases) expect_refused(arguments, {}, 2, message);
  EXPECT_TRUE(folder.names().empty());
}

TEST(MendexUsage, HelpAndVersionAreResults) {
  const ProcessResult version = run_mendex({"--version"}), help = run_mendex({"weld", "--help"});
  EXPECT_EQ(version.exit_code + help.exit_code, 0);
  EXPECT_EQ(version.output.compare(0, 7, "mendex "), 0) << version.output;
  EXPECT_EQ(help.errors, "");
  expect_text(help.output, "Usage: mendex weld");
}
