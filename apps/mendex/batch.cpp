#include "batch.h"

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <system_error>

#include "arguments.h"
#include "batch_report.h"
#include "child_process.h"
#include "interruption.h"
#include "memory_limit.h"
#include "safe_output.h"
#include "text.h"

namespace {

using Clock = ChildProcess::Clock;
using Seconds = std::chrono::duration<double>;

constexpr auto grace = std::chrono::seconds(2);               // between asking to stop and killing
constexpr auto longest_sleep = std::chrono::milliseconds(200);
constexpr auto shortest_sleep = std::chrono::milliseconds(2);  // where a child has closed its pipes and is about to end

int processors() {
  cpu_set_t set;
  CPU_ZERO(&set);
  return sched_getaffinity(0, sizeof set, &set) == 0 ? std::max(1, CPU_COUNT(&set)) : 1;
}

// What a child that was killed in the middle of writing has left.
void remove_temporary_files(const std::string& output, pid_t process) {
  if (output.empty()) return;
  namespace fs = std::filesystem;
  std::error_code ignored;
  const fs::path folder = fs::weakly_canonical(fs::absolute(output, ignored), ignored).parent_path();
  const std::string start = SafeOutput::temporary_name_of(process);
  std::vector<fs::path> left;
  for (fs::directory_iterator at(folder, ignored), end; !ignored && at != end; at.increment(ignored)) {
    if (at->path().filename().native().compare(0, start.size(), start) == 0) left.push_back(at->path());
  }
  for (const fs::path& path : left) fs::remove(path, ignored);
}

// The last line, without the program's name.
std::string last_line_of(std::string text) {
  while (!text.empty() && text.back() == '\n') text.pop_back();
  text.erase(0, text.rfind('\n') + 1);
  constexpr const char* own_name = "mendex: ";
  return text.compare(0, std::strlen(own_name), own_name) == 0 ? text.substr(std::strlen(own_name)) : text;
}

// Something printed that is one JSON object is taken to tell by itself why its job failed.
bool tells_itself(const std::string& output) { return output.size() > 1 && output.front() == '{'; }

BatchOutcome outcome_of_code(const ChildProcess& child, int code) {
  BatchOutcome outcome;
  const bool is_known = code <= static_cast<int>(ExitCode::out_of_memory);
  outcome.code = is_known ? static_cast<ExitCode>(code) : ExitCode::cannot_read;
  if (!is_known || (code != 0 && !tells_itself(child.output()))) outcome.error = last_line_of(child.errors());
  if (!is_known && outcome.error.empty()) outcome.error = formatted("ended with code %d", code);
  return outcome;
}

// Ended by a signal: by that of the processor's time limit or of the end of this program, by a lack of memory, or by a fault of its own.
BatchOutcome outcome_of_signal(int signal) {
  BatchOutcome outcome;
  if (signal == SIGKILL) {
    outcome.code = ExitCode::out_of_memory;
    outcome.error = "killed, most likely for want of memory";
  } else if (signal == SIGINT || signal == SIGTERM || signal == SIGXCPU) {
    outcome.code = ExitCode::interrupted;
    outcome.error = "interrupted";
  } else {
    outcome.code = ExitCode::cannot_read;
    outcome.error = std::string("broke down: ") + strsignal(signal);
  }
  return outcome;
}

class Batch {
 public:
  Batch(Session& session, const BatchArguments& arguments, const BatchPlan& plan)
      : session_(session), arguments_(arguments), plan_(plan), jobs_(find_jobs(arguments.files, plan.writing)), outcomes_(jobs_.size()),
        report_(plan.is_json) {
    limits_.memory_bytes = MemoryLimit::current();
    if (limits_.memory_bytes && *limits_.memory_bytes < MemoryLimit::in_use()) {
      throw Failure(ExitCode::out_of_memory, "the limit of memory is less than what the program takes to start");
    }
    if (arguments.timeout_seconds > 0.0) limits_.seconds = arguments.timeout_seconds;
    worker_total_ = static_cast<std::size_t>(arguments.jobs > 0 ? arguments.jobs : processors());
  }

  ExitCode run() {
    if (plan_.writing == BatchWriting::new_files) make_folders(jobs_);
    MemoryLimit::lift();
    std::signal(SIGCHLD, SIG_DFL);
    while (printed_ < jobs_.size()) {
      start_more();
      wait_a_little();
      end_overdue();
      collect();
      print_ready();
      show_progress();
    }
    session_.progress.erase();
    if (plan_.is_json || !session_.is_quiet) report_.finish(Seconds(Clock::now() - start_).count());
    return report_.worst();
  }

 private:
  // A child at work on a job.
  struct Worker {
    std::size_t job;
    std::unique_ptr<ChildProcess> child;
    bool is_out_of_time = false;
  };

  void start_more() {
    if (Interruption::requested()) stop(ExitCode::interrupted, "not started: interrupted");
    while (next_ < jobs_.size() && workers_.size() < worker_total_) {
      try {
        workers_.push_back({next_, std::make_unique<ChildProcess>(plan_.command(jobs_[next_]), limits_)});
      } catch (const std::system_error& problem) {
        if (!workers_.empty()) return;  // until one of these has made room
        end_without_child(next_, ExitCode::out_of_memory, problem.what());
      }
      ++next_;
    }
  }

  void end_without_child(std::size_t job, ExitCode code, const std::string& why) {
    outcomes_[job] = BatchOutcome{code, BatchEnd::not_started, why, {}, 0.0};
  }

  // Starts nothing more.
  void stop(ExitCode code, const std::string& why) {
    for (; next_ < jobs_.size(); ++next_) end_without_child(next_, code, why);
  }

  void wait_a_little() {
    if (workers_.empty()) return;
    auto sleep = std::chrono::duration_cast<std::chrono::milliseconds>(longest_sleep);
    std::vector<pollfd> pipes;
    for (const Worker& worker : workers_) {
      for (const int pipe : {worker.child->output_pipe(), worker.child->error_pipe()}) {
        if (pipe >= 0) pipes.push_back({pipe, POLLIN, 0});
      }
      if (worker.child->output_pipe() < 0 && worker.child->error_pipe() < 0) sleep = shortest_sleep;
      if (limits_.seconds && !worker.is_out_of_time) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(Seconds(*limits_.seconds) - (Clock::now() - worker.child->start()));
        sleep = std::clamp(left + std::chrono::milliseconds(1), shortest_sleep, sleep);
      }
    }
    poll(pipes.data(), pipes.size(), static_cast<int>(sleep.count()));
    for (const Worker& worker : workers_) worker.child->read_pipes();
  }

  void end_overdue() {
    const auto now = Clock::now();
    for (Worker& worker : workers_) {
      ChildProcess& child = *worker.child;
      if (limits_.seconds && !child.was_interrupted() && now - child.start() > Seconds(*limits_.seconds)) {
        worker.is_out_of_time = true;
        child.interrupt();
      }
      if (Interruption::requested()) child.interrupt();
      if (child.was_interrupted() && !child.was_killed() && now - child.interrupted_at() > grace) child.kill();
    }
  }

  void collect() {
    const auto has_ended = [this](Worker& worker) {
      if (!worker.child->has_ended()) return false;
      finish(worker);
      return true;
    };
    workers_.erase(std::remove_if(workers_.begin(), workers_.end(), has_ended), workers_.end());
  }

  void finish(const Worker& worker) {
    const ChildProcess& child = *worker.child;
    const BatchJob& job = jobs_[worker.job];
    BatchOutcome outcome = outcome_of(worker);
    outcome.seconds = Seconds(Clock::now() - child.start()).count();
    outcome.report = child.output();
    if (WIFSIGNALED(child.status())) remove_temporary_files(job.output, child.id());
    errors_[worker.job] = child.errors();
    if (outcome.code == ExitCode::cannot_write && !arguments_.keeps_going && !takes_results(job)) {
      stop(outcome.code, "not started, because of " + job.input + "; see --keep-going");
    }
    outcomes_[worker.job] = std::move(outcome);
    ++done_;
  }

  BatchOutcome outcome_of(const Worker& worker) const {
    const ChildProcess& child = *worker.child;
    BatchOutcome outcome = WIFSIGNALED(child.status()) ? outcome_of_signal(WTERMSIG(child.status()))
                                                       : outcome_of_code(child, WEXITSTATUS(child.status()));
    const bool was_stopped = child.was_killed() || (child.was_interrupted() && outcome.code == ExitCode::interrupted);
    if (!was_stopped) return outcome;
    outcome.code = ExitCode::interrupted;
    outcome.end = worker.is_out_of_time ? BatchEnd::timed_out : BatchEnd::interrupted;
    outcome.error = worker.is_out_of_time ? formatted("timed out after %g s", *limits_.seconds) : "interrupted";
    return outcome;
  }

  // Whether the folder of a result takes another file, as large as the job's input: else the other results will not be written either.
  static bool takes_results(const BatchJob& job) {
    try {
      const SafeOutput probe(std::filesystem::path(job.output).replace_filename("probe").string());
      std::error_code ignored;
      const std::uintmax_t bytes = std::filesystem::file_size(job.input, ignored);
      return posix_fallocate(probe.descriptor(), 0, ignored ? 1 : std::max<off_t>(1, static_cast<off_t>(bytes))) == 0;
    } catch (const Failure&) {
      return false;
    }
  }

  // In the order of the jobs, whichever ends first. What a child had to say beside its report comes before it.
  void print_ready() {
    for (; printed_ < jobs_.size() && outcomes_[printed_]; ++printed_) {
      session_.progress.erase();
      print_errors(printed_);
      report_.add(jobs_[printed_], *outcomes_[printed_]);
      *outcomes_[printed_] = BatchOutcome();
    }
  }

  void print_errors(std::size_t job) {
    const auto found = errors_.find(job);
    if (found == errors_.end()) return;
    const std::string& text = found->second;
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t end = std::min(text.find('\n', at), text.size());
      std::fprintf(stderr, "%s\n", printable(text.substr(at, end - at)).c_str());
      at = end + 1;
    }
    errors_.erase(found);
  }

  void show_progress() {
    session_.progress.begin(formatted("%zu of %zu files", done_, jobs_.size()));
    session_.progress.report_progress_callback("", 100.0 * static_cast<double>(done_) / static_cast<double>(jobs_.size()));
  }

  Session& session_;
  const BatchArguments& arguments_;
  const BatchPlan& plan_;
  const std::vector<BatchJob> jobs_;
  const Clock::time_point start_ = Clock::now();
  ChildLimits limits_;
  std::size_t worker_total_ = 1;
  std::size_t next_ = 0;     // the first job not started
  std::size_t done_ = 0;     // how many have ended
  std::size_t printed_ = 0;  // the first job not accounted for
  std::vector<Worker> workers_;
  std::vector<std::optional<BatchOutcome>> outcomes_;  // by job, once it has ended
  std::map<std::size_t, std::string> errors_;          // what ended jobs not yet accounted for have said
  BatchReport report_;
};

constexpr const char* option_group = "Many files";

std::string seconds_problem(const std::string& text) {
  const auto numbers = numbers_in(text);
  return numbers && numbers->size() == 1 && numbers->front() > 0.0 ? "" : "'" + text + "' is not a number of seconds above 0";
}

}  // namespace

bool BatchArguments::is_batch() const {
  std::error_code ignored;
  if (files.inputs.size() != 1 || !files.output_folder.empty() || !files.suffix.empty()) return true;
  return files.inputs[0][0] == '@' || std::filesystem::is_directory(files.inputs[0], ignored);
}

void add_batch_arguments(VerbOptions verb, BatchArguments& arguments) {
  verb.add_option("--out-dir", arguments.files.output_folder, "Folder for the results, which is made where it is missing").type_name("PATH").group(option_group);
  verb.add_option("--suffix", arguments.files.suffix, "What the names of results have before the extension, such as _fixed").type_name("TEXT").group(option_group);
  verb.add_flag("--recursive", arguments.files.is_recursive, "Take folders within folders too").group(option_group);
  add_count(verb, "--jobs", arguments.jobs, 0, "Files worked on at a time, each in a process of its own; 0: one for each\nprocessor")
      .show_default()
      .group(option_group);
  verb.add_flag("--keep-going", arguments.keeps_going, "Start further files even where the folder takes no more results").group(option_group);
  verb.add_option("--timeout", arguments.timeout_seconds, "Stop work on a file after so long, with code 6")
      .check(seconds_problem)
      .type_name("SECONDS")
      .group(option_group);
}

ExitCode run_batch(Session& session, const BatchArguments& arguments, const BatchPlan& plan) { return Batch(session, arguments, plan).run(); }

std::vector<std::string> own_command(VerbOptions verb, const std::set<std::string>& but) {
  std::vector<std::string> words = {"/proc/self/exe", verb.name()};
  const auto add = [&words](VerbOption option) {
    for (const std::string& word : option.words()) words.push_back(word);
  };
  for (const char* name : {"--verbose", "--units"}) add(verb.option_of_program(name));
  for (const VerbOption option : verb.options()) {
    const bool is_its_own = option.is_positional() || option.group() == option_group || but.count(option.name()) != 0;
    if (!is_its_own) add(option);
  }
  return words;
}
