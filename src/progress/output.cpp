#include "progress/output.h"

#include <iostream>

namespace {

std::ostream* output = nullptr;  // null: the standard output
const char* (*translation)(const char*) = nullptr;

}  // namespace

std::ostream& tr_out() {
  static const std::ios_base::Init ready;  // a host's global object may print before our own initialisers ran
  return output == nullptr ? std::cout : *output;
}

void tr_set_output(std::ostream* stream) { output = stream; }

const char* tr_brnknls(const char* text) {
  const char* translated = translation == nullptr ? text : translation(text);
  return translated == nullptr ? text : translated;
}

void tr_set_brnknls_function(const char* (*hook)(const char*)) { translation = hook; }

const char* tr_dummy_brnknls(const char* text) { return text; }
