#include "support/journal_recorder.h"

#include <algorithm>
#include <cstring>

namespace {

template <class State>
State restored(const std::map<int, State>& first, int number, const State& now) {
  const auto stored = first.find(number);
  return stored == first.end() ? now : stored->second;
}

bool same_bits(const double* a, const double* b, std::size_t n) { return std::memcmp(a, b, n * sizeof(double)) == 0; }

}  // namespace

JournalRecorder::JournalRecorder(trTriBlock& block) : block_(block), attributes_at_start_(block.node_data_size()) {
  for (int i = 0; i < block.node_count(); ++i) nodes_at_start_.push_back(node_now(i));
  for (int e = 0; e < block.element_count(); ++e) elements_at_start_.push_back(element_now(e));
  block.undo = this;
}

void JournalRecorder::store_node(int n) {
  reports_.push_back(n);
  first_nodes_.emplace(n, node_now(n));
}

void JournalRecorder::store_element(int e) {
  reports_.push_back(-e);
  first_elements_.emplace(e, element_now(e));
}

bool JournalRecorder::NodeState::same_as(const NodeState& other) const {
  return invalid == other.invalid && same_bits(coords, other.coords, 3) && weight == other.weight &&
         same_bits(values, other.values, 5);
}

bool JournalRecorder::ElementState::same_as(const ElementState& other) const {
  return std::equal(nodes, nodes + 3, other.nodes) && colour == other.colour;
}

JournalRecorder::NodeState JournalRecorder::node_now(int i) const {
  NodeState state;
  if (i >= block_.node_count() || block_.node(i).invalid) return state;
  state.invalid = 0;
  for (int k = 0; k < 3; ++k) state.coords[k] = block_.point(i)[k];
  if (block_.node_data_size() == 0) return state;
  const trNodeDataTuple& tuple = block_.node_data(i);
  state.weight = tuple.weight;
  std::copy_n(tuple.values, 5, state.values);
  return state;
}

JournalRecorder::ElementState JournalRecorder::element_now(int e) const {
  ElementState state;
  if (e >= block_.element_count() || !block_.element(e).valid()) return state;
  for (int k = 0; k < 3; ++k) state.nodes[k] = block_.element(e)[k];
  state.colour = block_.get_element_colour(e);
  return state;
}

testing::AssertionResult JournalRecorder::restores_the_start() const {
  using testing::AssertionFailure;
  if (block_.node_data_size() != attributes_at_start_) return AssertionFailure() << "attributes came or went";
  const int nodes = static_cast<int>(nodes_at_start_.size());
  for (int i = 0; i < nodes; ++i) {
    const NodeState& start = nodes_at_start_[static_cast<std::size_t>(i)];
    if (!restored(first_nodes_, i, node_now(i)).same_as(start)) return AssertionFailure() << "node " << i << " is lost";
  }
  for (int i = nodes; i < block_.node_count(); ++i) {
    if (!block_.node(i).invalid && first_nodes_.count(i) == 0)
      return AssertionFailure() << "new node " << i << " is unknown";
  }
  const int elements = static_cast<int>(elements_at_start_.size());
  for (int e = 0; e < elements; ++e) {
    const ElementState& start = elements_at_start_[static_cast<std::size_t>(e)];
    if (!restored(first_elements_, e, element_now(e)).same_as(start))
      return AssertionFailure() << "element " << e << " is lost";
  }
  for (int e = elements; e < block_.element_count(); ++e) {
    if (block_.element(e).valid() && first_elements_.count(e) == 0)
      return AssertionFailure() << "new element " << e << " is unknown";
  }
  return testing::AssertionSuccess();
}
