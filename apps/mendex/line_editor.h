#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// Reads lines that people type: with editing, history and completion where the program was built with an editor, and plainly otherwise.
///
/// The history is kept in the user's folder for state, mendex/history, from one run to the next.
class LineEditor {
 public:
  /// Given what stands before the cursor, the words that may be meant by the last of it; nothing where files are.
  using Complete = std::function<std::vector<std::string>(const std::string& before)>;

  explicit LineEditor(Complete complete);
  LineEditor(const LineEditor&) = delete;
  LineEditor& operator=(const LineEditor&) = delete;
  /// Keeps the history.
  ~LineEditor();

  /// A line without its end; empty after an interruption; none at the end of the input.
  std::optional<std::string> read(const std::string& prompt);

 private:
  class Lines;
  std::unique_ptr<Lines> lines_;
};

/// Where the history is kept; empty where the user has no folder. Makes the folders.
std::string line_history_path();
