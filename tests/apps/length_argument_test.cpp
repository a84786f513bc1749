// Lengths on the command line: what is one, what shares amount to, and that the length used is told.

#include "apps/reports.h"
#include "failure.h"
#include "length_argument.h"

namespace {

double resolved(const char* text, const trTriBlock& mesh) { return LengthArgument::parse(text)->resolve(mesh); }

}  // namespace

TEST(LengthArgument, IsANumberFromZeroUpAndPerhapsAUnit) {
  for (const char* good : {"0", "0.01", ".5", "1e-5", "1e-5d", "0.2e", "2e3e", "0d", "1E2d"}) EXPECT_EQ(LengthArgument::problem(good), "") << good;
  for (const char* bad : {"", "d", "e", "-1", "-1d", "nan", "inf", "infd", "1e999", "1mm", "1de", "1dd", "1 d", " 1", "1D", "1e-", "+1", "0x1d", "1,5"}) {
    EXPECT_NE(LengthArgument::problem(bad), "") << bad;
  }
}

// Of a box of 3 by 4 by 12 the diagonal is 13. Its 36 sides of triangles: 8 of each edge length, 4 of each face diagonal 5, sqrt 153, sqrt 160;
// in order 8 x 3, 8 x 4, 4 x 5, 8 x 12, ..., of which the 19th is a 5. Deleted triangles do not count.
TEST(LengthArgument, SharesAreOfTheDiagonalAndOfTheMedianSide) {
  BlockOf box(closed_box({1, 2, 3}, 3, 4, 12));
  EXPECT_DOUBLE_EQ(resolved("0.5", box), 0.5);
  EXPECT_DOUBLE_EQ(resolved("0.5d", box), 6.5);
  EXPECT_DOUBLE_EQ(resolved("2e", box), 10.0);
  for (int k = 0; k < 40; ++k) add_to(box, {{{1, 2, 3}, {1.5, 2, 3}, {1, 2.5, 3}}, {{0, 1, 2}}});
  EXPECT_LT(resolved("1e", box), 1.0);
  for (int e = 13; e < box.element_count(); ++e) box.delete_element(e);
  EXPECT_DOUBLE_EQ(resolved("2e", box), 10.0);
  const trTriBlock empty;
  EXPECT_EQ(resolved("1d", empty), 0.0);
  EXPECT_EQ(resolved("1e", empty), 0.0);
}

// A product that overflows is no length; corners that are no numbers have no sides.
TEST(LengthArgument, RefusesSharesWithoutAFiniteValue) {
  BlockOf box(closed_box({}, 1e10, 1, 1));
  EXPECT_THROW(resolved("1e300d", box), Failure);
  Shape shape = closed_box();
  shape.points[0].x = std::nan("");
  BlockOf holed(shape);
  EXPECT_TRUE(std::isfinite(resolved("1e", holed)));
}

// The open box is made of squares of 10: the median side is 10, and its own box is 30 by 20 by 10.
TEST(MendexLengths, TellTheLengthThatWasUsed) {
  const TestFolder folder;
  const std::string in = sample("open_box.ast"), out = folder.path("out.stl");
  const auto told = [&](const char* verb, const Arguments& options, const char* where) {
    Arguments arguments = {verb, in};
    if (std::string(verb) != "check") arguments.insert(arguments.end(), {"-o", out});
    arguments.insert(arguments.end(), options.begin(), options.end());
    return report_of(arguments, -1).at_path(where);
  };
  const Json size = info(in)["box"];
  double diagonal_sq = 0.0;
  for (std::size_t k = 0; k < 3; ++k) diagonal_sq += std::pow(size["max"][k].get<double>() - size["min"][k].get<double>(), 2);
  EXPECT_NEAR(told("weld", {"--tol", "1e-5d"}, "/tolerance").get<double>(), 1e-5 * std::sqrt(diagonal_sq), 1e-12);
  const struct {
    const char* verb;
    Arguments options;
    const char* where;
    double length;
  } cases[] = {{"weld", {"--tol", "0.25e"}, "/tolerance", 2.5},
               {"check", {"--small", "0.5e"}, "/limits/small", 5.0},
               {"check", {"--weld", "0.125e"}, "/limits/weld", 1.25},
               {"clean", {"--weld", "0.02e"}, "/weld", 0.2},
               {"clean", {"--small", "0.01e"}, "/done/2/limit", 0.1},
               {"cap", {"--weld", "0.02e"}, "/weld", 0.2},
               {"cap", {"--spacing", "2e"}, "/holes/0/spacing", 20.0},
               {"stitch", {"--tol", "0.0001e..0.01/0.0002e"}, "/tolerance_used/from", 0.001},
               {"stitch", {"--tol", "0.0001e..0.01/0.0002e"}, "/tolerance_used/to", 0.01},
               {"stitch", {"--tol", "0.0001e..0.01/0.0002e"}, "/tolerance_used/step", 0.002}};
  for (const auto& c : cases) EXPECT_DOUBLE_EQ(told(c.verb, c.options, c.where).get<double>(), c.length) << c.where;
  expect_text(run_mendex({"weld", in, "-o", out, "--tol", "0.25e"}).output, "  tolerance 2.5\n");
  expect_refused({"stitch", in, "-o", out}, {"--tol", "0.5e..0.1/0.01"}, 2, "is 5..0.1/0.01 for this model, which is not a ladder");
}
