#pragma once

#include "platform/containers/page_arr.h"
#include "platform/geometry/colour.h"
#include "platform/utilities/export.h"

constexpr int NO_COLOUR = -1;

/// Packs a colour into one number: red in bits 31 to 24, green 23 to 16, blue 15 to 8, alpha 7 to 0. -1 stands for no colour.
MENDEX_EXPORT int tr_encode_colour(const giColour& colour);
MENDEX_EXPORT giColour tr_decode_colour(int encoded);

/// Encoded colours of a block, by element number; slot 0 is the default colour.
class MENDEX_EXPORT trTriDataBlock {
 public:
  /// Sets the colour of element i. The first colour ever set also becomes the default; slots skipped on the way read -1.
  void set_colour(int i, int c);

  /// The colour of element i, or the default beyond the count.
  int get_colour(int i) const { return i >= 0 && i < colours.count() ? colours.at(i) : default_colour(); }

  /// Slot 0, or -1 when no colour was ever set.
  int default_colour() const { return colours.count() == 0 ? NO_COLOUR : colours.at(0); }

  coPageArr<int> colours;
};
