#include "boundaries/auto_mode.h"

const char* tr_automode_string(trAutoMode mode) {
  switch (mode) {
    case Single: return "Single";
    case Repeat: return "Repeat";
    case Multi: return "Multi";
  }
  return nullptr;
}
