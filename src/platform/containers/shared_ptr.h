#pragma once

#include <memory>
#include <new>
#include <utility>

#include "platform/utilities/export.h"

/// Tag: the object belongs to someone else.
struct coPrfExtern {};

/// Deleter of a shared reference to a foreign object: leaves it alone.
class MENDEX_EXPORT coPrfExternalDeleter {
 public:
  void operator()(const void*) const noexcept {}
};

/// Shared reference to an object: the last reference deletes it, unless the object is external.
///
/// Without memory for the reference count a reference is null; an object that it was to own is then deleted.
template <class T>
class coPrf {
 public:
  coPrf() = default;
  explicit coPrf(T* object) noexcept {
    try {
      object_.reset(object);
    } catch (const std::bad_alloc&) {  // reset has deleted the object
    }
  }
  coPrf(coPrfExtern, T* object) noexcept {
    if (object == nullptr) return;
    try {
      object_.reset(object, coPrfExternalDeleter());
    } catch (const std::bad_alloc&) {
    }
  }
  coPrf(std::shared_ptr<T> object) noexcept : object_(std::move(object)) {}

  operator std::shared_ptr<T>() const noexcept { return object_; }

  T* get() const { return object_.get(); }
  T& operator*() const { return *object_; }
  T* operator->() const { return object_.get(); }
  explicit operator bool() const { return object_ != nullptr; }

  /// 1 when the object is external, 0 when it is owned or when there is none.
  int external() const { return object_ != nullptr && std::get_deleter<coPrfExternalDeleter>(object_) != nullptr; }

  /// Gives the reference up.
  void reset() noexcept { object_.reset(); }
  void swap(coPrf& other) noexcept { object_.swap(other.object_); }

 private:
  std::shared_ptr<T> object_;
};
