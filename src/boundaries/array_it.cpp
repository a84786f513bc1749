#include "boundaries/array_it.h"

#include <algorithm>

ArrayIT::ArrayIT(int n, const doublecoPageArr* of) : count(n), values(of) {
  for (int k = 0; k < n; ++k) {
    if (of->at(k) > 0.0) order_.push_back(k);
  }
  std::stable_sort(order_.begin(), order_.end(), [of](int a, int b) { return of->at(a) < of->at(b); });
}

int ArrayIT::operator++() {
  while (next_ < order_.size() && !(values->at(order_[next_]) > last)) ++next_;
  if (next_ == order_.size()) return 0;
  index = order_[next_++];
  last = values->at(index);
  return 1;
}
