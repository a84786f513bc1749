#include "formats/entity_limit.h"

#include <sys/types.h>

std::int64_t bytes_left(std::FILE* file) {
  if (file == nullptr) return 0;
  const off_t here = ftello(file);
  if (here < 0 || fseeko(file, 0, SEEK_END) != 0) return -1;
  const off_t end = ftello(file);
  if (fseeko(file, here, SEEK_SET) != 0) return -1;
  return end < here ? 0 : end - here;
}
