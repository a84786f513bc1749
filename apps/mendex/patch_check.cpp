#include "patch_check.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <unordered_map>

namespace {

constexpr int cells_across = 64;
constexpr double folded_deg = 1.0;
constexpr double scaled_size = 1000.0;
constexpr int elements_a_box = 100;

giBox3 box_of(const trTriBlock& mesh, int e) {
  giBox3 box;
  for (int k = 0; k < 3; ++k) box.merge(mesh.point(mesh.element(e)[k]));
  return box;
}

bool do_meet(const giBox3& a, const giBox3& b) {
  for (int k = 0; k < 3; ++k) {
    if (!(a.min()[k] <= b.max()[k] && b.min()[k] <= a.max()[k])) return false;
  }
  return true;
}

// Which cells of a box are touched by any of many small boxes.
class TouchedCells {
 public:
  explicit TouchedCells(const giBox3& box) : box_(box), cells_(static_cast<std::size_t>(cells_across) * cells_across * cells_across) {}

  void touch(const giBox3& box) {
    for_each_cell(box, [this](std::size_t cell) {
      cells_[cell] = true;
      return true;
    });
  }
  bool is_touched(const giBox3& box) const {
    return !for_each_cell(box, [this](std::size_t cell) { return !cells_[cell]; });
  }

 private:
  int cell(int axis, double x) const {
    const double size = box_.max()[axis] - box_.min()[axis];
    const double place = size > 0.0 ? (x - box_.min()[axis]) / size * cells_across : 0.0;
    return static_cast<int>(std::max(0.0, std::min(place, cells_across - 1.0)));
  }

  // False as soon as `see` returns that.
  template <class See>
  bool for_each_cell(const giBox3& box, See see) const {
    int low[3], high[3];
    for (int k = 0; k < 3; ++k) {
      low[k] = cell(k, box.min()[k]);
      high[k] = cell(k, box.max()[k]);
    }
    for (int z = low[2]; z <= high[2]; ++z) {
      for (int y = low[1]; y <= high[1]; ++y) {
        for (int x = low[0]; x <= high[0]; ++x) {
          if (!see(static_cast<std::size_t>((z * cells_across + y) * cells_across + x))) return false;
        }
      }
    }
    return true;
  }

  giBox3 box_;
  std::vector<bool> cells_;
};

}  // namespace

PatchCheck::PatchCheck(const trTriBlock& mesh, int first_new) : mesh_(mesh), first_new_(first_new) {
  for (int e = first_new; e < mesh.element_count(); ++e) {
    if (mesh.element(e).valid()) box_.merge(box_of(mesh, e));
  }
  if (!box_.is_empty()) find_near();
}

void PatchCheck::find_near() {
  TouchedCells cells(box_);
  for (int e = first_new_; e < mesh_.element_count(); ++e) {
    if (mesh_.element(e).valid()) cells.touch(box_of(mesh_, e));
  }
  for (int e = 1; e < mesh_.element_count(); ++e) {
    mesh_.prefetch_corners(e + trTriBlock::corners_ahead);
    if (!mesh_.element(e).valid()) continue;
    const giBox3 box = box_of(mesh_, e);
    if (e >= first_new_ || (do_meet(box, box_) && cells.is_touched(box))) near_.push_back(e);
  }
}

// Element k of the list becomes number k + 1; those left out are not there.
void PatchCheck::copy_near(trTriBlock& copy, bool with_new) const {
  const giPoint3 middle = box_.point_at(0.5, 0.5, 0.5);
  const double size = (box_.max() - box_.min()).length();
  const double scale = size > 0.0 && std::isfinite(size) ? scaled_size / size : 1.0;
  std::unordered_map<int, int> numbers;
  int element = 0;
  for (const int e : near_) {
    ++element;
    if (e >= first_new_ && !with_new) break;
    int corners[3];
    for (int k = 0; k < 3; ++k) {
      const int node = mesh_.element(e)[k];
      const auto [known, is_new] = numbers.emplace(node, static_cast<int>(numbers.size()) + 1);
      corners[k] = known->second;
      if (!is_new) continue;
      const giVector3 from_middle = mesh_.point(node) - middle;
      copy.set_node(known->second, giPoint3(scale * from_middle.x(), scale * from_middle.y(), scale * from_middle.z()));
    }
    copy.set_element(element, corners[0], corners[1], corners[2]);
  }
}

PatchCheck::Harm PatchCheck::find_harm() const {
  Harm harm;
  if (near_.empty()) return harm;
  const auto copy = std::make_unique<trTriBlock>();
  copy_near(*copy, true);
  const auto take_new = [&](const intcoPageArr& list, std::vector<int>& found) {
    for (int k = 0; k < list.count(); ++k) {
      const int e = near_[static_cast<std::size_t>(list[k] - 1)];
      if (e >= first_new_) found.push_back(e);
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
  };
  intcoPageArr list;
  copy->find_overlapping(giAngle::from_degrees(folded_deg), list);
  take_new(list, harm.elements);
  copy->find_sick(list, 0);
  take_new(list, harm.elements);
  copy->find_intersecting(list, elements_a_box);
  take_new(list, harm.cutting);
  if (harm.cutting.empty()) return harm;
  const auto old_ones = std::make_unique<trTriBlock>();
  copy_near(*old_ones, false);
  old_ones->find_intersecting(list, elements_a_box);
  for (int k = 0; k < list.count(); ++k) {
    for (int c = 0; c < 3; ++c) harm.cut_before.push_back(mesh_.element(near_[static_cast<std::size_t>(list[k] - 1)])[c]);
  }
  std::sort(harm.cut_before.begin(), harm.cut_before.end());
  harm.cut_before.erase(std::unique(harm.cut_before.begin(), harm.cut_before.end()), harm.cut_before.end());
  return harm;
}
