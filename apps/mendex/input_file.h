#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "solid_name_filter.h"

/// A file, pipe or device that is read once from its start to its end, after a look at its first bytes.
class InputFile {
 public:
  /// Throws when it cannot be opened, is a folder, or cannot be read.
  explicit InputFile(const std::string& path);
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;
  ~InputFile();

  /// The first bytes: `sniffed_bytes` of them where there are so many.
  std::string_view head() const { return head_; }

  /// Size in bytes; only regular files have one.
  std::optional<std::uint64_t> size() const { return size_; }

  /// A stream over the whole contents, to be called once. Whoever takes it closes it, before this object ends.
  FILE* stream();

  /// The same for a text, without byte order mark and names of solids.
  FILE* stream_without_names();

  /// How much of the file was read, from 0 to 1; 0 when its size is not known.
  double fraction_read() const;

  /// The system's error that ended the reading early; 0 for none. Read after the stream was closed.
  int error() const { return error_; }

 private:
  static ssize_t read_raw(void* self, char* to, std::size_t size);
  static ssize_t read_filtered(void* self, char* to, std::size_t size);
  FILE* make_stream(ssize_t (*read)(void*, char*, std::size_t));
  ssize_t read_more(char* to, std::size_t size);
  ssize_t read_from_file(char* to, std::size_t size);
  bool fill_text();

  int file_ = -1;
  std::string head_;
  std::size_t head_used_ = 0;
  std::optional<std::uint64_t> size_;
  std::uint64_t bytes_read_ = 0;
  int error_ = 0;

  SolidNameFilter names_;
  std::string piece_;          // raw bytes on their way to the filter
  std::string text_;           // what came out of the filter
  std::size_t text_used_ = 0;  // the part of it that was handed on
  bool is_at_end_ = false;
};
