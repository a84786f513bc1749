// `mendex slice` and `mendex section`: what they make of a file, how they tell it, what they refuse.

#include <set>

#include "apps/reports.h"

namespace {

Shape turned_inside_out(Shape shape) {
  for (auto& t : shape.triangles) std::swap(t[1], t[2]);
  return shape;
}

// Writes a section and returns the file's text.
std::string section_of(const std::string& in, const std::string& out, const Arguments& options) {
  Arguments arguments = {"section", in, "-o", out};
  arguments.insert(arguments.end(), options.begin(), options.end());
  EXPECT_EQ(run_mendex(arguments).exit_code, 0);
  return contents_of_file(out);
}

const Shape box_432 = closed_box(giPoint3(), 4, 3, 2);

}  // namespace

// Solid, with a hollow inside, of two pieces, facing inward: both halves are closed, and their volumes add up. The loop of a hollow
// is a hole of the area and gets no triangles of its own.
TEST(MendexSlice, CapsBothSides) {
  const TestFolder folder;
  const Shape solid = closed_box(giPoint3(), 4, 4, 4), hollow = turned_inside_out(closed_box(giPoint3(1, 1, 1), 2, 2, 2));
  const Shape beside = closed_box(giPoint3(10, 0, 0), 1, 1, 4);
  const struct {
    std::vector<Shape> shapes;
    double volume, area;
    int loops;
  } cases[] = {{{solid}, 64, 16, 1}, {{solid, hollow}, 56, 12, 2}, {{solid, hollow, beside}, 60, 13, 3}, {{turned_inside_out(solid)}, -64, 16, 1}};
  for (const auto& c : cases) {
    const std::string in = stl_of(folder, "in.stl", c.shapes);
    double volume = 0, area = -info(in)["area"].get<double>();
    for (const char* side : {"above", "below"}) {
      const std::string out = folder.path(side + std::string(".stl"));
      const Json report = report_of({"slice", in, "--at", "1.5", "--keep", side, "--cap", "-o", out});
      EXPECT_EQ(report["after"]["boundaries"], 0);
      EXPECT_EQ(count_of(report, "boundaries in the plane closed"), c.loops);
      EXPECT_EQ(report_of({"check", out}, c.volume < 0)["clean"], c.volume > 0);
      volume += info(out)["volume"].get<double>();
      area += info(out)["area"].get<double>();
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
  EXPECT_EQ(report["before"]["boundaries"], 1);
  EXPECT_GE(report["after"]["boundaries"], 1);
  EXPECT_EQ(count_of(report, "boundaries in the plane closed"), -1);
  EXPECT_GT(count_of(report, "nodes made in the plane"), 3);
  report = report_of({"slice", in, "--axis", "x", "--at", "-2", "--keep", "above", "--cap", "-o", out});
  EXPECT_EQ(count_of(report, "boundaries in the plane closed"), 0);
  EXPECT_EQ(report["after"], report["before"]);
}

// Two boxes with one edge in common: their loops share nodes, which is no area.
TEST(MendexSlice, TellsWhyACutStaysOpen) {
  const TestFolder folder;
  const std::string in = stl_of(folder, "in.stl", {closed_box(), closed_box(giPoint3(1, 1, 0))}), out = folder.path("out.stl");
  const Json report = report_of({"slice", in, "--at", "0.5", "--keep", "below", "--cap", "-o", out}, 1);
  expect_text(report["warnings"][0].get<std::string>(), "the cut stays open");
  EXPECT_GT(report["after"]["boundaries"].get<int>(), 0);
  EXPECT_EQ(info(out)["elements"], report["after"]["elements"]) << "what was cut is written";
}

TEST(MendexSlice, RefusesWhatItCannotDo) {
  const TestFolder folder;
  const std::string in = stl_of(folder, "in.stl", {closed_box()}), out = folder.write("out.stl", "as it was");
  const std::pair<Arguments, const char*> cases[] = {{{"--at", "2", "--keep", "above"}, "no triangle is left above z = 2"},
                                                     {{"--at", "nan", "--keep", "above"}, "'nan' is not a number"},
                                                     {{"--at", "0.5,1", "--keep", "above"}, "'0.5,1' is not a number"},
                                                     {{"--at", "0.5", "--keep", "left"}, "left"},
                                                     {{"--at", "0.5", "--keep", "above", "--axis", "w"}, "w"},
                                                     {{"--at", "0.5"}, "--keep is required"}};
  for (const auto& [arguments, error] : cases) expect_refused({"slice", in, "-o", out}, arguments, 2, error);
  expect_refused({"slice", folder.path("none.stl"), "--at", "0", "--keep", "above", "-o", out}, {}, 3);
  EXPECT_EQ(contents_of_file(out), "as it was");
}

TEST(MendexSection, CountsAndMeasures) {
  const TestFolder folder;
  const std::string in = stl_of(folder, "in.stl", {box_432, flat_sheet(1, 1), torus(32, 16)});
  EXPECT_EQ(run_mendex({"section", in, "--at", "-0.5,1.5,7"}).output,
            in + ": binary STL\n"
                 "             z    polylines       closed           length\n"
                 "          -0.5            2            2       25.0923882\n"
                 "           1.5            1            1               14\n"
                 "             7            0            0                0\n");
  const Json section = report_of({"section", in, "--axis", "x", "--at", "0.25"})["sections"][0];
  EXPECT_EQ(section["polylines"].size(), 4u) << "a box, two sides of the torus, an open line over the sheet";
  EXPECT_EQ(section["closed"], 3);
}

TEST(MendexSection, WritesEveryPointOnceAsJson) {
  const TestFolder folder;
  const std::string in = stl_of(folder, "in.stl", {box_432});
  const Json json = Json::parse(section_of(in, folder.path("out.json"), {"--at", "1,0.5"}));
  ASSERT_EQ(json["sections"].size(), 2u);
  EXPECT_EQ(json["file"], in);
  EXPECT_EQ(json["sections"][1]["at"], 0.5);
  const Json& line = json["sections"][0]["polylines"][0];
  EXPECT_EQ(line["closed"], true);
  EXPECT_NEAR(line["length"].get<double>(), 14, 1e-9);
  ASSERT_EQ(line["points"].size(), 8u) << "four corners, four diagonals";
  const std::vector<Json> list = line["points"].elements();
  const std::set<Json> points(list.begin(), list.end());
  EXPECT_EQ(points.size(), 8u);
  for (const Json& p : points) EXPECT_EQ(p[2], 1.0);
}

// A group for each height, a path for each outline; y runs up, so its sign is turned.
TEST(MendexSection, DrawsAnSvg) {
  const TestFolder folder;
  const std::string in = stl_of(folder, "a<b.stl", {box_432, flat_sheet(1, 1)}), out = folder.path("out.svg");
  const std::string svg = section_of(in, out, {"--at", "0.5,1"});
  for (const char* part : {"viewBox=\"-0.12 -3.12 4.24 3.24\"", "stroke-width=\"0.008\"", "a&lt;b.stl</title>", "<title>z = 0.5</title>\n<path d=\"M",
                           "4 -3", "Z\"/>\n</g>\n<g"}) {
    expect_text(svg, part);
  }
  const std::string sideways = section_of(in, out, {"--axis", "x", "--at", "0.25"});
  expect_text(sideways, "viewBox=\"-0.09 -2.09 3.18 2.18\"");
  expect_text(sideways, "0\"/>");  // an open line is not closed
  // Far out, coordinates count from a corner, since viewers have few digits.
  const std::string far = section_of(stl_of(folder, "far.stl", {closed_box(giPoint3(1 << 20, -(1 << 20), 0), 4, 3, 2)}), out, {"--at", "1"});
  expect_text(far, "counted from 1048576, -1048576");
  expect_text(far, "viewBox=\"-0.12 -3.12 4.24 3.24\"");
}

TEST(MendexSection, DrawsAPicture) {
  const TestFolder folder;
  const std::string picture = section_of(stl_of(folder, "in.stl", {box_432}), folder.path("out.pic"), {"--at", "1"});
  EXPECT_EQ(picture.rfind("EDIT PLEV 0#UNSET ECHO\nDELETE PICTURE\nINPUT PIX 1 ", 0), 0u) << picture;
  expect_text(picture, "INPUT PIX 10 ");  // eight points, the first three times
  EXPECT_EQ(picture.find("INPUT PIX 11 "), std::string::npos);
}

TEST(MendexSection, RefusesWhatItCannotDo) {
  const TestFolder folder;
  const std::string in = stl_of(folder, "in.stl", {closed_box()}), none = folder.path("none.stl");
  const struct {
    std::string in, at, out;
    int exit_code;
  } cases[] = {{in, "0.5,", "out.svg", 2}, {in, "0.5", "out.stl", 2}, {in, "0.5,0.6", "out.pic", 2}, {none, "0.5", "out.svg", 3},
               {in, "0.5", "none/out.svg", 4}};
  for (const auto& c : cases) expect_refused({"section", c.in, "--at", c.at, "-o", folder.path(c.out)}, {}, c.exit_code);
  EXPECT_EQ(folder.names(), Arguments{"in.stl"});
  ProcessSetup small = mendex_setup({"section", in, "--at", "0.5", "-o", folder.write("out.svg", "as it was")});
  small.file_size_limit = 100;
  EXPECT_EQ(run_process(small).exit_code, 4);
  EXPECT_EQ(contents_of_file(folder.path("out.svg")), "as it was");
}
