#pragma once

#include <atomic>
#include <string>

/// The user's wish to stop: Ctrl-C, a polite kill, a closed terminal, the end of a time that was set.
///
/// The first signal only sets a flag, which the library polls; system calls that wait are cut short. The second one
/// ends the program at once. Either way no half-written file is left behind.
class Interruption {
 public:
  /// Catches the signals, except those that the parent process asked to ignore. Writing to a closed pipe or beyond a
  /// file size limit becomes an ordinary error instead of a signal.
  static void install();

  /// Asks to stop after so long (above 0), and two seconds later ends the program at once. Processes started by it do not inherit this.
  static void set_timeout(double seconds);

  static bool requested() { return signals_.load(std::memory_order_relaxed) != 0; }

  /// For a program that goes on when a piece of its work was stopped: the wish was followed.
  static void forget() { signals_ = 0; }
  /// Whether a signal came that asks for the end of the program rather than of what it is doing: not Ctrl-C.
  static bool is_final() { return is_final_.load(std::memory_order_relaxed); }
  /// From now on any number of Ctrl-C counts as one.
  static void bear_repetition() { bears_repetition_ = true; }

  /// Throws when the user wants to stop, or the time is up.
  static void check();

  /// The file that the second signal removes; an empty path means none. Paths too long for the system are ignored.
  static void set_unfinished_file(const std::string& path);
  /// Removes it, as the second signal does. Takes no memory.
  static void remove_unfinished_file();

 private:
  static void on_signal(int number);
  static std::atomic<int> signals_;
  static std::atomic<bool> is_final_;
  static std::atomic<bool> bears_repetition_;
  static std::atomic<bool> is_out_of_time_;
};
