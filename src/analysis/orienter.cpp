#include "analysis/orienter.h"

#include "analysis/edge_links.h"

trOrienter::trOrienter(trTriBlock* block) : triblock(block) {
  const int n = num_elements();
  status_.expand(n);
  for (int e = 0; e < n; ++e) status_.at(e) = element(e).valid() ? tr_orient_unset : tr_orient_ignore;
}

trOrienter::~trOrienter() = default;

int trOrienter::next_unset() {
  const int n = status_.count();
  while (first_unset_ < n && status_.at(first_unset_) != tr_orient_unset) ++first_unset_;
  return first_unset_ < n ? first_unset_ : -1;
}

EdgeLinks* trOrienter::links() {
  if (links_ == nullptr) {
    triblock->reference_elements();
    links_ = std::make_unique<EdgeLinks>(*triblock);
    if (!links_->complete()) links_.reset();
  }
  return links_.get();
}
