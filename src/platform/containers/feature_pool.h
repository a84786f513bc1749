#pragma once

#include <memory>
#include <vector>

#include "platform/utilities/export.h"

/// One kind of data that a feature pool can hold: a typed handle on a data object that it may own.
class MENDEX_EXPORT basecoFeature {
 public:
  basecoFeature() = default;
  basecoFeature(const basecoFeature&) = delete;
  basecoFeature& operator=(const basecoFeature&) = delete;
  virtual ~basecoFeature();

  /// A new, empty feature of the same type.
  virtual basecoFeature* create() const = 0;
  /// Allocates a fresh data object and owns it.
  virtual void make_data() = 0;
  /// Allocates a fresh, empty data object of the other feature's type; its contents are not copied.
  virtual void make_copy_data(const basecoFeature* other) = 0;

  /// Lets go of the data, deleting it when owned.
  void set_invalid();
  /// Whether there is data.
  int valid() const { return data_ != nullptr; }
  int owns_data() const { return owns_data_; }
  const void* raw_data() const { return data_; }

 protected:
  void hold(void* data, int owns) {
    data_ = data;
    owns_data_ = owns;
  }
  virtual void delete_data(void* data) = 0;

  void* data_ = nullptr;
  int owns_data_ = 0;

 private:
  friend class coFeaturePool;
};

/// A feature whose data is one object of type Data.
template <class Derived, class Data>
class coFeature : public basecoFeature {
 public:
  ~coFeature() override { set_invalid(); }
  basecoFeature* create() const override { return new Derived; }
  void make_data() override {
    set_invalid();
    hold(new Data, 1);
  }
  void make_copy_data(const basecoFeature*) override { make_data(); }
  Data* data() const { return static_cast<Data*>(data_); }

 protected:
  void delete_data(void* data) override { delete static_cast<Data*>(data); }
};

/// A bag of data objects, at most one of each feature type.
class MENDEX_EXPORT coFeaturePool {
 public:
  coFeaturePool();
  coFeaturePool(const coFeaturePool&) = delete;
  coFeaturePool& operator=(const coFeaturePool&) = delete;
  virtual ~coFeaturePool();

  /// Points `feature` at the pool's data of its type; makes and registers that data first when the pool has none.
  void check_out(basecoFeature& feature);

  /// Points `feature` at the pool's data of its type when there is any; returns whether there is.
  int find(basecoFeature& feature) const;

  /// Deletes the pool's data of the feature's type; handles on it must be set invalid by their holders.
  void remove(const basecoFeature& feature);

 private:
  basecoFeature* registered(const basecoFeature& feature) const;

  std::vector<std::unique_ptr<basecoFeature>> features_;
};
