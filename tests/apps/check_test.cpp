// `mendex check`: what it finds in models whose defects are known, how it tells, and its exit codes.

#include "apps/reports.h"

namespace {

std::vector<FacetCorners> box_facets() { return facets_of(closed_box({}, 1, 2, 3)); }

std::vector<int> elements_in(const Json& list) {
  std::vector<int> numbers;
  for (const Json& entry : list.elements()) numbers.push_back(entry.at("element").get<int>());
  return numbers;
}

}  // namespace

TEST(MendexCheck, FindsNothingInASoundModel) {
  const ProcessResult result = run_mendex({"check", sample("bracket_soup.stl")});
  EXPECT_EQ(result.exit_code, 0) << result.errors;
  expect_text(result.output, "  nodes                         100  512 copies merged\n");
  expect_text(result.output, "  closed shells                   1  volume 4250\n");
  expect_text(result.output, "  no defects\n");
  const Json report = check(sample("bracket_soup.stl"));
  EXPECT_EQ(report["clean"], true);
  EXPECT_EQ(report["closed"], 1);
}

// Each defect is made once, is found once, and is told by number and place.
TEST(MendexCheck, FindsEachKindOfDefect) {
  const TestFolder folder;
  std::vector<FacetCorners> facets = box_facets();
  turn_over(facets[5]);         // 6: misoriented
  facets.push_back(facets[8]);  // 13 repeats 9
  facets.push_back(facets[9]);  // 14 cancels 10
  turn_over(facets[13]);
  facets.push_back({9, 9, 9, 9, 9, 9, 8, 8, 8});                       // 15 collapses
  facets.push_back({20, 0, 0, 24, 0, 0, 22, 4e-5f, 0});                // 16: small and thin
  facets.push_back({0.25f, 0.5f, 2, 0.75f, 0.5f, 2, 0.5f, 0.75f, 4});  // 17 cuts the lid
  const Json report = check(folder.write("broken.stl", binary_stl(facets)));
  const Json& found = report["found"];
  EXPECT_EQ(elements_in(found["misoriented"]), (std::vector<int>{6, 14}));
  EXPECT_EQ(elements_in(found["repeated"]), std::vector<int>{9});  // the highest number survives
  EXPECT_EQ(elements_in(found["cancelling"]), (std::vector<int>{10, 14}));
  EXPECT_EQ(found["collapsed"], Json::array({15}));
  EXPECT_EQ(elements_in(found["small"]), std::vector<int>{16});
  EXPECT_EQ(elements_in(found["thin"]), std::vector<int>{16});
  EXPECT_EQ(found["small"][0]["at"][0], 22.0);
  EXPECT_EQ(elements_in(found["intersecting"]), (std::vector<int>{3, 9, 10, 13, 14, 17}));  // twins lie in each other
  EXPECT_NEAR(report["least_height"].get<double>(), 4e-5, 1e-10);
  EXPECT_EQ(report["sick_edges"], 5);  // the sides of 9 and 10, of which they share one
  EXPECT_EQ(report["shells"], 3);
  EXPECT_EQ(report["closed"], 0);
  EXPECT_EQ(report["clean"], false);
}

TEST(MendexCheck, TellsBoundariesOfAnOpenModel) {
  const Json report = report_of({"check", sample("open_box.ast")}, 1);
  EXPECT_EQ(report["boundaries"], 1);
  EXPECT_EQ(report["boundary_sizes"], Json::array({10}));
  EXPECT_EQ(report["found"]["boundaries"][0]["at"], Json::array({15.0, 10.0, 10.0}));
}

// The model is welded in memory as asked; without it every triangle is a shell with a boundary of its own.
TEST(MendexCheck, WeldsAsAsked) {
  const std::string file = sample("gap_sphere.stl");
  EXPECT_EQ(check(file)["boundaries"], 224);
  EXPECT_EQ(check(file, {"--weld", "none"})["nodes"], 672);
  const Json welded = report_of({"check", file, "--weld", "0.002"});
  EXPECT_EQ(welded["boundaries"], 0);
  EXPECT_EQ(welded["nodes"], 114);
  EXPECT_EQ(welded["clean"], true);
}

TEST(MendexCheck, LimitsDecideWhatCounts) {
  const std::string file = sample("bracket_soup.stl");
  EXPECT_EQ(check(file, {"--thin", "0.6"})["thin"], 204);
  EXPECT_EQ(check(file, {"--small", "3.6"})["small"], 204);
  EXPECT_GT(check(file, {"--overlap", "91"})["overlapping"], 0);
  const Json up = check(file), sideways = check(file, {"--up", "0,-2,0"});
  EXPECT_EQ(sideways["limits"]["up"], Json::array({0.0, -1.0, 0.0}));
  EXPECT_NE(sideways["overhanging"], up["overhanging"]);
  EXPECT_EQ(sideways["clean"], true);  // overhanging is no defect
}

// A cavity faces inward and should; a body that does is inside out.
TEST(MendexCheck, TellsCavitiesFromBodiesTurnedInsideOut) {
  const TestFolder folder;
  for (const float x : {0.25f, 9.0f}) {
    std::vector<FacetCorners> facets = box_facets();
    for (FacetCorners facet : box_facets()) {
      turn_over(facet);
      for (std::size_t k = 0; k < 9; ++k) facet[k] = (k % 3 == 0 ? x : 0.25f) + facet[k] * 0.25f;
      facets.push_back(facet);
    }
    const Json report = check(folder.write("two.stl", binary_stl(facets)));
    EXPECT_EQ(report["inside_out"], x > 1 ? 1 : 0);
    EXPECT_EQ(report["clean"], x < 1);
  }
}

// One line a file, the worst code for all, and no file stops the others.
TEST(MendexCheck, ChecksSeveralFiles) {
  const ProcessResult result = run_mendex({"check", "--json", sample("bracket_soup.stl"), "/nonexistent.stl", sample("open_box.ast")});
  EXPECT_EQ(result.exit_code, 3);
  expect_text(result.errors, "/nonexistent.stl: cannot be read");
  EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 2);
  EXPECT_EQ(run_mendex({"check", sample("bracket_soup.stl"), sample("open_box.ast")}).exit_code, 1);
  EXPECT_EQ(run_mendex({"check", sample("truncated.stl"), "-q"}).exit_code, 1);
}

TEST(MendexCheck, RefusesSenselessLimits) {
  for (const Arguments& options : std::vector<Arguments>{{"--weld", "some"}, {"--weld", "-1"}, {"--thin", "x"}, {"--up", "0,0,0"}, {"--up", "1,2"},
                                                         {"--up", "0,0,1,"}, {"--overlap", ""}, {"--small", "1e999"}}) {
    expect_refused({"check", sample("bracket_soup.stl")}, options, 2);
  }
}
