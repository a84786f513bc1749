// `mendex clean`, `orient`, `swap`, `transform` and `renumber`: what they do to a file, how they tell it, what they refuse.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "apps/process.h"
#include "apps/test_files.h"

namespace {

using Json = nlohmann::json;

Json edited(std::vector<std::string> arguments) {
  arguments.push_back("--json");
  const ProcessResult result = run_mendex(arguments);
  EXPECT_EQ(result.exit_code, 0) << result.errors;
  return Json::parse(result.output, nullptr, false);
}

Json reported(const char* verb, const std::string& path) {
  return Json::parse(run_mendex({verb, "--json", path}).output, nullptr, false);
}

int count_of(const Json& report, const std::string& what) {
  for (const Json& done : report["done"]) {
    if (done["what"] == what) return done["count"];
  }
  return -1;
}

// A tetrahedron with what `spoil` does to its facets.
template <class Spoil>
std::string tetrahedron(const TestFolder& folder, Spoil spoil) {
  std::vector<FacetCorners> facets = {{0, 0, 0, 0, 3, 0, 3, 0, 0}, {0, 0, 0, 3, 0, 0, 0, 0, 3}, {0, 0, 0, 0, 0, 3, 0, 3, 0}, {3, 0, 0, 0, 3, 0, 0, 0, 3}};
  spoil(facets);
  return folder.write("in.stl", binary_stl(facets));
}

void turn_over(FacetCorners& facet) { std::swap_ranges(facet.begin() + 3, facet.begin() + 6, facet.begin() + 6); }

}  // namespace

TEST(MendexClean, DeletesWhatIsAskedFor) {
  const TestFolder folder;
  const std::string in = tetrahedron(folder, [](std::vector<FacetCorners>& facets) {
    facets.push_back(facets[0]);                          // repeated
    facets.push_back({9, 9, 9, 10, 9, 9, 9, 10, 9});      // two back to back
    facets.push_back({9, 9, 9, 9, 10, 9, 10, 9, 9});
    facets.push_back({20, 0, 0, 24, 0, 0, 22, 0.001f, 0});  // small and thin
    facets.push_back({3, 0, 0, 0, 3, 0, 9, 9, 3});        // a fin
  });
  const std::string out = folder.path("out.stl");
  const Json report = edited({"clean", in, "-o", out, "--small", "0.01"});
  EXPECT_EQ(count_of(report, "cancelling triangles deleted"), 2);
  EXPECT_EQ(count_of(report, "repeated triangles deleted"), 1);
  EXPECT_EQ(count_of(report, "small triangles deleted"), 1);
  EXPECT_EQ(count_of(report, "triangles of fins deleted"), 1);
  EXPECT_EQ(reported("check", out)["clean"], true);
  const Json kept = edited({"clean", in, "-o", out, "--keep-cancelling", "--keep-repeated", "--keep-fins", "--thin", "0.01"});
  EXPECT_EQ(kept["done"].size(), 1u);
  EXPECT_EQ(kept["after"]["elements"], 8);
  const Json sick = edited({"clean", in, "-o", out, "--keep-fins", "--sick"});
  EXPECT_EQ(count_of(sick, "sick triangles deleted"), 3);
  EXPECT_EQ(run_mendex({"clean", in, "-o", out, "--sick", "--sick-but-two"}).exit_code, 2);
}

TEST(MendexOrient, TurnsTheOddOnesOrAll) {
  const TestFolder folder;
  const std::string in = tetrahedron(folder, [](std::vector<FacetCorners>& facets) { turn_over(facets[2]); });
  const std::string out = folder.path("out.stl");
  EXPECT_EQ(count_of(edited({"orient", in, "-o", out}), "triangles turned over"), 1);
  EXPECT_EQ(reported("check", out)["found"]["shells"][0]["volume"], 4.5);
  EXPECT_EQ(count_of(edited({"orient", out, "-o", out, "--reverse"}), "triangles turned over"), 4);
  EXPECT_EQ(reported("check", out)["inside_out"], 1);
}

TEST(MendexSwap, ReplacesThinTriangles) {
  const TestFolder folder;
  const std::string in = folder.write("in.stl", binary_stl({{0, 0, 0, 10, 0, 0, 5, 0.1f, 0}, {10, 0, 0, 0, 0, 0, 5, -3, 0}}));
  const std::string out = folder.path("out.stl");
  EXPECT_EQ(count_of(edited({"swap", in, "-o", out}), "triangles replaced"), 2);
  EXPECT_GT(reported("info", out)["min_aspect"], 0.3);
  EXPECT_EQ(count_of(edited({"swap", in, "-o", out, "--aspect", "0.001"}), "triangles replaced"), 0);
}

// Scaled, then turned, then moved; what mirrors keeps the outside outside.
TEST(MendexTransform, ScalesTurnsAndMoves) {
  const TestFolder folder;
  const std::string in = tetrahedron(folder, [](std::vector<FacetCorners>&) {});
  const std::string out = folder.path("out.stl");
  edited({"transform", in, "-o", out, "--move", "10,0,0", "--turn", "0,0,2,90", "--scale", "2,1,1"});
  const Json moved = reported("info", out);
  EXPECT_EQ(moved["box"]["min"], Json::array({7.0, 0.0, 0.0}));
  EXPECT_EQ(moved["box"]["max"], Json::array({10.0, 6.0, 3.0}));
  const Json mirrored = edited({"transform", in, "-o", out, "--matrix", "-1,0,0,0,0,1,0,0,0,0,1,5"});
  EXPECT_EQ(count_of(mirrored, "triangles turned over"), 4);
  EXPECT_EQ(mirrored["before"]["boundaries"], nullptr);
  EXPECT_NEAR(reported("check", out)["found"]["shells"][0]["volume"], 4.5, 1e-6);
  for (const std::vector<std::string>& wrong : std::vector<std::vector<std::string>>{
           {"--scale", "0"}, {"--scale", "1,2"}, {"--turn", "0,0,0,90"}, {"--move", "1,2"}, {"--matrix", "1,0,0,0,2,0,0,0,3,0,0,0"}}) {
    EXPECT_EQ(run_mendex({"transform", in, "-o", out, wrong[0], wrong[1]}).exit_code, 2) << wrong[0];
  }
}

TEST(MendexRenumber, ClosesGaps) {
  const TestFolder folder;
  const std::string in = tetrahedron(folder, [](std::vector<FacetCorners>&) {});
  const std::string gaps = folder.path("gaps.mnx"), out = folder.path("out.mnx");
  EXPECT_EQ(run_mendex({"weld", in, "-o", gaps}).exit_code, 0);
  EXPECT_GT(reported("info", gaps)["max_node"], 4);
  const Json report = edited({"renumber", gaps, "-o", out});
  EXPECT_GT(count_of(report, "unused node numbers closed"), 0);
  EXPECT_EQ(reported("info", out)["max_node"], 4);
}
