#include "mesh_check.h"

#include <algorithm>
#include <cstdint>

#include "element_snapshot.h"
#include "interruption.h"

namespace {

std::vector<int> numbers_in(const intcoPageArr& list) {
  std::vector<int> numbers;
  numbers.reserve(static_cast<std::size_t>(list.count()));
  for (int k = 0; k < list.count(); ++k) numbers.push_back(list[k]);
  return numbers;
}

// The complement of a set of elements among those of the mesh.
std::vector<int> others(const trTriBlock& mesh, const std::vector<int>& numbers) {
  std::vector<int> rest;
  for (int e = 1; e < mesh.element_count(); ++e) {
    if (mesh.element(e).valid() && !std::binary_search(numbers.begin(), numbers.end(), e)) rest.push_back(e);
  }
  return rest;
}

class Checker {
 public:
  Checker(Session& session, const CheckLimits& limits)
      : session_(session), limits_(limits), control_(session.control), mesh_(session.mesh) {}

  MeshCheck run() {
    stage("merging", [&] { weld(); });
    stage("measuring", [&] { check_.mesh = measure_mesh(mesh_); });
    stage("tracing boundaries", [&] { trace_boundaries(); });
    stage("looking for edges with many triangles", [&] { find_sick(); });
    stage("measuring triangles", [&] { find_shapes(); });
    stage("measuring angles", [&] { find_overlapping(); });
    stage("looking for intersections", [&] { find_intersecting(); });
    stage("looking for repeated triangles", [&] { find_repeated(); });
    stage("comparing orientations", [&] { find_misoriented(); });
    stage("finding shells", [&] { find_shells_of_mesh(); });
    return std::move(check_);
  }

 private:
  template <class Work>
  void stage(const char* name, Work work) {
    session_.progress.begin(name);
    work();
    Interruption::check();
  }

  void weld() {
    if (!limits_.weld) return;
    const int before = mesh_.valid_nodes();
    const ElementSnapshot snapshot(mesh_);
    mesh_.unduplicate_nodes(*limits_.weld);
    check_.nodes_merged = before - mesh_.valid_nodes();
    check_.collapsed = snapshot.deleted_since();
  }

  void trace_boundaries() {
    trCycleArray& cycles = control_.cycles();
    check_.free_edges = cycles.num_edges();
    check_.boundaries = find_boundaries(cycles);
  }

  void find_sick() {
    intcoPageArr list;
    mesh_.find_sick(list, 0);
    check_.sick = numbers_in(list);
    trEdgeConnectioncoPageArr edges;
    mesh_.find_sick(edges, 0);
    for (int k = 0; k < edges.count(); ++k) check_.sick_edges.push_back(sick_edge(edges[k]));
  }

  FoundSickEdge sick_edge(const trEdgeConnection& edge) const {
    FoundSickEdge found;
    found.nodes[0] = edge.start_node();
    found.nodes[1] = edge.end_node();
    intcoPageArr elements;
    edge.triangles(elements);
    found.elements = numbers_in(elements);
    std::sort(found.elements.begin(), found.elements.end());
    const giPoint3 &a = mesh_.point(found.nodes[0]), &b = mesh_.point(found.nodes[1]);
    found.at = giPoint3(0.5 * a.x + 0.5 * b.x, 0.5 * a.y + 0.5 * b.y, 0.5 * a.z + 0.5 * b.z);
    return found;
  }

  void find_shapes() {
    intcoPageArr list;
    check_.least_height = mesh_.find_thin(limits_.small, 0, list);
    check_.small = numbers_in(list);
    check_.least_aspect = mesh_.find_thin(limits_.thin, 1, list);
    check_.thin = numbers_in(list);
    mesh_.find_overhanging(list, limits_.up);
    check_.overhanging = numbers_in(list);
  }

  void find_overlapping() {
    intcoPageArr list;
    check_.sharpest_deg = mesh_.find_overlapping(giAngle::from_degrees(limits_.overlap_deg), list).degrees();
    check_.overlapping = numbers_in(list);
  }

  void find_intersecting() {
    intcoPageArr list;
    mesh_.find_intersecting(list, 1000);
    check_.intersecting = numbers_in(list);
    std::sort(check_.intersecting.begin(), check_.intersecting.end());
  }

  // Edits the mesh, looks at what became of it and takes the edit back. The record is not one of the controller's, whose history stays
  // as it is.
  template <class Edit, class Look>
  void try_edit(const char* name, Edit edit, Look look) {
    trUndoHist history(&mesh_);
    history.start(name);
    edit();
    const bool is_interrupted = tr_interrupt() != 0;
    if (!is_interrupted) look();
    if (history.finish()) history.undo();
  }

  void find_repeated() {
    const ElementSnapshot snapshot(mesh_);
    try_edit("repeating", [&] { mesh_.repeating(); }, [&] { check_.repeated = snapshot.deleted_since(); });
    try_edit("cancelling", [&] { mesh_.cancelling(1); }, [&] { check_.cancelling = snapshot.deleted_since(); });
  }

  // Orienting turns over the smaller side of each piece, and then perhaps the whole mesh, so that its top faces up: of the elements that
  // it turned and those that it did not, the fewer are the odd ones.
  void find_misoriented() {
    const ElementSnapshot snapshot(mesh_);
    try_edit("orient", [&] { mesh_.orient_normals(); }, [&] { check_.misoriented = snapshot.reversed_since(); });
    if (2 * static_cast<std::int64_t>(check_.misoriented.size()) > check_.mesh.elements) {
      check_.misoriented = others(mesh_, check_.misoriented);
    }
  }

  void find_shells_of_mesh() {
    check_.shells = find_shells(mesh_);
    check_.inside_out = static_cast<int>(inside_out_shells(check_.shells).size());
  }

  Session& session_;
  const CheckLimits& limits_;
  trControl& control_;
  trTriBlock& mesh_;
  MeshCheck check_;
};

}  // namespace

int MeshCheck::closed_shells() const {
  return static_cast<int>(std::count_if(shells.begin(), shells.end(), [](const Shell& s) { return s.is_closed; }));
}

bool MeshCheck::has_defects() const {
  return !collapsed.empty() || free_edges != 0 || !sick.empty() || !small.empty() || !thin.empty() || !overlapping.empty() ||
         !intersecting.empty() || !misoriented.empty() || !repeated.empty() || !cancelling.empty() || inside_out != 0;
}

MeshCheck check_mesh(Session& session, const CheckLimits& limits) { return Checker(session, limits).run(); }
