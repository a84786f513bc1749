#include "support/block_snapshot.h"

#include <algorithm>
#include <cstring>

namespace {

bool same_bits(const double* a, const double* b, std::size_t n) { return std::memcmp(a, b, n * sizeof(double)) == 0; }

template <class States>
std::string first_difference(const char* what, const States& a, const States& b) {
  if (a.size() != b.size()) {
    return std::to_string(b.size()) + " " + what + "s instead of " + std::to_string(a.size());
  }
  const auto different = std::mismatch(a.begin(), a.end(), b.begin()).first;
  return different == a.end() ? "" : std::string(what) + " " + std::to_string(different - a.begin()) + " differs";
}

}  // namespace

bool BlockSnapshot::NodeState::operator==(const NodeState& other) const {
  return invalid == other.invalid && same_bits(&p.x, &other.p.x, 3) && weight == other.weight &&
         same_bits(values, other.values, std::size(values));
}

bool BlockSnapshot::ElementState::operator==(const ElementState& other) const {
  return std::equal(nodes, nodes + 3, other.nodes) && colour == other.colour;
}

BlockSnapshot::BlockSnapshot(const trTriBlock& block)
    : attribute_size_(block.node_data_size()), default_colour_(block.default_colour()) {
  nodes_.resize(static_cast<std::size_t>(block.node_count()));
  for (int i = 0; i < block.node_count(); ++i) {
    NodeState& state = nodes_[static_cast<std::size_t>(i)];
    state.p = block.point(i);
    if (block.node(i).invalid) continue;
    state.invalid = 0;
    if (attribute_size_ == 0) continue;
    const trNodeDataTuple& tuple = const_cast<trTriBlock&>(block).node_data(i);
    state.weight = tuple.weight;
    std::copy_n(tuple.values, std::size(state.values), state.values);
  }
  elements_.resize(static_cast<std::size_t>(block.element_count()));
  for (int e = 0; e < block.element_count(); ++e) {
    ElementState& state = elements_[static_cast<std::size_t>(e)];
    for (int k = 0; k < 3; ++k) state.nodes[k] = block.element(e)[k];
    if (block.element(e).valid()) state.colour = block.get_element_colour(e);
  }
}

std::string BlockSnapshot::difference(const BlockSnapshot& other) const {
  if (attribute_size_ != other.attribute_size_) return "attributes came or went";
  if (default_colour_ != other.default_colour_) return "the default colour differs";
  const std::string of_nodes = first_difference("node", nodes_, other.nodes_);
  return of_nodes.empty() ? first_difference("element", elements_, other.elements_) : of_nodes;
}

void BlockSnapshot::rebuild(trTriBlock& block) const {
  const int node_count = static_cast<int>(nodes_.size());
  for (int i = 1; i < node_count; ++i) {
    const NodeState& state = nodes_[static_cast<std::size_t>(i)];
    block.set_node(i, state.p);
    if (state.invalid) block.delete_node(i);
  }
  if (attribute_size_ != 0) block.set_node_data_size(attribute_size_);
  for (int i = 1; i < node_count && attribute_size_ != 0; ++i) {
    const NodeState& state = nodes_[static_cast<std::size_t>(i)];
    block.node_data(i).weight = state.weight;
    std::copy_n(state.values, std::size(state.values), block.node_data(i).values);
  }
  for (int e = 1; e < static_cast<int>(elements_.size()); ++e) {
    const int* nodes = elements_[static_cast<std::size_t>(e)].nodes;
    block.set_element(e, nodes[0], nodes[1], nodes[2]);
  }
}
