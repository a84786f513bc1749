#include <algorithm>
#include <ostream>

#include "formats/bin_read.h"
#include "formats/facet_room.h"
#include "formats/little_endian.h"
#include "formats/message.h"
#include "formats/stl_binary_layout.h"
#include "formats/tri_read.h"
#include "mesh/tri_block.h"
#include "progress/progress.h"

namespace {

using namespace stl_binary;

// Shows the header text, which need not be terminated. False when the file is shorter than a header.
bool echo_header(trBinRead& in) {
  char header[header_size];
  for (char& letter : header) letter = in.read_char();
  if (in.error) {
    std::fputs(tr_brnknls("Error reading file header data\n"), stderr);
    return false;
  }
  tr_out() << ' ';
  tr_out().write(header, std::find(header, header + header_size, '\0') - header) << '\n';
  return true;
}

// The facets of the file one after the other, fetched in chunks of whole facets, never more than are asked for.
class FacetSource {
 public:
  FacetSource(std::FILE* file, std::uint32_t count) : file_(file), unread_(count) {}

  // Steps to the next facet and returns how many of its bytes are there: all, unless the file ends within.
  int next() {
    facet_ += facet_size;
    if (facet_ >= filled_) fetch();
    return static_cast<int>(std::min<std::size_t>(filled_ - facet_, facet_size));
  }

  giPoint3 corner(int k) const {
    const unsigned char* at = bytes_ + facet_ + corner_offset(k);
    return giPoint3(load_f32(at), load_f32(at + 4), load_f32(at + 8));
  }

 private:
  static constexpr std::uint32_t chunk = 65536 / facet_size;

  void fetch() {
    const std::uint32_t facets = std::min(chunk, unread_);
    unread_ -= facets;
    facet_ = 0;
    filled_ = std::fread(bytes_, 1, std::size_t{facets} * facet_size, file_);
  }

  std::FILE* file_;
  std::uint32_t unread_;    // facets not yet fetched
  std::size_t facet_ = 0;   // where the current facet begins in bytes_
  std::size_t filled_ = 0;  // how many bytes_ are valid
  unsigned char bytes_[chunk * facet_size];
};

int clamped(std::uint64_t number) { return static_cast<int>(std::min<std::uint64_t>(number, INT_MAX)); }

class BinaryFacetReader {
 public:
  BinaryFacetReader(trTriBlock& mesh, std::FILE* file, std::uint32_t count)
      : mesh_(mesh), source_(file, count), count_(count) {}

  enum class End { complete, failed, interrupted };

  End read_from(int start) {
    bool is_skipping = start != 1;
    for (facet_ = 1; facet_ <= count_; ++facet_) {
      if (tr_interrupt()) return End::interrupted;
      if (is_skipping && static_cast<std::int64_t>(facet_) >= start) is_skipping = false;
      tr_report_triangles(clamped(facet_), clamped(count_), 0.0, 100.0);
      const int available = source_.next();
      if (!is_skipping && !store(available)) return End::failed;
      if (available < facet_size) return End::failed;
    }
    return End::complete;
  }

  // The facet that was read last, from 1: the one that failed.
  std::int64_t facet() const { return static_cast<std::int64_t>(facet_); }

 private:
  bool store(int available) {
    if (!has_facet_room(mesh_)) return false;
    giPoint3 corners[3];
    const int complete = std::clamp(available / point_size - 1, 0, 3);
    for (int k = 0; k < complete; ++k) corners[k] = source_.corner(k);
    if (available == facet_size) {
      mesh_.append_facet(corners);
      return true;
    }
    for (int k = 0; k < complete; ++k) mesh_.set_node(mesh_.node_count(), corners[k]);
    return false;
  }

  trTriBlock& mesh_;
  FacetSource source_;
  std::uint64_t count_;
  std::uint64_t facet_ = 0;
};

// How many facets to read at most: the file's count, or `stop` when that is a limit below it.
std::uint32_t limited(std::uint32_t count, int stop) {
  return stop > 0 ? std::min(count, static_cast<std::uint32_t>(stop)) : count;
}

}  // namespace

int trTriRead::read_stl(int start, int stop) {
  tr_report_progress(tr_brnknls(append ? "Appending STL file..." : "Reading STL file..."), 0.0);
  reset_node_data_size(0);
  trBinRead in(file);
  if (!echo_header(in)) return 0;
  const std::uint32_t count = in.read_ulong();
  if (in.error) {
    std::fputs(tr_brnknls("Error reading facet count\n"), stderr);
    return 0;
  }
  begin_replacing_or_appending();
  BinaryFacetReader facets(*mesh, file, limited(count, stop));
  const BinaryFacetReader::End end = facets.read_from(start);
  if (end == BinaryFacetReader::End::interrupted) return 0;
  const bool is_complete = end == BinaryFacetReader::End::complete;
  if (!is_complete) print_message("** Error reading element ", facets.facet(), " **");
  tr_report_progress(tr_brnknls("Finished reading STL file..."), 100.0);
  return is_complete;
}
