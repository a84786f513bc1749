#include "analysis/elem_list_tol.h"

#include "analysis/summary.h"

trElemListTol::~trElemListTol() = default;

void trElemListTol::find_elements() { result_ = find_elements_tol(); }

void trElemListTol::set_tolerance(double tolerance) {
  if (tolerance == tolerance_) return;
  tolerance_ = tolerance;
  invalidate();
}

void trElemListTol::print_measure(const Labels& labels) const {
  const auto print_with_unit = [&labels](double value) {
    print_number(value);
    if (labels.unit != nullptr) print_in_language(labels.unit);
  };
  print_in_language(labels.measure);
  if (stale()) {
    print_in_language("not computed");
    end_line();
    return;
  }
  print_with_unit(result_);
  end_line();
  print_in_language(labels.tolerance);
  print_with_unit(tolerance_);
  print_in_language(" (");
  print_number(elements().count());
  print_in_language(" triangles");
  print_in_language(")");
  end_line();
}
