#include "mesh_orienter.h"

#include <vector>

#include "element_snapshot.h"
#include "shells.h"

template <class IsTurned>
void MeshOrienter::turn(IsTurned is_turned) {
  for (int e = 1; e < mesh_.element_count() && !tr_interrupt(); ++e) {
    if (mesh_.element(e).valid() && is_turned(static_cast<std::size_t>(e))) mesh_.reverse_element(e);
  }
  mesh_.force_changed_status(1);
}

// The library's action may face a whole shell the other way, too.
int MeshOrienter::make_consistent() {
  const ShellSurvey survey = survey_shells(mesh_);
  const ElementSnapshot before(mesh_);
  control_.action_orient();
  if (tr_interrupt()) return 0;
  std::vector<int> reversed(survey.shells.size());
  for (const int e : before.reversed_since()) ++reversed[static_cast<std::size_t>(survey.shell_of[static_cast<std::size_t>(e)])];
  std::vector<bool> goes_back(survey.shells.size());
  bool any_goes_back = false;
  int turned = 0;
  for (std::size_t k = 0; k < survey.shells.size(); ++k) {
    goes_back[k] = 2 * static_cast<long long>(reversed[k]) > survey.shells[k].elements;
    any_goes_back = any_goes_back || goes_back[k];
    turned += goes_back[k] ? survey.shells[k].elements - reversed[k] : reversed[k];
  }
  if (any_goes_back) turn([&](std::size_t e) { return goes_back[static_cast<std::size_t>(survey.shell_of[e])]; });
  return turned;
}

int MeshOrienter::make_outward() {
  const ShellSurvey survey = survey_shells(mesh_);
  const std::vector<int> wrong = inside_out_shells(survey.shells);
  if (wrong.empty()) return 0;
  std::vector<bool> is_wrong(survey.shells.size());
  for (const int k : wrong) is_wrong[static_cast<std::size_t>(k)] = true;
  turn([&](std::size_t e) { return is_wrong[static_cast<std::size_t>(survey.shell_of[e])]; });
  return static_cast<int>(wrong.size());
}
