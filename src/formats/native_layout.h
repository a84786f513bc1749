#pragma once

#include <cstdint>

// What reader and writer of the native format agree on. All values are little-endian.

namespace native {

constexpr int header_bytes = 80;
constexpr int node_bytes = 28;     // number, x, y, z
constexpr int element_bytes = 16;  // number, three node numbers
constexpr int tag_bytes = 4;
constexpr char sync_marker[] = "\x5e\x55\xe5\xee";
constexpr int major_version = 1;
constexpr int minor_version = 2;

}  // namespace native
