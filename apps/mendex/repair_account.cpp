#include "repair_account.h"

const char* name_of(StepResult result) {
  switch (result) {
    case StepResult::changed: return "done";
    case StepResult::nothing_to_do: return "nothing to do";
    case StepResult::refused: return "refused";
    case StepResult::skipped: return "skipped";
  }
  return "";
}

void StepAccount::count(const char* what, long long number) {
  if (number != 0) counts.emplace_back(what, number);
}

bool RepairAccount::has_changed_mesh() const {
  for (const StepAccount& step : steps) {
    if (step.result != StepResult::changed) continue;
    if (step.step != RepairStep::weld) return true;
    for (const auto& [what, number] : step.counts) {
      if (what != exact_copies_merged) return true;
    }
  }
  return false;
}
