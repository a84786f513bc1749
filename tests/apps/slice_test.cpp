// `mendex slice` and `mendex section`: what they make of a file, how they tell it, what they refuse.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "apps/process.h"
#include "apps/test_files.h"
#include "support/shapes.h"

namespace {

using Json = nlohmann::json;

std::string stl_of(const TestFolder& folder, const std::string& name, const std::vector<Shape>& shapes) {
  std::vector<FacetCorners> facets;
  for (const Shape& shape : shapes) {
    for (const auto& t : shape.triangles) {
      FacetCorners corners{};
      for (std::size_t k = 0; k < 9; ++k) {
        const giPoint3& p = shape.points[static_cast<std::size_t>(t[k / 3])];
        corners[k] = static_cast<float>(p[static_cast<gi_Axis>(k % 3)]);
      }
      facets.push_back(corners);
    }
  }
  return folder.write(name, binary_stl(facets));
}

Shape turned_inside_out(Shape shape) {
  for (auto& t : shape.triangles) std::swap(t[1], t[2]);
  return shape;
}

Json report_of(std::vector<std::string> arguments, int exit_code = 0) {
  arguments.push_back("--json");
  const ProcessResult result = run_mendex(arguments);
  EXPECT_EQ(result.exit_code, exit_code) << result.errors;
  return Json::parse(result.output, nullptr, false);
}

double volume_of(const std::string& path) { return report_of({"info", path})["volume"]; }

int count_of(const Json& report, const std::string& what) {
  for (const Json& done : report["done"]) {
    if (done["what"] == what) return done["count"];
  }
  return -1;
}

// Lengths of the outlines, in ascending order.
std::vector<double> lengths_of(const Json& section) {
  std::vector<double> lengths;
  for (const Json& line : section["polylines"]) lengths.push_back(line["length"]);
  std::sort(lengths.begin(), lengths.end());
  return lengths;
}

}  // namespace

// Solid, with a hollow inside, of two pieces, facing inward: both halves are closed, and their volumes add up. The loop of a hollow
// is a hole of the area and gets no triangles of its own.
TEST(MendexSlice, CapsBothSides) {
  const TestFolder folder;
  const Shape hollow = turned_inside_out(closed_box(giPoint3(1, 1, 1), 2, 2, 2));
  const Shape beside = closed_box(giPoint3(10, 0, 0), 1, 1, 4);
  const struct {
    std::vector<Shape> shapes;
    double volume, area;
    int loops;
  } cases[] = {{{closed_box(giPoint3(), 4, 4, 4)}, 64, 16, 1},
               {{closed_box(giPoint3(), 4, 4, 4), hollow}, 56, 12, 2},
               {{closed_box(giPoint3(), 4, 4, 4), hollow, beside}, 60, 13, 3},
               {{turned_inside_out(closed_box(giPoint3(), 4, 4, 4))}, -64, 16, 1}};
  for (const auto& c : cases) {
    const std::string in = stl_of(folder, "in.stl", c.shapes);
    double volume = 0, area = -report_of({"info", in})["area"].get<double>();
    for (const char* side : {"above", "below"}) {
      const std::string out = folder.path(side + std::string(".stl"));
      const Json report = report_of({"slice", in, "--at", "1.5", "--keep", side, "--cap", "-o", out});
      EXPECT_EQ(report["after"]["boundaries"], 0);
      EXPECT_EQ(count_of(report, "boundaries in the plane closed"), c.loops);
      EXPECT_EQ(report_of({"check", out}, c.volume < 0)["clean"], c.volume > 0);
      volume += volume_of(out);
      area += report_of({"info", out})["area"].get<double>();
    }
    EXPECT_NEAR(volume, c.volume, 1e-5);
    EXPECT_NEAR(area, 2 * c.area, 1e-5);
  }
}

// What lies beside the plane is not touched, neither without --cap nor with it.
TEST(MendexSlice, LeavesOtherBoundariesOpen) {
  const TestFolder folder;
  Shape open_box = closed_box(giPoint3(-1, -1, -1), 2, 2, 2);
  open_box.triangles.erase(open_box.triangles.begin());
  const std::string in = stl_of(folder, "in.stl", {open_box}), out = folder.path("out.stl");
  Json report = report_of({"slice", in, "--axis", "x", "--at", "-0.25", "--keep", "above", "-o", out});
  const int boundaries = report["after"]["boundaries"];
  EXPECT_EQ(report["before"]["boundaries"], 1);
  EXPECT_EQ(count_of(report, "boundaries in the plane closed"), -1);
  EXPECT_GT(count_of(report, "nodes made in the plane"), 3);
  report = report_of({"slice", in, "--axis", "x", "--at", "-2", "--keep", "above", "--cap", "-o", out});
  EXPECT_EQ(count_of(report, "boundaries in the plane closed"), 0);
  EXPECT_EQ(report["after"], report["before"]);
  EXPECT_GE(boundaries, 1);
}

// Two boxes with one edge in common: their loops share nodes, which is no area.
TEST(MendexSlice, TellsWhyACutStaysOpen) {
  const TestFolder folder;
  const std::string in = stl_of(folder, "in.stl", {closed_box(), closed_box(giPoint3(1, 1, 0))}), out = folder.path("out.stl");
  const Json report = report_of({"slice", in, "--at", "0.5", "--keep", "below", "--cap", "-o", out}, 1);
  EXPECT_NE(report["warnings"][0].get<std::string>().find("the cut stays open"), std::string::npos);
  EXPECT_GT(report["after"]["boundaries"].get<int>(), 0);
  EXPECT_EQ(report_of({"info", out})["elements"], report["after"]["elements"]) << "what was cut is written";
}

TEST(MendexSlice, RefusesWhatItCannotDo) {
  const TestFolder folder;
  const std::string in = stl_of(folder, "in.stl", {closed_box()}), out = folder.write("out.stl", "as it was");
  const struct {
    std::vector<std::string> arguments;
    int exit_code;
    const char* error;
  } cases[] = {{{"--at", "2", "--keep", "above"}, 2, "no triangle is left above z = 2"},
               {{"--at", "nan", "--keep", "above"}, 2, "'nan' is not a number"},
               {{"--at", "0.5,1", "--keep", "above"}, 2, "'0.5,1' is not a number"},
               {{"--at", "0.5", "--keep", "left"}, 2, "left"},
               {{"--at", "0.5", "--keep", "above", "--axis", "w"}, 2, "w"},
               {{"--at", "0.5"}, 2, "--keep is required"}};
  for (const auto& c : cases) {
    std::vector<std::string> arguments = {"slice", in, "-o", out};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    const ProcessResult result = run_mendex(arguments);
    EXPECT_EQ(result.exit_code, c.exit_code) << c.error;
    EXPECT_NE(result.errors.find(c.error), std::string::npos) << result.errors;
    EXPECT_EQ(contents_of_file(out), "as it was");
  }
  EXPECT_EQ(run_mendex({"slice", folder.path("none.stl"), "--at", "0", "--keep", "above", "-o", out}).exit_code, 3);
}

TEST(MendexSection, CountsAndMeasures) {
  const TestFolder folder;
  const std::string in = stl_of(folder, "in.stl", {closed_box(giPoint3(), 4, 3, 2), flat_sheet(1, 1), torus(32, 16)});
  EXPECT_EQ(run_mendex({"section", in, "--at", "-0.5,1.5,7"}).output,
            in + ": binary STL\n"
                 "             z    polylines       closed           length\n"
                 "          -0.5            2            2       25.0923882\n"
                 "           1.5            1            1               14\n"
                 "             7            0            0                0\n");
  const Json report = report_of({"section", in, "--axis", "x", "--at", "0.25"});
  EXPECT_EQ(report["sections"][0]["polylines"].size(), 4u) << "a box, two sides of the torus, an open line over the sheet";
  EXPECT_EQ(report["sections"][0]["closed"], 3);
  EXPECT_NEAR(lengths_of(report["sections"][0])[0], 1.0, 1e-6);
}

TEST(MendexSection, WritesEveryPointOnceAsJson) {
  const TestFolder folder;
  const std::string in = stl_of(folder, "in.stl", {closed_box(giPoint3(), 4, 3, 2)}), out = folder.path("out.json");
  ASSERT_EQ(run_mendex({"section", in, "--at", "1,0.5", "-o", out}).exit_code, 0);
  const Json json = Json::parse(contents_of_file(out), nullptr, false);
  ASSERT_EQ(json["sections"].size(), 2u);
  EXPECT_EQ(json["file"], in);
  EXPECT_EQ(json["sections"][1]["at"], 0.5);
  const Json& line = json["sections"][0]["polylines"][0];
  EXPECT_EQ(line["closed"], true);
  EXPECT_NEAR(line["length"], 14, 1e-9);
  ASSERT_EQ(line["points"].size(), 8u) << "four corners, four diagonals";
  std::set<Json> points(line["points"].begin(), line["points"].end());
  EXPECT_EQ(points.size(), 8u);
  for (const Json& p : points) EXPECT_EQ(p[2], 1.0);
}

// A group for each height, a path for each outline; y runs up, so its sign is turned.
TEST(MendexSection, DrawsAnSvg) {
  const TestFolder folder;
  const std::string in = stl_of(folder, "a<b.stl", {closed_box(giPoint3(), 4, 3, 2), flat_sheet(1, 1)}), out = folder.path("out.svg");
  ASSERT_EQ(run_mendex({"section", in, "--at", "0.5,1", "-o", out}).exit_code, 0);
  std::string svg = contents_of_file(out);
  EXPECT_NE(svg.find("viewBox=\"-0.12 -3.12 4.24 3.24\""), std::string::npos) << svg;
  EXPECT_NE(svg.find("stroke-width=\"0.008\""), std::string::npos);
  EXPECT_NE(svg.find("a&lt;b.stl</title>"), std::string::npos);
  EXPECT_NE(svg.find("<title>z = 0.5</title>\n<path d=\"M"), std::string::npos);
  EXPECT_NE(svg.find("4 -3"), std::string::npos);
  EXPECT_NE(svg.find("Z\"/>\n</g>\n<g"), std::string::npos);
  ASSERT_EQ(run_mendex({"section", in, "--axis", "x", "--at", "0.25", "-o", out}).exit_code, 0);
  svg = contents_of_file(out);
  EXPECT_NE(svg.find("viewBox=\"-0.09 -2.09 3.18 2.18\""), std::string::npos) << svg;
  EXPECT_NE(svg.find("0\"/>"), std::string::npos) << "an open line is not closed";
  // Far out, coordinates count from a corner, since viewers have few digits.
  const std::string far = stl_of(folder, "far.stl", {closed_box(giPoint3(1 << 20, -(1 << 20), 0), 4, 3, 2)});
  ASSERT_EQ(run_mendex({"section", far, "--at", "1", "-o", out}).exit_code, 0);
  svg = contents_of_file(out);
  EXPECT_NE(svg.find("counted from 1048576, -1048576"), std::string::npos) << svg;
  EXPECT_NE(svg.find("viewBox=\"-0.12 -3.12 4.24 3.24\""), std::string::npos) << svg;
}

TEST(MendexSection, DrawsAPicture) {
  const TestFolder folder;
  const std::string in = stl_of(folder, "in.stl", {closed_box(giPoint3(), 4, 3, 2)}), out = folder.path("out.pic");
  ASSERT_EQ(run_mendex({"section", in, "--at", "1", "-o", out}).exit_code, 0);
  const std::string picture = contents_of_file(out);
  EXPECT_EQ(picture.rfind("EDIT PLEV 0#UNSET ECHO\nDELETE PICTURE\nINPUT PIX 1 ", 0), 0u) << picture;
  EXPECT_NE(picture.find("INPUT PIX 10 "), std::string::npos) << "eight points, the first three times";
  EXPECT_EQ(picture.find("INPUT PIX 11 "), std::string::npos);
}

TEST(MendexSection, RefusesWhatItCannotDo) {
  const TestFolder folder;
  const std::string in = stl_of(folder, "in.stl", {closed_box()});
  EXPECT_EQ(run_mendex({"section", in, "--at", "0.5,", "-o", folder.path("out.svg")}).exit_code, 2);
  EXPECT_EQ(run_mendex({"section", in, "--at", "0.5", "-o", folder.path("out.stl")}).exit_code, 2);
  EXPECT_EQ(run_mendex({"section", in, "--at", "0.5,0.6", "-o", folder.path("out.pic")}).exit_code, 2);
  EXPECT_EQ(run_mendex({"section", folder.path("none.stl"), "--at", "0.5", "-o", folder.path("out.svg")}).exit_code, 3);
  EXPECT_EQ(run_mendex({"section", in, "--at", "0.5", "-o", folder.path("none/out.svg")}).exit_code, 4);
  EXPECT_EQ(folder.names(), std::vector<std::string>{"in.stl"});
  ProcessSetup small = mendex_setup({"section", in, "--at", "0.5", "-o", folder.write("out.svg", "as it was")});
  small.file_size_limit = 100;
  EXPECT_EQ(run_process(small).exit_code, 4);
  EXPECT_EQ(contents_of_file(folder.path("out.svg")), "as it was");
}
