#pragma once

#include <sys/types.h>

#include <cstdio>
#include <string>

/// A file that replaces its target only when it is complete.
///
/// The contents go to a temporary file in the target's folder, which takes the target's place when all is well and is
/// removed otherwise: whatever goes wrong, the target stays as it was. Permissions of an existing target are kept, and
/// owner and group as far as the system allows; a symbolic link stays one and its destination is replaced.
class SafeOutput {
 public:
  /// Throws when the target is something else than a regular file, is write-protected, or its folder takes no new file.
  explicit SafeOutput(const std::string& path);
  SafeOutput(const SafeOutput&) = delete;
  SafeOutput& operator=(const SafeOutput&) = delete;
  ~SafeOutput();

  /// How the names of temporary files of a process begin, so that those of a killed one can be told.
  static std::string temporary_name_of(pid_t process);

  /// A stream into the temporary file, to be called once. Whoever takes it closes it, before this object ends.
  FILE* stream();

  /// Throws when anything written to the stream, which is closed by now, did not reach the file.
  void check() const;

  /// The temporary file, open for reading and writing.
  int descriptor() const { return file_; }

  /// Waits until the contents are on the disk.
  void flush_to_disk() const;

  /// Puts the file in the target's place.
  void commit();

 private:
  static ssize_t write_piece(void* self, const char* from, std::size_t size);
  static int move(void* self, off64_t* place, int origin);
  void take_over_permissions() const;

  std::string target_;
  std::string folder_;
  std::string temporary_;  // empty once it is gone
  int file_ = -1;
  int error_ = 0;  // of the first piece that could not be written
  bool replaces_ = false;
};
