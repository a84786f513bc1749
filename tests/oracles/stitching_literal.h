#pragma once

#include "boundaries/cycle_array.h"

// The stitching of boundaries as its rules are worded: loops within loops, one test after the other. They edit the
// block of the set through its primitives, and leave the cycles with the marks that their rules make.

int stitch_literal(trCycleArray& set, double tol);
int superstitch_literal(trCycleArray& set, double tol);
int unduplicate_literal(trCycleArray& set, double tol);
