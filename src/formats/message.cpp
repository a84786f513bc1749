#include "formats/message.h"

#include <ostream>

void print_message(const char* text) { tr_out() << tr_brnknls(text) << '\n'; }

void print_message(const char* before, std::int64_t number, const char* after) {
  // Each text is shown before the next is translated: a hook may use one buffer for all its answers.
  std::ostream& out = tr_out();
  out << tr_brnknls(before);
  out << std::to_string(number);
  out << tr_brnknls(after) << '\n';
}
