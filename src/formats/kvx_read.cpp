#include "formats/entity_limit.h"
#include "formats/tri_read.h"
#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"
#include "platform/kvx/kvx_file_read.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

// Reads the blocks into the end of a mesh. False: interrupted, damaged or cut short.
class KvxBlocks {
 public:
  KvxBlocks(trTriBlock& mesh, vrpKVXFileRead& in, int blocks)
      : mesh_(mesh), in_(in), blocks_(blocks), node_(mesh.node_count() - 1), element_(mesh.element_count() - 1) {}

  bool read() {
    for (block_ = 0; block_ < blocks_; ++block_) {
      int nodes = 0, triangles = 0;
      if (tr_interrupt() || in_.read_block(nodes, triangles, has_normals_)) return false;
      const int before = node_;
      if (!read_nodes(nodes) || !read_triangles(triangles, before, nodes)) return false;
      tr_report_progress(tr_brnknls("Triangle blocks %4d/%d"), block_ + 1, blocks_, (block_ + 1) * 100.0 / blocks_);
    }
    return true;
  }

 private:
  void report(const char* format, int done, int count) const {
    if (done % 1000 != 0) return;
    tr_report_progress(tr_brnknls(format), block_, blocks_, done, count, (block_ + static_cast<double>(done) / count) * 100.0 / blocks_);
  }

  int read_node(giPoint3& p) {
    double normal[3];
    return has_normals_ ? in_.read_node(p.x, p.y, p.z, normal[0], normal[1], normal[2]) : in_.read_node(p.x, p.y, p.z);
  }

  bool read_nodes(int count) {
    for (int j = 0; j < count; ++j) {
      if (tr_interrupt()) return false;
      report("Triangle blocks %4d/%d Nodes %5d/%d", j, count);
      giPoint3 point;
      if (read_node(point) || node_ >= last_entity_number) return false;
      ++node_;
      mesh_.append_node(point);
    }
    return true;
  }

  // Local node k of the block is node before + 1 + k of the mesh.
  bool read_triangles(int count, int before, int nodes) {
    for (int j = 0; j < count; ++j) {
      if (tr_interrupt()) return false;
      report("Triangle blocks %4d/%d Triangles %5d/%d", j, count);
      int corners[3];
      if (in_.read_tri(corners[0], corners[1], corners[2]) || element_ >= last_entity_number) return false;
      ++element_;
      bool is_whole = corners[0] != corners[1] && corners[1] != corners[2] && corners[2] != corners[0];
      for (const int corner : corners) is_whole = is_whole && corner >= 0 && corner < nodes;
      if (is_whole) make_element(before + 1 + corners[0], before + 1 + corners[1], before + 1 + corners[2]);
    }
    return true;
  }

  void make_element(int a, int b, int c) {
    if (element_ == mesh_.element_count()) {
      mesh_.append_element(a, b, c);
    } else {
      mesh_.set_element(element_, a, b, c);
    }
  }

  trTriBlock& mesh_;
  vrpKVXFileRead& in_;
  int blocks_;
  int block_ = 0;
  int has_normals_ = 0;
  int node_;  // the last node and element made
  int element_;
};

}  // namespace

int trTriRead::read_kvx() {
  if (!coMemoryScope::is_open()) return tr_guarded(mesh, 0, [&] { return read_kvx(); });
  tr_report_progress(tr_brnknls(append ? "Appending KVX file..." : "Reading KVX file..."), 0.0);
  begin_reading();
  vrpKVXFileRead in(file);
  const char* text = nullptr;
  int blocks = 0, version = 0, flags = 0;
  const int has_failed = in.read_header(text, blocks, version, flags);
  bytes_read_ = in.bytes_read();
  if (has_failed) return 0;
  reset_node_data_size(0);
  const bool is_complete = KvxBlocks(*mesh, in, blocks).read();
  bytes_read_ = in.bytes_read();
  if (!is_complete) return 0;
  tr_report_progress(tr_brnknls("Finished reading KVX file..."), 100.0);
  return 1;
}
