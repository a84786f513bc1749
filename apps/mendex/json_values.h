#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "report.h"

// What the reports in JSON are made of. It stands between the program and the JSON library, whose header takes seconds to compile: only
// `json_values.cpp` sees that.

/// A value. The members of an object keep the order in which they were set.
class Json {
 public:
  Json(std::nullptr_t);
  Json(bool value);
  Json(long long value);
  Json(double value);
  Json(const char* text);
  Json(const std::string& text);
  Json(const std::vector<int>& numbers);
  Json(const std::vector<std::string>& texts);
  template <class Integer, class = std::enable_if_t<std::is_integral_v<Integer>>>
  Json(Integer value) : Json(static_cast<long long>(value)) {}
  /// An object where all are pairs of a name and a value, otherwise an array.
  Json(std::initializer_list<Json> values);
  Json(const Json& other);
  Json(Json&& other) noexcept;
  Json& operator=(Json&& other) noexcept;
  ~Json();

  static Json array(std::initializer_list<Json> values = {});
  static Json object();
  /// What is no JSON gives no object.
  static Json parse(const std::string& text);

  bool is_object() const;
  bool contains(const std::string& name) const;
  /// The text of that name; empty where there is none.
  std::string text(const std::string& name) const;

  void set(const std::string& name, Json value);
  /// Sets all that the other object has.
  void update(const Json& other);
  void push_back(Json value);

 private:
  struct Value;
  explicit Json(Value&& value);
  friend std::string line_of(const Json& object);

  std::unique_ptr<Value> value_;
};

/// The number, or null when it is not finite.
Json number(double value);
/// The coordinates of a point; null for those that are not finite or not set.
Json triple(const giPoint3& p);
/// Counts, mass properties and box.
Json statistics(const MeshStatistics& mesh);
/// One line without its end. Text that is not valid UTF-8 has its bad bytes replaced.
std::string line_of(const Json& object);

/// The text with its bytes replaced that are not valid UTF-8.
std::string valid_utf8(const std::string& text);
/// The text of a glTF scene with this place of its first buffer; empty for what has no buffers.
std::string with_buffer(const std::string& scene, std::string uri);
