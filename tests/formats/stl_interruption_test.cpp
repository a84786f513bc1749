// Stopping at every poll of a small file.

#include <gtest/gtest.h>

#include "formats/stl_files.h"
#include "support/interrupting_handler.h"
#include "support/validator.h"

namespace {

constexpr int facet_total = 6;

}  // namespace

TEST(StlInterruption, AReaderKeepsTheFacetsBeforeThePollThatStoppedIt) {
  for (const bool is_binary : {true, false}) {
    const int polls = is_binary ? facet_total : facet_total + 1;
    for (int k = 1; k <= polls; ++k) {
      SCOPED_TRACE(testing::Message() << (is_binary ? "binary" : "ASCII") << ", poll " << k);
      trTriBlock mesh;
      {
        InterruptingHandler handler(k);
        const ReadOutcome read = is_binary ? read_binary(mesh, binary_stl(facet_total)) : read_ascii(mesh, ascii_stl(facet_total));
        EXPECT_EQ(read.result, 0);
        EXPECT_EQ(read.out, is_binary ? " sample\n" : "");
        EXPECT_EQ(handler.polls, k) << "nothing is asked after the answer";
        EXPECT_EQ(std::count(handler.percents.begin(), handler.percents.end(), 100.0), 0) << "no closing message";
      }
      const std::vector<int> stored = sample_facets_in(mesh);
      EXPECT_EQ(static_cast<int>(stored.size()), k - 1);
      EXPECT_EQ(mesh.node_count(), 1 + 3 * (k - 1));
      EXPECT_TRUE(is_sound(mesh));
    }
  }
}

// Whatever a writer had written is the beginning of the whole file, except that counting valid elements may have been stopped, which
// leaves a count of 0.
TEST(StlInterruption, AWriterLeavesTheBeginningOfTheFile) {
  trTriBlock mesh;
  read_binary(mesh, binary_stl(facet_total));
  for (const bool is_binary : {true, false}) {
    const auto write = [&] { return is_binary ? written_binary(mesh) : written_ascii(mesh); };
    const std::string whole = write().bytes;
    std::size_t longest = 0;
    int stopped = 0;
    for (int k = 1;; ++k) {
      SCOPED_TRACE(testing::Message() << (is_binary ? "binary" : "ASCII") << ", poll " << k);
      InterruptingHandler handler(k);
      const Written part = write();
      if (handler.polls < k) {
        EXPECT_EQ(part.result, 1);
        EXPECT_EQ(part.bytes, whole);
        break;
      }
      ++stopped;
      EXPECT_EQ(part.result, 0);
      EXPECT_NE(handler.percents.back(), 100.0);
      const bool is_beginning = whole.compare(0, part.bytes.size(), part.bytes) == 0;
      EXPECT_TRUE(is_beginning || (is_binary && part.bytes == whole.substr(0, 80) + std::string(4, '\0')));
      EXPECT_LT(part.bytes.size(), whole.size());
      EXPECT_GE(part.bytes.size(), longest);
      longest = std::max(longest, part.bytes.size());
    }
    EXPECT_GE(stopped, facet_total);
  }
}
