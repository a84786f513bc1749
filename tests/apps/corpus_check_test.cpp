// Real models with known truths: what `mendex info` and `mendex check` say of each, against what an independent program found.
//
// Free edges, sick edges, shells, collapsed triangles and the volumes of closed shells are defined alike and always compared. The truth
// knows boundaries as sets of edges with one triangle, whatever their direction; here they are cycles of half-edges without an opposite.
// The two agree where neighbours are directed alike and no edge has more than two triangles, in number; and in size where, besides, no
// node lies on two boundaries. Fewest triangles to turn are counted over edges of two triangles there, over all here. Its self-intersections
// are exact; here lengths up to 1e-5 count as zero, so that near touches count too; neighbours across an edge never count, and coplanar
// triangles only by the midpoints of their sides. Where nothing overlaps in a plane none of the true ones may be missing, and where there
// are none, none may be found.

#include <cstdlib>

#include "apps/reports.h"

namespace {

class Comparison {
 public:
  Comparison(const Json& truth, const Json& report) : truth_(truth), report_(report) {}

  void compare_all() {
    compare("free_edges", "free_half_edges");
    compare("sick_edges", "edges_gt2");
    compare("shells", "shells_edge");
    compare("closed", "closed_shells");
    compare("collapsed", "degenerate_repeated");
    compare("inside_out", "inward_closed_shells");
    compare_volumes();
    compare_boundaries();
    if (none("edges_gt2")) compare("misoriented", "flips_min");
    compare_intersections();
  }

 private:
  bool none(const char* name) const { return truth_.at(name) == 0; }

  void compare(const char* name, const char* in_truth) {
    EXPECT_EQ(report_.at(name), truth_.at(in_truth)) << name;
  }

  void compare_volumes() {
    if (!truth_.contains("closed_shell_volumes")) return;
    std::vector<double> volumes;
    for (const Json& shell : report_.at("found").at("shells").elements()) {
      if (shell.at("closed") == true) volumes.push_back(shell.at("volume").get<double>());
    }
    std::vector<double> truths = truth_.at("closed_shell_volumes").get<std::vector<double>>();
    std::sort(volumes.begin(), volumes.end());
    std::sort(truths.begin(), truths.end());
    ASSERT_EQ(volumes.size(), truths.size());
    const double step = truth_.at("format") == "ascii" ? 1e-6 : 1e-12;  // the truth of texts was rounded to single precision
    for (std::size_t k = 0; k < truths.size(); ++k) EXPECT_NEAR(volumes[k], truths[k], step * std::fabs(truths[k]));
  }

  void compare_boundaries() {
    if (!none("edges_gt2") || !none("edges_2_same_dir")) return;
    if (truth_.at("boundary_irregular_vertices") != 0) return;
    compare("boundaries", "boundary_components");
    std::vector<int> sizes = truth_.at("boundary_sizes").get<std::vector<int>>();
    std::sort(sizes.begin(), sizes.end());
    EXPECT_EQ(report_.at("boundary_sizes"), sizes);
  }

  void compare_intersections() {
    EXPECT_EQ(report_.at("intersecting") == 0, none("si_facets"));
    if (none("si_overlap")) {
      EXPECT_GE(report_.at("intersecting"), truth_.at("si_facets"));
    }
  }

  const Json& truth_;
  const Json& report_;
};

}  // namespace

TEST(MendexCheckCorpus, AgreesWithTheTruthOfEveryModel) {
  const char* folder = std::getenv("MENDEX_CORPUS");
  if (folder == nullptr || *folder == '\0') GTEST_SKIP() << "MENDEX_CORPUS names no folder of models";
  const Json truths = Json::parse(contents_of_file(std::string(folder) + "/truth.json"));
  ASSERT_TRUE(truths.is_object());
  for (const auto& [name, truth] : truths.items()) {
    SCOPED_TRACE(name);
    const std::string path = std::string(folder) + "/" + name;
    const Json read = info(path);
    EXPECT_EQ(read["elements"], truth["facets"]);
    EXPECT_EQ(read["format"], truth["format"] == "ascii" ? "ASCII STL" : "binary STL");
    EXPECT_EQ(read["complete"].get<bool>(), truth.value("facets_declared", truth["facets"]) == truth["facets"]);
    const ProcessResult result = run_mendex({"check", "--json", path});
    const Json report = Json::parse(result.output);
    ASSERT_TRUE(report.is_object()) << result.errors;
    Comparison(truth, report).compare_all();
    EXPECT_EQ(result.exit_code, report.at("clean") == true && report.at("complete") == true ? 0 : 1);
  }
}
