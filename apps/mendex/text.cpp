#include "text.h"

#include <cstdarg>
#include <cstdio>

std::string formatted(const char* format, ...) {
  char text[400];
  va_list values;
  va_start(values, format);
  std::vsnprintf(text, sizeof text, format, values);
  va_end(values);
  return text;
}

std::string place(const giPoint3& p) { return formatted("(%.5g %.5g %.5g)", p.x, p.y, p.z); }

std::string counted(long long count, const char* one, const char* many) { return formatted("%lld %s", count, count == 1 ? one : many); }
