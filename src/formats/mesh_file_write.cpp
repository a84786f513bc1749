// The mesh file: a text file of a node table and of element groups of one colour each.

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

#include "formats/text_out.h"
#include "formats/tri_write.h"
#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

constexpr int number_columns = 8;
constexpr int value_columns = 16;
constexpr int decimals = 4;
constexpr int colour_of_plain_meshes = 1;

// Of more than four attributes a node only three are written.
int attributes_written(int size) { return size <= 4 ? size : 3; }

// Elements of one colour, in number order.
struct ColourGroup {
  int colour;
  std::vector<int> elements;
};

class MeshFile {
 public:
  MeshFile(const trTriBlock& mesh, std::FILE* file, bool renumbers)
      : mesh_(mesh), out_(file), renumbers_(renumbers), attributes_(attributes_written(mesh.node_data_size())) {}

  void head() {
    out_ << "$INIT\nSDB,NEW,PFN,KARN\n$BULK\nNODES,FORMAT=(I8,";
    out_.integer(3 + attributes_) << "F16.4)\n";
  }

  // False when interrupted, here and below.
  bool nodes() {
    const int count = mesh_.node_count();
    if (renumbers_) new_numbers_.assign(static_cast<std::size_t>(count), 0);
    int next = 0;
    for (int i = 1; i < count; ++i) {
      if (tr_interrupt()) return false;
      tr_report_nodes(i, count, 0.0, 50.0);
      if (mesh_.node(i).invalid) continue;
      if (renumbers_) new_numbers_[static_cast<std::size_t>(i)] = ++next;
      write_node(i);
    }
    out_ << "DEFBLK=KARNSURFACE\n";
    return true;
  }

  bool groups() { return renumbers_ ? groups_by_colour() : groups_in_order(); }

  void terminator() { out_ << "$TERM\n"; }

 private:
  void write_node(int i) {
    const giPoint3& p = mesh_.point(i);
    out_.integer(number_of(i), number_columns);
    for (const double value : {p.x, p.y, p.z}) out_.fixed(value, value_columns, decimals);
    out_ << "\n";
    if (attributes_ == 0) return;
    for (int k = 0; k < attributes_; ++k) {
      out_.fixed(mesh_.has_node_data(i) ? mesh_.node_data(i).values[k] : 0.0, value_columns, decimals);
    }
    out_ << "\n";
  }

  int colour_of(int e) const { return mesh_.default_colour() >= 0 ? mesh_.get_element_colour(e) : colour_of_plain_meshes; }

  int number_of(int node) const {
    if (!renumbers_) return node;
    return node >= 0 && static_cast<std::size_t>(node) < new_numbers_.size() ? new_numbers_[static_cast<std::size_t>(node)] : 0;
  }

  void begin_group(int colour) {
    out_ << "ELEMENTS,TYPE=EN3PM  ,COLOUR=";
    out_.integer(colour, 5) << "\n";
  }

  void write_element(int number, const trElement& t) {
    out_.integer(number, number_columns);
    for (int k = 0; k < 3; ++k) out_.integer(number_of(t[k]), number_columns);
    out_ << "\n";
  }

  // A group begins at every change of colour, and at the first element whether it is there or not.
  bool groups_in_order() {
    for (int first = 1; first != 0;) {
      if (tr_interrupt() || !write_run(first)) return false;
    }
    return true;
  }

  // Writes the elements from the first up to the next one of another colour, which becomes the first; 0 when there is none.
  bool write_run(int& first) {
    const int count = mesh_.element_count();
    const int colour = colour_of(first);
    begin_group(colour);
    for (int e = std::exchange(first, 0); e < count && first == 0; ++e) {
      if (tr_interrupt()) return false;
      tr_report_triangles(e, count, 50.0, 100.0);
      const trElement& t = mesh_.element(e);
      if (!t.valid()) continue;
      if (colour_of(e) == colour) {
        write_element(e, t);
      } else {
        first = e;
      }
    }
    return true;
  }

  bool groups_by_colour() {
    std::vector<ColourGroup> groups;
    if (!gather(groups)) return false;
    int next = 0;
    for (const ColourGroup& group : groups) {
      if (tr_interrupt()) return false;
      begin_group(group.colour);
      for (const int e : group.elements) {
        if (tr_interrupt()) return false;
        write_element(++next, mesh_.element(e));
      }
    }
    return true;
  }

  // The colour of element 1 comes first, even where the element is deleted.
  bool gather(std::vector<ColourGroup>& groups) const {
    std::unordered_map<int, std::size_t> places{{colour_of(1), 0}};
    groups.push_back({colour_of(1), {}});
    const int count = mesh_.element_count();
    for (int e = 1; e < count; ++e) {
      if (tr_interrupt()) return false;
      tr_report_triangles(e, count, 50.0, 100.0);
      if (!mesh_.element(e).valid()) continue;
      const int colour = colour_of(e);
      const auto found = places.try_emplace(colour, groups.size());
      if (found.second) groups.push_back({colour, {}});
      groups[found.first->second].elements.push_back(e);
    }
    return true;
  }

  const trTriBlock& mesh_;
  TextOut out_;
  bool renumbers_;
  int attributes_;
  std::vector<int> new_numbers_;  // by node, where the file is numbered anew
};

}  // namespace

int trTriWrite::write_mes(int rwrite) {
  if (!coMemoryScope::is_open()) return tr_guarded(mesh, 0, [&] { return write_mes(rwrite); });
  tr_report_progress(tr_brnknls("Writing mesh file..."), 0.0);
  MeshFile out(*mesh, file, rwrite != 0);
  out.head();
  if (!out.nodes() || !out.groups()) return 0;
  out.terminator();
  tr_report_progress(tr_brnknls("Finished writing mesh file..."), 100.0);
  return 1;
}
