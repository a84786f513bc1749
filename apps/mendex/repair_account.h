#pragma once

#include <string>
#include <vector>

#include "holes.h"
#include "repair_settings.h"
#include "shells.h"

/// What is told of a mesh before and after a repair.
struct RepairState {
  int triangles = 0;
  int nodes = 0;
  int boundaries = 0;
  int shells = 0;
  int closed_shells = 0;
  int inside_out = 0;
  EdgeCensus edges;
  double area = 0.0;
  double volume = 0.0;  // enclosed by all shells, each seen from a corner of its own where it is open
};

/// How a step names what merging exact copies did.
constexpr const char* exact_copies_merged = "exact copies merged";

/// What became of a step.
enum class StepResult { changed, nothing_to_do, refused, skipped };

const char* name_of(StepResult result);

struct StepAccount {
  RepairStep step = RepairStep::weld;
  StepResult result = StepResult::nothing_to_do;
  std::vector<std::pair<std::string, long long>> counts;  // "nodes merged", 12
  std::vector<std::pair<std::string, double>> parameters; // "tolerance", 0.01
  std::vector<std::string> refused;                       // what was undone, and why
  double milliseconds = 0.0;

  void count(const char* what, long long number);
};

/// How one hole was closed, or why it was not.
struct HoleFate {
  enum class Kind { closed, kept, refused };
  FoundBoundary hole;
  Kind kind = Kind::refused;
  HoleMethod method = HoleMethod::fan;  // of a closed one
  std::string reason;                   // of another, and of fallbacks
  double spacing = 0.0;
  int triangles = 0;
  int nodes = 0;
  int shell = -1;
};

/// How much a repair changed, against what it may.
struct BudgetAccount {
  double moved = 0.0;  // the farthest that a corner of a triangle that stays moved, or may have moved
  double removed_area = 0.0;
  double new_area = 0.0;
  double volume_change = 0.0;
  std::vector<std::string> passed;  // the limits that were passed, in words
};

/// Something that is still wrong.
struct LeftDefect {
  std::string kind;             // "boundary", "sick edge", "opposed edge", "inside-out shell"
  std::vector<int> nodes;       // or elements, for a shell
  giPoint3 at;
  double measure = 0.0;         // length, number of triangles, volume
  std::string reason;           // why it was left
};

/// All that there is to tell of one repair.
struct RepairAccount {
  RepairState before;
  RepairState after;
  std::vector<StepAccount> steps;
  std::vector<HoleFate> holes;
  std::vector<LeftDefect> defects;
  long long defect_count = 0;  // of which the first are listed
  int sheets = 0;              // boundaries that belong to sheets and were left
  BudgetAccount budget;

  bool is_sound() const { return defect_count == 0; }
  /// Whether a file of the mesh would differ from the one that was read; merging exact copies makes no difference to most.
  bool has_changed_mesh() const;
};
