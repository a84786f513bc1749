#pragma once

#include "analysis/element_list.h"

/// A list of triangles whose measure lies below a tolerance; it also keeps the extreme measure.
class MENDEX_EXPORT trElemListTol : public trElementList {
 public:
  trElemListTol(trTriBlock* block, double tolerance) : trElementList(block), tolerance_(tolerance) {}
  ~trElemListTol() override;

  double tolerance() const { return tolerance_; }
  /// The extreme measure that the last search met; 0 before the first.
  double result() const { return result_; }

 protected:
  void find_elements() override;
  /// Fills `elements_` from the mesh and returns the extreme measure.
  virtual double find_elements_tol() = 0;

  /// Takes over another tolerance and invalidates the list; the same one changes nothing.
  void set_tolerance(double tolerance);

  /// What a summary says: the measure's name, the tolerance's name, and the unit of both (null: none).
  struct Labels {
    const char* measure;
    const char* tolerance;
    const char* unit;
  };
  void print_measure(const Labels& labels) const;

 private:
  friend class trControl;

  double tolerance_;
  double result_ = 0.0;
};
