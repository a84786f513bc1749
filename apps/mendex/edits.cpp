// The verbs that do one repair action: orient, swap, renumber, transform.

#include <cmath>
#include <memory>
#include <vector>

#include "arguments.h"
#include "command_line.h"
#include "edit_verb.h"
#include "element_snapshot.h"
#include "shells.h"
#include "text.h"
#include "verbs.h"

namespace {

long long size(const std::vector<int>& list) { return static_cast<long long>(list.size()); }

struct OrientArguments : EditArguments {
  bool reverses = false;
};

// What lies within 1e-5 of the lowest or highest point counts as level with it, so that of a very small model any triangle may be the
// topmost.
void warn_of_inside_out(Session& session) {
  const std::size_t count = inside_out_shells(find_shells(session.mesh)).size();
  if (count == 0) return;
  session.messages.warning(counted(static_cast<long long>(count), "closed shell faces", "closed shells face") +
                           " inward; mendex repair turns such shells outward, --reverse the whole model");
}

std::vector<EditResult> orient(Session& session, bool reverses) {
  trControl& control = session.control;
  const ElementSnapshot snapshot(control.triblock());
  reverses ? control.action_reverse() : control.action_orient();
  if (!tr_interrupt()) warn_of_inside_out(session);
  return {{"triangles turned over", size(snapshot.reversed_since())}};
}

struct SwapArguments : EditArguments {
  double aspect = 0.1;
  int passes = 10;
};

std::vector<EditResult> swap(trControl& control, const SwapArguments& arguments) {
  const ElementSnapshot snapshot(control.triblock());
  control.action_swap(arguments.aspect, arguments.passes);
  return {{"triangles replaced", size(snapshot.deleted_since())}};
}

std::vector<EditResult> renumber(trControl& control) {
  const trTriBlock& mesh = control.triblock();
  const int nodes = mesh.node_count(), elements = mesh.element_count();
  control.action_renumber();
  return {{"unused node numbers closed", nodes - mesh.node_count()}, {"unused triangle numbers closed", elements - mesh.element_count()}};
}

// Maps in the order in which they are carried out, whatever the order on the command line.
struct TransformArguments : EditArguments {
  std::string scale;
  std::string turn;
  std::string move;
  std::string matrix;
};

std::string scale_problem(const std::string& text) {
  const auto numbers = numbers_in(text);
  bool is_good = numbers && (numbers->size() == 1 || numbers->size() == 3);
  for (std::size_t k = 0; is_good && k < numbers->size(); ++k) is_good = (*numbers)[k] != 0.0;
  return is_good ? "" : "'" + text + "' is neither a factor nor three of them, none of which is 0";
}

std::string turn_problem(const std::string& text) {
  const auto numbers = numbers_in(text);
  const bool is_good = numbers && numbers->size() == 4 && giVector3((*numbers)[0], (*numbers)[1], (*numbers)[2]).length() > 0.0;
  return is_good ? "" : "'" + text + "' is not an axis and an angle in degrees such as 0,0,1,90";
}

std::string three_problem(const std::string& text) {
  const auto numbers = numbers_in(text);
  return numbers && numbers->size() == 3 ? "" : "'" + text + "' is not three lengths such as 10,0,-2.5";
}

giXform3 matrix_of(const std::vector<double>& numbers) {
  double rows[3][4];
  for (std::size_t k = 0; k < 12; ++k) rows[k / 4][k % 4] = numbers[k];
  return giXform3::from_rows(rows);
}

std::string matrix_problem(const std::string& text) {
  const auto numbers = numbers_in(text);
  if (!numbers || numbers->size() != 12) return "'" + text + "' is not three rows of four numbers";
  const double determinant = matrix_of(*numbers).determinant();
  return std::isfinite(determinant) && determinant != 0.0 ? "" : "'" + text + "' flattens the model";
}

giXform3 map_of(const TransformArguments& arguments) {
  constexpr double degree = 3.14159265358979323846 / 180.0;
  giXform3 map;
  if (const auto s = numbers_in(arguments.scale); !arguments.scale.empty()) {
    map = giXform3::scaling((*s)[0], (*s)[s->size() / 2], s->back());
  }
  if (const auto t = numbers_in(arguments.turn); !arguments.turn.empty()) {
    map = map.then(giXform3::turn(giVector3((*t)[0], (*t)[1], (*t)[2]), (*t)[3] * degree));
  }
  if (const auto m = numbers_in(arguments.move); !arguments.move.empty()) {
    map = map.then(giXform3::translation(giVector3((*m)[0], (*m)[1], (*m)[2])));
  }
  if (const auto rows = numbers_in(arguments.matrix); !arguments.matrix.empty()) map = map.then(matrix_of(*rows));
  return map;
}

// A map that mirrors turns the model inside out: all triangles are turned over to make up for it.
std::vector<EditResult> transform(trControl& control, const TransformArguments& arguments) {
  const giXform3 map = map_of(arguments);
  control.action_transform_triangles(map);
  const bool mirrors = map.determinant() < 0.0;
  if (mirrors) control.action_reverse();
  return {{"nodes moved", control.triblock().valid_nodes()}, {"triangles turned over", mirrors ? control.triblock().valid_elements() : 0}};
}

}  // namespace

void add_orient_verb(CommandLine& line) {
  const auto arguments = std::make_shared<OrientArguments>();
  const VerbOptions verb = line.add_verb("orient", "Turn triangles over until neighbours agree and the top faces up", [arguments](Session& session) {
    return run_edit(session, *arguments, arguments->reverses ? "reversing" : "orienting",
                    [&](trControl&) { return orient(session, arguments->reverses); });
  });
  add_edit_arguments(verb, *arguments, true);
  verb.add_flag("--reverse", arguments->reverses, "Turn every triangle over instead, for a model that is inside out");
  line.set_notes(verb,
                 "Each piece is oriented after its majority, then the whole model by its topmost triangle.",
                 "mendex orient part.stl -o oriented.stl");
}

void add_swap_verb(CommandLine& line) {
  const auto arguments = std::make_shared<SwapArguments>();
  const VerbOptions verb = line.add_verb("swap", "Swap edges of thin triangles where the other diagonal is better", [arguments](Session& session) {
    return run_edit(session, *arguments, "swapping", [&](trControl& control) { return swap(control, *arguments); });
  });
  add_edit_arguments(verb, *arguments, true);
  add_limit(verb, "--aspect", arguments->aspect, "RATIO", "Triangles are thin below this ratio of height to longest edge");
  add_count(verb, "--passes", arguments->passes, 1, "Passes at most").show_default();
  line.set_notes(verb, "", "mendex swap part.stl -o better.stl --aspect 0.05");
}

void add_renumber_verb(CommandLine& line) {
  const auto arguments = std::make_shared<EditArguments>();
  const VerbOptions verb = line.add_verb("renumber", "Close the gaps in the numbers of nodes and triangles", [arguments](Session& session) {
    return run_edit(session, *arguments, "renumbering", [](trControl& control) { return renumber(control); });
  });
  add_edit_arguments(verb, *arguments, false);
  line.set_notes(verb, "Only .mnx and .mes files keep numbers.", "mendex renumber part.mnx -o dense.mnx");
}

void add_transform_verb(CommandLine& line) {
  const auto arguments = std::make_shared<TransformArguments>();
  const VerbOptions verb = line.add_verb("transform", "Scale, turn and move a model", [arguments](Session& session) {
    return run_edit(session, *arguments, "transforming", [&](trControl& control) { return transform(control, *arguments); });
  });
  add_edit_arguments(verb, *arguments, false);
  const auto add = [&](const char* name, std::string& text, std::string (*problem)(const std::string&), const char* unit, const char* help) {
    verb.add_option(name, text, help).check(problem).type_name(unit);
  };
  add("--scale", arguments->scale, scale_problem, "F|X,Y,Z", "First: stretch, all ways or along each axis; 25.4 makes millimetres of inches");
  add("--turn", arguments->turn, turn_problem, "X,Y,Z,DEG", "Then: turn about an axis through the origin, counter-clockwise as seen\nfrom its tip");
  add("--move", arguments->move, three_problem, "X,Y,Z", "Then: move, in the units of the scaled model");
  add("--matrix", arguments->matrix, matrix_problem, "A11,A12,A13,B1,...", "Then: any map, three rows of four numbers");
  line.set_notes(verb,
                 "A map that mirrors turns all triangles over, so that the outside stays outside.",
                 "mendex transform part.stl -o part_mm.stl --scale 25.4 --turn 1,0,0,90");
}
