#pragma once

#include <utility>

/// Sole owner of an object, which it deletes in the end. Moves, does not copy.
template <class T>
class coPrg {
 public:
  coPrg() = default;
  explicit coPrg(T* object) : object_(object) {}
  coPrg(const coPrg&) = delete;
  coPrg& operator=(const coPrg&) = delete;
  coPrg(coPrg&& other) noexcept : object_(other.release()) {}
  coPrg& operator=(coPrg&& other) noexcept {
    if (this != &other) become(other.release());
    return *this;
  }
  ~coPrg() { delete_pointer(); }

  T* get() const { return object_; }
  T& operator*() const { return *object_; }
  T* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }

  /// Returns the pointer and forgets it without deleting.
  T* release() noexcept { return std::exchange(object_, nullptr); }

  /// Deletes the object, if any, and becomes null.
  void reset() noexcept { delete_pointer(); }

  /// Deletes the present object and takes the new one, const or not, over. Taking what it already owns changes nothing.
  void become(const T* object) noexcept {
    if (object == object_) return;
    delete_pointer();
    object_ = const_cast<T*>(object);
  }
  coPrg& operator=(const T* object) noexcept {
    become(object);
    return *this;
  }

  void swap(coPrg& other) noexcept { std::swap(object_, other.object_); }

  /// Deletes the object, if any. The pointer is null before the object's destructor runs.
  void delete_pointer() noexcept { delete release(); }

 private:
  T* object_ = nullptr;
};
