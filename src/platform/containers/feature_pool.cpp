#include "platform/containers/feature_pool.h"

#include <typeinfo>

basecoFeature::~basecoFeature() = default;

void basecoFeature::set_invalid() {
  if (owns_data_ && data_ != nullptr) delete_data(data_);
  hold(nullptr, 0);
}

coFeaturePool::coFeaturePool() = default;
coFeaturePool::~coFeaturePool() = default;

basecoFeature* coFeaturePool::registered(const basecoFeature& feature) const {
  for (const auto& entry : features_) {
    const basecoFeature& candidate = *entry;
    if (typeid(candidate) == typeid(feature)) return entry.get();
  }
  return nullptr;
}

void coFeaturePool::check_out(basecoFeature& feature) {
  if (find(feature)) return;
  std::unique_ptr<basecoFeature> fresh(feature.create());
  fresh->make_data();
  features_.push_back(std::move(fresh));
  find(feature);
}

int coFeaturePool::find(basecoFeature& feature) const {
  basecoFeature* entry = registered(feature);
  if (entry == nullptr) return 0;
  feature.set_invalid();
  feature.hold(entry->data_, 0);
  return 1;
}

void coFeaturePool::remove(const basecoFeature& feature) {
  basecoFeature* entry = registered(feature);
  for (auto it = features_.begin(); it != features_.end(); ++it) {
    if (it->get() != entry) continue;
    features_.erase(it);
    return;
  }
}
