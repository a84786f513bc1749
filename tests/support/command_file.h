#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

/// A file in memory for commands, which may be closed by whom it is handed to.
class CommandFile {
 public:
  CommandFile() : file_(open_memstream(&text_, &size_)) {}
  CommandFile(const CommandFile&) = delete;
  CommandFile& operator=(const CommandFile&) = delete;
  ~CommandFile() { std::free(text_); }

  std::FILE* file() { return file_; }
  /// What was written by the time the file was closed.
  std::string text() const { return std::string(text_, size_); }

 private:
  char* text_ = nullptr;
  std::size_t size_ = 0;
  std::FILE* file_;
};
