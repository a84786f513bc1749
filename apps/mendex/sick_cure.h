#pragma once

#include <string>
#include <vector>

#include "repair_account.h"
#include "session.h"

/// What curing edges of more than two triangles did.
struct CureResult {
  int triangles_deleted = 0;
  int holes_closed = 0;
  double removed_area = 0.0;
  double new_area = 0.0;
  int refused = 0;  // clusters for which nothing helped
};

/// Cures edges that more than two triangles share, cluster by cluster: sets of such edges that hang together by their nodes.
///
/// Of a cluster first single triangles are deleted whose loss opens nothing, the smallest first, together with what few
/// triangles hung on it alone; then all but the two largest of each
/// edge, then all, with the holes that this makes closed again. What does not leave fewer such edges and no more open ones is taken
/// back. Each attempt has undo records of its own.
class SickCure {
 public:
  SickCure(Session& session, const RepairSettings& settings);

  /// Throws on interruption.
  CureResult run();

 private:
  struct Cluster {
    std::vector<int> elements;  // ascending
  };

  std::vector<Cluster> find_clusters();
  bool delete_one(Cluster& cluster);
  bool delete_and_close(const std::vector<int>& elements);
  bool is_cured(const Cluster& cluster);
  std::vector<int> rest_of_flap(const std::vector<int>& corners);
  std::vector<int> piece_of(int element);
  EdgeCensus census_of(const std::vector<int>& elements);
  EdgeCensus census_round(const std::vector<int>& nodes);

  Session& session_;
  trControl& control_;
  trTriBlock& mesh_;
  const RepairSettings& settings_;
  CureResult result_;
};
