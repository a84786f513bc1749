// Reading and writing files: formats by extension, the search for the file that a name means, what is said of it.

#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

#include "control/control.h"
#include "formats/tri_read.h"
#include "formats/tri_write.h"
#include "mesh/memory_guard.h"
#include "progress/message.h"
#include "progress/progress.h"

struct trControl::FileFormat {
  const char* extension;
  int (trControl::*read)(std::FILE*, int append);
  int (trControl::*write)(std::FILE*);
  int (*accept)();  // may refuse the format when a file is opened; null: it is always taken
  int binary;

  const char* read_mode() const { return binary ? "rb" : "r"; }
  const char* write_mode() const { return binary ? "wb" : "w"; }
  bool is_refused() const { return accept != nullptr && !accept(); }
};

namespace {

int accept_stl() { return 1; }

// Closes the file unless it is handed on.
using OpenFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

OpenFile open_file(const utString& name, const char* mode) { return OpenFile(std::fopen(name.c_str(), mode), &std::fclose); }

// A folder opens like a file on some systems, but there is nothing to read: it would only empty the mesh.
OpenFile open_to_read(const utString& name, const char* mode) {
  std::error_code ignored;
  return std::filesystem::is_directory(name.c_str(), ignored) ? OpenFile(nullptr, &std::fclose) : open_file(name, mode);
}

}  // namespace

// By trFileType.
constexpr trControl::FileFormat trControl::format_table[tr_unknown_file] = {
    {"mnx", &trControl::read_mnx, &trControl::write_mnx, nullptr, 1},
    {"mes", &trControl::read_mes, &trControl::write_mes, nullptr, 0},
    {"tri", &trControl::read_tri, &trControl::write_tri, nullptr, 0},
    {"stl", &trControl::read_stl, &trControl::write_stl, accept_stl, 1},
    {"ast", &trControl::read_ast, &trControl::write_ast, accept_stl, 0},
    {"kvx", &trControl::read_kvx, &trControl::write_kvx, nullptr, 1},
};

int trControl::read_mnx(std::FILE* file, int append) { return trTriRead(&triblock_, file, append, preserve_).read_native(); }
int trControl::read_mes(std::FILE* file, int append) { return trTriRead(&triblock_, file, append, preserve_).read_mes(); }
int trControl::read_tri(std::FILE* file, int append) { return trTriRead(&triblock_, file, append, preserve_).read_tri(); }
int trControl::read_kvx(std::FILE* file, int append) { return trTriRead(&triblock_, file, append, preserve_).read_kvx(); }

// A file that is appended is appended as a whole.
int trControl::read_stl(std::FILE* file, int append) {
  return trTriRead(&triblock_, file, append, preserve_).read_stl(append ? 1 : stl_start_, append ? 0 : stl_stop_);
}
int trControl::read_ast(std::FILE* file, int append) {
  return trTriRead(&triblock_, file, append, preserve_).read_ast(append ? 1 : stl_start_, append ? 0 : stl_stop_);
}

int trControl::write_mnx(std::FILE* file) { return trTriWrite(&triblock_, file, 1.0).write_native(rwrite_flag_); }
int trControl::write_mes(std::FILE* file) { return trTriWrite(&triblock_, file, 1.0).write_mes(rwrite_flag_); }
int trControl::write_stl(std::FILE* file) { return trTriWrite(&triblock_, file, 1.0).write_stl(1); }
int trControl::write_ast(std::FILE* file) { return trTriWrite(&triblock_, file, 1.0).write_ast(1); }
int trControl::write_kvx(std::FILE* file) { return trTriWrite(&triblock_, file, 1.0).write_kvx(); }
int trControl::write_tri(std::FILE* file) {
  trTriWrite writer(&triblock_, file, 1.0);
  return trismooth_ ? writer.write_smooth_tri() : writer.write_tri();
}

const char* trControl::extension_of(trFileType type) {
  return type >= 0 && type < tr_unknown_file ? format_table[type].extension : "";
}

trFileType trControl::recognize_extension(const char* name) {
  const std::size_t length = std::strlen(name);
  for (int type = 0; type < tr_unknown_file; ++type) {
    const std::size_t size = std::strlen(format_table[type].extension);
    if (length <= size || name[length - size - 1] != '.') continue;
    if (std::strcmp(name + length - size, format_table[type].extension) == 0) return static_cast<trFileType>(type);
  }
  return tr_unknown_file;
}

// Opens the file that a name means; `found` receives its name. `type` keeps the format of the name's extension where nothing opens.
std::FILE* trControl::search_reader_file(const utString& name, utString& found, trFileType& type) {
  found = name;
  type = recognize_extension(name.c_str());
  OpenFile file(nullptr, &std::fclose);
  if (type != tr_unknown_file) file = open_to_read(name, format_table[type].read_mode());
  for (int k = 0; file == nullptr && k < tr_unknown_file; ++k) {
    const utString candidate = name + "." + format_table[k].extension;
    file = open_to_read(candidate, format_table[k].read_mode());
    if (file == nullptr) continue;
    type = static_cast<trFileType>(k);
    found = candidate;
  }
  if (file != nullptr) return file.release();
  file = open_to_read(name, format_table[tr_native_file].read_mode());
  if (file != nullptr) {
    print_message("File assumed to be in native format.");
    type = tr_native_file;
  }
  return file.release();
}

std::FILE* trControl::open_reader_file(const utString& name, trFileType& type) {
  utString found;
  OpenFile file(search_reader_file(name, found, type), &std::fclose);
  if (file == nullptr) {
    if (type == tr_unknown_file) {
      MessageLine().text("No file '").raw(found.c_str()).text("' with recognized extension.");
    } else {
      MessageLine().text("File '").raw(found.c_str()).text("' not found.");
    }
    type = tr_unknown_file;
    return nullptr;
  }
  const FileFormat& format = format_table[type];
  if (format.read == nullptr || format.is_refused()) {
    if (format.read == nullptr) MessageLine().text("Sorry, cannot read .'").raw(format.extension).text("' files.");
    type = tr_unknown_file;
    return nullptr;
  }
  MessageLine().text("File '").raw(found.c_str()).text("' found.");
  file_name_ = found;
  return file.release();
}

std::FILE* trControl::open_writer_file(const utString& name, trFileType& type) {
  utString found = name;
  type = recognize_extension(name.c_str());
  if (type == tr_unknown_file) {
    found = name + "." + format_table[tr_native_file].extension;
    MessageLine().text("Opening file '").raw(found.c_str()).text("' (native format).");
    type = tr_native_file;
  } else if (format_table[type].is_refused()) {
    type = tr_unknown_file;
    return nullptr;
  }
  OpenFile file = open_file(found, format_table[type].write_mode());
  if (file != nullptr) {
    file_name_ = found;
  } else {
    MessageLine().text("Failed to open").raw("'").raw(found.c_str()).raw("'");
    type = tr_unknown_file;
  }
  return file.release();
}

trFileType trControl::read_or_append(const utString& name, int append) {
  trFileType type = tr_unknown_file;
  std::FILE* file = nullptr;
  tr_guarded(nullptr, [&] { file = open_reader_file(name, type); });
  if (file == nullptr) return tr_unknown_file;
  bool is_read = false;
  tr_guarded(&triblock_, [&] {
    (this->*format_table[type].read)(file, append);
    is_read = true;
  });
  if (append) return type;
  undo_hist_.reset(file_name_);
  if (tr_interrupt() || !is_read) {
    print_message("*** WARNING! ALL TRIANGLES DELETED ***");
    triblock_.clear();
  }
  return type;
}

trFileType trControl::action_read(const utString& name) {
  const trFileType type = read_or_append(name, 0);
  if (type != tr_unknown_file) triangle_update(1);
  return type;
}

trFileType trControl::action_append(const utString& name) {
  const trFileType type = read_or_append(name, 1);
  if (type != tr_unknown_file) triangle_update(1);
  return type;
}

void trControl::write_or_rwrite(const utString& name, int rwrite) {
  trFileType type = tr_unknown_file;
  std::FILE* file = nullptr;
  tr_guarded(nullptr, [&] { file = open_writer_file(name, type); });
  if (file == nullptr) return;
  rwrite_flag_ = rwrite;
  bool is_written = false;
  tr_guarded(&triblock_, [&] {
    (this->*format_table[type].write)(file);
    is_written = true;
  });
  if (is_written && !tr_interrupt()) return;
  MessageLine().text("*** WARNING! OUTPUT FILE '").raw(file_name_.c_str()).text("' HAS BEEN CORRUPTED! ***");
}

void trControl::action_write(const utString& name) { write_or_rwrite(name, 0); }

void trControl::action_rwrite(const utString& name) { write_or_rwrite(name, 1); }
