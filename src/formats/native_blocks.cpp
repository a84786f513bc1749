#include "formats/native_blocks.h"

#include <algorithm>
#include <cstring>
#include <ostream>
#include <vector>

#include "formats/bin_read.h"
#include "formats/entity_limit.h"
#include "formats/native_layout.h"
#include "mesh/tri_block.h"
#include "progress/message.h"
#include "progress/progress.h"

// The colours of a colour list and how many elements carry each; the first, the default, lists none.
class NativeColours {
 public:
  // Reads as many entries as the file holds; false when they are fewer.
  bool read(trBinRead& in, std::int64_t count) {
    for (std::int64_t k = 0; k < count && !in.error; ++k) {
      const int elements = k == 0 ? 0 : in.read_int();
      const int colour = in.read_int();
      entries_.push_back({elements, colour});
      total_ += elements;
      has_negative_ = has_negative_ || elements < 0;
    }
    return !in.error;
  }

  struct Entry {
    int elements;
    int colour;
  };
  const std::vector<Entry>& entries() const { return entries_; }
  std::int64_t total() const { return total_; }
  bool has_negative() const { return has_negative_; }

 private:
  std::vector<Entry> entries_;
  std::int64_t total_ = 0;
  bool has_negative_ = false;
};

namespace {

constexpr const char* out_of_sync = " WARNING: File is corrupt. [Out of sync]";

bool is_digit(char c) { return c >= '0' && c <= '9'; }

int read_digits(const char*& at) {
  constexpr int more_than_any_version = 1000000;
  int value = 0;
  for (; is_digit(*at); ++at) value = std::min(value * 10 + (*at - '0'), more_than_any_version);
  return value;
}

const char* skip_to_digit(const char* at) {
  while (*at != '\0' && !is_digit(*at)) ++at;
  return at;
}

// Passes over bytes by reading them, so that it works on any stream; stops at the end of the file.
void skip_bytes(trBinRead& in, std::int64_t bytes) {
  char scratch[4096];
  while (bytes > 0 && !in.error) {
    const int chunk = static_cast<int>(std::min<std::int64_t>(bytes, sizeof scratch));
    in.b_read(scratch, chunk);
    bytes -= chunk;
  }
}

}  // namespace

NativeVersion native_version_of(const char* header) {
  NativeVersion version;
  const char* at = skip_to_digit(header);
  version.major = read_digits(at);
  at = skip_to_digit(at);
  version.minor = read_digits(at);
  return version;
}

bool NativeBlocks::read() {
  if (!version_.has_blocks()) return true;
  while (!tr_interrupt()) {
    if (read_block() == Next::end) return true;
  }
  return false;
}

NativeBlocks::Next NativeBlocks::corrupt(const char* warning) const {
  print_message(warning);
  return Next::end;
}

// What the file is too short for reads 0: a file that ends without a terminator has no marker there.
NativeBlocks::Next NativeBlocks::read_block() {
  char head[2 * native::tag_bytes + 1] = {};
  in_.b_read(head, 2 * native::tag_bytes);
  if (std::memcmp(head, native::sync_marker, native::tag_bytes) != 0) return corrupt(out_of_sync);
  const char* const tag = head + native::tag_bytes;
  const std::int64_t bytes = in_.read_int();
  const auto is = [tag](const char* name) { return std::memcmp(tag, name, native::tag_bytes) == 0; };
  if (is("TERM")) return bytes != 0 ? corrupt(" WARNING: File is corrupt. [Extra data on TERM code]") : Next::end;
  if (is("TEST")) return bytes < 0 ? corrupt(out_of_sync) : read_text(bytes);
  if (is("NDTI") || is("NDTR")) return read_node_data(tag[3] == 'I', bytes);
  if (is("ECLI")) return read_colours(bytes);
  return skip_unknown(tag, bytes);
}

// The text is shown as it is read, up to its first zero byte.
NativeBlocks::Next NativeBlocks::read_text(std::int64_t bytes) {
  print_message(" TEST data found in file:");
  bool is_shown = true;
  while (bytes > 0 && !in_.error) {
    char chunk[4097] = {};
    const int wanted = static_cast<int>(std::min<std::int64_t>(bytes, sizeof chunk - 1));
    in_.b_read(chunk, wanted);
    bytes -= wanted;
    if (is_shown) tr_out() << chunk;
    is_shown = is_shown && std::memchr(chunk, '\0', static_cast<std::size_t>(wanted)) == nullptr;
  }
  tr_out() << '\n';
  return Next::block;
}

NativeBlocks::Next NativeBlocks::skip_unknown(const char* tag, std::int64_t bytes) {
  if (!version_.allows_unknown_blocks()) return corrupt(" WARNING: File is corrupt. [unknown block]");
  if (bytes < 0) return corrupt(out_of_sync);
  MessageLine().text(" WARNING: Ignoring unknown block [").raw(tag).text("]");
  skip_bytes(in_, bytes);
  return Next::block;
}

NativeBlocks::Next NativeBlocks::read_node_data(bool has_numbers, std::int64_t bytes) {
  if (bytes < 2) return corrupt(" WARNING: File is corrupt. [insufficient data NDT block]");
  const int size = in_.read_ushort();
  const std::int64_t record_bytes = (has_numbers ? 4 : 0) + 8 * std::int64_t{size};
  const bool is_whole = record_bytes == 0 ? bytes == 2 : (bytes - 2) % record_bytes == 0;
  if (!is_whole) return corrupt(" WARNING: File is corrupt. [size mismatch NDT block]");
  return read_node_tuples(has_numbers, size, record_bytes == 0 ? 0 : (bytes - 2) / record_bytes);
}

// Attributes beyond the fifth have no place in a tuple, and numbers that the mesh does not have no node: both are read and dropped.
NativeBlocks::Next NativeBlocks::read_node_tuples(bool has_numbers, int size, std::int64_t records) {
  const int kept = std::min(size, trNodeDataTuple::max_values);
  const bool is_kept = set_node_data_size_(kept) != 0;
  has_node_data_ = has_node_data_ || is_kept;
  in_.expect(records * ((has_numbers ? 4 : 0) + 8 * std::int64_t{size}));
  for (std::int64_t k = 1; k <= records && !in_.error; ++k) {
    const std::int64_t number = has_numbers ? in_.read_int() : k;
    trNodeDataTuple tuple;
    for (int v = 0; v < kept; ++v) tuple.values[v] = in_.read_double();
    skip_bytes(in_, 8 * std::int64_t{size - kept});
    if (is_kept && !in_.error && number >= 1 && number < mesh_.node_count()) mesh_.node_data(static_cast<int>(number)) = tuple;
  }
  return Next::block;
}

// Whether the file still holds so many bytes, as far as its stream can tell.
bool NativeBlocks::has_left(std::int64_t bytes) const {
  const std::int64_t left = bytes_left(in_.file);
  return left < 0 || bytes <= left;
}

NativeBlocks::Next NativeBlocks::read_colours(std::int64_t bytes) {
  if (bytes < 4) return corrupt(" WARNING: File is corrupt. [insufficient data ECLI block]");
  const std::int64_t count = in_.read_int();
  if (bytes < 8 * count) return corrupt(" WARNING: File is corrupt. [insufficient data ECLI block]");
  NativeColours colours;
  const bool is_whole = count >= 1 && has_left(bytes - 4) && colours.read(in_, count);
  if (!is_whole || colours.has_negative() || bytes != 8 * count + 4 * colours.total()) {
    MessageLine().text(" WARNING: File is corrupt. ").text("[inconsistant byte count ECLI block]");
    return Next::end;
  }
  return read_coloured_elements(colours);
}

// Numbers above the mesh's are legal: a file that was numbered anew lists those of the mesh that it was written from.
NativeBlocks::Next NativeBlocks::read_coloured_elements(const NativeColours& colours) {
  const NumberLimit limit(in_.file, 4);
  in_.expect(4 * colours.total());
  mesh_.set_element_colour(0, colours.entries()[0].colour);
  for (const NativeColours::Entry& entry : colours.entries()) {
    for (int k = 0; k < entry.elements && !in_.error; ++k) {
      const int element = in_.read_int();
      const bool is_legal = element < mesh_.element_count() ? element >= 1 : limit.allows(element);
      if (is_legal && !in_.error) mesh_.set_element_colour(element, entry.colour);
    }
  }
  return Next::block;
}
