// Runs a batch whose jobs are the inputs themselves, as shell scripts that are told the name of the output; or, with --program, a verb
// of that program that takes IN -o OUT --json.

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <new>

#include "batch.h"
#include "interruption.h"
#include "memory_limit.h"

namespace {

struct ProbeArguments : BatchArguments {
  std::string program;
  std::string verb = "weld";
  std::string memory;
  bool is_json = false;
  bool is_in_place = false;
  bool is_dry = false;
  bool is_forced = false;   // known, as the workflow gives it, and of no effect
  double hang_seconds = 0;  // run nothing but into the time limit of this process
  bool is_deaf = false;     // and do not listen when it is up
};

std::vector<std::string> command_of(const ProbeArguments& arguments, const BatchJob& job) {
  if (arguments.program.empty()) return {"/bin/sh", job.input, job.output};
  return {arguments.program, arguments.verb, job.input, "-o", job.output, "--json"};
}

void hang(const ProbeArguments& arguments) {
  Interruption::set_timeout(arguments.hang_seconds);
  while (true) {
    pause();
    if (!arguments.is_deaf) Interruption::check();
  }
}

ExitCode run(Session& session, const ProbeArguments& arguments) {
  if (!arguments.memory.empty()) MemoryLimit::set(*MemoryLimit::bytes_in(arguments.memory));
  BatchPlan plan;
  plan.command = [&arguments](const BatchJob& job) { return command_of(arguments, job); };
  plan.writing = arguments.is_dry ? BatchWriting::nothing : (arguments.is_in_place ? BatchWriting::in_place : BatchWriting::new_files);
  plan.is_json = arguments.is_json;
  try {
    if (arguments.hang_seconds > 0) hang(arguments);
    return run_batch(session, arguments, plan);
  } catch (const Failure& failure) {
    session.messages.error(failure.what());
    return failure.code();
  }
}

}  // namespace

int main(int argc, char** argv) {
  Interruption::install();
  Session session;
  ProbeArguments arguments;
  CLI::App app;
  add_batch_arguments(VerbOptions(&app), arguments);
  app.add_option("IN", arguments.files.inputs);
  app.add_option("--program", arguments.program);
  app.add_option("--verb", arguments.verb);
  app.add_option("--max-memory", arguments.memory);
  app.add_flag("--json", arguments.is_json);
  app.add_flag("--in-place", arguments.is_in_place);
  app.add_flag("--dry-run", arguments.is_dry);
  app.add_flag("--force", arguments.is_forced);
  app.add_option("--hang", arguments.hang_seconds);
  app.add_flag("--deaf", arguments.is_deaf);
  CLI11_PARSE(app, argc, argv);
  return static_cast<int>(run(session, arguments));
}
