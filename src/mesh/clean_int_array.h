#pragma once

#include "platform/containers/number_arrays.h"
#include "platform/utilities/export.h"

/// Removes the entries that repeat an earlier one and returns how many were removed. The last entry moves into the place of a
/// removed one and is examined there next; so the order of the rest is not preserved. Pages are kept.
///
/// An interruption ends the walk: what lies behind stays as it is.
/// Cost: O(n) expected time; O(n) memory while it runs.
MENDEX_EXPORT int tr_clean_int_array(intcoPageArr& a);
