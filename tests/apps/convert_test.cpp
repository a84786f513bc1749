// `mendex convert` between all formats, and its options.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "apps/process.h"
#include "apps/test_files.h"

namespace {

using Json = nlohmann::json;

constexpr const char* extensions[] = {"mnx", "mes", "tri", "stl", "ast", "kvx"};

Json info(const std::string& path) { return Json::parse(run_mendex({"info", "--json", path}).output, nullptr, false); }

void convert(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "convert");
  const ProcessResult result = run_mendex(arguments);
  EXPECT_EQ(result.exit_code, 0) << result.errors;
  EXPECT_EQ(result.errors, "");
}

}  // namespace

// The bracket's corners lie on a grid of 2.5, which every format holds exactly.
TEST(MendexConvert, EveryFormatLeadsToEveryOther) {
  const TestFolder folder;
  for (const std::string from : extensions) {
    const std::string first = folder.path("a." + from);
    convert({sample("bracket_soup.stl"), first});
    for (const std::string to : extensions) {
      const std::string second = folder.path("b." + to);
      convert({first, second});
      const Json report = info(second);
      EXPECT_EQ(report["elements"], 204) << from << " to " << to;
      EXPECT_EQ(report["volume"].get<double>(), 4250.0) << from << " to " << to;
      EXPECT_EQ(report["complete"], true);
    }
  }
}

// Content decides what a file is, its name only what is written.
TEST(MendexConvert, ReadsFilesOfMisleadingNames) {
  const TestFolder folder;
  for (const std::string from : extensions) {
    convert({sample("bracket_soup.stl"), folder.path("a." + from)});
    std::filesystem::rename(folder.path("a." + from), folder.path("data.bin"));
    EXPECT_EQ(info(folder.path("data.bin"))["elements"], 204) << from;
  }
  const ProcessResult result = run_mendex({"convert", sample("open_box.ast"), folder.path("box.stl")});
  EXPECT_NE(result.output.find("(ASCII STL) -> "), std::string::npos) << result.output;
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
  EXPECT_NE(contents_of_file(folder.path("kept.mes")).find("NODES,FORMAT=(I8,6F16.4)\n"), std::string::npos);
  convert({folder.path("smooth.tri"), folder.path("lost.mes")});
  EXPECT_NE(contents_of_file(folder.path("lost.mes")).find("NODES,FORMAT=(I8,3F16.4)\n"), std::string::npos);
}

// A native file that breaks off gives what it holds, and says so; a KVX file is taken whole or not at all.
TEST(MendexConvert, TellsDamagedFiles) {
  const TestFolder folder;
  const auto cut = [&](const std::string& extension) {
    const std::string whole = folder.path("whole." + extension);
    convert({sample("bracket_soup.stl"), whole});
    const std::string bytes = contents_of_file(whole);
    return run_mendex({"info", "--json", folder.write("cut." + extension, bytes.substr(0, bytes.size() - 40))});
  };
  const ProcessResult native = cut("mnx");
  EXPECT_EQ(native.exit_code, 0);
  EXPECT_NE(native.errors.find("File is corrupt. [Out of sync]"), std::string::npos) << native.errors;
  EXPECT_EQ(Json::parse(native.output)["complete"], false);
  EXPECT_EQ(Json::parse(native.output)["elements"], 202);
  EXPECT_EQ(cut("kvx").exit_code, 3);
}

// Texts have a fixed number of decimals and columns: what does not fit is told, or refused when it would not read back.
TEST(MendexConvert, TellsWhatATextCannotHold) {
  const TestFolder folder;
  std::vector<FacetCorners> tiny = some_facets(3), huge = some_facets(3);
  for (FacetCorners& facet : tiny) {
    for (float& c : facet) c *= 1e-8f;
  }
  for (FacetCorners& facet : huge) {
    for (float& c : facet) c *= 1e14f;
  }
  const ProcessResult result = run_mendex({"convert", folder.write("tiny.stl", binary_stl(tiny)), folder.path("tiny.tri")});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_NE(result.errors.find("the format keeps 5 decimals, which is coarse for a model of size"), std::string::npos) << result.errors;
  EXPECT_EQ(run_mendex({"convert", folder.write("huge.stl", binary_stl(huge)), folder.path("huge.mes")}).exit_code, 4);
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"huge.stl", "tiny.stl", "tiny.tri"}));
}

TEST(MendexConvert, ListsFormatsAndRefusesWrongArguments) {
  const ProcessResult formats = run_mendex({"formats"});
  EXPECT_EQ(formats.exit_code, 0);
  for (const std::string extension : extensions) EXPECT_NE(formats.output.find("  ." + extension + " "), std::string::npos);
  const TestFolder folder;
  const std::string in = sample("bracket_soup.stl"), out = folder.path("out.stl");
  for (const std::vector<std::string>& wrong : std::vector<std::vector<std::string>>{
           {"--stl-range", "0:5"}, {"--stl-range", "7:3"}, {"--stl-range", "5"}, {"--smooth", "maybe"}}) {
    EXPECT_EQ(run_mendex({"convert", in, out, wrong[0], wrong[1]}).exit_code, 2) << wrong[1];
  }
  EXPECT_EQ(run_mendex({"convert", in, folder.path("out.xyz")}).exit_code, 2);
  EXPECT_TRUE(folder.names().empty());
}
