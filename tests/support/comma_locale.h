#pragma once

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <string>

/// Sets a locale whose decimal point is a comma, for as long as it lives; none may be installed.
class CommaLocale {
 public:
  CommaLocale() : former_(std::setlocale(LC_ALL, nullptr)) {
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "it_IT.UTF-8"})
      is_set_ = is_set_ || std::setlocale(LC_ALL, name);
    if (!is_set_) is_set_ = set_compiled_locale();
    is_set_ = is_set_ && *std::localeconv()->decimal_point == ',';
  }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;
  ~CommaLocale() { std::setlocale(LC_ALL, former_.c_str()); }

  bool is_set() const { return is_set_; }

 private:
  // Where the definitions are installed, the locale itself can be made.
  static bool set_compiled_locale() {
    const std::string folder = testing::TempDir() + "mendex_locales";
    const std::string command =
        "mkdir -p " + folder + " && localedef -i de_DE -f UTF-8 " + folder + "/de_DE.UTF-8 >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0) return false;
    setenv("LOCPATH", folder.c_str(), 1);
    const bool is_set = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    unsetenv("LOCPATH");
    return is_set;
  }

  std::string former_;
  bool is_set_ = false;
};
