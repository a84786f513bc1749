// `mendex weld` and `mendex convert`: what is merged, what is written, and what is said about it.

#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>

#include "apps/process.h"
#include "apps/test_files.h"

namespace {

using Json = nlohmann::json;

Json weld(const std::string& input, const std::string& output, std::vector<std::string> more = {}) {
  std::vector<std::string> arguments = {"weld", input, "-o", output, "--json"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  const ProcessResult result = run_mendex(arguments);
  EXPECT_EQ(result.exit_code, 0) << result.errors;
  return Json::parse(result.output);
}

Json info(const std::string& path) { return Json::parse(run_mendex({"info", "--json", path}).output); }

// The facets of a binary STL file without normals and attributes.
std::string corners_in(const std::string& path) {
  const std::string bytes = contents_of_file(path);
  std::string corners;
  for (std::size_t at = 84; at + 50 <= bytes.size(); at += 50) corners.append(bytes, at + 12, 36);
  return corners;
}

}  // namespace

// Each sample is broken in one way; the numbers are those of the shape it was made from.
TEST(MendexWeld, MendsTheSamples) {
  struct Case {
    const char* file;
    std::vector<std::string> options;
    int nodes_after;
    int triangles_after;
    int deleted;
  };
  const Case cases[] = {
      {"bracket_soup.stl", {}, 100, 204, 0},                // 102 quads; V = 2 - 2 * 2 holes + E - F = 306 - 204 - 2
      {"gap_sphere.stl", {"--tol", "0.002"}, 114, 224, 0},  // 7 rings of 16 and two poles
      {"gap_sphere.stl", {}, 0, 224, 0},                    // exact copies are rare there; counted below
      {"torus_collapsed.stl", {}, 160, 320, 64 + 7},        // 16 x 10 nodes; facets with a zero-length side
      {"open_box.ast", {}, 22, 32, 0},                      // 12 + 10 corners of the unit squares
      {"truncated.stl", {}, 0, 100, 0},
  };
  const TestFolder folder;
  for (const Case& c : cases) {
    const Json report = weld(sample(c.file), folder.path("out.stl"), c.options);
    const Json& before = report["before"];
    const Json& after = report["after"];
    if (c.nodes_after > 0) {
      EXPECT_EQ(after["nodes"], c.nodes_after) << c.file;
    }
    EXPECT_EQ(after["elements"], c.triangles_after) << c.file;
    EXPECT_EQ(report["deleted_elements"], c.deleted) << c.file;
    EXPECT_EQ(report["merged_nodes"].get<int>(), before["nodes"].get<int>() - after["nodes"].get<int>()) << c.file;
    EXPECT_NEAR(after["area"].get<double>(), before["area"].get<double>(), 2e-3 * before["area"].get<double>())
        << c.file;
    for (const char* key : {"max_node", "max_element", "volume", "centre", "min_aspect", "mean_aspect", "box"}) {
      EXPECT_TRUE(before.contains(key) && after.contains(key)) << key;
    }
    EXPECT_EQ(info(folder.path("out.stl"))["elements"], c.triangles_after) << c.file;
  }
}

// The highest number stays until the numbers are closed up: of the three nodes of the last facet at least none survives
// a merge with earlier ones here.
TEST(MendexWeld, ReportsTheHighestNumberInUse) {
  const TestFolder folder;
  const Json report = weld(sample("bracket_soup.stl"), folder.path("out.stl"));
  EXPECT_EQ(report["before"]["max_node"], 612);
  EXPECT_LT(report["after"]["max_node"].get<int>(), 612);
  EXPECT_GE(report["after"]["max_node"].get<int>(), report["after"]["nodes"].get<int>());
  EXPECT_EQ(report["after"]["max_element"], 204);
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
  EXPECT_EQ(folder.names(), std::vector<std::string>{"model.stl"});
}

TEST(MendexWeld, SaysForPeopleWhatWasDone) {
  const TestFolder folder;
  const std::string out = folder.path("fixed.stl");
  const ProcessResult result = run_mendex({"weld", sample("torus_collapsed.stl"), "-o", out});
  EXPECT_EQ(result.errors, "");
  EXPECT_NE(result.output.find("1013 nodes merged, 71 collapsed triangles deleted"), std::string::npos)
      << result.output;
  const ProcessResult quiet = run_mendex({"-q", "weld", sample("torus_collapsed.stl"), "-o", out});
  EXPECT_EQ(quiet.output + quiet.errors, "");
  EXPECT_EQ(quiet.exit_code, 0);
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

// Binary STL is single precision: what does not fit becomes infinite, and the user hears of it.
TEST(MendexConvert, WarnsOfCoordinatesBeyondTheFormat) {
  const TestFolder folder;
  const std::string text = folder.write(
      "huge.ast", "solid\nfacet normal 0 0 1\nvertex 0 0 0\nvertex 1e200 0 0\nvertex 0 1 0\nendfacet\nendsolid\n");
  const ProcessResult result = run_mendex({"convert", text, folder.path("huge.stl")});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_NE(result.errors.find("too large for the format"), std::string::npos) << result.errors;
}

TEST(MendexUsage, WrongArgumentsEndWithTwoAndTouchNothing) {
  const TestFolder folder;
  const std::string out = folder.path("out.stl"), in = sample("bracket_soup.stl");
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
      {{}, "Usage: mendex"},
      {{"mend"}, "'mend' is none of info, check, "},
      {{"info"}, "FILE is required"},
      {{"info", in, "--frob"}, "--frob"},
      {{"weld", in}, "--output is required"},
      {{"weld", in, "-o", out, "--tol", "-1"}, "'-1' is not a length from 0 up"},
      {{"weld", in, "-o", out, "--tol", "nan"}, "'nan' is not"},
      {{"weld", in, "-o", out, "--tol", "inf"}, "'inf' is not"},
      {{"weld", in, "-o", out, "--tol", "1mm"}, "'1mm' is not"},
      {{"weld", in, "-o", folder.path("out.step")}, "supported are .mnx, .mes, .tri, .stl, .ast, .kvx"},
      {{"convert", in, folder.path("out")}, "supported are .mnx, .mes, .tri, .stl, .ast, .kvx"},
      {{"convert", in, folder.path("stl/.ast/out")}, "supported are"},
      {{"convert", in}, "OUT is required"},
  };
  for (const auto& [arguments, message] : cases) {
    const ProcessResult result = run_mendex(arguments);
    EXPECT_EQ(result.exit_code, 2) << message;
    EXPECT_EQ(result.output, "") << message;
    EXPECT_NE(result.errors.find(message), std::string::npos) << "expected " << message << "\nin " << result.errors;
  }
  EXPECT_TRUE(folder.names().empty());
}

TEST(MendexUsage, HelpAndVersionAreResults) {
  const ProcessResult version = run_mendex({"--version"});
  EXPECT_EQ(version.exit_code, 0);
  EXPECT_EQ(version.output.compare(0, 7, "mendex "), 0) << version.output;
  for (const char* verb : {"info", "weld", "convert"}) {
    const ProcessResult help = run_mendex({verb, "--help"});
    EXPECT_EQ(help.exit_code, 0);
    EXPECT_EQ(help.errors, "");
    EXPECT_NE(help.output.find("Usage: mendex " + std::string(verb)), std::string::npos) << help.output;
  }
}
