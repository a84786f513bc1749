#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

/// How much memory the program may take, and its orderly end when it gets none.
///
/// Memory that is refused, because of the limit or because the system has no more, ends the program at once, wherever it is: with a
/// message, without a half-written file, with `ExitCode::out_of_memory`. Nothing that was computed with memory missing gets out.
class MemoryLimit {
 public:
  /// Sees to the end. `last_words` tells the user; the limit is lifted for it.
  static void install(std::function<void()> last_words);
  /// Adds to what is told, before all that was added earlier. For a report that is to be written in any case; it must not touch the mesh.
  static void add_last_words(std::function<void()> words);
  /// Takes back what was added last.
  static void remove_last_words();

  /// Limits the address space of this process and of those that it starts. No effect where memory is checked by a sanitizer, whose
  /// shadow alone is beyond any limit.
  static void set(std::uint64_t bytes);
  /// Takes the limit off this process, as far as it may.
  static void lift();
  /// The limit as it is now.
  static std::optional<std::uint64_t> current();

  /// The address space of this process in bytes; 0 where the system does not tell.
  static std::uint64_t in_use();

  /// What to tell the user.
  static std::string account();
  /// The end.
  [[noreturn]] static void end_program();

  /// The bytes that "4096", "500K", "1.5G" (of 1024 each) mean: from 1 up. Nothing where that is not what the text is.
  static std::optional<std::uint64_t> bytes_in(const std::string& text);
  /// What is wrong with such a text, or nothing.
  static std::string problem(const std::string& text);
};
