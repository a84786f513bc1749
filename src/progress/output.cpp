#include "progress/output.h"

#include <iostream>

namespace {

// Both are initialised at compile time, so that a host's global objects may use them.
std::ostream* output = nullptr;  // null: the standard output
const char* (*translation)(const char*) = nullptr;

std::ostream& standard_output() {
  static const std::ios_base::Init ready;  // std::cout may be asked for before its own initialisation
  return std::cout;
}

}  // namespace

std::ostream& tr_out() { return output != nullptr ? *output : standard_output(); }

void tr_set_output(std::ostream* stream) { output = stream; }

const char* tr_brnknls(const char* text) {
  const char* translated = translation != nullptr ? translation(text) : text;
  return translated != nullptr ? translated : text;
}

void tr_set_brnknls_function(const char* (*hook)(const char*)) { translation = hook; }

const char* tr_dummy_brnknls(const char* text) { return text; }
