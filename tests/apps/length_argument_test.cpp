// Lengths on the command line: what is one, what shares amount to, and that the length used is told.

#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>

#include "apps/process.h"
#include "apps/test_files.h"
#include "failure.h"
#include "length_argument.h"
#include "support/shapes.h"

namespace {

using Json = nlohmann::json;

double resolved(const char* text, const trTriBlock& mesh) { return LengthArgument::parse(text)->resolve(mesh); }

Json report_of(const std::vector<std::string>& arguments) {
  const ProcessResult result = run_mendex(arguments);
  EXPECT_LE(result.exit_code, 1) << result.errors;
  return Json::parse(result.output, nullptr, false);
}

}  // namespace

TEST(LengthArgument, IsANumberFromZeroUpAndPerhapsAUnit) {
  for (const char* good : {"0", "0.01", ".5", "1e-5", "1e-5d", "0.2e", "2e3e", "0d", "1E2d"}) EXPECT_EQ(LengthArgument::problem(good), "") << good;
  for (const char* bad : {"", "d", "e", "-1", "-1d", "nan", "inf", "infd", "1e999", "1mm", "1de", "1dd", "1 d", " 1", "1D", "1e-", "+1", "0x1d", "1,5"}) {
    EXPECT_NE(LengthArgument::problem(bad), "") << bad;
  }
}

// Of a box of 3 by 4 by 12 the diagonal is 13. Its 36 sides of triangles: 8 of each edge length, 4 of each face diagonal 5, sqrt 153, sqrt 160;
// in order 8 x 3, 8 x 4, 4 x 5, 8 x 12, ..., of which the 19th is a 5.
TEST(LengthArgument, SharesAreOfTheDiagonalAndOfTheMedianSide) {
  BlockOf box(closed_box({1, 2, 3}, 3, 4, 12));
  EXPECT_DOUBLE_EQ(resolved("0.5", box), 0.5);
  EXPECT_DOUBLE_EQ(resolved("0.5d", box), 6.5);
  EXPECT_DOUBLE_EQ(resolved("2e", box), 10.0);
  const trTriBlock empty;
  EXPECT_EQ(resolved("1d", empty), 0.0);
  EXPECT_EQ(resolved("1e", empty), 0.0);
}

TEST(LengthArgument, DeletedTrianglesDoNotCount) {
  Shape shape = closed_box({}, 1, 1, 1);
  for (int k = 0; k < 40; ++k) {
    shape.triangles.push_back({8, 9, 10});
  }
  shape.points.insert(shape.points.end(), {{0, 0, 0}, {0.5, 0, 0}, {0, 0.5, 0}});
  BlockOf box(shape);
  for (int e = 13; e < box.element_count(); ++e) box.delete_element(e);
  EXPECT_DOUBLE_EQ(resolved("1e", box), 1.0);
}

// A product that overflows is no length; corners that are no numbers have no sides.
TEST(LengthArgument, RefusesSharesWithoutAFiniteValue) {
  BlockOf box(closed_box({}, 1e10, 1, 1));
  EXPECT_THROW(resolved("1e300d", box), Failure);
  Shape shape = closed_box();
  shape.points[0].x = std::numeric_limits<double>::quiet_NaN();
  BlockOf holed(shape);
  EXPECT_TRUE(std::isfinite(resolved("1e", holed)));
}

// The open box is made of squares of 10: the median side is 10.
TEST(MendexLengths, TellTheLengthThatWasUsed) {
  const TestFolder folder;
  const std::string in = sample("open_box.ast"), out = folder.path("out.stl");
  const Json size = report_of({"info", in, "--json"})["box"];
  double diagonal_sq = 0.0;
  for (std::size_t k = 0; k < 3; ++k) {
    const double side = size["max"][k].get<double>() - size["min"][k].get<double>();
    diagonal_sq += side * side;
  }
  const double diagonal = std::sqrt(diagonal_sq);
  EXPECT_NEAR(report_of({"weld", in, "-o", out, "--json", "--tol", "1e-5d"})["tolerance"].get<double>(), 1e-5 * diagonal, 1e-12);
  EXPECT_DOUBLE_EQ(report_of({"weld", in, "-o", out, "--json", "--tol", "0.25e"})["tolerance"].get<double>(), 2.5);
  EXPECT_DOUBLE_EQ(report_of({"check", in, "--json", "--small", "0.5e", "--weld", "0.125e"})["limits"]["small"].get<double>(), 5.0);
  EXPECT_DOUBLE_EQ(report_of({"check", in, "--json", "--weld", "0.125e"})["limits"]["weld"].get<double>(), 1.25);
  const Json cleaned = report_of({"clean", in, "-o", out, "--json", "--small", "0.01e", "--weld", "0.02e"});
  EXPECT_DOUBLE_EQ(cleaned["weld"].get<double>(), 0.2);
  EXPECT_DOUBLE_EQ(cleaned["done"][2]["limit"].get<double>(), 0.1);
  const Json capped = report_of({"cap", in, "-o", out, "--json", "--spacing", "2e", "--weld", "0.02e"});
  EXPECT_DOUBLE_EQ(capped["weld"].get<double>(), 0.2);
  EXPECT_DOUBLE_EQ(capped["holes"][0]["spacing"].get<double>(), 20.0);
  const Json stitched = report_of({"stitch", in, "-o", out, "--json", "--tol", "0.0001e..0.01/0.0002e"});
  EXPECT_EQ(stitched["tolerance_used"], Json::parse(R"({"from": 0.001, "to": 0.01, "step": 0.002})"));
  EXPECT_NE(run_mendex({"weld", in, "-o", out, "--tol", "0.25e"}).output.find("  tolerance 2.5\n"), std::string::npos);
  const ProcessResult falling = run_mendex({"stitch", in, "-o", out, "--tol", "0.5e..0.1/0.01"});
  EXPECT_EQ(falling.exit_code, 2);
  EXPECT_NE(falling.errors.find("is 5..0.1/0.01 for this model, which is not a ladder"), std::string::npos) << falling.errors;
}
