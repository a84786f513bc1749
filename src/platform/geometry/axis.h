#pragma once

/// With a type of its own, so that what a host passes by mistake is a value, too.
enum gi_Axis : int { gi_x_axis = 0, gi_y_axis = 1, gi_z_axis = 2 };
