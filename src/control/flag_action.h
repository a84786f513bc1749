#pragma once

/// What to do with a setting that is on or off.
enum trFlagAction { tr_flag_off = -1, tr_flag_toggle = 0, tr_flag_on = 1 };
