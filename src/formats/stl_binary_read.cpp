// Binary STL: 80 bytes of text, a 32-bit facet count, 50 bytes a facet.

#include <algorithm>
#include <climits>
#include <cstring>
#include <ostream>
#include <vector>

#include "formats/bin_read.h"
#include "formats/entity_limit.h"
#include "formats/stl_layout.h"
#include "mesh/memory_guard.h"
#include "progress/message.h"
#include "formats/tri_read.h"
#include "mesh/tri_block.h"
#include "platform/utilities/ut_numeric_cast.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

constexpr int normal_bytes = 12;
constexpr int corner_bytes = 12;
constexpr int facets_a_chunk = 1300;  // close to 64 KB

giPoint3 read_point(const char* bytes) {
  float xyz[3];
  std::memcpy(xyz, bytes, sizeof xyz);
  return giPoint3(double{xyz[0]}, double{xyz[1]}, double{xyz[2]});
}

// Hands out the facets' bytes; reads ahead in chunks, but never past the last facet that is wanted.
class FacetBytes {
 public:
  FacetBytes(std::FILE* file, std::uint32_t facets) : file_(file), left_(facets), buffer_(facets_a_chunk * stl::facet_bytes) {}

  // Moves to the next facet; false when the file ends before all its bytes.
  bool next() {
    at_ += stl::facet_bytes;
    if (at_ + stl::facet_bytes <= filled_) return true;
    if (at_ < filled_) return false;
    read_chunk();
    return filled_ >= stl::facet_bytes;
  }
  const char* bytes() const { return buffer_.data() + at_; }
  // Bytes of the current facet that are there.
  int available() const { return std::min(filled_ - at_, stl::facet_bytes); }

 private:
  void read_chunk() {
    const std::uint32_t facets = std::min<std::uint32_t>(left_, facets_a_chunk);
    left_ -= facets;
    at_ = 0;
    filled_ = static_cast<int>(std::fread(buffer_.data(), 1, std::size_t{facets} * stl::facet_bytes, file_));
  }

  std::FILE* file_;
  std::uint32_t left_;  // facets not read yet
  std::vector<char> buffer_;
  int filled_ = 0;
  int at_ = -stl::facet_bytes;
};

// Stores the corners that are complete in a facet cut short.
void append_loose_corners(trTriBlock& mesh, const char* bytes, int available) {
  for (int k = 0; k < 3 && normal_bytes + (k + 1) * corner_bytes <= available; ++k) {
    mesh.set_node(mesh.node_count(), read_point(bytes + normal_bytes + k * corner_bytes));
  }
}

// Echoes the header up to its first zero byte. False when it is cut short.
bool read_header(trBinRead& in) {
  char header[stl::header_bytes + 1] = {};
  if (in.b_read(header, stl::header_bytes)) {
    std::fputs(tr_brnknls("Error reading file header data\n"), stderr);
    return false;
  }
  tr_out() << ' ' << header << '\n';
  return true;
}

}  // namespace

int trTriRead::read_stl(int start, int stop) {
  if (!coMemoryScope::is_open()) return tr_guarded(mesh, 0, [&] { return read_stl(start, stop); });
  tr_report_progress(tr_brnknls(append ? "Appending STL file..." : "Reading STL file..."), 0.0);
  reset_node_data_size(0);
  trBinRead in(file);
  const bool has_header = read_header(in);
  std::uint32_t facets = has_header ? in.read_ulong() : 0;
  bytes_read_ = in.passed();
  if (!has_header) return 0;
  if (in.error) {
    std::fputs(tr_brnknls("Error reading facet count\n"), stderr);
    return 0;
  }
  if (stop > 0) facets = std::min(facets, static_cast<std::uint32_t>(stop));
  begin_reading();
  std::uint32_t failed = 0;
  if (!read_facets(start, facets, failed)) return 0;
  if (failed != 0) print_message("** Error reading element ", failed, " **");
  tr_report_progress(tr_brnknls("Finished reading STL file..."), 100.0);
  return failed == 0;
}

// Reads the facets and stores those from `start` on; `failed` receives the number of the one that could not be read. 0 when
// interrupted.
int trTriRead::read_facets(int start, std::uint32_t facets, std::uint32_t& failed) {
  const int total = ut_numeric_cast<int>(facets);
  FacetBytes stream(file, facets);
  bool skipping = start != 1;
  for (std::uint32_t i = 1; i <= facets && i != 0; ++i) {
    if (tr_interrupt()) return 0;
    if (skipping && static_cast<std::int64_t>(i) >= start) skipping = false;
    tr_report_triangles(ut_numeric_cast<int>(i), total, 0.0, 100.0);
    const bool complete = stream.next();
    bytes_read_ += stream.available();
    if (!complete || (!skipping && !has_room_for_facet(*mesh))) {
      if (!complete && !skipping) append_loose_corners(*mesh, stream.bytes(), stream.available());
      failed = i;
      return 1;
    }
    if (skipping) continue;
    const char* corners = stream.bytes() + normal_bytes;
    const giPoint3 points[3] = {read_point(corners), read_point(corners + corner_bytes), read_point(corners + 2 * corner_bytes)};
    mesh->append_facet(points);
  }
  return 1;
}
