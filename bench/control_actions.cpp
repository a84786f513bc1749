#include "control_actions.h"

#include <string>

#include "support/check.h"

namespace {

using Records = ControlAction::Records;

double middle(Subject& s) {
  const giBox3& box = s.control.triblock().box();
  return 0.4871 * box.min().x + 0.5129 * box.max().x;
}

void select_all(Subject& s) {
  intcoSet all;
  const int count = s.control.cycles().num_boundaries();
  for (int id = 0; id < count; ++id) all.add(id);
  double average_length = 0.0;
  s.control.select_cycles(all, average_length, -1, intcoSet(), -1, -1);
}

void save_selection(Subject& s) {
  select_all(s);
  s.saved = std::make_unique<trCycleArray>(&s.control.triblock());
  s.control.save_selection_data(s.control.cycles().selection, s.start_nodes, *s.saved);
  s.control.cycles().clear_selection_list();
}

// With a colour a triangle.
void give_to_host(Subject& s) {
  s.control.triblock().get_giTriBlock(s.pool);
  giTriCols colours;
  s.pool.check_out(colours);
  const int count = s.control.triblock().valid_elements();
  for (int k = 0; k < count; ++k) (*colours.data())[k] = tr_decode_colour(k);
}

void fill_from_host(Subject& s) {
  give_to_host(s);
  s.control.action_fill_triblock(s.pool);
}

utString output(const Subject& s, const std::string& extension) { return utString((s.output.string() + extension).c_str()); }

template <const char* extension>
void write_file(Subject& s) {
  s.control.action_write(output(s, extension));
}
template <const char* extension>
void rewrite_file(Subject& s) {
  s.control.action_rwrite(output(s, extension));
}
// Reads what was written before into the controller in place of the mesh that it has.
template <const char* extension>
void read_file(Subject& s) {
  require(s.control.action_read(output(s, extension)) != tr_unknown_file, "a file that was written cannot be read");
}

constexpr char mnx[] = ".mnx", mes[] = ".mes", tri[] = ".tri", stl[] = ".stl", ast[] = ".ast", kvx[] = ".kvx";

// Files hold numbers, whatever the shape: few and many triangles at a node, and nodes of their own.
constexpr const char* file_inputs = "bumpy,soup,hub";

template <const char* extension>
void add_format(std::vector<ControlAction>& list, const char* read_name, const char* write_name) {
  list.push_back({write_name, Records::none, write_file<extension>, nullptr, file_inputs});
  list.push_back({read_name, Records::none, read_file<extension>, write_file<extension>, file_inputs});
}

void add_repairs(std::vector<ControlAction>& list) {
  const auto edit = [&](const char* name, void (*run)(Subject&)) { list.push_back({name, Records::one, run}); };
  edit("undup", [](Subject& s) { s.control.action_undup(1e-3 * s.scale.edge); });
  edit("bundup", [](Subject& s) { s.control.action_bundup(1e-3 * s.scale.edge); });
  edit("renumber", [](Subject& s) { s.control.action_renumber(); });
  edit("swap", [](Subject& s) { s.control.action_swap(0.9, 3); });
  edit("height", [](Subject& s) { s.control.action_height(s.scale.edge); });
  edit("aspect", [](Subject& s) { s.control.action_aspect(0.5); });
  edit("cancelling", [](Subject& s) { s.control.action_cancelling(1); });
  edit("overlapping", [](Subject& s) { s.control.action_overlapping(150.0); });
  edit("intersecting", [](Subject& s) { s.control.action_intersecting(1000); });
  edit("overhanging", [](Subject& s) { s.control.action_overhanging(giUnitVec3(gi_z_axis)); });
  edit("orient", [](Subject& s) { s.control.action_orient(); });
  edit("reverse", [](Subject& s) { s.control.action_reverse(); });
  edit("cure", [](Subject& s) { s.control.action_cure(1); });
  edit("slice", [](Subject& s) { s.control.action_slice(gi_x_axis, middle(s), 0); });
  edit("transform", [](Subject& s) { s.control.action_transform_triangles(giXform3::translation(giVector3(1.0, 2.0, 3.0))); });
}

void add_boundary_edits(std::vector<ControlAction>& list) {
  const auto edit = [&](const char* name, void (*run)(Subject&), void (*prepare)(Subject&) = nullptr) {
    list.push_back({name, Records::one, run, prepare});
  };
  edit("stitch", [](Subject& s) { s.control.action_stitch(0.01 * s.scale.edge); });
  edit("staple", [](Subject& s) { s.control.action_staple(0.01 * s.scale.edge); });
  edit("astaple", [](Subject& s) { s.control.action_astaple(0.01 * s.scale.edge, 5); });
  edit("auto_stitch", [](Subject& s) {
    s.control.action_auto_stitch(Repeat, 0.01 * s.scale.edge, 0.01 * s.scale.edge, 0.0, 5, 1, 1, 1, 0);
  });
  edit("fill", [](Subject& s) { s.control.action_fill(0); }, select_all);
  edit("fill_curved", [](Subject& s) { s.control.action_fill(1); }, select_all);
  edit("cap", [](Subject& s) {
    at2PlaneError error = at2_success;
    s.control.action_cap(s.scale.spacing, error, 0);
  }, select_all);
  list.push_back({"cap_ext", Records::own, [](Subject& s) {
    at2PlaneError error = at2_success;
    s.control.action_cap_ext(s.scale.spacing, 0, error);
  }, select_all});
}

void add_questions(std::vector<ControlAction>& list) {
  const auto ask = [&](const char* name, void (*run)(Subject&), void (*prepare)(Subject&) = nullptr) {
    list.push_back({name, Records::none, run, prepare});
  };
  ask("info", [](Subject& s) { s.control.action_info(1, s.scale.edge, std::fopen("/dev/null", "w")); });
  ask("element_lists", [](Subject& s) { s.control.print_element_lists(1); });
  ask("boundaries", [](Subject& s) { s.control.cycles().info(nullptr, 1); });
  ask("write_boundaries", [](Subject& s) { s.control.cycles().write(std::fopen("/dev/null", "w")); });
  ask("select", [](Subject& s) { select_all(s); });
  ask("restore_selection", [](Subject& s) { s.control.restore_selection_data(s.start_nodes, *s.saved); }, save_selection);
  ask("closest_node", [](Subject& s) { s.control.cycles().closest_node(giPoint3(1.0, 2.0, 3.0), giUnitVec3(gi_z_axis), s.scale.edge); });
  ask("measure_distance", [](Subject& s) {
    giPoint3 from, to;
    s.control.cycles().measure_distance(from, to);
  });
  ask("section", [](Subject& s) { s.control.section().section(gi_x_axis, middle(s)); });
  ask("preserve_off", [](Subject& s) { s.control.action_preserve(tr_flag_off); }, [](Subject& s) { s.control.action_preserve(tr_flag_on); });
}

void add_exchange(std::vector<ControlAction>& list) {
  const auto exchange = [&](const char* name, void (*run)(Subject&), void (*prepare)(Subject&)) {
    list.push_back({name, Records::none, run, prepare});
  };
  exchange("append", [](Subject& s) { s.control.action_append(utString(s.file.string().c_str())); }, nullptr);
  exchange("give_triblock", [](Subject& s) { s.control.triblock().get_giTriBlock(s.pool); }, nullptr);
  exchange("fill_triblock", [](Subject& s) { s.control.action_fill_triblock(s.pool); }, give_to_host);
  exchange("append_triblock", [](Subject& s) { s.control.action_append_triblock(s.pool); }, give_to_host);
  exchange("fill_colours", [](Subject& s) { s.control.action_fill_triblock_colours(s.pool); }, fill_from_host);
  add_format<mnx>(list, "read_mnx", "write_mnx");
  add_format<mes>(list, "read_mes", "write_mes");
  add_format<tri>(list, "read_tri", "write_tri");
  add_format<stl>(list, "read_stl", "write_stl");
  add_format<ast>(list, "read_ast", "write_ast");
  add_format<kvx>(list, "read_kvx", "write_kvx");
  list.push_back({"rwrite_mnx", Records::none, rewrite_file<mnx>, nullptr, file_inputs});
}

}  // namespace

const std::vector<ControlAction>& control_actions() {
  static const std::vector<ControlAction> actions = [] {
    std::vector<ControlAction> list;
    add_repairs(list);
    add_boundary_edits(list);
    add_questions(list);
    add_exchange(list);
    return list;
  }();
  return actions;
}
