#include "support/model.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

#include "support/check.h"
#include "support/files.h"
#include "support/stl_bytes.h"

namespace fs = std::filesystem;

namespace {

// Text that is gathered and written in large pieces.
class TextFile {
 public:
  explicit TextFile(const fs::path& path) : file_(open_file(path, "wb")) {}
  ~TextFile() { flush(); }
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;

  void put(std::string_view text) {
    if (used_ + text.size() > sizeof text_) flush();
    std::memcpy(text_ + used_, text.data(), text.size());
    used_ += text.size();
  }
  // Six decimals, as "%e" writes them.
  void put(float number) {
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, number, std::chars_format::scientific, 6).ptr;
    put(std::string_view(digits, static_cast<std::size_t>(end - digits)));
  }

 private:
  void flush() {
    std::fwrite(text_, 1, used_, file_.get());
    used_ = 0;
  }

  File file_;
  char text_[1 << 16];
  std::size_t used_ = 0;
};

// Readers skip the normals, so these are all alike, yet as long as real ones.
constexpr std::string_view facet_start = "  facet normal 5.773503e-01 5.773503e-01 5.773503e-01\n    outer loop\n";

void write_ascii(const fs::path& path, const Soup& soup) {
  TextFile out(path);
  out.put("solid torus\n");
  for (std::size_t f = 0; f < soup.facets; ++f) {
    out.put(facet_start);
    for (std::size_t k = 0; k < 3; ++k) {
      out.put("      vertex  ");
      for (std::size_t axis = 0; axis < 3; ++axis) {
        out.put(" ");
        out.put(soup.corners[9 * f + 3 * k + axis]);
      }
      out.put("\n");
    }
    out.put("    endloop\n  endfacet\n");
  }
  out.put("endsolid\n");
}

}  // namespace

void write_binary_stl(const fs::path& path, const Soup& soup) {
  const File file = open_file(path, "wb");
  char preamble[stl_preamble_bytes] = "torus";
  const auto count = static_cast<std::uint32_t>(soup.facets);
  std::memcpy(preamble + stl_header_bytes, &count, sizeof count);
  std::fwrite(preamble, 1, sizeof preamble, file.get());
  char record[stl_record_bytes] = {};
  for (std::size_t f = 0; f < soup.facets; ++f) {
    std::memcpy(record + stl_normal_bytes, &soup.corners[9 * f], stl_corner_bytes);
    std::fwrite(record, 1, sizeof record, file.get());
  }
}

const char* name_of(FacetOrder order) { return order == FacetOrder::ordered ? "ordered" : "shuffled"; }

Model::Model(std::size_t facets, FacetOrder order, fs::path folder)
    : order_(order),
      soup_(bumpy_torus(facets, order)),
      folder_(std::move(folder)),
      stem_(std::string("torus_") + name_of(order) + "_" + std::to_string(facets) + "_") {
  binary_ = side_file("model.stl");
  ascii_ = side_file("model.ast");
  output_ = side_file("out");
}

Model::~Model() {
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(folder_, ignored)) {
    if (entry.path().filename().string().rfind(stem_, 0) == 0) fs::remove(entry.path(), ignored);
  }
}

fs::path Model::side_file(const std::string& ending) const { return folder_ / (stem_ + ending); }

const fs::path& Model::binary_file() const {
  if (!fs::exists(binary_)) write_binary_stl(binary_, soup_);
  require(fs::file_size(binary_) == stl_file_bytes(facets()), "size of the binary file");
  return binary_;
}

const fs::path& Model::ascii_file() const {
  if (!fs::exists(ascii_)) write_ascii(ascii_, soup_);
  return ascii_;
}
