#pragma once

/// Binary STL, least significant byte first: a text of 80 bytes, the number of facets (4), then for each facet its normal and three
/// corners, three single-precision numbers each, and a 16-bit attribute word.
namespace stl_binary {

constexpr int header_size = 80;
constexpr int point_size = 12;
constexpr int attribute_offset = 4 * point_size;
constexpr int facet_size = attribute_offset + 2;

constexpr int corner_offset(int k) { return (k + 1) * point_size; }

}  // namespace stl_binary
