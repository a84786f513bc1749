#pragma once

/// State of an element while a mesh is oriented.
enum trOrientStatus : int {
  tr_orient_unset = 0,      ///< live, not reached yet
  tr_orient_same = 1,       ///< reached; oriented like its group's seed
  tr_orient_opposite = -1,  ///< reached; oriented against its group's seed
  tr_orient_done = 2,       ///< its group has been settled by reversing some of it
  tr_orient_ignore = 100    ///< deleted; never visited
};
