#include "messages.h"

#include <mendexlib.h>

#include <cstdio>
#include <iostream>

#include "interruption.h"
#include "progress_bar.h"

namespace {

constexpr std::size_t longest_line = 1000;

}  // namespace

std::string printable(const std::string& text) {
  std::string shown = text;
  for (char& c : shown) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7f) c = '?';
  }
  return shown;
}

Messages::Messages(ProgressBar& progress) : progress_(progress), stream_(this) { tr_set_output(&stream_); }

Messages::~Messages() {
  if (!line_.empty()) put_line();
  tr_set_output(&std::cout);
}

void Messages::error(const std::string& text) { print("", text); }

void Messages::warning(const std::string& text) {
  warnings_.push_back(text);
  print("warning: ", text);
}

int Messages::overflow(int c) {
  if (c == std::char_traits<char>::eof()) return 0;
  if (c != '\n') line_ += static_cast<char>(c);
  if (c == '\n' || line_.size() >= longest_line) put_line();
  return c;
}

void Messages::put_line() {
  const std::string line = std::move(line_);
  line_.clear();
  // What a stopped read has to complain about is the stop itself.
  const bool tells_damage = line.compare(0, 1, "*") == 0 || line.compare(0, 9, " WARNING:") == 0;
  const bool is_warning = tells_damage && !Interruption::requested();
  if (is_warning) {
    warning(line);
  } else if (listener_ && listener_(line)) {
    return;
  } else if (is_verbose_ && !line.empty()) {
    print("", line);
  }
}

void Messages::print(const char* kind, const std::string& text) {
  progress_.erase();
  const std::string about = file_.empty() ? "" : file_ + ": ";
  std::fprintf(stderr, "mendex: %s%s\n", kind, printable(about + text).c_str());
}
