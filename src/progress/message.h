#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "progress/output.h"

// What prints the library's texts. Numbers come out as in the C locale, whatever the locale of the process or of the stream.

/// Prints a text in the host's language on a line of its own.
void print_message(const char* text);

/// Prints a line made of two such texts and a number between them.
void print_message(const char* before, std::int64_t number, const char* after);

/// A line made of texts and values. Each text is shown before the next is translated: a hook may use one buffer for all its answers.
class MessageLine {
 public:
  MessageLine() : out_(tr_out()) {}
  MessageLine(const MessageLine&) = delete;
  MessageLine& operator=(const MessageLine&) = delete;
  /// Ends the line.
  ~MessageLine();

  /// A text for people, translated.
  MessageLine& text(const char* text);
  /// Characters as they are: names of files, of operations.
  MessageLine& raw(const char* characters);
  MessageLine& number(std::int64_t number);
  MessageLine& number(int number) { return this->number(static_cast<std::int64_t>(number)); }
  /// At most six digits, as "%g" writes it.
  MessageLine& number(double number);

 private:
  std::ostream& out_;
};

/// Formats as printf does. The format is used as it stands: a translated one must take the same values.
__attribute__((format(printf, 1, 2))) std::string format_text(const char* format, ...);

/// Formats to the output stream. Hand in the translated format where it is for people.
__attribute__((format(printf, 1, 2))) void print_text(const char* format, ...);

/// Formats to a file, as fprintf does.
__attribute__((format(printf, 2, 3))) void write_text(std::FILE* file, const char* format, ...);
