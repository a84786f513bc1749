#include "support/journal_recorder.h"

#include <sstream>

#include "progress/output.h"

namespace {

int closed_quietly(trUndoHist& history) {
  std::ostringstream unread;
  tr_set_output(&unread);
  const int holds_changes = history.finish();
  tr_set_output(nullptr);
  return holds_changes;
}

}  // namespace

JournalRecorder::JournalRecorder(trTriBlock& block) : block_(block), start_(block), history_(&block) {
  history_.start("recorded");
}

JournalRecorder::Reports JournalRecorder::reports() const {
  Reports reports;
  const trUndo& record = *history_.records[0];
  for (int k = 0; k < record.nodes.count(); ++k) reports.nodes.push_back(record.nodes[k].index);
  for (int k = 0; k < record.elements.count(); ++k) reports.elements.push_back(record.elements[k].index);
  return reports;
}

JournalRecorder::Reports JournalRecorder::sorted(const std::vector<int>& mixed) {
  Reports reports;
  for (const int report : mixed) {
    if (report > 0) reports.nodes.push_back(report);
    if (report < 0) reports.elements.push_back(-report);
  }
  return reports;
}

testing::AssertionResult JournalRecorder::restores_the_start() {
  const BlockSnapshot end(block_);
  if (closed_quietly(history_)) {
    history_.undo();
    const std::string undone = start_.difference(BlockSnapshot(block_));
    history_.redo();
    if (!undone.empty()) return testing::AssertionFailure() << "after undo " << undone;
    const std::string redone = end.difference(BlockSnapshot(block_));
    if (!redone.empty()) return testing::AssertionFailure() << "after redo " << redone;
    return testing::AssertionSuccess();
  }
  const std::string unreported = start_.difference(end);
  if (!unreported.empty()) return testing::AssertionFailure() << "nothing was reported, but " << unreported;
  return testing::AssertionSuccess();
}
