// Without an editor the terminal gives whole lines.

#include <cstdio>

#include "failure.h"
#include "interruption.h"
#include "line_editor.h"
#include "script_lines.h"

class LineEditor::Lines {
 public:
  ScriptLines lines{"-"};
};

LineEditor::LineEditor(Complete) : lines_(std::make_unique<Lines>()) {}

LineEditor::~LineEditor() = default;

std::optional<std::string> LineEditor::read(const std::string& prompt) {
  std::fflush(stdout);
  std::fputs(prompt.c_str(), stderr);
  try {
    return lines_->lines.next();
  } catch (const Failure& failure) {
    if (failure.code() == ExitCode::interrupted && !Interruption::is_final()) {
      std::fputs("\n", stderr);
      Interruption::forget();
      lines_ = std::make_unique<Lines>();
      return std::string();
    }
    throw;
  }
}
