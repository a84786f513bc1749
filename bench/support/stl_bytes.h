#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

/// Where things stand in a binary STL file.
constexpr std::size_t stl_header_bytes = 80;
constexpr std::size_t stl_preamble_bytes = 84;  // header and facet count
constexpr std::size_t stl_record_bytes = 50;
constexpr std::size_t stl_normal_bytes = 12;
constexpr std::size_t stl_corner_bytes = 36;

constexpr std::size_t stl_file_bytes(std::size_t facets) { return stl_preamble_bytes + facets * stl_record_bytes; }

inline std::uint32_t stl_facet_count(const char* preamble) {
  std::uint32_t count = 0;
  std::memcpy(&count, preamble + stl_header_bytes, sizeof count);
  return count;
}
