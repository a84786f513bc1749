#pragma once

#include <cstddef>
#include <initializer_list>
#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <vector>

/// A value in a JSON document, for looking at. It keeps the document alive. Only its source sees the JSON library, whose header takes
/// seconds to compile.
///
/// Looking for what is not there throws. Numbers are equal by value, objects whatever the order of their members.
class Json {
 public:
  Json(std::nullptr_t);
  Json(bool value);
  Json(int value);
  Json(std::size_t value);
  Json(double value);
  Json(const char* text);
  Json(const std::string& text);
  Json(const std::vector<int>& numbers);

  /// Of text that is no JSON all comparisons are false, and nothing is in it.
  static Json parse(const std::string& text);
  static Json array(std::initializer_list<Json> values = {}) { return array(std::vector<Json>(values)); }
  static Json array(const std::vector<Json>& values);

  bool is_null() const;
  bool is_object() const;
  bool contains(const std::string& name) const;
  /// Of an array or object.
  std::size_t size() const;
  Json operator[](int k) const { return (*this)[static_cast<std::size_t>(k)]; }
  Json operator[](std::size_t k) const;
  Json operator[](const std::string& name) const { return at(name); }
  Json at(const std::string& name) const;
  /// What lies at a path such as "/holes/0/spacing".
  Json at_path(const std::string& path) const;
  /// The member of that name, or what is given where there is none.
  Json value(const std::string& name, const Json& otherwise) const;
  /// Those of an array.
  std::vector<Json> elements() const;
  /// Those of an object.
  std::map<std::string, Json> items() const;
  /// For int, std::size_t, bool, double, std::string, and vectors of int and double; anything else than what it is throws.
  template <class T>
  T get() const;

  /// The same with the members of another object in place of its own.
  Json merged_with(const Json& other) const;
  std::string dump() const;

  friend bool operator==(const Json& a, const Json& b);
  friend bool operator!=(const Json& a, const Json& b);
  friend bool operator<(const Json& a, const Json& b);
  friend bool operator<=(const Json& a, const Json& b);
  friend bool operator>(const Json& a, const Json& b) { return b < a; }
  friend bool operator>=(const Json& a, const Json& b) { return b <= a; }
  friend std::ostream& operator<<(std::ostream& stream, const Json& json);

 private:
  explicit Json(std::shared_ptr<const void> value) : value_(std::move(value)) {}
  Json part(const void* value) const { return Json(std::shared_ptr<const void>(value_, value)); }

  std::shared_ptr<const void> value_;  // of the library's type
};
