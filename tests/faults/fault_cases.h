#pragma once

#include <ostream>
#include <vector>

#include "control/control.h"
#include "support/shapes.h"

/// A model of about n triangles in which every action of the controller finds something to do: holes, gaps, a border of T-junctions,
/// repeated, reversed, thin and crossing triangles, flaps.
Shape messy_model(int n);

/// An action of the controller, as it is disturbed on a messy model.
struct FaultCase {
  const char* name;
  void (*prepare)(trControl&);  ///< before the undo bracket is opened
  void (*act)(trControl&);
  bool brackets_itself = false;

  friend std::ostream& operator<<(std::ostream& out, const FaultCase& edit) { return out << edit.name; }
};

const std::vector<FaultCase>& fault_cases();
