#include "platform/containers/base_set.h"

#include <algorithm>
#include <cstdint>

basecoSet::basecoSet(int log2, int load) : max_load_(std::clamp(load, 1, 100)), log2_size_(clamp_log2(log2)) {}

basecoSet::~basecoSet() = default;

int basecoSet::clamp_log2(int log2) { return std::clamp(log2, 0, max_log2_size); }

bool basecoSet::overloaded(int n, int log2) const {
  return log2 < max_log2_size && std::int64_t{100} * n >= (std::int64_t{max_load_} << log2);
}
