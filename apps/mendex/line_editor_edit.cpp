// Line editing by libedit.

#include <histedit.h>
#include <signal.h>
#include <sys/select.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cwchar>

#include "interruption.h"
#include "line_editor.h"

class LineEditor::Lines {
 public:
  explicit Lines(Complete complete) : complete_(std::move(complete)), history_path_(line_history_path()), history_(history_init()) {
    std::setlocale(LC_CTYPE, "");  // names of files may hold more than ASCII; numbers stay as they are
    editor_ = el_init("mendex", stdin, isatty(STDOUT_FILENO) ? stdout : stderr, stderr);
    if (editor_ == nullptr || history_ == nullptr) return;
    HistEvent event;
    history(history_, &event, H_SETSIZE, most_lines);
    history(history_, &event, H_SETUNIQUE, 1);
    if (!history_path_.empty()) history(history_, &event, H_LOAD, history_path_.c_str());
    el_set(editor_, EL_CLIENTDATA, this);
    el_set(editor_, EL_PROMPT, prompt_of);
    el_set(editor_, EL_EDITOR, "emacs");
    el_set(editor_, EL_GETCFN, read_key);
    el_set(editor_, EL_HIST, history, history_);
    el_set(editor_, EL_ADDFN, "mendex-complete", "Complete a word", complete_word);
    el_set(editor_, EL_BIND, "^I", "mendex-complete", nullptr);
    el_set(editor_, EL_BIND, "^R", "em-inc-search-prev", nullptr);
    el_source(editor_, nullptr);
  }
  Lines(const Lines&) = delete;
  Lines& operator=(const Lines&) = delete;

  ~Lines() {
    HistEvent event;
    if (history_ != nullptr && !history_path_.empty()) history(history_, &event, H_SAVE, history_path_.c_str());
    if (editor_ != nullptr) el_end(editor_);
    if (history_ != nullptr) history_end(history_);
  }

  std::optional<std::string> read(const std::string& prompt) {
    if (editor_ == nullptr || history_ == nullptr) return std::nullopt;
    prompt_ = prompt;
    el_resize(editor_);
    int size = 0;
    const char* const text = el_gets(editor_, &size);
    if (Interruption::requested()) {
      el_reset(editor_);
      std::fputs("\n", stderr);
      if (Interruption::is_final()) return std::nullopt;
      Interruption::forget();
      return std::string();
    }
    if (text == nullptr || size <= 0) {
      std::fputs("\n", stderr);
      return std::nullopt;
    }
    std::string line(text, static_cast<std::size_t>(size));
    HistEvent event;
    if (line.find_first_not_of(" \t\r\n") != std::string::npos) history(history_, &event, H_ENTER, line.c_str());
    line.erase(line.find_last_not_of("\r\n") + 1);
    return line;
  }

 private:
  static constexpr int most_lines = 1000;

  static Lines& of(EditLine* editor) {
    void* self = nullptr;
    el_get(editor, EL_CLIENTDATA, &self);
    return *static_cast<Lines*>(self);
  }

  static char* prompt_of(EditLine* editor) { return of(editor).prompt_.data(); }

  // Whether there is something to read before a signal asks to stop. Signals are held back but during the wait, so that none comes unseen
  // between two keys and leaves the wait without an end.
  static bool waits_for_input() {
    sigset_t all, before;
    sigfillset(&all);
    sigprocmask(SIG_SETMASK, &all, &before);
    int ready = -1;
    while (ready < 0 && !Interruption::requested()) {
      fd_set input;
      FD_ZERO(&input);
      FD_SET(STDIN_FILENO, &input);
      ready = pselect(STDIN_FILENO + 1, &input, nullptr, nullptr, nullptr, &before);
      if (ready < 0 && errno != EINTR) break;
    }
    sigprocmask(SIG_SETMASK, &before, nullptr);
    return ready > 0;
  }

  // One character of the locale, as the editor reads it by itself: 1; 0 at the end of the input, -1 when interrupted. Bytes that are no
  // character are passed over.
  static int read_key(EditLine*, wchar_t* key) {
    std::mbstate_t state = {};
    while (true) {
      char byte = 0;
      if (!waits_for_input()) return -1;
      const ssize_t count = ::read(STDIN_FILENO, &byte, 1);
      if (count <= 0) return static_cast<int>(count);
      const std::size_t length = std::mbrtowc(key, &byte, 1, &state);
      if (length == static_cast<std::size_t>(-1)) {
        state = {};
      } else if (length != static_cast<std::size_t>(-2)) {
        return 1;
      }
    }
  }

  static unsigned char complete_word(EditLine* editor, int key) {
    const LineInfo* const line = el_line(editor);
    const std::string before(line->buffer, static_cast<std::size_t>(line->cursor - line->buffer));
    const std::vector<std::string> words = of(editor).complete_(before);
    if (words.empty()) return before.find_first_of(" \t") == std::string::npos ? CC_ERROR : _el_fn_complete(editor, key);
    const std::size_t typed = before.size() - (before.find_last_of(" \t") + 1);
    const std::string rest = words.size() == 1 ? words.front().substr(typed) + " " : common_start(words).substr(typed);
    if (!rest.empty()) return el_insertstr(editor, rest.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
    std::fputs("\n", stderr);
    for (const std::string& word : words) std::fprintf(stderr, "%s  ", word.c_str());
    std::fputs("\n", stderr);
    return CC_REDISPLAY;
  }

  static std::string common_start(const std::vector<std::string>& words) {
    std::string start = words.front();
    for (const std::string& word : words) {
      const auto ends = std::mismatch(start.begin(), start.end(), word.begin(), word.end());
      start.erase(ends.first, start.end());
    }
    return start;
  }

  Complete complete_;
  std::string history_path_;
  History* history_;
  EditLine* editor_ = nullptr;
  std::string prompt_;
};

LineEditor::LineEditor(Complete complete) : lines_(std::make_unique<Lines>(std::move(complete))) {}

LineEditor::~LineEditor() = default;

std::optional<std::string> LineEditor::read(const std::string& prompt) {
  std::fflush(stdout);
  return lines_->read(prompt);
}
