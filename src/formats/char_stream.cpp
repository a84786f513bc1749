#include "formats/char_stream.h"

#include <cstring>

void CharStream::refill(std::size_t wanted) {
  std::size_t filled = in_view();
  std::memmove(buffer_, begin_, filled);
  while (filled < wanted && !has_ended_) {
    const std::size_t read = file_ == nullptr ? 0 : std::fread(buffer_ + filled, 1, capacity - filled, file_);
    has_ended_ = read < capacity - filled;
    filled += read;
    fetched_ += static_cast<std::int64_t>(read);
  }
  begin_ = buffer_;
  end_ = buffer_ + filled;
}
