#include "length_argument.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <vector>

#include "failure.h"

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

double median_edge_of(const trTriBlock& mesh) {
  std::vector<double> lengths;
  lengths.reserve(3 * static_cast<std::size_t>(mesh.valid_elements()));
  for (int e = 1; e < mesh.element_count(); ++e) {
    const trElement& element = mesh.element(e);
    if (!element.valid()) continue;
    for (int k = 0; k < 3; ++k) {
      const double length = (mesh.point(element[(k + 1) % 3]) - mesh.point(element[k])).length();
      if (std::isfinite(length)) lengths.push_back(length);
    }
  }
  if (lengths.empty()) return 0.0;
  const auto middle = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() / 2);
  std::nth_element(lengths.begin(), middle, lengths.end());
  return *middle;
}
