#include "undo/undo_element.h"

#include "mesh/tri_block.h"
#include "undo/undo_hist.h"

void trUndoElement::set(trUndoHist* hist, int e) { copy(*hist->triblock, e); }

void trUndoElement::swap(trUndoHist* hist) {
  trTriBlock& block = *hist->triblock;
  if (index < 0 || index >= block.element_count()) return;
  trElement& t = block.element(index);
  const int former_colour = t.valid() ? block.get_element_colour(index) : NO_COLOUR;
  element.swap(t);
  if (t.valid()) give_colour(block, index, colour);
  colour = former_colour;
}

// Elements beyond the stored colours read the default, and go on reading it when the colours grow past them.
void trUndoElement::give_colour(trTriBlock& block, int e, int colour) {
  if (block.colours_ == nullptr || block.get_element_colour(e) == colour) return;
  coPageArr<int>& colours = block.colours_->colours;
  if (!colours.get_block(e >> colours.page_shift())) return;
  while (colours.count() < e) colours[colours.count()] = block.default_colour();
  colours[e] = colour;
}
