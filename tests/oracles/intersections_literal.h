#pragma once

#include <set>
#include <vector>

#include "mesh/tri_block.h"

/// Intersecting elements step by step as they are defined: every pair of elements, both tests, no search structure and
/// none of the library's tests.
std::set<int> literal_intersecting(const trTriBlock& block);

/// Whether elements a and b cut each other.
bool literal_cut(const trTriBlock& block, int a, int b);

/// The list as a search leaves it that visits one grid box after the other with trBoxChecker: every box gathered from
/// all elements.
std::vector<int> box_by_box(const trTriBlock& block, int limit);
