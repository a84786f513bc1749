#include "element_snapshot.h"

ElementSnapshot::ElementSnapshot(const trTriBlock& mesh) : mesh_(mesh) {
  elements_.reserve(static_cast<std::size_t>(mesh.element_count()));
  for (int e = 0; e < mesh.element_count(); ++e) elements_.push_back(mesh.element(e));
}

template <class Differs>
std::vector<int> ElementSnapshot::those(Differs differs) const {
  std::vector<int> numbers;
  const int count = static_cast<int>(elements_.size());
  for (int e = 1; e < count; ++e) {
    if (differs(elements_[static_cast<std::size_t>(e)], mesh_.element(e))) numbers.push_back(e);
  }
  return numbers;
}

std::vector<int> ElementSnapshot::deleted_since() const {
  return those([](const trElement& before, const trElement& now) { return before.valid() && !now.valid(); });
}

std::vector<int> ElementSnapshot::reversed_since() const {
  return those([](const trElement& before, const trElement& now) { return now.valid() && before[1] != now[1]; });
}
