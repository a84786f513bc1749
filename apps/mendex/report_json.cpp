#include <cmath>
#include <limits>

#include "json_values.h"
#include "report.h"

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

std::string line_of(const Json& object) { return object.dump(-1, ' ', false, Json::error_handler_t::replace); }

std::string json_of_info(const Session& session, const std::string& file, const ReadOutcome& read,
                         const MeshStatistics& mesh) {
  Json object = {{"file", file}, {"format", name_of(read.format)}};
  object.update(statistics(mesh));
  object["complete"] = read.is_complete;
  object["warnings"] = session.messages.warnings();
  return line_of(object);
}

std::string json_of_weld(const Session& session, const WeldAccount& account) {
  const Json object = {{"file", account.input},
                       {"format", name_of(account.read.format)},
                       {"output", account.output},
                       {"output_format", name_of(account.written)},
                       {"tolerance", account.tolerance},
                       {"before", statistics(account.before)},
                       {"after", statistics(account.after)},
                       {"merged_nodes", account.merged_nodes()},
                       {"deleted_elements", account.deleted_elements()},
                       {"complete", account.read.is_complete},
                       {"warnings", session.messages.warnings()}};
  return line_of(object);
}
