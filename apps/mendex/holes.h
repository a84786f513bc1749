#pragma once

#include <mendexlib.h>

#include <string>
#include <utility>
#include <vector>

/// A loop of free edges. Its number is its place among those that the library detects, from 0: the order of their lowest nodes.
struct FoundBoundary {
  int number = 0;
  std::vector<int> nodes;  // in the direction of the triangles along it
  double length = 0.0;     // of its edges together
  giPoint3 at;             // middle of its box

  int edges() const { return static_cast<int>(nodes.size()); }
};

/// The lowest of a rim's edges, by its nodes: tells rims apart, since no edge belongs to two.
using RimKey = std::pair<int, int>;

RimKey key_of_rim(const FoundBoundary& rim);

/// The boundaries of the controller's mesh.
std::vector<FoundBoundary> find_boundaries(trCycleArray& cycles);

/// Which boundaries are to be closed, and how much of one.
struct HoleChoice {
  std::vector<int> numbers;  // none: all
  int most_edges = 0;        // only those of at most so many edges; 0: of any
  std::vector<int> between;  // nodes of the one boundary: two ends of what is to be closed, and perhaps one on the side that is
};

/// How boundaries are closed.
enum class HoleMethod {
  fan,    // one triangle, two, or a fan round a centre
  flat,   // triangles in a plane, with nodes inside
  curved  // the same on a surface fitted to the mesh round the hole
};

/// In a word: "fan", "flat", "curved".
const char* name_of(HoleMethod method);

/// What became of one boundary.
struct HoleOutcome {
  FoundBoundary hole;
  double spacing = 0.0;  // of new nodes, where there were to be any
  std::string refused;   // why it stays open; nothing where it was closed
  int triangles = 0;     // added
  int nodes = 0;
};

struct ClosedHoles {
  std::vector<HoleOutcome> outcomes;
  int passed_over = 0;         // boundaries that were not chosen
  int boundaries_left = 0;
  int free_edges_left = 0;

  int closed() const;
  int refused() const { return static_cast<int>(outcomes.size()) - closed(); }
};

/// Why an area could not be triangulated, in words that go on after "it stays open: ".
const char* reason_of(at2PlaneError error);

/// Closes boundaries of the controller's mesh, in an undo bracket. A boundary that fails stays as it was.
/// Throws when a number or node is not to be found, or on interruption, and then has taken everything back.
/// @param spacing  of new nodes, model units; 0: the mean length of each boundary's edges
ClosedHoles close_holes(trControl& control, const HoleChoice& choice, HoleMethod method, double spacing);
