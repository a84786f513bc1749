// The native format: header, nodes and elements. What follows them is read in native_blocks.cpp.

#include <algorithm>
#include <cstring>

#include "formats/bin_read.h"
#include "formats/entity_limit.h"
#include "formats/native_blocks.h"
#include "formats/native_layout.h"
#include "formats/tri_read.h"
#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"
#include "platform/utilities/prefetch.h"
#include "progress/message.h"
#include "progress/progress.h"

namespace {

// One record, read at once; what the file is too short for reads 0.
template <int size>
class Record {
 public:
  explicit Record(trBinRead& in) : available_(in.read_bytes(bytes_, size)) {}

  template <class T>
  T value(int offset) const {
    T value = 0;
    if (offset + static_cast<int>(sizeof value) <= available_) std::memcpy(&value, bytes_ + offset, sizeof value);
    return value;
  }

 private:
  char bytes_[size];
  int available_;
};

// 0 for a number that no node of the file has.
int translated(const intcoPageArr& map, int file_number) {
  return file_number >= 0 && file_number < map.count() ? map[file_number] : 0;
}

// Fetches what the record so many records ahead will look up: in a shuffled mesh each is a cache miss.
void prefetch_translations(const trBinRead& in, const intcoPageArr& map) {
  constexpr int records_ahead = 16;
  const char* const record = in.ahead(std::size_t{records_ahead} * native::element_bytes, native::element_bytes);
  if (record == nullptr) return;
  int nodes[3];
  std::memcpy(nodes, record + sizeof(int), sizeof nodes);
  for (const int node : nodes) {
    if (node >= 0 && node < map.count()) co_prefetch_for_reading(&map.at(node));
  }
}

}  // namespace

int trTriRead::read_native() {
  if (!coMemoryScope::is_open()) return tr_guarded(mesh, 0, [&] { return read_native(); });
  tr_report_progress(tr_brnknls(append ? "Appending native file..." : "Reading native file..."), 0.0);
  begin_reading();
  trBinRead in(file);
  char header[native::header_bytes + 1] = {};
  const int is_cut_short = in.b_read(header, native::header_bytes);
  bytes_read_ = in.passed();
  if (is_cut_short) {
    std::fputs(tr_brnknls("Error reading file header data\n"), stderr);
    return 0;
  }
  MessageLine().raw(" ").raw(header);
  if (!read_native_records(in)) return 0;
  bytes_read_ = in.passed();
  NativeBlocks blocks(*mesh, in, native_version_of(header), [this](int n) { return reset_node_data_size(n); });
  const bool is_finished = blocks.read();
  bytes_read_ = in.passed();
  if (!is_finished) return 0;
  if (append && !blocks.has_node_data()) reset_node_data_size(0);
  tr_report_progress(tr_brnknls("Finished reading file..."), 100.0);
  return 1;
}

// 0 when interrupted. A section that the file cuts short ends there, and so do the sections behind it.
int trTriRead::read_native_records(trBinRead& in) {
  intcoPageArr map(12, 5, 10);
  number_limit_ = std::make_unique<NumberLimit>(file, native::node_bytes);
  const int nodes = in.read_int();
  in.expect(std::int64_t{nodes} * native::node_bytes);
  for (int k = 1; k <= nodes && !in.error; ++k) {
    if (tr_interrupt()) return 0;
    read_native_node(in, map);
    tr_report_nodes(k, nodes, 0.0, 50.0);
  }
  leave_lists_for_later();
  number_limit_ = std::make_unique<NumberLimit>(file, native::element_bytes);
  const int elements = in.read_int();
  in.expect(std::int64_t{elements} * native::element_bytes);
  for (int k = 1; k <= elements && !in.error; ++k) {
    if (tr_interrupt()) return 0;
    read_native_element(in, map);
    tr_report_triangles(k, elements, 50.0, 100.0);
  }
  return 1;
}

void trTriRead::read_native_node(trBinRead& in, intcoPageArr& map) {
  const Record<native::node_bytes> record(in);
  const int number = record.value<int>(0);
  const giPoint3 point(record.value<double>(4), record.value<double>(12), record.value<double>(20));
  const int made = append ? mesh->node_count() : number;
  if (!number_limit_->allows_next(number) || made > last_entity_number) return;
  if (made == mesh->node_count()) {
    mesh->append_node(point);
  } else {
    mesh->set_node(made, point);
  }
  map[number] = made;
}

int trTriRead::read_native_element(trBinRead& in, const intcoPageArr& map) {
  const Record<native::element_bytes> record(in);
  prefetch_translations(in, map);
  const int number = append ? mesh->element_count() : record.value<int>(0);
  int nodes[3];
  for (int k = 0; k < 3; ++k) {
    nodes[k] = translated(map, record.value<int>(4 + 4 * k));
    if (nodes[k] == 0) return 0;
  }
  if (nodes[0] == nodes[1] || nodes[1] == nodes[2] || nodes[2] == nodes[0]) return mesh->verbose != 0;
  if (append ? number > last_entity_number : !number_limit_->allows_next(number)) return 0;
  if (number == mesh->element_count()) {
    mesh->append_element(nodes[0], nodes[1], nodes[2]);
  } else {
    mesh->set_element(number, nodes[0], nodes[1], nodes[2]);
  }
  return 0;
}
