#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "batch_inputs.h"
#include "failure.h"
#include "session.h"
#include "verb_options.h"

/// What a verb takes beside its own options in order to do its work on many files.
struct BatchArguments {
  BatchFiles files;
  int jobs = 1;               // files worked on at a time; 0: one for each processor
  bool keeps_going = false;   // even where results cannot be written
  double timeout_seconds = 0.0;  // for each file; 0: none

  /// Whether this asks for more than one file given by its name and written to a name of its own.
  bool is_batch() const;
};

/// Adds the options for these; the inputs are the verb's own affair.
void add_batch_arguments(VerbOptions verb, BatchArguments& arguments);

/// How a batch is done.
struct BatchPlan {
  /// The program that does one job, and its arguments. It prints one JSON object on standard output, or nothing where it fails, and
  /// ends with a code as this program does.
  std::function<std::vector<std::string>(const BatchJob&)> command;
  BatchWriting writing = BatchWriting::new_files;
  bool is_json = false;
};

/// Does the jobs, each in a process of its own, several at a time, and prints an account of each in the order of the inputs and a summary
/// at the end. Returns the highest code; throws a Failure where nothing is started, for the reasons that `find_jobs` names.
///
/// A file whose time is up is asked to stop and killed two seconds later. Whatever becomes of one, the others go on, save where a result
/// cannot be written and its folder takes no other file either, since that would befall them too; with `keeps_going` even then. The
/// limit on this process's memory becomes that of each child. On interruption the children are stopped and nothing more is started.
ExitCode run_batch(Session& session, const BatchArguments& arguments, const BatchPlan& plan);

/// This program and the options that the verb was given, without positional ones, those of `add_batch_arguments` and those of the names in
/// `but` (as "--json"): the start of a command that does the same to another file.
std::vector<std::string> own_command(VerbOptions verb, const std::set<std::string>& but);
