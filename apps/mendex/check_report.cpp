#include "check_report.h"

#include <map>

#include "text.h"

namespace {

// The lines of the table: a name, a count, and what there is to say about it. Counts of defects are marked.
class Table {
 public:
  explicit Table(std::string title) : text_(std::move(title)) {}

  void fact(const char* name, long long count, const std::string& note = "") { row(' ', name, count, note); }
  void defect(const char* name, long long count, const std::string& note = "") {
    row(count == 0 ? ' ' : '!', name, count, count == 0 ? "" : note);
    defects_ += count != 0;
  }
  void lines(const std::string& text) { text_ += text; }
  std::string take() {
    text_ += defects_ == 0 ? "  no defects\n" : formatted("  %d kind%s of defects, marked !\n", defects_, defects_ == 1 ? "" : "s");
    return std::move(text_);
  }

 private:
  void row(char mark, const char* name, long long count, const std::string& note) {
    text_ += formatted("%c %-24s %8lld", mark, name, count) + (note.empty() ? "" : "  " + note) + "\n";
  }

  std::string text_;
  int defects_ = 0;
};

// The first of the elements, as an example.
std::string first_of(const trTriBlock& mesh, const std::vector<int>& elements, const std::string& what = "") {
  if (elements.empty()) return "";
  return what + (what.empty() ? "" : "; ") + formatted("first is %d at ", elements.front()) + place(middle_of(mesh, elements.front()));
}

// "3 x2, 5, 14 x3": the sizes and how often each occurs.
std::string sizes_of(const std::vector<FoundBoundary>& boundaries) {
  constexpr std::size_t shown = 8;
  std::map<int, int> histogram;
  for (const FoundBoundary& boundary : boundaries) ++histogram[boundary.edges()];
  std::string text;
  std::size_t k = 0;
  for (const auto& [edges, count] : histogram) {
    if (k++ == shown) return text + ", ...";
    text += (text.empty() ? "" : ", ") + std::to_string(edges) + (count == 1 ? "" : " x" + std::to_string(count));
  }
  return text;
}

std::string boundary_note(const MeshCheck& check) {
  if (check.boundaries.empty()) return "";
  const FoundBoundary* largest = &check.boundaries.front();
  for (const FoundBoundary& boundary : check.boundaries) {
    if (boundary.edges() > largest->edges()) largest = &boundary;
  }
  return formatted("%d free edges; sizes ", check.free_edges) + sizes_of(check.boundaries) + "; largest round " + place(largest->at);
}

// A line for each of the first.
std::string boundary_lines(const MeshCheck& check, const Units& units) {
  constexpr std::size_t shown = 10;
  std::string text;
  for (std::size_t k = 0; k < check.boundaries.size() && k < shown; ++k) {
    const FoundBoundary& boundary = check.boundaries[k];
    text += formatted("    hole %-6d %11d edges, length ", boundary.number, boundary.edges()) + units.length(boundary.length, 5) + ", round " + place(boundary.at) + "\n";
  }
  if (check.boundaries.size() > shown) text += formatted("    ... and %zu more; --json lists all\n", check.boundaries.size() - shown);
  return text;
}

std::string sick_note(const MeshCheck& check) {
  if (check.sick_edges.empty()) return "";
  return formatted("%d triangles; first edge at ", static_cast<int>(check.sick.size())) + place(check.sick_edges.front().at);
}

std::string volumes_of(const std::vector<Shell>& shells, const Units& units) {
  constexpr int shown = 6;
  std::string text;
  int k = 0;
  for (const Shell& shell : shells) {
    if (!shell.is_closed) continue;
    if (k++ == shown) return text + ", ...";
    text += (text.empty() ? "volume " : ", ") + units.volume(shell.volume, 6);
  }
  return text;
}

long long size(const std::vector<int>& list) { return static_cast<long long>(list.size()); }

std::string copies_merged(double tolerance, int count, const Units& units) {
  return formatted("%d copies merged", count) + (tolerance == exact_copies ? "" : ", up to " + units.length(tolerance, 6) + " apart");
}

}  // namespace

std::string text_of_check(const Session& session, const std::string& file, const ReadOutcome& read, const CheckLimits& limits,
                          const MeshCheck& check) {
  const trTriBlock& mesh = session.mesh;
  const Units& units = session.units;
  Table table(printable(file) + ": " + name_of(read.format) + (read.is_complete ? "\n" : ", damaged\n"));
  table.fact("triangles", check.mesh.elements, "area " + units.area(check.mesh.area, 7) + ", volume " + units.volume(check.mesh.volume, 7));
  table.fact("nodes", check.mesh.nodes, limits.weld ? copies_merged(*limits.weld, check.nodes_merged, units) : "not merged");
  table.fact("shells", static_cast<long long>(check.shells.size()));
  table.fact("closed shells", check.closed_shells(), volumes_of(check.shells, units));
  table.defect("boundaries", static_cast<long long>(check.boundaries.size()), boundary_note(check));
  table.lines(boundary_lines(check, units));
  table.defect("sick edges", static_cast<long long>(check.sick_edges.size()), sick_note(check));
  table.defect("collapsed triangles", size(check.collapsed),
               check.collapsed.empty() ? "" : formatted("two corners are one; first is %d", check.collapsed.front()));
  table.defect("small triangles", size(check.small), first_of(mesh, check.small, "height below " + units.length(limits.small, 6)));
  table.defect("thin triangles", size(check.thin), first_of(mesh, check.thin, formatted("aspect below %g", limits.thin)));
  table.defect("overlapping triangles", size(check.overlapping),
               first_of(mesh, check.overlapping, formatted("fold sharper than %g degrees", limits.overlap_deg)));
  table.defect("intersecting triangles", size(check.intersecting), first_of(mesh, check.intersecting));
  table.defect("repeated triangles", size(check.repeated), first_of(mesh, check.repeated));
  table.defect("cancelling triangles", size(check.cancelling), first_of(mesh, check.cancelling, "back to back"));
  table.defect("misoriented triangles", size(check.misoriented), first_of(mesh, check.misoriented));
  table.defect("shells inside out", check.inside_out);
  const giUnitVec3& up = limits.up;
  table.fact("overhanging triangles", size(check.overhanging), formatted("facing away from (%g %g %g)", up.x(), up.y(), up.z()));
  return table.take();
}
