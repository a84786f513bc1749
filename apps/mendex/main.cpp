#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <stdexcept>

#include "command_line.h"
#include "interruption.h"
#include "memory_limit.h"
#include "verbs.h"

namespace {

ExitCode run(int argc, char** argv, Session& session) {
  CommandLine line;
  add_verbs(line);
  if (const std::optional<ExitCode> code = line.parse(argc, argv)) return *code;
  try {
    return line.run(session);
  } catch (const Failure& failure) {
    session.messages.error(failure.what());
    return failure.code();
  }
}

// What was printed must have arrived, or a script would take half a result for a whole one.
ExitCode after_flushing(ExitCode code, Session& session) {
  session.progress.erase();
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return code;
  session.messages.set_file("");
  if (errno != EPIPE) session.messages.error(std::string("standard output: ") + std::strerror(errno));
  return std::max(code, ExitCode::cannot_write);
}

}  // namespace

// Ends without destroying the session: the system takes a process's memory back faster than it could be given back page
// by page.
int main(int argc, char** argv) {
  Interruption::install();
  static Session& session = *new Session;
  MemoryLimit::install([] { session.messages.error(MemoryLimit::account()); });
  ExitCode code = ExitCode::cannot_read;
  try {
    code = run(argc, argv, session);
  } catch (const std::bad_alloc&) {
    MemoryLimit::end_program();
  } catch (const std::length_error&) {
    MemoryLimit::end_program();
  } catch (const std::exception& error) {
    session.messages.error(error.what());
  }
  code = after_flushing(code, session);
  std::_Exit(static_cast<int>(code));
}
