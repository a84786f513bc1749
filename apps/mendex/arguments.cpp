#include "arguments.h"

#include <mendexlib.h>

#include <charconv>
#include <cmath>

std::string tolerance_problem(const std::string& text) {
  const std::optional<std::vector<double>> numbers = numbers_in(text);
  return numbers && numbers->size() == 1 && numbers->front() >= 0.0 ? "" : "'" + text + "' is not a number from 0 up";
}

std::optional<std::vector<double>> numbers_in(const std::string& text) {
  std::vector<double> numbers;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (true) {
    double value = 0.0;
    const std::from_chars_result result = std::from_chars(at, end, value);
    if (result.ec != std::errc() || !std::isfinite(value)) return std::nullopt;
    numbers.push_back(value);
    if (result.ptr == end) return numbers;
    if (*result.ptr != ',') return std::nullopt;
    at = result.ptr + 1;
  }
}

std::string direction_problem(const std::string& text) {
  const std::optional<std::vector<double>> numbers = numbers_in(text);
  const bool is_direction = numbers && numbers->size() == 3 &&
                            giVector3((*numbers)[0], (*numbers)[1], (*numbers)[2]).length() > 0.0;
  return is_direction ? "" : "'" + text + "' is not a direction such as 0,0,1";
}

void add_limit(VerbOptions verb, const char* name, double& limit, const char* unit, const char* text) {
  verb.add_option(name, limit, text).check(tolerance_problem).type_name(unit).show_default();
}

VerbOption add_length(VerbOptions verb, const char* name, LengthArgument& length, const char* text) {
  return verb.add_option(name, [&length](const std::string& given) { length = *LengthArgument::parse(given); }, text)
      .check(LengthArgument::problem)
      .type_name("LENGTH");
}

VerbOption add_count(VerbOptions verb, const char* name, int& count, int least, const char* text) {
  const auto problem = [least](const std::string& given) {
    const auto numbers = numbers_in(given);
    const bool is_good = numbers && numbers->size() == 1 && numbers->front() >= least && numbers->front() <= 2147483647.0 &&
                         numbers->front() == std::floor(numbers->front());
    return is_good ? "" : "'" + given + "' is not a whole number from " + std::to_string(least) + " up";
  };
  return verb.add_option(name, count, text).check(problem).type_name("N");
}

void add_input(VerbOptions verb, std::string& path) {
  verb.add_option("IN", path, "File to read").required().type_name("PATH");
}

void add_output(VerbOptions verb, std::string& path) {
  verb.add_option("-o,--output", path, "File to write, in the format of its name; it may be IN itself").required().type_name("PATH");
}

void add_axis(VerbOptions verb, char& axis) {
  verb.add_option("--axis", axis, "Axis across which the plane lies")
      .one_of({"x", "y", "z"})
      .type_name("x|y|z")
      .show_default();
}

gi_Axis axis_of(char name) { return name == 'x' ? gi_x_axis : (name == 'y' ? gi_y_axis : gi_z_axis); }
