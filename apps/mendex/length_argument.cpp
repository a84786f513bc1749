#include "length_argument.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "failure.h"

namespace {

constexpr int class_bits = 18;

// Of a number from 0 up; greater numbers have no lower class.
std::size_t class_of(double x) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &x, sizeof bits);
  return static_cast<std::size_t>(bits >> (63 - class_bits));
}

template <class See>
void for_each_length(const trTriBlock& mesh, See see) {
  for (int e = 1; e < mesh.element_count(); ++e) {
    const trElement& element = mesh.element(e);
    if (!element.valid()) continue;
    for (int k = 0; k < 3; ++k) {
      const double length = (mesh.point(element[(k + 1) % 3]) - mesh.point(element[k])).length();
      if (std::isfinite(length)) see(length);
    }
  }
}

}  // namespace

std::optional<LengthArgument> LengthArgument::parse(const std::string& text) {
  LengthArgument length;
  const char* const end = text.data() + text.size();
  const std::from_chars_result result = std::from_chars(text.data(), end, length.factor_);
  if (result.ec != std::errc() || !std::isfinite(length.factor_) || length.factor_ < 0.0) return std::nullopt;
  const std::string unit(result.ptr, end);
  if (unit == "d") {
    length.unit_ = Unit::diagonal;
  } else if (unit == "e") {
    length.unit_ = Unit::edge;
  } else if (!unit.empty()) {
    return std::nullopt;
  }
  length.text_ = text;
  return length;
}

std::string LengthArgument::problem(const std::string& text) {
  return parse(text) ? "" : "'" + text + "' is not a length from 0 up such as 0.01, 1e-5d (of the diagonal) or 0.2e (of the median edge)";
}

double LengthArgument::measure_of(const trTriBlock& mesh) const {
  if (unit_ == Unit::model) return 1.0;
  return unit_ == Unit::diagonal ? diagonal_of(mesh) : median_edge_of(mesh);
}

double LengthArgument::resolve(const trTriBlock& mesh) const {
  const double length = factor_ * measure_of(mesh);
  if (!std::isfinite(length)) throw Failure(ExitCode::wrong_usage, "the length " + text_ + " has no finite value for this model");
  return length;
}

double diagonal_of(const trTriBlock& mesh) {
  const giBox3& box = mesh.box();
  return box.is_empty() ? 0.0 : (box.max() - box.min()).length();
}

// Lengths are told apart by their exponent and upper bits first, so that only those near the median are kept and ordered.
double median_edge_of(const trTriBlock& mesh) {
  std::vector<std::size_t> counts(std::size_t{1} << class_bits);
  std::size_t total = 0;
  for_each_length(mesh, [&](double length) {
    ++counts[class_of(length)];
    ++total;
  });
  if (total == 0) return 0.0;
  std::size_t rank = total / 2, middle_class = 0;
  while (rank >= counts[middle_class]) rank -= counts[middle_class++];
  std::vector<double> near;
  near.reserve(counts[middle_class]);
  for_each_length(mesh, [&](double length) {
    if (class_of(length) == middle_class) near.push_back(length);
  });
  const auto middle = near.begin() + static_cast<std::ptrdiff_t>(rank);
  std::nth_element(near.begin(), middle, near.end());
  return *middle;
}
