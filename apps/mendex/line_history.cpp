#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "line_editor.h"

std::string line_history_path() {
  const char* const state = std::getenv("XDG_STATE_HOME");
  const char* const home = std::getenv("HOME");
  std::filesystem::path folder;
  if (state != nullptr && *state == '/') {
    folder = state;
  } else if (home != nullptr && *home == '/') {
    folder = std::filesystem::path(home) / ".local" / "state";
  } else {
    return "";
  }
  folder /= "mendex";
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  return error ? "" : (folder / "history").string();
}
