#include "oracles/literal_scanf.h"

#include <cctype>
#include <cstdlib>
#include <map>
#include <regex>

bool is_number(const std::string& text) {
  static const std::regex number(
      R"([+-]?(inf(inity)?|nan(\([0-9a-z_]*\))?|0x([0-9a-f]+\.?[0-9a-f]*|\.[0-9a-f]+)(p[+-]?[0-9]+)?|([0-9]+\.?[0-9]*|\.[0-9]+)(e[+-]?[0-9]+)?))",
      std::regex::icase | std::regex::optimize);
  return std::regex_match(text, number);
}

bool is_beginning_of_number(const std::string& text) {
  static std::map<std::string, bool> known;
  const auto at = known.find(text);
  if (at != known.end()) return at->second;
  // Whatever begins a number becomes one by the end of its word, by a digit or by a parenthesis.
  bool result = false;
  for (const char* rest : {"", "0", ")", "inf", "nf", "f", "inity", "nity", "ity", "ty", "y", "nan", "an", "n"}) {
    result = result || is_number(text + rest);
  }
  return known[text] = result;
}

bool literal_scan_number(std::FILE* file, double& value) {
  int c = std::fgetc(file);
  while (c != EOF && std::isspace(c)) c = std::fgetc(file);
  std::string item;
  while (c != EOF && is_beginning_of_number(item + static_cast<char>(c))) {
    item += static_cast<char>(c);
    c = std::fgetc(file);
  }
  if (c != EOF) std::ungetc(c, file);
  if (!is_number(item)) return false;
  value = std::strtod(item.c_str(), nullptr);
  return true;
}
