#include "analysis/elem_list_tol.h"

#include "progress/message.h"

trElemListTol::~trElemListTol() = default;

void trElemListTol::find_elements() { result_ = find_elements_tol(); }

void trElemListTol::set_tolerance(double tolerance) {
  if (tolerance == tolerance_) return;
  tolerance_ = tolerance;
  invalidate();
}

void trElemListTol::print_measure(const Labels& labels) const {
  if (stale()) {
    MessageLine().text(labels.measure).text("not computed");
    return;
  }
  const auto with_unit = [&labels](MessageLine& line, double value) -> MessageLine& {
    line.number(value);
    return labels.unit == nullptr ? line : line.text(labels.unit);
  };
  with_unit(MessageLine().text(labels.measure), result_);
  with_unit(MessageLine().text(labels.tolerance), tolerance_)
      .text(" (")
      .number(elements().count())
      .text(" triangles")
      .text(")");
}
