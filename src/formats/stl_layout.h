#pragma once

// What reader and writer of binary STL files agree on.

namespace stl {

constexpr int header_bytes = 80;
constexpr int facet_bytes = 50;

}  // namespace stl
