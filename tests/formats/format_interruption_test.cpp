// Stopping the readers and writers of all formats at every poll.

#include <gtest/gtest.h>

#include "formats/format_files.h"
#include "support/interrupting_handler.h"
#include "support/random.h"
#include "support/validator.h"

namespace {

void fill_small(trTriBlock& mesh) {
  Random random(8);
  fill(mesh, {12, 7, 2, 3}, random);
}

bool is_stl(const Format* format) { return format == &stl_format || format == &ascii_stl_format; }

bool has_closing_message(const InterruptingHandler& handler) {
  const std::vector<std::string>& all = handler.messages;
  return std::any_of(all.begin(), all.end(), [](const std::string& text) { return text.rfind("Finished", 0) == 0; });
}

}  // namespace

TEST(FormatInterruption, AReaderKeepsWhatItHasRead) {
  trTriBlock source;
  fill_small(source);
  for (const Format* format : all_formats) {
    const std::string bytes = write_format(*format, source).bytes;
    int nodes = 0;
    int stopped = 0;
    for (int k = 1;; ++k) {
      SCOPED_TRACE(testing::Message() << format->name << ", poll " << k);
      trTriBlock mesh;
      int polls = 0;
      {
        InterruptingHandler handler(k);
        const int result = read_format(*format, mesh, bytes, {1, 0, 0, 1}).result;
        polls = handler.polls;
        EXPECT_EQ(result, polls < k);
        EXPECT_EQ(has_closing_message(handler), polls < k);
      }
      EXPECT_TRUE(is_sound(mesh));
      EXPECT_GE(mesh.valid_nodes(), nodes);
      nodes = mesh.valid_nodes();
      if (is_stl(format) && polls == k) {
        EXPECT_EQ(nodes, 3 * (k - 1)) << "the facets before the poll";
      }
      if (polls < k) break;
      ++stopped;
    }
    EXPECT_GE(stopped, is_stl(format) ? nodes / 3 : nodes);
  }
}

// What was written is the beginning of the whole file, except that triangle and binary STL files begin with counts,
// which may have been stopped and read 0 then, and that a KVX file is marked as unfinished until its end.
TEST(FormatInterruption, AWriterLeavesAFileCutShort) {
  trTriBlock mesh;
  fill_small(mesh);
  for (const Format* format : all_formats) {
    for (const int rwrite : {0, 1}) {
      const std::string whole = write_format(*format, mesh, rwrite).bytes;
      int stopped = 0;
      for (int k = 1;; ++k) {
        SCOPED_TRACE(testing::Message() << format->name << ", rwrite " << rwrite << ", poll " << k);
        mesh.normals_built = 0;
        InterruptingHandler handler(k);
        const Written part = write_format(*format, mesh, rwrite);
        const bool is_whole = handler.polls < k;
        EXPECT_EQ(part.result, is_whole);
        EXPECT_EQ(has_closing_message(handler), is_whole);
        if (is_whole) {
          EXPECT_TRUE(are_same(part.bytes, whole));
          break;
        }
        ++stopped;
        EXPECT_LE(part.bytes.size(), whole.size()) << "as long only where the last element is deleted";
        if (format == &native_format || format == &mesh_format || format == &ascii_stl_format) {
          EXPECT_EQ(whole.compare(0, part.bytes.size(), part.bytes), 0);
        }
        if (format == &stl_format && whole.compare(0, part.bytes.size(), part.bytes) != 0) {
          EXPECT_EQ(part.bytes, whole.substr(0, 80) + std::string(4, '\0'));
        }
        if (format == &kvx_format) {
          trTriBlock none;
          EXPECT_EQ(read_format(*format, none, part.bytes).result, 0);
        }
      }
      EXPECT_GE(stopped, mesh.valid_elements());
    }
  }
}
