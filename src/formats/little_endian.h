#pragma once

#include <cstdint>
#include <cstring>

/// Values as files hold them: the least significant byte first, floating point as IEEE 754. The same on every machine.

inline std::uint16_t load_u16(const unsigned char* bytes) {
  return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
}

inline std::uint32_t load_u32(const unsigned char* bytes) {
  return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
         static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

inline std::uint64_t load_u64(const unsigned char* bytes) {
  return static_cast<std::uint64_t>(load_u32(bytes)) | static_cast<std::uint64_t>(load_u32(bytes + 4)) << 32;
}

inline float load_f32(const unsigned char* bytes) {
  const std::uint32_t bits = load_u32(bytes);
  float value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

inline double load_f64(const unsigned char* bytes) {
  const std::uint64_t bits = load_u64(bytes);
  double value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

inline void store_u16(unsigned char* bytes, std::uint16_t value) {
  bytes[0] = static_cast<unsigned char>(value);
  bytes[1] = static_cast<unsigned char>(value >> 8);
}

inline void store_u32(unsigned char* bytes, std::uint32_t value) {
  for (int k = 0; k < 4; ++k) bytes[k] = static_cast<unsigned char>(value >> 8 * k);
}

inline void store_u64(unsigned char* bytes, std::uint64_t value) {
  for (int k = 0; k < 8; ++k) bytes[k] = static_cast<unsigned char>(value >> 8 * k);
}

inline void store_f32(unsigned char* bytes, float value) {
  std::uint32_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  store_u32(bytes, bits);
}

inline void store_f64(unsigned char* bytes, double value) {
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  store_u64(bytes, bits);
}
