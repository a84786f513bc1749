#pragma once

#include <string>

#include "holes.h"
#include "mesh_reader.h"

/// What became of a file whose holes were to be closed.
struct HoleAccount {
  std::string input;
  std::string output;
  ReadOutcome read;
  MeshFormat written;
  HoleMethod method;
  double tolerance;  // with which nodes were merged first
  ClosedHoles holes;
};

/// For people: several lines, each ended. Of many holes that were closed only the first are listed; those that were not, all.
std::string text_of_closing(const Session& session, const HoleAccount& account);
/// One JSON object on one line, without line end.
std::string json_of_closing(const Session& session, const HoleAccount& account);
