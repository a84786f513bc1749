#pragma once

/// Two numbers that belong together.
struct trPair {
  int first = 0;
  int second = 0;
};
