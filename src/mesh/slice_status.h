#pragma once

/// What slicing did to an element.
enum trSliceStatus { tr_slice_deleted = -1, tr_slice_split = 0, tr_slice_kept = 1 };
