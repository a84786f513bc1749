#include "section_lines.h"

#include <algorithm>
#include <numeric>

namespace {

SectionLine line_of(const trSection& section, int b) {
  SectionLine line;
  const intcoPageArr& indices = *section.boundaries[b];
  const int count = indices.count();
  line.is_closed = indices[0] == indices[count - 1];
  for (int i = 0; i < count; ++i) {
    line.points.push_back(section.boundary_point(b, i));
    if (i > 0) line.length += (section.boundary_point(b, i) - section.boundary_point(b, i - 1)).length();
  }
  if (line.is_closed) line.points.pop_back();
  return line;
}

}  // namespace

int SectionAt::closed() const {
  return static_cast<int>(std::count_if(lines.begin(), lines.end(), [](const SectionLine& line) { return line.is_closed; }));
}

double SectionAt::length() const {
  return std::accumulate(lines.begin(), lines.end(), 0.0, [](double sum, const SectionLine& line) { return sum + line.length; });
}

SectionAt section_at(const trTriBlock& mesh, gi_Axis axis, double at) {
  trSection section(&mesh);
  section.section(axis, at);
  SectionAt cut{at, {}};
  for (int b = 0; b < section.n_boundaries(); ++b) cut.lines.push_back(line_of(section, b));
  return cut;
}
