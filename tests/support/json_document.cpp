#include "support/json_document.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

namespace {

using Held = std::shared_ptr<const void>;

Held held(nlohmann::json json) { return std::make_shared<nlohmann::json>(std::move(json)); }

const nlohmann::json& json_in(const Held& value) { return *static_cast<const nlohmann::json*>(value.get()); }

}  // namespace

Json::Json(std::nullptr_t) : Json(held(nullptr)) {}
Json::Json(bool value) : Json(held(value)) {}
Json::Json(int value) : Json(held(value)) {}
Json::Json(std::size_t value) : Json(held(value)) {}
Json::Json(double value) : Json(held(value)) {}
Json::Json(const char* text) : Json(held(text)) {}
Json::Json(const std::string& text) : Json(held(text)) {}
Json::Json(const std::vector<int>& numbers) : Json(held(numbers)) {}

Json Json::parse(const std::string& text) { return Json(held(nlohmann::json::parse(text, nullptr, false))); }

Json Json::array(const std::vector<Json>& values) {
  nlohmann::json list = nlohmann::json::array();
  for (const Json& value : values) list.push_back(json_in(value.value_));
  return Json(held(std::move(list)));
}

bool Json::is_null() const { return json_in(value_).is_null(); }

bool Json::is_object() const { return json_in(value_).is_object(); }

bool Json::contains(const std::string& name) const { return json_in(value_).contains(name); }

std::size_t Json::size() const {
  if (!json_in(value_).is_structured()) throw std::domain_error(dump() + " has no size");
  return json_in(value_).size();
}

Json Json::operator[](std::size_t k) const { return part(&json_in(value_).at(k)); }

Json Json::at(const std::string& name) const { return part(&json_in(value_).at(name)); }

Json Json::at_path(const std::string& path) const { return part(&json_in(value_).at(nlohmann::json::json_pointer(path))); }

Json Json::value(const std::string& name, const Json& otherwise) const { return contains(name) ? at(name) : otherwise; }

std::vector<Json> Json::elements() const {
  std::vector<Json> elements;
  for (const auto& element : json_in(value_).get_ref<const nlohmann::json::array_t&>()) elements.push_back(part(&element));
  return elements;
}

std::map<std::string, Json> Json::items() const {
  std::map<std::string, Json> items;
  for (const auto& [name, value] : json_in(value_).get_ref<const nlohmann::json::object_t&>()) items.emplace(name, part(&value));
  return items;
}

template <class T>
T Json::get() const {
  return json_in(value_).get<T>();
}
template int Json::get() const;
template std::size_t Json::get() const;
template bool Json::get() const;
template double Json::get() const;
template std::string Json::get() const;
template std::vector<int> Json::get() const;
template std::vector<double> Json::get() const;

Json Json::merged_with(const Json& other) const {
  nlohmann::json merged = json_in(value_);
  merged.update(json_in(other.value_));
  return Json(held(std::move(merged)));
}

std::string Json::dump() const { return json_in(value_).dump(); }

bool operator==(const Json& a, const Json& b) { return json_in(a.value_) == json_in(b.value_); }

bool operator!=(const Json& a, const Json& b) { return a < b || b < a; }

bool operator<(const Json& a, const Json& b) { return json_in(a.value_) < json_in(b.value_); }

bool operator<=(const Json& a, const Json& b) { return a < b || a == b; }

std::ostream& operator<<(std::ostream& stream, const Json& json) { return stream << json.dump(); }
