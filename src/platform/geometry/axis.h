#pragma once

enum gi_Axis { gi_x_axis = 0, gi_y_axis = 1, gi_z_axis = 2 };
