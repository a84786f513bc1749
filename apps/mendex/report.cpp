#include "report.h"

#include <cstdarg>
#include <cstdio>

#include "session.h"

namespace {

__attribute__((format(printf, 2, 3))) void append(std::string& text, const char* format, ...) {
  char line[400];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  text += line;
}

void append_point(std::string& text, const char* label, const giPoint3& p, const Units& units) {
  append(text, "  %-10s %.7g  %.7g  %s\n", label, p.x, p.y, units.length(p.z, 7).c_str());
}

void append_box(std::string& text, const giBox3& box, const Units& units) {
  if (box.is_empty()) {
    append(text, "  %-10s empty\n", "box");
    return;
  }
  const giPoint3 low = box.min();
  const giPoint3 high = box.max();
  append_point(text, "box from", low, units);
  append_point(text, "to", high, units);
  append_point(text, "size", giPoint3(high.x - low.x, high.y - low.y, high.z - low.z), units);
}

}  // namespace

MeshCounts count_mesh(const trTriBlock& mesh) {
  MeshCounts counts;
  counts.nodes = mesh.valid_nodes();
  counts.elements = mesh.valid_elements();
  counts.max_node = mesh.node_count() - 1;
  while (counts.max_node > 0 && mesh.node(counts.max_node).invalid) --counts.max_node;
  counts.max_element = mesh.element_count() - 1;
  while (counts.max_element > 0 && !mesh.element(counts.max_element).valid()) --counts.max_element;
  return counts;
}

MeshCounts count_fresh_mesh(const trTriBlock& mesh) {
  const int nodes = mesh.node_count() - 1, elements = mesh.element_count() - 1;
  return {nodes, elements, nodes, elements};
}

MeshStatistics measure_mesh(const trTriBlock& mesh) {
  MeshStatistics statistics;
  static_cast<MeshCounts&>(statistics) = count_mesh(mesh);
  mesh.properties(statistics.area, statistics.volume, statistics.centre, statistics.min_aspect, statistics.mean_aspect);
  statistics.box = mesh.box();
  return statistics;
}

std::string text_of_info(const Session& session, const std::string& file, const ReadOutcome& read, const MeshStatistics& mesh) {
  std::string text = printable(file) + ": " + name_of(read.format) + (read.is_complete ? "\n" : ", damaged\n");
  append(text, "  %-10s %d\n", "triangles", mesh.elements);
  append(text, "  %-10s %d\n", "nodes", mesh.nodes);
  append(text, "  %-10s %s\n", "area", session.units.area(mesh.area, 7).c_str());
  append(text, "  %-10s %s\n", "volume", session.units.volume(mesh.volume, 7).c_str());
  append_point(text, "centre", mesh.centre, session.units);
  append_box(text, mesh.box, session.units);
  if (mesh.elements > 0) append(text, "  %-10s least %.4g, mean %.4g\n", "aspect", mesh.min_aspect, mesh.mean_aspect);
  return text;
}

std::string text_of_weld(const Session& session, const WeldAccount& account) {
  std::string text = printable(account.input) + ": " + name_of(account.read.format) +
                     (account.read.is_complete ? "\n" : ", damaged\n");
  append(text, "  %-10s %12s %12s\n", "", "before", "after");
  append(text, "  %-10s %12d %12d\n", "nodes", account.before.nodes, account.after.nodes);
  append(text, "  %-10s %12d %12d\n", "triangles", account.before.elements, account.after.elements);
  append(text, "  %d nodes merged, %d collapsed triangles deleted\n", account.merged_nodes(),
         account.deleted_elements());
  if (account.tolerance != exact_copies) append(text, "  tolerance %s\n", session.units.length(account.tolerance, 6).c_str());
  if (account.merged_nodes() == 0 && account.tolerance == exact_copies && account.before.elements > 1) {
    text += "  no node has an exact copy; --tol merges nodes that lie near each other\n";
  }
  text += printable(account.output) + ": " + name_of(account.written) + ", written\n";
  return text;
}
