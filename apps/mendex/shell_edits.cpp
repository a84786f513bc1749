// The shell's commands that mend, cut and move the mesh.

#include <mendexlib.h>

#include <cmath>

#include "arguments.h"
#include "failure.h"
#include "command_shell.h"
#include "shell_words.h"

namespace {

using Action = ShellCommand::Action;

Action parse_undup(CommandShell& shell, ShellWords& words) {
  const double tolerance = words.is_empty() ? exact_copies : words.length("a tolerance");
  return [&shell, tolerance] { shell.control.action_undup(tolerance); };
}

Action parse_renumber(CommandShell& shell, ShellWords&) {
  return [&shell] { shell.control.action_renumber(); };
}

Action parse_swap(CommandShell& shell, ShellWords& words) {
  const double aspect = words.limit("a ratio");
  const int passes = words.is_empty() ? 10 : words.passes();
  return [&shell, aspect, passes] { shell.control.action_swap(aspect, passes); };
}

Action parse_orient(CommandShell& shell, ShellWords&) {
  return [&shell] { shell.control.action_orient(); };
}

Action parse_reverse(CommandShell& shell, ShellWords&) {
  return [&shell] { shell.control.action_reverse(); };
}

// --- deleting -------------------------------------------------------------------------------------------------------------------------

Action parse_height(CommandShell& shell, ShellWords& words) {
  const double limit = words.is_empty() ? shell.limits.small : words.length("a length");
  return [&shell, limit] { shell.control.action_height(limit); };
}

Action parse_aspect(CommandShell& shell, ShellWords& words) {
  const double limit = words.is_empty() ? shell.limits.thin : words.limit("a ratio");
  return [&shell, limit] { shell.control.action_aspect(limit); };
}

Action parse_overlapping(CommandShell& shell, ShellWords& words) {
  const double limit = words.is_empty() ? shell.limits.overlap_deg : words.limit("an angle in degrees");
  return [&shell, limit] { shell.control.action_overlapping(limit); };
}

Action parse_intersecting(CommandShell& shell, ShellWords& words) {
  const int limit = words.is_empty() ? 1000 : words.count("a limit", 1);
  return [&shell, limit] { shell.control.action_intersecting(limit); };
}

Action parse_overhanging(CommandShell& shell, ShellWords& words) {
  const giUnitVec3 up = words.is_empty() ? shell.limits.up : words.direction();
  return [&shell, up] { shell.control.action_overhanging(up); };
}

// Of a pair back to back both go, or one.
Action parse_cancelling(CommandShell& shell, ShellWords& words) {
  const int both = words.is_empty() ? 1 : 1 - words.choice({"both", "one"});
  return [&shell, both] { shell.control.action_cancelling(both); };
}

Action parse_repeating(CommandShell& shell, ShellWords&) {
  return [&shell] {
    if (shell.mesh.repeating()) shell.control.triangle_update(1);
  };
}

Action parse_fins(CommandShell& shell, ShellWords&) {
  return [&shell] {
    if (shell.mesh.cure_sick_fins()) shell.control.triangle_update(1);
  };
}

Action parse_cure(CommandShell& shell, ShellWords& words) {
  const int keeps_two = words.is_empty() ? 1 : words.choice({"all", "but-two"});
  return [&shell, keeps_two] { shell.control.action_cure(keeps_two); };
}

Action parse_sick(CommandShell& shell, ShellWords&) {
  return [&shell] { shell.control.action_cure(0); };
}

Action parse_delete(CommandShell& shell, ShellWords& words) {
  constexpr Action (*parsers[])(CommandShell&, ShellWords&) = {parse_sick,        parse_height,       parse_aspect,
                                                               parse_repeating,   parse_cancelling,   parse_overlapping,
                                                               parse_intersecting, parse_overhanging, parse_fins};
  const int kind = words.choice({"sick", "small", "thin", "repeated", "cancelling", "overlapping", "intersecting", "overhanging", "fins"});
  return parsers[kind](shell, words);
}

// --- cutting and moving ---------------------------------------------------------------------------------------------------------------

Action parse_slice(CommandShell& shell, ShellWords& words) {
  const gi_Axis axis = axis_of("xyz"[words.choice({"x", "y", "z"})]);
  const int side = words.choice({"above", "below"});
  const double at = words.number("a place on the axis");
  return [&shell, axis, side, at] { shell.control.action_slice(axis, at, side); };
}

giXform3 scaling(ShellWords& words) {
  const double x = words.number("a factor");
  if (!words.has_number()) return giXform3::scaling(x, x, x);
  const std::vector<double> yz = words.numbers("a factor for each axis", 2);
  return giXform3::scaling(x, yz[0], yz[1]);
}

giXform3 turn(ShellWords& words) {
  constexpr double degree = 3.14159265358979323846 / 180.0;
  const std::vector<double> t = words.numbers("an axis and an angle in degrees", 4);
  const giVector3 axis(t[0], t[1], t[2]);
  if (!(axis.length() > 0.0)) words.refuse("an axis of length 0 is none");
  return giXform3::turn(axis, t[3] * degree);
}

giXform3 translation(ShellWords& words) {
  const std::vector<double> by = words.numbers("three lengths", 3);
  return giXform3::translation(giVector3(by[0], by[1], by[2]));
}

giXform3 matrix(ShellWords& words) {
  const std::vector<double> numbers = words.numbers("three rows of four numbers", 12);
  double rows[3][4];
  for (std::size_t k = 0; k < 12; ++k) rows[k / 4][k % 4] = numbers[k];
  return giXform3::from_rows(rows);
}

Action parse_transform(CommandShell& shell, ShellWords& words) {
  constexpr giXform3 (*makers[])(ShellWords&) = {scaling, turn, translation, matrix};
  const giXform3 map = makers[words.choice({"scale", "turn", "move", "matrix"})](words);
  const double determinant = map.determinant();
  if (!std::isfinite(determinant) || determinant == 0.0) words.refuse("this flattens the model");
  return [&shell, map] { shell.control.action_transform_triangles(map); };
}

}  // namespace

ShellCommandGroup shell_edit_commands() {
  return {"Repairs",
         {{"undup", nullptr, "[TOL]",
           "Merge nodes up to TOL apart; without it exact copies only",
           "undup 1e-6", true, parse_undup},
          {"delete", nullptr, "sick|small|thin|repeated|cancelling|overlapping|intersecting|overhanging|fins [LIMIT]",
           "Delete triangles of one kind; what is small, thin ... is told by LIMIT or by limits",
           "delete small 0.001", true, parse_delete},
          {"height", nullptr, "[LENGTH]",
           "Delete triangles of less height over their longest edge",
           "height 0.001", true, parse_height},
          {"aspect", nullptr, "[RATIO]",
           "Delete triangles of a smaller ratio of height to longest edge",
           "aspect 0.01", true, parse_aspect},
          {"cancelling", nullptr, "[both|one]",
           "Delete triangles back to back with another, or one of each two, then repeated ones",
           "cancelling", true, parse_cancelling},
          {"repeating", nullptr, "",
           "Delete copies of triangles",
           "repeating", true, parse_repeating},
          {"overlapping", nullptr, "[DEG]",
           "Delete neighbours that enclose less than DEG degrees",
           "overlapping 2.5", true, parse_overlapping},
          {"intersecting", nullptr, "[LIMIT]",
           "Delete triangles that cut others; LIMIT is the size of the boxes of the search",
           "intersecting", true, parse_intersecting},
          {"overhanging", nullptr, "[X Y Z]",
           "Delete triangles that face away from a direction",
           "overhanging 0 0 1", true, parse_overhanging},
          {"cure", nullptr, "[all|but-two]",
           "Delete the triangles of edges that more than two share: all, or all but the two largest",
           "cure but-two", true, parse_cure},
          {"fins", nullptr, "",
           "Delete loose flaps on edges of more than two triangles",
           "fins", true, parse_fins},
          {"orient", nullptr, "",
           "Turn triangles over until neighbours agree and the top faces up",
           "orient", true, parse_orient},
          {"reverse", nullptr, "",
           "Turn all triangles over",
           "reverse", true, parse_reverse},
          {"swap", nullptr, "RATIO [PASSES]",
           "Swap edges of triangles below a ratio of height to longest edge",
           "swap 0.1 10", true, parse_swap},
          {"slice", nullptr, "x|y|z above|below VALUE",
           "Keep what lies above, or below, a plane across an axis",
           "slice z above 5", true, parse_slice},
          {"transform", "transform_triangles", "scale F|scale X Y Z|turn X Y Z DEG|move X Y Z|matrix A11 ... A34",
           "Map the mesh; after a map that mirrors, reverse it",
           "transform scale 25.4", true, parse_transform},
          {"renumber", nullptr, "",
           "Close the gaps in the numbers of nodes and triangles",
           "renumber", true, parse_renumber}}};
}
