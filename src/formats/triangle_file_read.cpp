// The triangle file: any number of blocks of vertices and of triangles that index the block's vertices from 1.

#include <algorithm>
#include <vector>

#include "formats/entity_limit.h"
#include "formats/line_stream.h"
#include "formats/tri_read.h"
#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

constexpr int attributes_per_vertex = 5;
constexpr int names_per_line = 5;
constexpr int lines_behind_counts = 8;

// Reads the blocks into the end of a mesh. Lines that are missing or malformed leave the values of the line before in place; but no block
// has more vertices or triangles than bytes.
class TriangleBlocks {
 public:
  TriangleBlocks(trTriBlock& mesh, std::FILE* file) : mesh_(mesh), bytes_(bytes_left(file)), lines_(file) {}

  std::int64_t bytes_read() const { return lines_.bytes_passed(); }

  // Reads up to the blocks' names.
  void read_head() {
    while (lines_.next()) {
      if (lines_.line().size() < 2 || lines_.line()[1] != '*') continue;
      next_line();
      LineScan(lines_.line()).integer(blocks_);
      blocks_ = std::max(blocks_, 0);
      for (int names = 0; names < (blocks_ - 1) / names_per_line + 1 && !has_ended_; ++names) next_line();
      return;
    }
  }

  // False when interrupted.
  bool read_blocks(bool keeps_attributes) {
    keeps_attributes_ = keeps_attributes;
    node_ = mesh_.node_count() - 1;
    element_ = mesh_.element_count() - 1;
    for (block_ = 0; block_ < blocks_ && !has_ended_; ++block_) {
      if (tr_interrupt()) return false;
      read_block_head();
      if (!read_vertices() || !read_triangles()) return false;
      tr_report_progress(tr_brnknls("Triangle blocks %4d/%d"), block_ + 1, blocks_, (block_ + 1) * 100.0 / blocks_);
    }
    return true;
  }

 private:
  void next_line() { has_ended_ = !lines_.next() || has_ended_; }

  void read_block_head() {
    for (int k = 0; k < 4; ++k) next_line();
    int first = 0, second = 0;
    LineScan(lines_.line()).integer(first).integer(second).integer(vertices_).integer(triangles_);
    vertices_ = bounded(vertices_);
    triangles_ = bounded(triangles_);
    for (int k = 0; k < lines_behind_counts; ++k) next_line();
    first_node_ = node_;
    vertices_read_ = 0;
  }

  int bounded(int count) const {
    if (bytes_ < 0) return count;  // nobody knows the length of a pipe: there the end of the file ends the block
    return static_cast<int>(std::min<std::int64_t>(count, std::max<std::int64_t>(0, bytes_ - lines_.bytes_passed())));
  }
  bool goes_on() const { return (bytes_ >= 0 || !has_ended_) && node_ < last_entity_number && element_ < last_entity_number; }

  double percent(int done, int count) const { return (block_ + static_cast<double>(done) / count) * 100.0 / blocks_; }

  bool read_vertices() {
    for (int j = 0; j < vertices_ && goes_on(); ++j) {
      if (tr_interrupt()) return false;
      if (j % 1000 == 0) {
        tr_report_progress(tr_brnknls("Triangle blocks %4d/%d Nodes %5d/%d"), block_, blocks_, j, vertices_, percent(j, vertices_));
      }
      next_line();
      LineScan(lines_.line()).real(point_.x).real(point_.y).real(point_.z).real(tuple_.values[0]);
      next_line();
      LineScan(lines_.line()).real(tuple_.values[1]).real(tuple_.values[2]).real(tuple_.values[3]).real(tuple_.values[4]);
      mesh_.set_node(++node_, point_);
      if (keeps_attributes_) mesh_.node_data(node_) = tuple_;
      ++vertices_read_;
    }
    return true;
  }

  // A triangle that repeats a vertex, or names none of the block's, uses up its number all the same.
  bool read_triangles() {
    for (int j = 0; j < triangles_ && goes_on(); ++j) {
      if (tr_interrupt()) return false;
      if (j % 1000 == 0) {
        tr_report_progress(tr_brnknls("Triangle blocks %4d/%d Triangles %5d/%d"), block_, blocks_, j, triangles_, percent(j, triangles_));
      }
      next_line();
      LineScan(lines_.line()).integer(corners_[0]).integer(corners_[1]).integer(corners_[2]);
      ++element_;
      const bool are_vertices = std::all_of(corners_, corners_ + 3, [this](int c) { return c >= 1 && c <= vertices_read_; });
      const bool are_different = corners_[0] != corners_[1] && corners_[1] != corners_[2] && corners_[2] != corners_[0];
      if (!are_vertices || !are_different) continue;
      mesh_.set_element(element_, first_node_ + corners_[0], first_node_ + corners_[1], first_node_ + corners_[2]);
    }
    return true;
  }

  trTriBlock& mesh_;
  std::int64_t bytes_;  // of the file; -1 when it cannot be told
  LineStream lines_;
  bool has_ended_ = false;
  bool keeps_attributes_ = false;
  int blocks_ = 0;
  int block_ = 0;
  int vertices_ = 0;       // of the block, as its header says
  int triangles_ = 0;
  int vertices_read_ = 0;  // of the block
  int first_node_ = 0;     // the node before the block's first
  int node_ = 0;           // the last node and element made
  int element_ = 0;
  giPoint3 point_;
  trNodeDataTuple tuple_;
  int corners_[3] = {0, 0, 0};
};

}  // namespace

int trTriRead::read_tri() {
  if (!coMemoryScope::is_open()) return tr_guarded(mesh, 0, [&] { return read_tri(); });
  tr_report_progress(tr_brnknls(append ? "Appending triangle file..." : "Reading triangle file..."), 0.0);
  begin_reading();
  leave_lists_for_later();
  TriangleBlocks blocks(*mesh, file);
  blocks.read_head();
  const int attributes = reset_node_data_size(attributes_per_vertex);
  const bool is_finished = blocks.read_blocks(attributes != 0);
  bytes_read_ = blocks.bytes_read();
  if (!is_finished) return 0;
  tr_report_progress(tr_brnknls("Finished reading triangle file..."), 100.0);
  return 1;
}
