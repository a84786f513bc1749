// `mendex clean`, `orient`, `swap`, `transform` and `renumber`: what they do to a file, how they tell it, what they refuse.

#include "apps/reports.h"

namespace {

const std::vector<FacetCorners> tetrahedron = {
    {0, 0, 0, 0, 3, 0, 3, 0, 0}, {0, 0, 0, 3, 0, 0, 0, 0, 3}, {0, 0, 0, 0, 0, 3, 0, 3, 0}, {3, 0, 0, 0, 3, 0, 0, 0, 3}};

double volume_of_shell(const std::string& path) { return check(path)["found"]["shells"][0]["volume"].get<double>(); }

}  // namespace

TEST(MendexClean, DeletesWhatIsAskedFor) {
  const TestFolder folder;
  std::vector<FacetCorners> facets = tetrahedron;
  facets.push_back(facets[0]);                      // repeated
  facets.push_back({9, 9, 9, 10, 9, 9, 9, 10, 9});  // two back to back
  facets.push_back({9, 9, 9, 9, 10, 9, 10, 9, 9});
  facets.push_back({20, 0, 0, 24, 0, 0, 22, 0.001f, 0});  // small and thin
  facets.push_back({3, 0, 0, 0, 3, 0, 9, 9, 3});          // a fin
  const std::string in = folder.write("in.stl", binary_stl(facets)), out = folder.path("out.stl");
  const Json report = report_of({"clean", in, "-o", out, "--small", "0.01"});
  EXPECT_EQ(count_of(report, "cancelling triangles deleted"), 2);
  EXPECT_EQ(count_of(report, "repeated triangles deleted"), 1);
  EXPECT_EQ(count_of(report, "small triangles deleted"), 1);
  EXPECT_EQ(count_of(report, "triangles of fins deleted"), 1);
  EXPECT_EQ(check(out)["clean"], true);
  const Json kept = report_of({"clean", in, "-o", out, "--keep-cancelling", "--keep-repeated", "--keep-fins", "--thin", "0.01"});
  EXPECT_EQ(kept["done"].size(), 1u);
  EXPECT_EQ(kept["after"]["elements"], 8);
  const Json sick = report_of({"clean", in, "-o", out, "--keep-fins", "--sick"});
  EXPECT_EQ(count_of(sick, "sick triangles deleted"), 3);
  expect_refused({"clean", in, "-o", out}, {"--sick", "--sick-but-two"}, 2);
}

TEST(MendexOrient, TurnsTheOddOnesOrAll) {
  const TestFolder folder;
  std::vector<FacetCorners> facets = tetrahedron;
  turn_over(facets[2]);
  const std::string in = folder.write("in.stl", binary_stl(facets)), out = folder.path("out.stl");
  EXPECT_EQ(count_of(report_of({"orient", in, "-o", out}), "triangles turned over"), 1);
  EXPECT_EQ(volume_of_shell(out), 4.5);
  EXPECT_EQ(count_of(report_of({"orient", out, "-o", out, "--reverse"}), "triangles turned over"), 4);
  EXPECT_EQ(check(out)["inside_out"], 1);
}

TEST(MendexSwap, ReplacesThinTriangles) {
  const TestFolder folder;
  const std::string in = folder.write("in.stl", binary_stl({{0, 0, 0, 10, 0, 0, 5, 0.1f, 0}, {10, 0, 0, 0, 0, 0, 5, -3, 0}}));
  const std::string out = folder.path("out.stl");
  EXPECT_EQ(count_of(report_of({"swap", in, "-o", out}), "triangles replaced"), 2);
  EXPECT_GT(info(out)["min_aspect"], 0.3);
  EXPECT_EQ(count_of(report_of({"swap", in, "-o", out, "--aspect", "0.001"}), "triangles replaced"), 0);
}

// Scaled, then turned, then moved; what mirrors keeps the outside outside.
TEST(MendexTransform, ScalesTurnsAndMoves) {
  const TestFolder folder;
  const std::string in = folder.write("in.stl", binary_stl(tetrahedron)), out = folder.path("out.stl");
  report_of({"transform", in, "-o", out, "--move", "10,0,0", "--turn", "0,0,2,90", "--scale", "2,1,1"});
  EXPECT_EQ(info(out)["box"], Json::parse(R"({"min": [7, 0, 0], "max": [10, 6, 3]})"));
  const Json mirrored = report_of({"transform", in, "-o", out, "--matrix", "-1,0,0,0,0,1,0,0,0,0,1,5"});
  EXPECT_EQ(count_of(mirrored, "triangles turned over"), 4);
  EXPECT_EQ(mirrored["before"]["boundaries"], nullptr);
  EXPECT_NEAR(volume_of_shell(out), 4.5, 1e-6);
  for (const Arguments& wrong : std::vector<Arguments>{
           {"--scale", "0"}, {"--scale", "1,2"}, {"--turn", "0,0,0,90"}, {"--move", "1,2"}, {"--matrix", "1,0,0,0,2,0,0,0,3,0,0,0"}}) {
    expect_refused({"transform", in, "-o", out}, wrong, 2);
  }
}

TEST(MendexRenumber, ClosesGaps) {
  const TestFolder folder;
  const std::string gaps = folder.path("gaps.mnx"), out = folder.path("out.mnx");
  report_of({"weld", folder.write("in.stl", binary_stl(tetrahedron)), "-o", gaps});
  EXPECT_GT(info(gaps)["max_node"], 4);
  EXPECT_GT(count_of(report_of({"renumber", gaps, "-o", out}), "unused node numbers closed"), 0);
  EXPECT_EQ(info(out)["max_node"], 4);
}
