#include <algorithm>
#include <cmath>

#include "check_report.h"
#include "json_values.h"

namespace {

Json elements_with_places(const trTriBlock& mesh, const std::vector<int>& elements) {
  Json list = Json::array();
  for (const int e : elements) list.push_back({{"element", e}, {"at", triple(middle_of(mesh, e))}});
  return list;
}

Json boundaries_with_places(const MeshCheck& check) {
  Json list = Json::array();
  for (const FoundBoundary& boundary : check.boundaries) {
    list.push_back({{"number", boundary.number},
                    {"edges", boundary.edges()},
                    {"length", number(boundary.length)},
                    {"at", triple(boundary.at)},
                    {"nodes", boundary.nodes}});
  }
  return list;
}

Json sick_edges_with_places(const MeshCheck& check) {
  Json list = Json::array();
  for (const FoundSickEdge& edge : check.sick_edges) {
    list.push_back({{"nodes", Json::array({edge.nodes[0], edge.nodes[1]})}, {"elements", edge.elements}, {"at", triple(edge.at)}});
  }
  return list;
}

Json shells_of(const MeshCheck& check) {
  Json list = Json::array();
  for (const Shell& shell : check.shells) {
    list.push_back({{"first_element", shell.first_element},
                    {"elements", shell.elements},
                    {"closed", shell.is_closed},
                    {"volume", shell.is_closed ? number(shell.volume) : Json(nullptr)}});
  }
  return list;
}

Json sizes_of(const MeshCheck& check) {
  std::vector<int> sizes;
  for (const FoundBoundary& boundary : check.boundaries) sizes.push_back(boundary.edges());
  std::sort(sizes.begin(), sizes.end());
  return sizes;
}

Json found(const trTriBlock& mesh, const MeshCheck& check) {
  return {{"boundaries", boundaries_with_places(check)},
          {"sick_edges", sick_edges_with_places(check)},
          {"sick_elements", check.sick},
          {"collapsed", check.collapsed},
          {"small", elements_with_places(mesh, check.small)},
          {"thin", elements_with_places(mesh, check.thin)},
          {"overlapping", elements_with_places(mesh, check.overlapping)},
          {"intersecting", elements_with_places(mesh, check.intersecting)},
          {"repeated", elements_with_places(mesh, check.repeated)},
          {"cancelling", elements_with_places(mesh, check.cancelling)},
          {"misoriented", elements_with_places(mesh, check.misoriented)},
          {"overhanging", check.overhanging},
          {"shells", shells_of(check)}};
}

}  // namespace

std::string json_of_check(const Session& session, const std::string& file, const ReadOutcome& read, const CheckLimits& limits,
                          const MeshCheck& check) {
  Json object = {{"file", file}, {"format", name_of(read.format)}};
  object.update(statistics(check.mesh));
  object.update({{"merged_nodes", check.nodes_merged},
                 {"boundaries", check.boundaries.size()},
                 {"free_edges", check.free_edges},
                 {"boundary_sizes", sizes_of(check)},
                 {"sick_edges", check.sick_edges.size()},
                 {"sick_elements", check.sick.size()},
                 {"collapsed", check.collapsed.size()},
                 {"small", check.small.size()},
                 {"least_height", number(check.least_height)},
                 {"thin", check.thin.size()},
                 {"least_aspect", number(check.least_aspect)},
                 {"overlapping", check.overlapping.size()},
                 {"sharpest_angle_deg", number(check.sharpest_deg)},
                 {"intersecting", check.intersecting.size()},
                 {"repeated", check.repeated.size()},
                 {"cancelling", check.cancelling.size()},
                 {"misoriented", check.misoriented.size()},
                 {"overhanging", check.overhanging.size()},
                 {"shells", check.shells.size()},
                 {"closed", check.closed_shells()},
                 {"inside_out", check.inside_out},
                 {"clean", !check.has_defects()},
                 {"limits",
                  {{"weld", limits.weld ? number(*limits.weld) : Json(nullptr)},
                   {"small", number(limits.small)},
                   {"thin", number(limits.thin)},
                   {"overlap_deg", number(limits.overlap_deg)},
                   {"up", Json::array({limits.up.x(), limits.up.y(), limits.up.z()})}}},
                 {"found", found(session.mesh, check)},
                 {"complete", read.is_complete},
                 {"warnings", session.messages.warnings()}});
  return line_of(object);
}
