// `mendex check`: what it finds in models whose defects are known, how it tells, and its exit codes.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "apps/process.h"
#include "apps/test_files.h"

namespace {

using Json = nlohmann::json;

Json report_of(const ProcessResult& result) {
  EXPECT_EQ(result.errors, "");
  return Json::parse(result.output, nullptr, false);
}

Json check(const std::string& path, std::vector<std::string> options = {}) {
  options.insert(options.begin(), {"check", "--json", path});
  return report_of(run_mendex(options));
}

// A box of 1 by 2 by 3 as loose facets, with what is asked of each facet done to it.
std::vector<FacetCorners> box_facets() {
  const float p[8][3] = {{0, 0, 0}, {1, 0, 0}, {1, 2, 0}, {0, 2, 0}, {0, 0, 3}, {1, 0, 3}, {1, 2, 3}, {0, 2, 3}};
  const int faces[12][3] = {{0, 2, 1}, {0, 3, 2}, {4, 5, 6}, {4, 6, 7}, {0, 1, 5}, {0, 5, 4},
                            {1, 2, 6}, {1, 6, 5}, {2, 3, 7}, {2, 7, 6}, {3, 0, 4}, {3, 4, 7}};
  std::vector<FacetCorners> facets;
  for (const auto& face : faces) {
    FacetCorners facet;
    for (std::size_t k = 0; k < 9; ++k) facet[k] = p[face[k / 3]][k % 3];
    facets.push_back(facet);
  }
  return facets;
}

void turn_over(FacetCorners& facet) { std::swap_ranges(facet.begin() + 3, facet.begin() + 6, facet.begin() + 6); }

std::vector<int> elements_in(const Json& list) {
  std::vector<int> numbers;
  for (const Json& entry : list) numbers.push_back(entry.at("element"));
  return numbers;
}

}  // namespace

TEST(MendexCheck, FindsNothingInASoundModel) {
  const ProcessResult result = run_mendex({"check", sample("bracket_soup.stl")});
  EXPECT_EQ(result.exit_code, 0) << result.errors;
  EXPECT_NE(result.output.find("  nodes                         100  512 copies merged\n"), std::string::npos) << result.output;
  EXPECT_NE(result.output.find("  closed shells                   1  volume 4250\n"), std::string::npos) << result.output;
  EXPECT_NE(result.output.find("  no defects\n"), std::string::npos) << result.output;
  const Json report = check(sample("bracket_soup.stl"));
  EXPECT_EQ(report["clean"], true);
  EXPECT_EQ(report["closed"], 1);
  EXPECT_EQ(report["nodes"], 100);
}

// Each defect is made once, is found once, and is told by number and place.
TEST(MendexCheck, FindsEachKindOfDefect) {
  const TestFolder folder;
  std::vector<FacetCorners> facets = box_facets();
  turn_over(facets[5]);                                // 6: misoriented
  facets.push_back(facets[8]);                         // 13 repeats 9
  facets.push_back(facets[9]);                         // 14 cancels 10
  turn_over(facets[13]);
  facets.push_back({9, 9, 9, 9, 9, 9, 8, 8, 8});       // 15 collapses
  facets.push_back({20, 0, 0, 24, 0, 0, 22, 4e-5f, 0});  // 16: small and thin
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
  const ProcessResult result = run_mendex({"check", sample("open_box.ast")});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_NE(result.output.find("! boundaries                      1  10 free edges; sizes 10; largest round (15 10 10)\n"),
            std::string::npos)
      << result.output;
  EXPECT_NE(result.output.find("  1 kind of defects, marked !\n"), std::string::npos) << result.output;
  const Json report = check(sample("open_box.ast"));
  EXPECT_EQ(report["boundaries"], 1);
  EXPECT_EQ(report["boundary_sizes"], Json::array({10}));
  EXPECT_EQ(report["found"]["boundaries"][0]["at"], Json::array({15.0, 10.0, 10.0}));
}

// The model is welded in memory as asked; without it every triangle is a shell with a boundary of its own.
TEST(MendexCheck, WeldsAsAsked) {
  const std::string file = sample("gap_sphere.stl");
  EXPECT_EQ(check(file)["boundaries"], 224);
  EXPECT_EQ(check(file, {"--weld", "none"})["nodes"], 672);
  const Json welded = check(file, {"--weld", "0.002"});
  EXPECT_EQ(welded["boundaries"], 0);
  EXPECT_EQ(welded["nodes"], 114);
  EXPECT_EQ(welded["clean"], true);
  EXPECT_EQ(run_mendex({"check", file, "--weld", "0.002"}).exit_code, 0);
}

TEST(MendexCheck, LimitsDecideWhatCounts) {
  const std::string file = sample("bracket_soup.stl");
  EXPECT_EQ(check(file, {"--thin", "0.6"})["thin"], 204);
  EXPECT_EQ(check(file, {"--small", "3.6"})["small"], 204);
  EXPECT_GT(check(file, {"--overlap", "91"})["overlapping"], 0);
  const Json up = check(file);
  const Json sideways = check(file, {"--up", "0,-2,0"});
  EXPECT_EQ(sideways["limits"]["up"], Json::array({0.0, -1.0, 0.0}));
  EXPECT_NE(sideways["overhanging"], up["overhanging"]);
  EXPECT_EQ(sideways["clean"], true);  // overhanging is no defect
}

// A cavity faces inward and should; a body that does is inside out.
TEST(MendexCheck, TellsCavitiesFromBodiesTurnedInsideOut) {
  const TestFolder folder;
  std::vector<FacetCorners> facets = box_facets();
  for (FacetCorners facet : box_facets()) {
    turn_over(facet);
    for (float& c : facet) c = 0.25f + c * 0.25f;
    facets.push_back(facet);
  }
  EXPECT_EQ(check(folder.write("cavity.stl", binary_stl(facets)))["inside_out"], 0);
  for (std::size_t k = 12; k < facets.size(); ++k) facets[k][0] += 9, facets[k][3] += 9, facets[k][6] += 9;
  const Json report = check(folder.write("apart.stl", binary_stl(facets)));
  EXPECT_EQ(report["inside_out"], 1);
  EXPECT_EQ(report["clean"], false);
}

// One line a file, the worst code for all, and no file stops the others.
TEST(MendexCheck, ChecksSeveralFiles) {
  const ProcessResult result = run_mendex({"check", "--json", sample("bracket_soup.stl"), "/nonexistent.stl", sample("open_box.ast")});
  EXPECT_EQ(result.exit_code, 3);
  EXPECT_NE(result.errors.find("/nonexistent.stl: cannot be read"), std::string::npos);
  EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 2);
  EXPECT_EQ(run_mendex({"check", sample("bracket_soup.stl"), sample("open_box.ast")}).exit_code, 1);
  EXPECT_EQ(run_mendex({"check", sample("truncated.stl"), "-q"}).exit_code, 1);
}

TEST(MendexCheck, RefusesSenselessLimits) {
  const std::string file = sample("bracket_soup.stl");
  const std::vector<std::vector<std::string>> cases = {{"--weld", "some"}, {"--weld", "-1"},    {"--thin", "x"},
                                                       {"--up", "0,0,0"},  {"--up", "1,2"},     {"--up", "0,0,1,"},
                                                       {"--overlap", ""},  {"--small", "1e999"}};
  for (const std::vector<std::string>& options : cases) {
    EXPECT_EQ(run_mendex({"check", file, options[0], options[1]}).exit_code, 2) << options[0] << ' ' << options[1];
  }
}
