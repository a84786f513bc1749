// The native format: everything that a block holds.

#include <algorithm>
#include <climits>
#include <unordered_map>
#include <vector>

#include "formats/native_layout.h"
#include "formats/out_bytes.h"
#include "formats/tri_write.h"
#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"
#include "progress/message.h"
#include "progress/progress.h"

namespace {

// Colours in the order in which elements first have them, each with its elements, ascending.
class ColourLists {
 public:
  struct Entry {
    int colour;
    std::vector<int> elements;
  };

  void add(int colour, int element) {
    const auto found = places_.try_emplace(colour, entries_.size());
    if (found.second) entries_.push_back({colour, {}});
    entries_[found.first->second].elements.push_back(element);
  }

  // The colour with most elements changes places with the first; of several, the one met first.
  void put_commonest_first() {
    std::size_t commonest = 0;
    for (std::size_t k = 1; k < entries_.size(); ++k) {
      if (entries_[k].elements.size() > entries_[commonest].elements.size()) commonest = k;
    }
    if (commonest != 0) std::swap(entries_[0], entries_[commonest]);
  }

  const std::vector<Entry>& entries() const { return entries_; }

 private:
  std::unordered_map<int, std::size_t> places_;
  std::vector<Entry> entries_;
};

int byte_count(std::int64_t bytes) { return static_cast<int>(std::min<std::int64_t>(bytes, INT_MAX)); }

// Writes one file. A stage that was interrupted returns false, and the file ends there.
class NativeWriter {
 public:
  NativeWriter(const trTriBlock& mesh, std::FILE* file, bool renumbers) : mesh_(mesh), out_(file), renumbers_(renumbers) {}

  bool header(std::FILE* file) {
    char text[native::header_bytes] = {};
    std::snprintf(text, sizeof text, "MENDEX native file (format %d.%d)", native::major_version, native::minor_version);
    if (file != nullptr && std::fwrite(text, 1, sizeof text, file) == sizeof text) return true;
    std::fputs(tr_brnknls("Error writing file header\n"), stderr);
    return false;
  }

  bool nodes() {
    node_total_ = mesh_.valid_nodes();
    if (tr_interrupt()) return false;
    out_.put(node_total_);
    const int count = mesh_.node_count();
    if (renumbers_) new_numbers_.assign(static_cast<std::size_t>(count), 0);
    int next = 0;
    for (int i = 1; i < count; ++i) {
      if (tr_interrupt()) return false;
      tr_report_nodes(i, count, 0.0, 50.0);
      if (mesh_.node(i).invalid) continue;
      if (renumbers_) new_numbers_[static_cast<std::size_t>(i)] = ++next;
      const giPoint3& p = mesh_.point(i);
      out_.put(number_of_node(i)).put(p.x).put(p.y).put(p.z);
    }
    return true;
  }

  bool elements() {
    const int valid = mesh_.valid_elements();
    if (tr_interrupt()) return false;
    out_.put(valid);
    const int count = mesh_.element_count();
    int next = 0;
    for (int e = 1; e < count; ++e) {
      if (tr_interrupt()) return false;
      tr_report_triangles(e, count, 50.0, 100.0);
      const trElement& t = mesh_.element(e);
      if (!t.valid()) continue;
      ++next;
      out_.put(renumbers_ ? next : e).put(number_of_node(t[0])).put(number_of_node(t[1])).put(number_of_node(t[2]));
    }
    return true;
  }

  void attributes() {
    const int size = mesh_.node_data_size();
    if (size == 0) return;
    const std::int64_t record = (renumbers_ ? 0 : 4) + 8 * std::int64_t{size};
    begin_block(renumbers_ ? "NDTR" : "NDTI", node_total_ * record + 2);
    out_.put(static_cast<std::uint16_t>(size));
    for (int i = 1; i < mesh_.node_count(); ++i) {
      if (mesh_.node(i).invalid) continue;
      if (!renumbers_) out_.put(i);
      const double* values = attributes_of(i);
      for (int k = 0; k < size; ++k) out_.put(values[k]);
    }
  }

  // Elements go by the mesh's own numbers even where the file is numbered anew; those of the commonest colour are not listed. Without
  // elements there is no colour to list, and no block.
  void colours() {
    if (mesh_.default_colour() < 0) return;
    ColourLists lists;
    std::int64_t valid = 0;
    for (int e = 1; e < mesh_.element_count(); ++e) {
      if (!mesh_.element(e).valid()) continue;
      lists.add(mesh_.get_element_colour(e), e);
      ++valid;
    }
    if (valid == 0) return;
    lists.put_commonest_first();
    write_colours(lists.entries(), valid);
  }

  void terminator() { begin_block("TERM", 0); }

 private:
  int number_of_node(int i) const { return renumbers_ ? renumbered(i) : i; }
  int renumbered(int i) const {
    return i >= 0 && static_cast<std::size_t>(i) < new_numbers_.size() ? new_numbers_[static_cast<std::size_t>(i)] : 0;
  }

  const double* attributes_of(int i) const {
    static const trNodeDataTuple none;
    return mesh_.has_node_data(i) ? mesh_.node_data(i).values : none.values;
  }

  void begin_block(const char* tag, std::int64_t bytes) {
    out_.put(native::sync_marker, native::tag_bytes).put(tag, native::tag_bytes).put(byte_count(bytes));
  }

  void write_colours(const std::vector<ColourLists::Entry>& entries, std::int64_t valid) {
    const std::int64_t count = static_cast<std::int64_t>(entries.size());
    const std::int64_t first = static_cast<std::int64_t>(entries[0].elements.size());
    begin_block("ECLI", 4 * (valid + 2 * count - first));
    out_.put(byte_count(count));
    for (std::size_t k = 0; k < entries.size(); ++k) {
      if (k != 0) out_.put(static_cast<int>(entries[k].elements.size()));
      out_.put(entries[k].colour);
    }
    for (std::size_t k = 1; k < entries.size(); ++k) {
      for (const int e : entries[k].elements) out_.put(e);
    }
  }

  const trTriBlock& mesh_;
  OutBytes out_;
  bool renumbers_;
  int node_total_ = 0;            // valid nodes
  std::vector<int> new_numbers_;  // by node, where the file is numbered anew
};

}  // namespace

int trTriWrite::write_native(int rwrite) {
  if (!coMemoryScope::is_open()) return tr_guarded(mesh, 0, [&] { return write_native(rwrite); });
  tr_report_progress(tr_brnknls("Writing native file..."), 0.0);
  NativeWriter writer(*mesh, file, rwrite != 0);
  if (!writer.header(file) || !writer.nodes() || !writer.elements()) return 0;
  writer.attributes();
  writer.colours();
  writer.terminator();
  tr_report_progress(tr_brnknls("Finished writing native file..."), 100.0);
  return 1;
}
