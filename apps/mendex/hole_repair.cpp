#include "hole_repair.h"

#include <algorithm>
#include <numeric>

#include "failure.h"
#include "interruption.h"
#include "patch_check.h"
#include "undo_mark.h"

namespace {

// After so many attempts a hole whose patch does harm loses all its methods, so that there is an end.
constexpr int patient_attempts = 8;

// What a patch may reach beyond the box of its rim, as a share of that box's diagonal.
constexpr double farthest_bulge = 0.5;

// Sets of new elements that hang together by their edges.
class Patches {
 public:
  Patches(const trTriBlock& mesh, int first_new) : mesh_(mesh), first_(first_new) {
    parents_.resize(static_cast<std::size_t>(mesh.element_count() - first_new));
    std::iota(parents_.begin(), parents_.end(), 0);
    for (int e = first_new; e < mesh.element_count(); ++e) {
      const trElement& t = mesh.element(e);
      for (int k = 0; k < 3 && t.valid(); ++k) element_of_.emplace(std::make_pair(t[k], t[(k + 1) % 3]), e);
    }
    for (const auto& [edge, e] : element_of_) {
      const auto across = element_of_.find({edge.second, edge.first});
      if (across != element_of_.end()) join(e - first_, across->second - first_);
    }
  }

  /// Some element of the patch along a rim, -1 when it has none.
  int along(const std::vector<int>& rim) const {
    for (std::size_t k = 0; k < rim.size(); ++k) {
      const auto found = element_of_.find({rim[(k + 1) % rim.size()], rim[k]});
      if (found != element_of_.end()) return found->second;
    }
    return -1;
  }
  /// The patches of some elements, ascending.
  std::vector<int> patches_of(const std::vector<int>& elements) {
    std::vector<int> found;
    for (const int e : elements) found.push_back(patch_of(e));
    std::sort(found.begin(), found.end());
    return found;
  }
  int patch_of(int e) {
    int k = e - first_;
    while (parent(k) != k) k = parent(k) = parent(parent(k));
    return k;
  }

 private:
  int& parent(int k) { return parents_[static_cast<std::size_t>(k)]; }
  void join(int a, int b) {
    a = patch_of(a + first_);
    b = patch_of(b + first_);
    parent(std::max(a, b)) = std::min(a, b);
  }

  const trTriBlock& mesh_;
  int first_;
  std::map<std::pair<int, int>, int> element_of_;
  std::vector<int> parents_;
};

std::string text_of(HoleMethod method, const std::string& reason) { return std::string(name_of(method)) + ": " + reason; }

}  // namespace

HoleRepair::HoleRepair(Session& session, const RepairSettings& settings)
    : session_(session), control_(session.control), mesh_(session.mesh), settings_(settings) {}

HoleRepair::Plan HoleRepair::plan_for(const FoundBoundary& hole, const HoleSurroundings& around) const {
  Plan plan;
  plan.fate.hole = hole;
  plan.fate.shell = around.shell;
  if (around.is_sheet_rim && !settings_.closes_sheets) {
    plan.fate.kind = HoleFate::Kind::kept;
    plan.fate.reason = "it is the outer rim of an open sheet";
    return plan;
  }
  switch (shape_of(hole, around, settings_.small_hole)) {
    case HoleShape::small: plan.methods = {HoleMethod::flat, HoleMethod::fan}; break;
    case HoleShape::flat: plan.methods = {HoleMethod::flat, HoleMethod::curved, HoleMethod::fan}; break;
    case HoleShape::curved: plan.methods = {HoleMethod::curved, HoleMethod::flat, HoleMethod::fan}; break;
  }
  return plan;
}

// Holes that are known keep their plans.
void HoleRepair::plan(const ShellSurvey& shells) {
  std::vector<FoundBoundary> boundaries = find_boundaries(control_.cycles());
  Interruption::check();
  const HoleSurvey survey(mesh_, boundaries, shells);
  for (std::size_t h = 0; h < boundaries.size(); ++h) {
    if (is_wanted_ && !is_wanted_(boundaries[h])) continue;
    plans_.emplace(key_of_rim(boundaries[h]), plan_for(boundaries[h], survey.at(h)));
  }
}

void HoleRepair::give_up_method(Plan& plan, const std::string& reason) {
  if (!plan.fate.reason.empty()) plan.fate.reason += "; ";
  plan.fate.reason += text_of(plan.methods.front(), reason);
  plan.methods.erase(plan.methods.begin());
}

bool HoleRepair::cap(const FoundBoundary& hole, Plan& plan, HoleMethod method) {
  // Small holes get no nodes inside: no two points of them are so far apart.
  const bool is_small = hole.edges() <= settings_.small_hole;
  plan.fate.spacing = is_small ? 2.0 * hole.length : settings_.spacing ? settings_.spacing->resolve(mesh_) : hole.length / hole.edges();
  at2PlaneError error = at2_success;
  control_.start_undo("cap");
  const bool is_capped = control_.cycles().cap_hole(0, hole.number, plan.fate.spacing, method == HoleMethod::curved, error) != 0;
  control_.finish_undo(is_capped);
  if (!is_capped) give_up_method(plan, reason_of(error));
  return is_capped;
}

// The cycles stay known while they are capped one by one.
void HoleRepair::cap_holes() {
  bool any_capped = false;
  for (const FoundBoundary& hole : find_boundaries(control_.cycles())) {
    const auto found = plans_.find(key_of_rim(hole));
    if (found == plans_.end()) continue;
    Plan& plan = found->second;
    bool is_capped = false;
    while (!is_capped && !plan.methods.empty() && plan.methods.front() != HoleMethod::fan && !tr_interrupt()) {
      is_capped = cap(hole, plan, plan.methods.front());
    }
    any_capped = any_capped || is_capped;
  }
  if (any_capped) mesh_.force_changed_status(1);
  Interruption::check();
}

void HoleRepair::fan_holes() {
  intcoSet numbers;
  for (const FoundBoundary& hole : find_boundaries(control_.cycles())) {
    const auto found = plans_.find(key_of_rim(hole));
    if (found != plans_.end() && !found->second.methods.empty() && found->second.methods.front() == HoleMethod::fan) numbers.add(hole.number);
  }
  if (numbers.count() == 0) return;
  const intcoSet no_nodes;
  double average_length = 0.0;
  control_.select_cycles(numbers, average_length, -1, no_nodes, -1, -1);
  control_.start_undo("fill");
  control_.action_fill(0);
  control_.finish_undo(1);
  Interruption::check();
}

void HoleRepair::attempt() {
  session_.progress.begin("closing holes");
  const int first_node = mesh_.node_count();
  cap_holes();
  fan_holes();
  if (!settings_.target || first_node == mesh_.node_count()) return;
  control_.start_undo("round");
  CoordinateRounding(*settings_.target).round(mesh_, first_node, farthest_rounded_);
  control_.finish_undo(1);
}

// Whether none does harm. Those that do lose their method.
bool HoleRepair::look_at_patches(int first_new, bool is_last) {
  session_.progress.begin("checking patches");
  const PatchCheck::Harm harm = PatchCheck(mesh_, first_new).find_harm();
  Interruption::check();
  Patches patches(mesh_, first_new);
  const std::vector<int> harmful = patches.patches_of(harm.elements), cutting = patches.patches_of(harm.cutting);
  const auto is_cut_already = [&harm](const FoundBoundary& hole) {
    return std::any_of(hole.nodes.begin(), hole.nodes.end(),
                       [&](int node) { return std::binary_search(harm.cut_before.begin(), harm.cut_before.end(), node); });
  };
  bool are_good = true;
  std::map<int, giBox3> boxes;
  for (int e = first_new; e < mesh_.element_count(); ++e) {
    for (int k = 0; k < 3 && mesh_.element(e).valid(); ++k) boxes[patches.patch_of(e)].merge(mesh_.point(mesh_.element(e)[k]));
  }
  for (auto& [key, plan] : plans_) {
    const int e = plan.methods.empty() ? -1 : patches.along(plan.fate.hole.nodes);
    if (e < 0) continue;
    const int patch = patches.patch_of(e);
    giBox3 rim;
    for (const int node : plan.fate.hole.nodes) rim.merge(mesh_.point(node));
    const double slack = farthest_bulge * (rim.max() - rim.min()).length();
    const bool is_spike = !rim.contains(boxes[patch].min(), slack) || !rim.contains(boxes[patch].max(), slack);
    const bool is_harmful = std::binary_search(harmful.begin(), harmful.end(), patch);
    const bool is_cutting = std::binary_search(cutting.begin(), cutting.end(), patch) && !is_cut_already(plan.fate.hole);
    if (!is_spike && !is_harmful && !is_cutting) continue;
    are_good = false;
    give_up_method(plan, is_spike     ? "the patch would bulge far out"
                         : is_harmful ? "the patch would fold back or share an edge with two triangles"
                                      : "the patch would cut through the mesh");
    if (is_last) plan.methods.clear();
  }
  return are_good;
}

void HoleRepair::note_closed(int first_new, int first_node) {
  Patches patches(mesh_, first_new);
  std::map<int, std::pair<int, std::vector<int>>> of_patch;  // elements and new nodes
  for (int e = first_new; e < mesh_.element_count(); ++e) {
    const trElement& t = mesh_.element(e);
    if (!t.valid()) continue;
    auto& [elements, nodes] = of_patch[patches.patch_of(e)];
    ++elements;
    new_area_ += area_of(mesh_, e);
    for (int k = 0; k < 3; ++k) {
      if (t[k] >= first_node) nodes.push_back(t[k]);
    }
  }
  for (auto& [key, plan] : plans_) {
    const int e = plan.methods.empty() ? -1 : patches.along(plan.fate.hole.nodes);
    if (e < 0) continue;
    auto& [elements, nodes] = of_patch[patches.patch_of(e)];
    std::sort(nodes.begin(), nodes.end());
    plan.fate.kind = HoleFate::Kind::closed;
    plan.fate.method = plan.methods.front();
    plan.fate.triangles = elements;
    plan.fate.nodes = static_cast<int>(std::unique(nodes.begin(), nodes.end()) - nodes.begin());
  }
}

std::vector<HoleFate> HoleRepair::run(const ShellSurvey& shells) {
  UndoMark mark(control_);
  plan(shells);
  for (int k = 0;; ++k) {
    const int first_new = mesh_.element_count(), first_node = mesh_.node_count();
    bool are_good = false;
    try {
      attempt();
      are_good = look_at_patches(first_new, k >= patient_attempts);
    } catch (const Failure&) {
      mark.take_back();
      throw;
    }
    if (are_good) {
      note_closed(first_new, first_node);
      break;
    }
    mark.take_back();
  }
  std::vector<HoleFate> fates;
  for (const auto& [key, plan] : plans_) fates.push_back(plan.fate);
  return fates;
}
