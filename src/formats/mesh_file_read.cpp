// The mesh file, line by line: what begins with a blank is data, everything else says what the data behind it is.

#include <algorithm>
#include <string>

#include "formats/entity_limit.h"
#include "formats/line_stream.h"
#include "formats/tri_read.h"
#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"
#include "progress/message.h"
#include "progress/progress.h"

namespace {

constexpr int least_line_bytes = 8;
constexpr int most_attributes = 4;
constexpr int ignored_group = -1;

bool has_at(std::string_view line, std::size_t place, std::string_view text) {
  return line.size() >= place + text.size() && line.compare(place, text.size(), text) == 0;
}

}  // namespace

class MeshFileReader {
 public:
  MeshFileReader(trTriRead& reader, trTriBlock& mesh, std::FILE* file, bool appends)
      : reader_(reader), mesh_(mesh), lines_(file), limit_(file, least_line_bytes), appends_(appends) {}

  std::int64_t bytes_read() const { return lines_.bytes_passed(); }

  // False when interrupted.
  bool read() {
    while (lines_.next_whole()) {
      if (tr_interrupt()) return false;
      read_line(lines_.line());
    }
    return true;
  }

 private:
  enum class Section { head, nodes, elements };

  void read_line(std::string_view line) {
    if (!has_at(line, 0, " ")) {
      section_ == Section::head ? read_head_line(line) : read_keyword_line(line);
    } else if (section_ == Section::elements) {
      if (group_ >= 0) read_element(line);
    } else {
      section_ = Section::nodes;
      is_continued_ ? read_attributes(line) : read_node(line);
    }
  }

  // "NODES,FORMAT=(I8,7F16.4)" announces three coordinates and four attributes.
  void read_head_line(std::string_view line) {
    if (!has_at(line, 0, "N")) return;
    const std::size_t format = line.find("F1");
    if (format != std::string_view::npos && format > 0) attributes_ = std::clamp(line[format - 1] - '3', 0, most_attributes);
    reader_.reset_node_data_size(attributes_);
  }

  void read_keyword_line(std::string_view line) {
    section_ = Section::elements;
    if (!has_at(line, 0, "E") || line.size() <= 20 || !has_at(line, 14, "EN")) return;
    const std::string_view type = line.substr(16, 5);
    if (type == "3PM  ") {
      group_ = 1;
      const std::size_t colour = line.find("OUR=");
      if (colour != std::string_view::npos) LineScan(line.substr(colour + 4)).integer(group_);
    } else {
      group_ = ignored_group;
      MessageLine().text(" Ignoring non standard elements type '").raw(std::string(type).c_str()).text("'");
    }
  }

  void read_node(std::string_view line) {
    int number = 0;
    giPoint3 point;
    if (LineScan(line).integer(number).real(point.x).real(point.y).real(point.z).count() != 4) return;
    ++nodes_;
    if (nodes_ % 1000 == 0) tr_report_progress(tr_brnknls("Nodes read:  %3d"), nodes_, -1.0);
    is_continued_ = attributes_ != 0;
    node_ = 0;
    if (!limit_.allows_next(number)) return;
    node_ = appends_ ? mesh_.node_count() : number;
    if (node_ > last_entity_number) return;
    mesh_.set_node(node_, point);
    map_[number] = node_;
  }

  void read_attributes(std::string_view line) {
    is_continued_ = false;
    trNodeDataTuple tuple;
    LineScan scan(line);
    for (int k = 0; k < most_attributes; ++k) scan.real(tuple.values[k]);
    const bool has_node = node_ >= 1 && node_ < mesh_.node_count();
    if (scan.count() == attributes_ && mesh_.node_data_size() != 0 && has_node) mesh_.node_data(node_) = tuple;
  }

  void read_element(std::string_view line) {
    int number = 0;
    int corners[3] = {0, 0, 0};
    if (LineScan(line).integer(number).integer(corners[0]).integer(corners[1]).integer(corners[2]).count() != 4) return;
    ++triangles_;
    if (triangles_ % 1000 == 0) tr_report_progress(tr_brnknls("Triangles read:  %3d"), triangles_, -1.0);
    if (appends_) number = mesh_.element_count();
    int nodes[3];
    for (int k = 0; k < 3; ++k) {
      nodes[k] = corners[k] >= 0 && corners[k] < map_.count() ? map_[corners[k]] : 0;
      if (nodes[k] == 0) return;
    }
    if (corners[0] == corners[1] || corners[1] == corners[2] || corners[2] == corners[0]) return;
    if (appends_ ? number > last_entity_number : !limit_.allows_next(number)) return;
    mesh_.set_element(number, nodes[0], nodes[1], nodes[2]);
    mesh_.set_element_colour(number, group_);
  }

  trTriRead& reader_;
  trTriBlock& mesh_;
  LineStream lines_;
  NumberLimit limit_;
  bool appends_;
  Section section_ = Section::head;
  int attributes_ = 3;         // a node, until the file says otherwise
  bool is_continued_ = false;  // the next data line holds the attributes of the node
  int node_ = 0;               // the node last read; 0 when it has no place in the mesh
  int group_ = ignored_group;  // colour of the group
  int nodes_ = 0;
  int triangles_ = 0;
  intcoPageArr map_ = intcoPageArr(12, 5, 10);  // from the file's node numbers to the mesh's
};

int trTriRead::read_mes() {
  if (!coMemoryScope::is_open()) return tr_guarded(mesh, 0, [&] { return read_mes(); });
  tr_report_progress(tr_brnknls(append ? "Appending Mesh file..." : "Reading Mesh file..."), 0.0);
  begin_reading();
  leave_lists_for_later();
  MeshFileReader reader(*this, *mesh, file, append != 0);
  const bool is_finished = reader.read();
  bytes_read_ = reader.bytes_read();
  if (!is_finished) return 0;
  tr_report_progress(tr_brnknls("Finished reading Mesh file..."), 100.0);
  return 1;
}
