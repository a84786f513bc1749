#include "undo/undo.h"

#include <algorithm>
#include <cstdint>

#include "mesh/tri_block.h"
#include "platform/utilities/prefetch.h"
#include "progress/message.h"
#include "undo/undo_hist.h"

namespace {

// Pages of 16 and 20 KiB, the fifth and later ones of a record cut from slabs: most of what recording costs is the
// first touch of its memory. A record that fits in one page gives back what it does not need when it is closed.
constexpr int node_page_shift = 9;
constexpr int element_page_shift = 10;
constexpr int page_capacity = 5;
constexpr int page_increment = 10;

template <class Entry>
constexpr int first_ordinal(int shift) {
  constexpr int plain_pages = 4;
  const int page_bytes = static_cast<int>(sizeof(Entry)) << shift;
  return static_cast<int>(coPageHeap::plain_bytes) / page_bytes + 1 - plain_pages;
}
constexpr int first_node_ordinal = first_ordinal<trUndoNode>(node_page_shift);
constexpr int first_element_ordinal = first_ordinal<trUndoElement>(element_page_shift);

// Lines of the listing: the bracket stands in column 36, names in files take 29 characters.
constexpr int bracket_column = 35;
constexpr int file_name_width = 29;

// Which numbers a walk has met: one bit each.
class NumberMarks {
 public:
  /// Makes room for numbers below `count`; false when there is no memory.
  bool reserve(int count) { return (count >> 6) < words_.count() || words_.get_block(count >> (6 + shift)) != 0; }
  void unmark(int i) { words_[i >> 6] &= ~bit(i); }
  /// Marks a number; returns whether it was not marked before.
  bool mark(int i) {
    std::uint64_t& word = words_[i >> 6];
    const bool first = (word & bit(i)) == 0;
    word |= bit(i);
    return first;
  }

 private:
  static std::uint64_t bit(int i) { return std::uint64_t{1} << (i & 63); }
  static constexpr int shift = 12;
  coPageArr<std::uint64_t> words_{shift, page_capacity, page_increment};
};

// Never destroyed: a host's global objects may outlive any of ours.
union MarkStore {
  constexpr MarkStore() : marks() {}
  ~MarkStore() {}
  NumberMarks marks;
};

NumberMarks& node_marks() {
  static MarkStore store;
  return store.marks;
}

NumberMarks& element_marks() {
  static MarkStore store;
  return store.marks;
}

// Whether there is a page for entry i, or memory for one.
template <class Array>
bool has_page(Array& array, int i) {
  return (i >> array.page_shift()) < array.pages() || array.get_block(i >> array.page_shift()) != 0;
}

// Fetches the nodes that come next, and their lists, all at once and each one cell at a time: whoever emptied them one after the other
// would wait for every cell.
class NodesAhead {
 public:
  NodesAhead(const trTriBlock& block, const trUndoNodecoPageArr& nodes) : block_(block), nodes_(nodes) {}

  // Entry k is about to be exchanged.
  void advance(int k) {
    if (const int i = number(k + 2 * ahead); i >= 0) {
      co_prefetch_for_writing(&block_.node(i));
      co_prefetch_for_writing(&block_.point(i));
    }
    for (coCellPool::Link& link : links_) {
      if (link == 0 || coCellPool::live() == 0) continue;  // with the last cell in use, all of them are gone
      link = coCellPool::next(link);
      coCellPool::prefetch(link);
    }
    links_[k % ahead] = first_cell(k + ahead);
  }

 private:
  static constexpr int ahead = 8;  // as many as a list has cells, or more

  // Of the node that entry k is about; -1 where there is none.
  int number(int k) const {
    const int i = k < nodes_.count() ? nodes_.at(k).index : -1;
    return i < block_.node_count() ? i : -1;
  }

  coCellPool::Link first_cell(int k) const {
    const int i = number(k);
    if (i < 0) return 0;
    const coCellPool::Link link = block_.node(i).elements.head();
    coCellPool::prefetch(link);
    return link;
  }

  const trTriBlock& block_;
  const trUndoNodecoPageArr& nodes_;
  coCellPool::Link links_[ahead] = {};
};

// Swaps the first entry of every number below `count`; calls before(k) for each entry.
template <class Entries, class Before>
void swap_first_entries(Entries& entries, NumberMarks& marks, int count, trUndoHist* hist, Before before) {
  const int n = entries.count();
  const auto is_number = [count](int i) { return i >= 0 && i < count; };
  for (int k = 0; k < n; ++k) {
    const int i = entries.at(k).index;
    if (is_number(i)) marks.unmark(i);
  }
  for (int k = 0; k < n; ++k) {
    auto& entry = entries.at(k);
    before(k);
    if (is_number(entry.index) && marks.mark(entry.index)) entry.swap(hist);
  }
}

// Goes on in wide pages, the first of which lies ready in `spare` if it has one; without memory in those that there are.
template <class Array>
void widen(Array& array, Array& spare, int shift, int first) {
  if (array.page_shift() == shift && array.pages() > 0) return;
  Array wide(shift, page_capacity, page_increment, first);
  if (spare.pages() > 0) wide.swap(spare);
  wide.copy(array, array.count(), 0, 0);
  if (wide.count() == array.count()) array.swap(wide);
}

// Moves what fills no page into one of its size, and leaves the wide one in `spare`. Were it freed instead, what the next record
// allocates first would take a part of its place, and each of many small records would cost a wide page.
template <class Array>
void narrow(Array& array, Array& spare) {
  if (array.count() >= array.page_size()) return;
  int shift = 0;
  while ((1 << shift) < array.count()) ++shift;
  Array small(shift, page_capacity, page_increment);
  if (array.count() > 0 && !small.get_block(0)) return;
  small.copy(array, array.count(), 0, 0);
  small.swap(array);
  small.clear(0);
  small.shrink(small.page_size(), 1);
  if (spare.pages() == 0) small.swap(spare);
}

void make_fresh(trNode& node) {
  node.set_invalid();
  node.side = 0;
}

}  // namespace

trUndo::trUndo(trUndoHist* history, const utString& operation)
    : hist(history),
      nodes(node_page_shift, page_capacity, page_increment, first_node_ordinal),
      elements(element_page_shift, page_capacity, page_increment, first_element_ordinal) {
  reset(operation);
}

void trUndo::reset(const utString& operation) {
  nodes.clear(0);
  elements.clear(0);
  use_full_pages();
  applied = 0;
  node_count = hist->triblock->node_count();
  element_count = hist->triblock->element_count();
  saved_data_end_ = 0;
  if (!operation.empty()) name = operation;
}

void trUndo::use_full_pages() {
  widen(nodes, hist->spare_nodes_, node_page_shift, first_node_ordinal);
  widen(elements, hist->spare_elements_, element_page_shift, first_element_ordinal);
}

void trUndo::trim_pages() {
  narrow(nodes, hist->spare_nodes_);
  narrow(elements, hist->spare_elements_);
}

// A number between the present count and that at the opening was cut off by this operation, which reported it if there
// was something to lose.
void trUndo::store_node(int n) {
  if (!nodes.has_room()) return store_node_in_new_page(n);
  const trTriBlock& block = *hist->triblock;
  trUndoNode& entry = nodes.append_in_room();
  if (n >= node_count || n >= block.node_count()) return entry.set_absent(n);
  entry.copy(block, n);
  if (block.node_data_size() != 0) save_data(entry);
}

void trUndo::store_element(int e) {
  if (!elements.has_room()) return store_element_in_new_page(e);
  const trTriBlock& block = *hist->triblock;
  trUndoElement& entry = elements.append_in_room();
  if (e >= element_count || e >= block.element_count()) return entry.set_absent(e);
  entry.copy(block, e);
}

// What is rare is kept apart, so that storing an entry is a short run of instructions without a call: it is all that
// the journal adds to an edit. Without memory nothing is stored, and the edit that was to follow is not made.
void trUndo::store_node_in_new_page(int n) {
  if (!reserve_marks() || !nodes.get_block(nodes.pages())) return co_entry_lost();
  store_node(n);
}

void trUndo::store_element_in_new_page(int e) {
  if (!reserve_marks() || !elements.get_block(elements.pages())) return co_entry_lost();
  store_element(e);
}

// An entry whose attributes cannot be saved is none.
void trUndo::save_data(trUndoNode& entry) {
  if (!entry.save_data(hist)) {
    nodes.shrink(nodes.count() - 1, 0);
    return co_entry_lost();
  }
  saved_data_end_ = entry.data_index + 1;
}

// What the exchange needs beside the entries themselves: with it, taking back finds memory where there is none left.
bool trUndo::reserve_marks() const {
  constexpr int ahead = 1 << 16;  // numbers that the operation may yet make before it asks again
  const trTriBlock& block = *hist->triblock;
  const auto room_for = [](int count) { return std::max(count, 0) + ahead; };
  return node_marks().reserve(room_for(std::max(node_count, block.node_count()))) &&
         element_marks().reserve(room_for(std::max(element_count, block.element_count())));
}

int trUndo::apply() {
  trTriBlock& block = *hist->triblock;
  if (!reserve_marks()) return 0;
  applied = !applied;
  swap_nodes();
  swap_elements();
  ++block.edit_count_;
  block.reset_derived_state();
  block.alter(1);
  return 1;
}

void trUndo::swap_nodes() {
  trTriBlock& block = *hist->triblock;
  const int now = block.node_count();
  const int tuples = hist->saved_data.tuples.count();
  grow_nodes(block, node_count);
  NodesAhead nodes_ahead(block, nodes);
  swap_first_entries(nodes, node_marks(), block.node_count(), hist, [&](int k) { nodes_ahead.advance(k); });
  cut_nodes(block, node_count);
  node_count = now;
  if (hist->saved_data.tuples.count() > tuples) saved_data_end_ = hist->saved_data.tuples.count();
}

void trUndo::swap_elements() {
  trTriBlock& block = *hist->triblock;
  const int now = block.element_count();
  grow_elements(block, element_count);
  const auto fetch = [&](int k) {
    constexpr int ahead = 16;
    if (k + ahead >= elements.count()) return;
    const int e = elements.at(k + ahead).index;
    if (e >= 0 && e < block.element_count()) co_prefetch_for_writing(&block.element(e));
  };
  swap_first_entries(elements, element_marks(), block.element_count(), hist, fetch);
  cut_elements(block, element_count);
  element_count = now;
}

// Without memory the count stays short, and entries beyond it are passed over.
void trUndo::grow_nodes(trTriBlock& block, int count) {
  for (int i = block.node_count(); i < count; ++i) {
    if (!has_page(*block.points_, i) || !has_page(*block.nodes_, i)) return;
    block.init_node(i);
    make_fresh(block.node(i));
  }
}

void trUndo::cut_nodes(trTriBlock& block, int count) {
  for (int i = count; i < block.node_count(); ++i) make_fresh(block.node(i));
  block.nodes_->shrink(count, 0);
  block.points_->shrink(count, 0);
}

void trUndo::grow_elements(trTriBlock& block, int count) {
  const int before = block.element_count();
  if (count > before && has_page(*block.elements_, count - 1)) block.elements_->expand(count);
  for (int e = before; e < block.element_count(); ++e) block.element(e).set(0, 0, 0);
}

// Colours of the numbers that go are dropped, so that whoever takes the numbers next has the default.
void trUndo::cut_elements(trTriBlock& block, int count) {
  if (count >= block.element_count()) return;
  for (int e = count; e < block.element_count(); ++e) block.element(e).set(0, 0, 0);
  block.elements_->shrink(count, 0);
  if (block.colours_ != nullptr) block.colours_->colours.shrink(std::max(count, 1), 0);
}

void trUndo::print(std::FILE* f) const {
  const std::string blanks(static_cast<std::size_t>(std::max(1, bracket_column - name.length())), ' ');
  MessageLine()
      .raw(name.c_str())
      .raw(blanks.c_str())
      .text("[")
      .number(nodes.count())
      .text(" nodes, ")
      .number(elements.count())
      .text(" elems")
      .text("]");
  if (f != nullptr) write_text(f, "%s", print().c_str());
}

utString trUndo::print() const {
  return format_text(tr_brnknls("%s [%d nodes, %d tri]"), name.pad(file_name_width).c_str(), nodes.count(),
                     elements.count());
}
