#include "platform/spatial/float_box.h"

FloatFrame FloatFrame::about_middle(const std::vector<giPoint3>& sample) {
  giPoint3 middle;
  for (int k = 0; k < 3; ++k) {
    std::vector<double> values;
    for (const giPoint3& p : sample) {
      if (std::isfinite(p[k])) values.push_back(p[k]);
    }
    const auto centre = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    if (values.empty()) continue;
    std::nth_element(values.begin(), centre, values.end());
    middle[k] = *centre;
  }
  return FloatFrame(middle);
}
