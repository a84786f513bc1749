// `mendex convert` between all formats, and its options.

#include "apps/reports.h"

namespace {

constexpr const char* extensions[] = {"mnx", "mes", "tri", "stl", "ast", "kvx"};

void convert(Arguments arguments) {
  arguments.insert(arguments.begin(), "convert");
  const ProcessResult result = run_mendex(arguments);
  EXPECT_EQ(result.exit_code, 0) << result.errors;
  EXPECT_EQ(result.errors, "");
}

// Facets with all coordinates scaled.
std::string scaled(float scale) {
  std::vector<FacetCorners> facets = some_facets(3);
  for (FacetCorners& facet : facets) {
    for (float& c : facet) c *= scale;
  }
  return binary_stl(facets);
}

}  // namespace

// The bracket's corners lie on a grid of 2.5, which every format holds exactly. Content decides what a file is, its name only what is
// written.
TEST(MendexConvert, WritesAndReadsEveryFormatByWhateverName) {
  const TestFolder folder;
  for (const std::string format : extensions) {
    convert({sample("bracket_soup.stl"), folder.path("a." + format)});
    std::filesystem::rename(folder.path("a." + format), folder.path("data.bin"));
    const Json report = info(folder.path("data.bin"));
    EXPECT_EQ(report["elements"], 204) << format;
    EXPECT_EQ(report["volume"].get<double>(), 4250.0) << format;
    EXPECT_EQ(report["complete"], true) << format;
  }
  expect_text(run_mendex({"convert", sample("open_box.ast"), folder.path("box.stl")}).output, "(ASCII STL) -> ");
}

TEST(MendexConvert, AppendsFilesAndCutsRanges) {
  const TestFolder folder;
  const std::string out = folder.path("out.mnx");
  convert({sample("bracket_soup.stl"), out, "--append", sample("open_box.ast"), "--append", sample("bracket_soup.stl")});
  EXPECT_EQ(info(out)["elements"], 204 + 32 + 204);
  convert({sample("bracket_soup.stl"), out, "--stl-range", "5:20"});
  EXPECT_EQ(info(out)["elements"], 16);
  convert({sample("open_box.ast"), out, "--stl-range", "30:"});
  EXPECT_EQ(info(out)["elements"], 3);
}

TEST(MendexConvert, NumbersAnewAndKeepsAttributesAsAsked) {
  const TestFolder folder;
  run_mendex({"weld", sample("bracket_soup.stl"), "-o", folder.path("welded.mnx")});
  EXPECT_GT(info(folder.path("welded.mnx"))["max_node"], 100);
  convert({folder.path("welded.mnx"), folder.path("dense.mnx"), "--renumber"});
  EXPECT_EQ(info(folder.path("dense.mnx"))["max_node"], 100);
  convert({folder.path("dense.mnx"), folder.path("smooth.tri")});
  EXPECT_EQ(info(folder.path("smooth.tri"))["nodes"], 100);
  convert({folder.path("dense.mnx"), folder.path("flat.tri"), "--smooth", "off"});
  EXPECT_EQ(info(folder.path("flat.tri"))["nodes"], 612);
  convert({folder.path("smooth.tri"), folder.path("kept.mes"), "--preserve"});
  expect_text(contents_of_file(folder.path("kept.mes")), "NODES,FORMAT=(I8,6F16.4)\n");
  convert({folder.path("smooth.tri"), folder.path("lost.mes")});
  expect_text(contents_of_file(folder.path("lost.mes")), "NODES,FORMAT=(I8,3F16.4)\n");
}

// A native file that breaks off gives what it holds, and says so; a KVX file is taken whole or not at all.
TEST(MendexConvert, TellsDamagedFiles) {
  const TestFolder folder;
  for (const std::string extension : {"mnx", "kvx"}) {
    convert({sample("bracket_soup.stl"), folder.path("whole." + extension)});
    const std::string bytes = contents_of_file(folder.path("whole." + extension));
    const ProcessResult cut = run_mendex({"info", "--json", folder.write("cut." + extension, bytes.substr(0, bytes.size() - 40))});
    EXPECT_EQ(cut.exit_code, extension == "mnx" ? 0 : 3);
    if (cut.exit_code != 0) continue;
    expect_text(cut.errors, "File is corrupt. [Out of sync]");
    EXPECT_EQ(Json::parse(cut.output)["complete"], false);
    EXPECT_EQ(Json::parse(cut.output)["elements"], 202);
  }
}

// Texts have a fixed number of decimals and columns: what does not fit is told, or refused when it would not read back. Binary STL is single
// precision: what does not fit becomes infinite, and the user hears of it.
TEST(MendexConvert, TellsWhatAFormatCannotHold) {
  const TestFolder folder;
  const ProcessResult tiny = run_mendex({"convert", folder.write("tiny.stl", scaled(1e-8f)), folder.path("tiny.tri")});
  EXPECT_EQ(tiny.exit_code, 0);
  expect_text(tiny.errors, "the format keeps 5 decimals, which is coarse for a model of size");
  EXPECT_EQ(run_mendex({"convert", folder.write("huge.stl", scaled(1e14f)), folder.path("huge.mes")}).exit_code, 4);
  const std::string far = folder.write("far.ast", "solid\nfacet normal 0 0 1\nvertex 0 0 0\nvertex 1e200 0 0\nvertex 0 1 0\nendfacet\nendsolid\n");
  const ProcessResult infinite = run_mendex({"convert", far, folder.path("far.stl")});
  EXPECT_EQ(infinite.exit_code, 0);
  expect_text(infinite.errors, "too large for the format");
  EXPECT_EQ(folder.names(), (Arguments{"far.ast", "far.stl", "huge.stl", "tiny.stl", "tiny.tri"}));
}

TEST(MendexConvert, ListsFormatsAndRefusesWrongArguments) {
  const ProcessResult formats = run_mendex({"formats"});
  EXPECT_EQ(formats.exit_code, 0);
  for (const std::string extension : extensions) expect_text(formats.output, "  ." + extension + " ");
  const TestFolder folder;
  for (const Arguments& wrong : std::vector<Arguments>{{"--stl-range", "0:5"}, {"--stl-range", "7:3"}, {"--stl-range", "5"}, {"--smooth", "maybe"}}) {
    expect_refused({"convert", sample("bracket_soup.stl"), folder.path("out.stl")}, wrong, 2);
  }
  EXPECT_TRUE(folder.names().empty());
}
