#include "units.h"

#include <algorithm>

#include "text.h"

std::string Units::problem(const std::string& name) {
  constexpr std::size_t longest = 12;
  const auto is_letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  const bool is_name = !name.empty() && name.size() <= longest && std::all_of(name.begin(), name.end(), is_letter);
  return is_name ? "" : "'" + name + "' is not the name of a unit such as mm or inch";
}

std::string Units::measure(double value, int digits) { return formatted("%.*g", digits, value); }
