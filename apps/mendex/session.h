#pragma once

#include <mendexlib.h>

#include "host_control.h"
#include "messages.h"
#include "progress_bar.h"
#include "units.h"

/// What one run of the program works with. There is one, and it is never torn down: see `main`.
struct Session {
  ProgressBar progress;
  Messages messages{progress};
  HostControl control;
  trTriBlock& mesh = control.triblock();
  Units units;            // of the model, as the user names them
  bool is_quiet = false;  // no summary beside the result that was asked for
};
