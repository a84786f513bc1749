#pragma once

#include "platform/containers/number_arrays.h"

/// Sorts the entries of an array ascending, in place. Cost: O(n log n) time, no memory.
MENDEX_EXPORT void co_sort(intcoPageArr& array);
