#pragma once

#include <mendexlib.h>

#include <limits>
#include <string>

#include "mesh_reader.h"

/// How many nodes and elements are in use, and the highest numbers among them (0: none).
struct MeshCounts {
  int nodes = 0;
  int elements = 0;
  int max_node = 0;
  int max_element = 0;
};

/// What `info` tells about a mesh. Mass properties are those of `trTriBlock::properties`.
struct MeshStatistics : MeshCounts {
  double area = 0.0;
  double volume = 0.0;
  giPoint3 centre;
  double min_aspect = 0.0;
  double mean_aspect = 0.0;
  giBox3 box;
};

MeshCounts count_mesh(const trTriBlock& mesh);

/// The same for a mesh just read, in which every number is in use; takes no time.
MeshCounts count_fresh_mesh(const trTriBlock& mesh);

MeshStatistics measure_mesh(const trTriBlock& mesh);

/// The tolerance that merges exact copies only: the smallest positive one, since 0 merges nothing.
constexpr double exact_copies = std::numeric_limits<double>::denorm_min();

/// What became of a file in a weld.
struct WeldAccount {
  std::string input;
  std::string output;
  ReadOutcome read;
  MeshFormat written;
  double tolerance;
  MeshStatistics before;  // measures only where the report is to have them
  MeshStatistics after;

  int merged_nodes() const { return before.nodes - after.nodes; }
  int deleted_elements() const { return before.elements - after.elements; }
};

/// One JSON object on one line, without line end. Numbers that are not finite, and an empty box, become null; text that
/// is not valid UTF-8 has its bad bytes replaced.
std::string json_of_info(const Session& session, const std::string& file, const ReadOutcome& read,
                         const MeshStatistics& mesh);
std::string json_of_weld(const Session& session, const WeldAccount& account);

/// The same for people: several lines, each ended.
std::string text_of_info(const Session& session, const std::string& file, const ReadOutcome& read, const MeshStatistics& mesh);
std::string text_of_weld(const Session& session, const WeldAccount& account);
