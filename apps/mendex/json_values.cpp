#include "json_values.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

struct Json::Value {
  nlohmann::ordered_json json;
};

Json::Json(Value&& value) : value_(std::make_unique<Value>(std::move(value))) {}
Json::Json(std::nullptr_t) : Json(Value{nullptr}) {}
Json::Json(bool value) : Json(Value{value}) {}
Json::Json(long long value) : Json(Value{value}) {}
Json::Json(double value) : Json(Value{value}) {}
Json::Json(const char* text) : Json(Value{text}) {}
Json::Json(const std::string& text) : Json(Value{text}) {}
Json::Json(const std::vector<int>& numbers) : Json(Value{numbers}) {}
Json::Json(const std::vector<std::string>& texts) : Json(Value{texts}) {}
Json::Json(const Json& other) : Json(Value{other.value_->json}) {}
Json::Json(Json&& other) noexcept = default;
Json& Json::operator=(Json&& other) noexcept = default;
Json::~Json() = default;

// The values of a list are temporaries, and so may be moved from.
Json::Json(std::initializer_list<Json> values) : Json(array(values)) {
  nlohmann::ordered_json& list = value_->json;
  const auto is_pair = [](const nlohmann::ordered_json& v) { return v.is_array() && v.size() == 2 && v[0].is_string(); };
  if (!std::all_of(list.begin(), list.end(), is_pair)) return;
  nlohmann::ordered_json members = nlohmann::ordered_json::object();
  for (auto& pair : list) members.emplace(std::move(pair[0].get_ref<std::string&>()), std::move(pair[1]));
  list = std::move(members);
}

Json Json::array(std::initializer_list<Json> values) {
  nlohmann::ordered_json::array_t list;
  list.reserve(values.size());
  for (const Json& value : values) list.push_back(std::move(value.value_->json));
  return Json(Value{std::move(list)});
}

Json Json::object() { return Json(Value{nlohmann::ordered_json::object()}); }

Json Json::parse(const std::string& text) { return Json(Value{nlohmann::ordered_json::parse(text, nullptr, false)}); }

bool Json::is_object() const { return value_->json.is_object(); }

bool Json::contains(const std::string& name) const { return value_->json.contains(name); }

std::string Json::text(const std::string& name) const {
  const auto at = value_->json.find(name);
  return at != value_->json.end() && at->is_string() ? at->get<std::string>() : std::string();
}

void Json::set(const std::string& name, Json value) { value_->json[name] = std::move(value.value_->json); }

void Json::update(const Json& other) { value_->json.update(other.value_->json); }

void Json::push_back(Json value) { value_->json.push_back(std::move(value.value_->json)); }

std::string line_of(const Json& object) {
  return object.value_->json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

namespace {

// An unset coordinate is the largest double.
Json coordinate(double value) {
  return std::isfinite(value) && std::fabs(value) < std::numeric_limits<double>::max() ? Json(value) : Json(nullptr);
}

}  // namespace

Json number(double value) { return std::isfinite(value) ? Json(value) : Json(nullptr); }

Json triple(const giPoint3& p) { return Json::array({coordinate(p.x), coordinate(p.y), coordinate(p.z)}); }

Json statistics(const MeshStatistics& mesh) {
  return {{"nodes", mesh.nodes},
          {"elements", mesh.elements},
          {"max_node", mesh.max_node},
          {"max_element", mesh.max_element},
          {"area", number(mesh.area)},
          {"volume", number(mesh.volume)},
          {"centre", triple(mesh.centre)},
          {"min_aspect", number(mesh.min_aspect)},
          {"mean_aspect", number(mesh.mean_aspect)},
          {"box", {{"min", triple(mesh.box.min())}, {"max", triple(mesh.box.max())}}}};
}

std::string valid_utf8(const std::string& text) { return nlohmann::json::parse(line_of(text)).get<std::string>(); }

std::string with_buffer(const std::string& scene, std::string uri) {
  nlohmann::json json = nlohmann::json::parse(scene, nullptr, false);
  if (json.is_discarded() || !json.contains("buffers")) return "";
  json["buffers"][0]["uri"] = std::move(uri);
  return json.dump();
}
