#pragma once

/// -1, 0 or 1 as a is less than, equivalent to, or greater than b; 0 too where `<` holds neither way.
template <class T>
int utCompare(const T& a, const T& b) {
  return a < b ? -1 : (b < a ? 1 : 0);
}
