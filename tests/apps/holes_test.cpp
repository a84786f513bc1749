// `mendex stitch`, `fill` and `cap`: what becomes of each hole, how it is told, and the exit codes.

#include "apps/reports.h"
#include "support/breakages.h"

namespace {

// A box of 8 by 8 by 8 unit cubes; `keeps` tells which cells of the lid are there.
template <class Keeps>
std::vector<FacetCorners> open_box(Keeps keeps) {
  std::vector<FacetCorners> facets;
  for (const FacetCorners& f : facets_of(fine_box(8))) {
    const bool is_lid = f[2] == 8 && f[5] == 8 && f[8] == 8;
    if (!is_lid || keeps(std::min({f[0], f[3], f[6]}), std::min({f[1], f[4], f[7]}))) facets.push_back(f);
  }
  return facets;
}

// Without the lid's cell (1, 1), a hole of 4 edges, and without (3, 3) to (6, 6), one of 16.
std::string box_with_two_holes(const TestFolder& folder) {
  const auto keeps = [](float x, float y) { return !(x == 1 && y == 1) && !(x > 2 && x < 7 && y > 2 && y < 7); };
  return folder.write("holes.stl", binary_stl(open_box(keeps)));
}

}  // namespace

TEST(MendexHoles, CheckListsThemByNumber) {
  const TestFolder folder;
  const std::string file = box_with_two_holes(folder);
  const std::string text = run_mendex({"check", file}).output;
  expect_text(text, "    hole 0                4 edges, length 4, round (1.5 1.5 8)\n");
  expect_text(text, "    hole 1               16 edges, length 16, round (5 5 8)\n");
  const Json report = check(file);
  EXPECT_EQ(report["found"]["boundaries"][1]["number"], 1);
  EXPECT_EQ(report["found"]["boundaries"][1]["nodes"].size(), 16u);
}

TEST(MendexHoles, FillClosesThemAll) {
  const TestFolder folder;
  const Json report = report_of({"fill", box_with_two_holes(folder), "-o", folder.path("out.stl")});
  EXPECT_EQ(report["closed"], 2);
  EXPECT_EQ(report["holes"][0]["triangles"], 2);
  EXPECT_EQ(report["holes"][0]["nodes"], 0);
  EXPECT_EQ(report["holes"][1]["triangles"], 16);
  EXPECT_EQ(report["holes"][1]["nodes"], 1);
  EXPECT_EQ(report["boundaries_left"], 0);
  const Json after = check(folder.path("out.stl"));
  EXPECT_EQ(after["clean"], true) << after["volume"];
  EXPECT_NEAR(after["volume"].get<double>(), 512.0, 1e-4);
}

TEST(MendexHoles, CapsHaveNodesAtTheSpacing) {
  const TestFolder folder;
  const std::string file = box_with_two_holes(folder);
  const Json by_edges = report_of({"cap", file, "-o", folder.path("auto.stl")});
  const Json fine = report_of({"cap", file, "-o", folder.path("fine.stl"), "--spacing", "0.24", "--curved"});
  EXPECT_EQ(by_edges["method"], "flat");
  EXPECT_EQ(by_edges["holes"][1]["spacing"], 1.0);
  EXPECT_EQ(fine["method"], "curved");
  EXPECT_GE(by_edges["holes"][1]["nodes"], 5);
  EXPECT_GT(fine["holes"][1]["nodes"], by_edges["holes"][1]["nodes"]);
  for (const char* name : {"auto.stl", "fine.stl"}) {
    const Json after = check(folder.path(name));
    EXPECT_EQ(after["clean"], true) << name;
    EXPECT_NEAR(after["volume"].get<double>(), 512.0, 1e-3) << name;
  }
}

TEST(MendexHoles, ChosenByNumberBySizeAndByNodes) {
  const TestFolder folder;
  const std::string file = box_with_two_holes(folder), out = folder.path("out.stl");
  EXPECT_EQ(report_of({"fill", file, "-o", out, "--hole", "1"})["boundaries_left"], 1);
  EXPECT_EQ(check(out)["boundary_sizes"], Json::array({4}));
  EXPECT_EQ(report_of({"fill", file, "-o", out, "--max-edges", "4"})["not_chosen"], 1);
  EXPECT_EQ(check(out)["boundary_sizes"], Json::array({16}));
  const Json nodes = check(file)["found"]["boundaries"][1]["nodes"];
  const std::string ends = nodes[2].dump() + "," + nodes[6].dump();  // round a corner: straight on there is no area
  for (const char* verb : {"fill", "cap"}) {
    const Json part = report_of({verb, file, "-o", out, "--between", ends});
    EXPECT_EQ(part["holes"].size(), 1u);
    EXPECT_GT(part["holes"][0]["triangles"], 3) << verb;
    EXPECT_EQ(part["boundaries_left"], 2) << verb;
    EXPECT_LT(part["free_edges_left"], 20 - 4 + 5) << verb;
  }
}

// A slit between collinear nodes has no plane; the other hole is closed all the same, and the file is written.
TEST(MendexHoles, WhatCannotBeClosedIsToldAndStaysAsItWas) {
  const TestFolder folder;
  std::vector<FacetCorners> facets = facets_of(closed_box({}, 2, 2, 2));
  facets.insert(facets.end(), {{10, 0, 0, 14, 0, 0, 12, 5, 0},
                               {14, 0, 0, 12, 0, 0, 12, -5, 0},
                               {12, 0, 0, 10, 0, 0, 12, -5, 0},
                               {14, 0, 0, 12, -5, 0, 12, 5, 0},
                               {12, -5, 0, 10, 0, 0, 12, 5, 0}});
  facets.erase(facets.begin() + 10);  // of the box: a hole of three edges
  const std::string file = folder.write("slit.stl", binary_stl(facets)), out = folder.path("out.stl");
  const Json report = report_of({"cap", file, "-o", out}, 1);
  EXPECT_EQ(report["closed"], 1);
  EXPECT_EQ(report["refused"], 1);
  EXPECT_EQ(report["holes"][1]["refused"], "no plane, or no surface, can be fitted to it");
  EXPECT_EQ(report["holes"][1]["triangles"], 0);
  EXPECT_EQ(check(out)["boundary_sizes"], Json::array({3}));
  expect_text(run_mendex({"cap", file, "-o", out}).output, "refused: no plane, or no surface, can be fitted to it\n");
}

TEST(MendexHoles, WrongUsageWritesNothing) {
  const TestFolder folder;
  const std::string file = box_with_two_holes(folder), out = folder.path("out.stl");
  for (const Arguments& wrong : std::vector<Arguments>{
           {"fill", "--hole", "7"}, {"fill", "--hole", "-1"}, {"fill", "--hole", "1.5"}, {"fill", "--max-edges", "0"}, {"fill", "--between", "1"},
           {"fill", "--between", "3,3"}, {"fill", "--between", "1,2,3,4"}, {"fill", "--between", "100000,100001"}, {"cap", "--spacing", "0"},
           {"stitch", "--tol", "0.1..0.01/0.1"}, {"stitch"}}) {
    expect_refused({wrong[0], file, "-o", out}, Arguments(wrong.begin() + 1, wrong.end()), 2);
  }
  EXPECT_EQ(folder.names(), Arguments{"holes.stl"});
}

// A lid of one cell on walls of eight: each of its edges has seven nodes of the walls on it.
TEST(MendexStitch, ClosesTJunctions) {
  const TestFolder folder;
  std::vector<FacetCorners> facets = open_box([](float, float) { return false; });
  facets.push_back({0, 0, 8, 8, 0, 8, 8, 8, 8});
  facets.push_back({0, 0, 8, 8, 8, 8, 0, 8, 8});
  for (std::size_t k = 0; k < 9; k += 3) facets.back()[k] += 4e-4f;  // a little to one side
  const std::string file = folder.write("lid.stl", binary_stl(facets)), out = folder.path("out.stl");
  for (const char* tolerance : {"0.004", "0.00004..0.008/0.002"}) {
    const Json report = report_of({"stitch", file, "-o", out, "--tol", tolerance});
    EXPECT_GT(report["before"]["boundaries"], 0);
    EXPECT_EQ(report["after"]["boundaries"], 0) << tolerance;
    EXPECT_EQ(check(out)["free_edges"], 0) << tolerance;
  }
  expect_text(run_mendex({"stitch", file, "-o", out, "--tol", "0.004"}).output, "  free edges           38          0\n");
}
