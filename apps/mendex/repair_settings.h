#pragma once

#include <array>
#include <optional>
#include <string>

#include "length_argument.h"
#include "mesh_format.h"

/// The steps of a repair, in their order.
enum class RepairStep { weld, clean, align, join, drop, cure, fill, orient };

constexpr std::array<RepairStep, 8> all_repair_steps = {RepairStep::weld, RepairStep::clean, RepairStep::align, RepairStep::join,
                                                        RepairStep::drop, RepairStep::cure,  RepairStep::fill,  RepairStep::orient};

const char* name_of(RepairStep step);
/// What a step is for, in a few words.
const char* purpose_of(RepairStep step);

/// An amount that a repair may change at most: a number in the measure's own unit, or a share of the model ("1%").
struct Allowance {
  double amount = 0.0;
  bool is_share = false;

  /// Nothing where that is not what the text is.
  static std::optional<Allowance> parse(const std::string& text);
  static std::string problem(const std::string& text);
  double resolve(double whole) const { return is_share ? amount * whole : amount; }
};

/// What a repair may change at most; nothing: as much as it takes.
struct RepairLimits {
  std::optional<LengthArgument> move;           // of any corner of a triangle that stays
  std::optional<Allowance> removed_area;
  std::optional<Allowance> new_area;
  std::optional<Allowance> volume_change;
};

/// How a mesh is to be repaired.
struct RepairSettings {
  std::array<bool, all_repair_steps.size()> skips = {};
  std::optional<LengthArgument> least_tolerance;  // of the ladder for joining; by default what single precision resolves
  std::optional<LengthArgument> most_tolerance;   // by default a tenth of the median edge, or half of most free edges where less
  std::optional<LengthArgument> spacing;          // of new nodes; by default the mean edge of each hole
  std::optional<Allowance> specks;                // shells of less area are dropped
  int small_hole = 4;                             // holes of at most so many edges are closed without nodes inside
  bool closes_sheets = false;
  RepairLimits limits;
  std::optional<MeshFormat> target;               // whose precision coordinates are rounded to

  bool skips_step(RepairStep step) const { return skips[static_cast<std::size_t>(step)]; }
};
