#include "analysis/checker.h"

#include <utility>

void Checker::start_node() {
  other_node.clear(0);
  first_elem.clear(0);
  second_elem.clear(0);
  count.clear(0);
  if (places_.count() != 0) places_.clear();
}

void Checker::enter(int node, int elem, int other) {
  if (other == node) return;
  const int k = find(other);
  if (k < 0) {
    append(elem, other);
  } else if (second_elem.at(k) == 0) {
    second_elem.at(k) = elem;
    count.at(k) = 2;
  } else {
    enter_crowded(k, elem);
  }
}

int Checker::find(int other) const {
  if (places_.count() != 0) return places_.value(other, -1);
  for (int k = 0; k < other_node.count(); ++k) {
    if (other_node.at(k) == other) return k;
  }
  return -1;
}

void Checker::append(int elem, int other) {
  const int k = other_node.count();
  other_node[k] = other;
  first_elem[k] = elem;
  second_elem[k] = 0;
  count[k] = 1;
  if (k < longest_search) return;
  if (k == longest_search) {
    for (int j = 0; j < k; ++j) places_.set(other_node.at(j), j);
  }
  places_.set(other, k);
}

void Checker::enter_crowded(int k, int elem) {
  int& first = first_elem.at(k);
  int& second = second_elem.at(k);
  if (++count.at(k) == 3) {
    if (mode == 0) {
      add_sick(first);
      add_sick(second);
    } else if (triblock->area_element(first) > triblock->area_element(second)) {
      std::swap(first, second);
    }
  }
  if (mode == 0) return add_sick(elem);
  const double area = triblock->area_element(elem);
  if (area > triblock->area_element(second)) {
    add_sick(first);
    first = second;
    second = elem;
  } else if (area > triblock->area_element(first)) {
    add_sick(first);
    first = elem;
  } else {
    add_sick(elem);
  }
}
