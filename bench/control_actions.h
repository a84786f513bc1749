#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "control/control.h"
#include "growth_inputs.h"

/// A controller that has read one mesh, and what an action needs beside it.
struct Subject {
  struct Control : trControl {
    using trControl::save_selection_data;
  };

  Control control;
  std::filesystem::path file;    ///< native; the mesh was read from it
  std::filesystem::path output;  ///< where an action may write, without the extension
  GrowthScale scale;
  giTriBlock pool;               ///< the mesh as a host has it, when an action asked for it
  intintcoTable start_nodes;
  std::unique_ptr<trCycleArray> saved;
};

/// One thing that a host asks of a controller.
struct ControlAction {
  /// Edits run in an undo record and are taken back and done again; some open records of their own; the rest leave no records.
  enum class Records { one, own, none };

  const char* name;
  Records records;
  void (*run)(Subject&);
  void (*prepare)(Subject&) = nullptr;  ///< what is not to be counted
  const char* inputs = "";              ///< names of growth inputs, commas between; empty: all
};

/// All of them.
const std::vector<ControlAction>& control_actions();
