// `mendex stitch`, `fill` and `cap`: what becomes of each hole, how it is told, and the exit codes.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "apps/process.h"
#include "apps/test_files.h"

namespace {

using Json = nlohmann::json;

// A box of 2 by 2 by 2 of `n` by `n` cells a side, as loose facets; `keeps` tells which cells of the lid at z = 2 are there.
template <class Keeps>
std::vector<FacetCorners> open_box(int n, Keeps keeps) {
  std::vector<FacetCorners> facets;
  const float step = 2.0f / static_cast<float>(n);
  for (int side = 0; side < 6; ++side) {
    for (int cell = 0; cell < n * n; ++cell) {
      if (side == 5 && !keeps(cell % n, cell / n)) continue;
      const float u = step * static_cast<float>(cell % n), v = step * static_cast<float>(cell / n);
      const auto point = [&](float a, float b) {
        const float far = side % 2 == 0 ? 0.0f : 2.0f;
        const std::array<float, 3> p = side / 2 == 0   ? std::array<float, 3>{far, a, b}
                                       : side / 2 == 1 ? std::array<float, 3>{b, far, a}
                                                       : std::array<float, 3>{a, b, far};
        return p;
      };
      const auto add = [&](const std::array<float, 3>& a, const std::array<float, 3>& b, const std::array<float, 3>& c) {
        facets.push_back({a[0], a[1], a[2], b[0], b[1], b[2], c[0], c[1], c[2]});
      };
      const auto p = point(u, v), q = point(u + step, v), r = point(u + step, v + step), s = point(u, v + step);
      if (side % 2 == 1) {
        add(p, q, r);
        add(p, r, s);
      } else {
        add(p, r, q);
        add(p, s, r);
      }
    }
  }
  return facets;
}

// The same without its lid's cell (1, 1), a hole of 4 edges, and without (3, 3) to (6, 6), one of 16.
std::string box_with_two_holes(const TestFolder& folder) {
  return folder.write("holes.stl", binary_stl(open_box(8, [](int x, int y) { return !(x == 1 && y == 1) && !(x > 2 && x < 7 && y > 2 && y < 7); })));
}

Json report_of(const ProcessResult& result) {
  EXPECT_EQ(result.errors, "");
  return Json::parse(result.output, nullptr, false);
}

Json close(std::vector<std::string> arguments, int exit_code = 0) {
  arguments.push_back("--json");
  const ProcessResult result = run_mendex(arguments);
  EXPECT_EQ(result.exit_code, exit_code) << result.errors;
  return report_of(result);
}

Json check(const std::string& path) { return report_of(run_mendex({"check", "--json", path})); }

}  // namespace

TEST(MendexHoles, CheckListsThemByNumber) {
  const TestFolder folder;
  const std::string file = box_with_two_holes(folder);
  const ProcessResult result = run_mendex({"check", file});
  EXPECT_NE(result.output.find("    hole 0                4 edges, length 1, round (0.375 0.375 2)\n"), std::string::npos) << result.output;
  EXPECT_NE(result.output.find("    hole 1               16 edges, length 4, round (1.25 1.25 2)\n"), std::string::npos) << result.output;
  const Json report = check(file);
  EXPECT_EQ(report["found"]["boundaries"][1]["number"], 1);
  EXPECT_EQ(report["found"]["boundaries"][1]["nodes"].size(), 16u);
}

TEST(MendexHoles, FillClosesThemAll) {
  const TestFolder folder;
  const Json report = close({"fill", box_with_two_holes(folder), "-o", folder.path("out.stl")});
  EXPECT_EQ(report["closed"], 2);
  EXPECT_EQ(report["holes"][0]["triangles"], 2);
  EXPECT_EQ(report["holes"][0]["nodes"], 0);
  EXPECT_EQ(report["holes"][1]["triangles"], 16);
  EXPECT_EQ(report["holes"][1]["nodes"], 1);
  EXPECT_EQ(report["boundaries_left"], 0);
  const Json after = check(folder.path("out.stl"));
  EXPECT_EQ(after["clean"], true) << after["volume"];
  EXPECT_NEAR(after["volume"], 8.0, 1e-6);
}

TEST(MendexHoles, CapsHaveNodesAtTheSpacing) {
  const TestFolder folder;
  const std::string file = box_with_two_holes(folder);
  const Json by_edges = close({"cap", file, "-o", folder.path("auto.stl")});
  const Json fine = close({"cap", file, "-o", folder.path("fine.stl"), "--spacing", "0.06", "--curved"});
  EXPECT_EQ(by_edges["method"], "flat");
  EXPECT_EQ(by_edges["holes"][1]["spacing"], 0.25);
  EXPECT_EQ(fine["method"], "curved");
  EXPECT_GE(by_edges["holes"][1]["nodes"], 5);
  EXPECT_GT(fine["holes"][1]["nodes"], by_edges["holes"][1]["nodes"]);
  for (const char* name : {"auto.stl", "fine.stl"}) {
    const Json after = check(folder.path(name));
    EXPECT_EQ(after["clean"], true) << name;
    EXPECT_NEAR(after["volume"], 8.0, 1e-5) << name;
  }
}

TEST(MendexHoles, ChosenByNumberBySizeAndByNodes) {
  const TestFolder folder;
  const std::string file = box_with_two_holes(folder), out = folder.path("out.stl");
  EXPECT_EQ(close({"fill", file, "-o", out, "--hole", "1"})["boundaries_left"], 1);
  EXPECT_EQ(check(out)["boundary_sizes"], Json::array({4}));
  const Json small = close({"fill", file, "-o", out, "--max-edges", "4"});
  EXPECT_EQ(small["not_chosen"], 1);
  EXPECT_EQ(check(out)["boundary_sizes"], Json::array({16}));
  const Json nodes = check(file)["found"]["boundaries"][1]["nodes"];
  const std::string ends = nodes[2].dump() + "," + nodes[6].dump();  // round a corner: straight on there is no area
  for (const char* verb : {"fill", "cap"}) {
    const Json part = close({verb, file, "-o", out, "--between", ends});
    EXPECT_EQ(part["holes"].size(), 1u);
    EXPECT_GT(part["holes"][0]["triangles"], 3) << verb;
    EXPECT_EQ(part["boundaries_left"], 2) << verb;
    EXPECT_LT(part["free_edges_left"], 20 - 4 + 5) << verb;
  }
}

// A slit between collinear nodes has no plane; the other hole is closed all the same, and the file is written.
TEST(MendexHoles, WhatCannotBeClosedIsToldAndStaysAsItWas) {
  const TestFolder folder;
  std::vector<FacetCorners> facets = open_box(1, [](int, int) { return true; });
  facets.push_back({10, 0, 0, 14, 0, 0, 12, 5, 0});
  facets.push_back({14, 0, 0, 12, 0, 0, 12, -5, 0});
  facets.push_back({12, 0, 0, 10, 0, 0, 12, -5, 0});
  facets.push_back({14, 0, 0, 12, -5, 0, 12, 5, 0});
  facets.push_back({12, -5, 0, 10, 0, 0, 12, 5, 0});
  facets.erase(facets.begin() + 10);  // of the box: a hole of three edges
  const std::string file = folder.write("slit.stl", binary_stl(facets)), out = folder.path("out.stl");
  const Json report = close({"cap", file, "-o", out}, 1);
  EXPECT_EQ(report["closed"], 1);
  EXPECT_EQ(report["refused"], 1);
  EXPECT_EQ(report["holes"][1]["refused"], "no plane, or no surface, can be fitted to it");
  EXPECT_EQ(report["holes"][1]["triangles"], 0);
  EXPECT_EQ(check(out)["boundary_sizes"], Json::array({3}));
  const ProcessResult told = run_mendex({"cap", file, "-o", out});
  EXPECT_NE(told.output.find("refused: no plane, or no surface, can be fitted to it\n"), std::string::npos) << told.output;
}

TEST(MendexHoles, WrongUsageWritesNothing) {
  const TestFolder folder;
  const std::string file = box_with_two_holes(folder), out = folder.path("out.stl");
  const std::vector<std::vector<std::string>> wrong = {
      {"--hole", "7"}, {"--hole", "-1"},      {"--hole", "1.5"},     {"--max-edges", "0"},
      {"--between", "1"}, {"--between", "3,3"}, {"--between", "1,2,3,4"}, {"--between", "100000,100001"},
  };
  for (std::vector<std::string> arguments : wrong) {
    arguments.insert(arguments.begin(), {"fill", file, "-o", out});
    EXPECT_EQ(run_mendex(arguments).exit_code, 2) << arguments.back();
  }
  EXPECT_EQ(run_mendex({"cap", file, "-o", out, "--spacing", "0"}).exit_code, 2);
  EXPECT_EQ(run_mendex({"stitch", file, "-o", out, "--tol", "0.1..0.01/0.1"}).exit_code, 2);
  EXPECT_EQ(run_mendex({"stitch", file, "-o", out}).exit_code, 2);
  EXPECT_EQ(folder.names(), std::vector<std::string>{"holes.stl"});
}

// A lid of one cell on walls of eight: each of its edges has seven nodes of the walls on it.
TEST(MendexStitch, ClosesTJunctions) {
  const TestFolder folder;
  std::vector<FacetCorners> facets = open_box(8, [](int, int) { return false; });
  facets.push_back({0, 0, 2, 2, 0, 2, 2, 2, 2});
  facets.push_back({0, 0, 2, 2, 2, 2, 0, 2, 2});
  for (std::size_t k = 0; k < 9; k += 3) facets.back()[k] += 1e-4f;  // a little to one side
  const std::string file = folder.write("lid.stl", binary_stl(facets)), out = folder.path("out.stl");
  for (const char* tolerance : {"0.001", "0.00001..0.002/0.0005"}) {
    const Json report = close({"stitch", file, "-o", out, "--tol", tolerance});
    EXPECT_GT(report["before"]["boundaries"], 0);
    EXPECT_EQ(report["after"]["boundaries"], 0) << tolerance;
    EXPECT_EQ(check(out)["free_edges"], 0) << tolerance;
  }
  const ProcessResult told = run_mendex({"stitch", file, "-o", out, "--tol", "0.001"});
  EXPECT_NE(told.output.find("  free edges           38          0\n"), std::string::npos) << told.output;
}
