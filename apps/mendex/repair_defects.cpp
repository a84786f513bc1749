// What is still wrong after a repair.

#include <map>

#include "interruption.h"
#include "repairer.h"

namespace {

constexpr std::size_t most_listed = 1000;

class DefectList {
 public:
  explicit DefectList(RepairAccount& account) : account_(account) {}

  void add(LeftDefect defect) {
    ++account_.defect_count;
    if (has_room()) account_.defects.push_back(std::move(defect));
  }
  bool has_room() const { return account_.defects.size() < most_listed; }

 private:
  RepairAccount& account_;
};

bool has_both(const trElement& t, int a, int b) {
  const auto has = [&t](int n) { return t[0] == n || t[1] == n || t[2] == n; };
  return has(a) && has(b);
}

// Of a rim that nobody tried to close. Rims run along edges of one triangle, and along those whose two triangles disagree.
std::string reason_for_rim(trTriBlock& mesh, const FoundBoundary& rim, const RepairSettings& settings) {
  const int a = rim.nodes[0], b = rim.nodes[1 % rim.nodes.size()];
  int triangles = 0;
  for (trIntListIT it = mesh.node_elements(a); ++it;) triangles += mesh.element(it()).valid() && has_both(mesh.element(it()), a, b);
  if (triangles > 1) return "the triangles on its two sides face opposite ways, and turning them over would leave more such edges";
  return settings.skips_step(RepairStep::fill) ? "closing holes was left out" : "it appeared when other holes were closed";
}

// Where solids touch, as many triangles run the edge one way as the other.
std::string reason_for_sick_edge(const trTriBlock& mesh, const trEdgeConnection& edge, const intcoPageArr& elements) {
  int forward = 0;
  for (int k = 0; k < elements.count(); ++k) {
    const trElement& t = mesh.element(elements[k]);
    for (int c = 0; c < 3; ++c) forward += t[c] == edge.start_node() && t[(c + 1) % 3] == edge.end_node();
  }
  if (2 * forward == elements.count()) return "surfaces touch along it: as many triangles run it one way as the other";
  return "its triangles cannot be paired, and deleting some would leave as many such edges, or open ones";
}

}  // namespace

void Repairer::list_defects() {
  DefectList list(account_);
  if (state_.edges.open > 0 || state_.edges.opposed > 0) {
    std::map<RimKey, const HoleFate*> fates;
    for (const HoleFate& fate : account_.holes) fates.emplace(key_of_rim(fate.hole), &fate);
    for (FoundBoundary& rim : find_boundaries(control_.cycles())) {
      const auto found = fates.find(key_of_rim(rim));
      const HoleFate* const fate = found != fates.end() && found->second->hole.nodes == rim.nodes ? found->second : nullptr;
      if (fate != nullptr && fate->kind == HoleFate::Kind::kept) continue;
      // Many rims may begin at one hub, where each look takes its time: only those that are listed get one.
      const std::string reason = fate != nullptr ? fate->reason : list.has_room() ? reason_for_rim(mesh_, rim, settings_) : "";
      list.add({"boundary", rim.nodes, rim.at, rim.length, reason});
    }
    Interruption::check();
  }
  if (state_.edges.sick > 0) {
    trEdgeConnectioncoPageArr edges;
    mesh_.find_sick(edges, 0);
    for (int k = 0; k < edges.count(); ++k) {
      const giPoint3 &a = mesh_.point(edges[k].start_node()), &b = mesh_.point(edges[k].end_node());
      intcoPageArr elements;
      edges[k].triangles(elements);
      list.add({"sick edge",
                {edges[k].start_node(), edges[k].end_node()},
                giPoint3(0.5 * a.x + 0.5 * b.x, 0.5 * a.y + 0.5 * b.y, 0.5 * a.z + 0.5 * b.z),
                static_cast<double>(elements.count()),
                reason_for_sick_edge(mesh_, edges[k], elements)});
    }
  }
  if (state_.inside_out > 0) {
    const std::vector<Shell>& shells = survey().shells;
    for (const int k : inside_out_shells(shells)) {
      const Shell& shell = shells[static_cast<std::size_t>(k)];
      list.add({"inside-out shell", {shell.first_element}, shell.box.point_at(0.5, 0.5, 0.5), shell.volume, "it faces inward"});
    }
  }
}
