#pragma once

#include <set>
#include <string>

#include "progress/output.h"

/// While it lives, every text that passes the translation hook comes out with "<" in front: a message without the mark
/// was not handed to the hook.
class MarkingHook {
 public:
  MarkingHook() { tr_set_brnknls_function(mark); }
  MarkingHook(const MarkingHook&) = delete;
  MarkingHook& operator=(const MarkingHook&) = delete;
  ~MarkingHook() { tr_set_brnknls_function(nullptr); }

 private:
  static const char* mark(const char* text) {
    static std::set<std::string> marked;  // keeps what it hands out
    return marked.insert(std::string("<") + text).first->c_str();
  }
};
