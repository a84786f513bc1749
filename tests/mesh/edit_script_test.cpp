// Random scripts of edits, each step checked three ways: the invariants of the block, the literal mesh entry by entry
// (list orders and reports to the journal included), and whether the journal could take the script back.

#include <gtest/gtest.h>

#include "support/edit_script.h"
#include "support/journal_recorder.h"

namespace {

class EditScriptTest : public testing::TestWithParam<ScriptSetting> {};

const ScriptSetting settings[] = {
    {"NothingBuilt", false, false, false, false, false},
    {"EdgesBuilt", true, false, false, false, false},
    {"ElementsReferenced", false, true, false, false, false},
    {"BothBuilt", true, true, false, false, false},
    {"BothBuiltWithAttributesAndColours", true, true, true, true, false},
    {"AttributesInAWorkplane", false, false, true, false, true},
};

TEST_P(EditScriptTest, KeepsEveryListAndReportsEveryChange) {
  std::map<std::string, int> done;
  for (std::uint64_t seed = 1; seed <= 60; ++seed) {
    LiteralMesh literal;
    EditScript script(GetParam(), seed, &literal);
    JournalRecorder journal(script.block);
    literal.reports.clear();
    for (int k = 0; k < 40; ++k) {
      const char* edit = script.step();
      if (edit == nullptr) continue;
      ++done[edit];
      ASSERT_EQ(difference(script.block, literal), "") << "after " << edit << ", step " << k << " of script " << seed;
      ASSERT_TRUE(is_sound(script.block, script.excuses))
          << "after " << edit << ", step " << k << " of script " << seed;
      ASSERT_TRUE(journal.reports() == JournalRecorder::sorted(literal.reports))
          << "after " << edit << ", step " << k << " of script " << seed;
    }
    ASSERT_TRUE(journal.restores_the_start()) << "script " << seed;
  }
  // Every edit must have had its turn often enough to mean something.
  EXPECT_EQ(static_cast<int>(done.size()), EditScript::edit_count());
  for (const auto& [edit, times] : done) EXPECT_GE(times, 12) << edit;
}

INSTANTIATE_TEST_SUITE_P(Settings, EditScriptTest, testing::ValuesIn(settings),
                         [](const auto& param_info) { return std::string(param_info.param.name); });

}  // namespace
