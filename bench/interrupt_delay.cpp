// How long each action of the controller goes on after the host asked it to stop: interrupt_delay [TRIANGLES] [STOPS] [ACTION]
//
// Each action runs once undisturbed on a model of TRIANGLES (10^6 by default), which gives its longest time between two polls; then it is
// stopped STOPS times (20) at random polls, and once at the poll before that longest time. Prints a table, in which delays above 50 ms
// are marked. A delay counts from the host's answer to the return of control.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <streambuf>

#include "faults/fault_cases.h"
#include "progress/break_handler.h"
#include "progress/output.h"
#include "support/random.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr double longest_delay_ms = 50.0;

double ms(Clock::duration time) { return std::chrono::duration<double, std::milli>(time).count(); }

class TimingHandler : public trBreakHandler {
 public:
  explicit TimingHandler(long long stop_at) : stop_at_(stop_at) {}

  int interrupt_callback() override {
    const Clock::time_point now = Clock::now();
    note_gap(now);
    ++polls;
    last_ = Clock::now();
    return polls == stop_at_;
  }
  /// To be called when control has returned.
  double end() {
    const Clock::time_point now = Clock::now();
    note_gap(now);
    return ms(now - last_);
  }

  long long polls = 0;
  long long poll_before_longest = 0;  // 0: before the first
  double longest_gap_ms = 0.0;

 private:
  void note_gap(Clock::time_point now) {
    const double gap = ms(now - last_);
    if (gap <= longest_gap_ms) return;
    longest_gap_ms = gap;
    poll_before_longest = polls;
  }

  long long stop_at_;
  Clock::time_point last_ = Clock::now();
};

struct Run {
  long long polls = 0;
  long long poll_before_longest = 0;
  double longest_gap_ms = 0.0;
  double delay_ms = 0.0;  // after the last poll
};

Run run(const Shape& model, const FaultCase& action, long long stop_at) {
  trControl control;
  add_to(control.triblock(), model);
  action.prepare(control);
  control.undo_hist().reset("");
  if (!action.brackets_itself) control.start_undo(action.name);
  TimingHandler handler(stop_at);
  action.act(control);
  const double delay = handler.end();
  return {handler.polls, handler.poll_before_longest, handler.longest_gap_ms, delay};
}

class Sink : public std::streambuf {
  int overflow(int c) override { return c; }
  std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
};

void measure(const Shape& model, const FaultCase& action, int stops, Random& random) {
  const Run whole = run(model, action, 0);
  double longest = 0.0;
  long long at = 0;
  for (int k = 0; k <= stops; ++k) {
    const long long any = 1 + static_cast<long long>(random.bits() % static_cast<std::uint64_t>(whole.polls));
    const long long poll = k < stops ? any : whole.poll_before_longest;
    if (poll == 0) continue;
    const double delay = run(model, action, poll).delay_ms;
    if (delay <= longest) continue;
    longest = delay;
    at = poll;
  }
  std::printf("| %s | %lld | %.1f | %lld | %.1f%s | %lld |\n", action.name, whole.polls, whole.longest_gap_ms, whole.poll_before_longest, longest,
              longest > longest_delay_ms ? " late" : "", at);
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const int triangles = argc > 1 ? std::atoi(argv[1]) : 1'000'000;
  const int stops = argc > 2 ? std::atoi(argv[2]) : 20;
  const char* const only = argc > 3 ? argv[3] : nullptr;
  Sink sink;
  std::ostream nowhere(&sink);
  tr_set_output(&nowhere);
  const Shape model = messy_model(triangles);
  std::printf("%zu triangles\n\n", model.triangles.size());
  std::printf("| action | polls | longest between polls, ms | after poll | longest delay, ms | at poll |\n|---|---:|---:|---:|---:|---:|\n");
  Random random(1);
  for (const FaultCase& action : fault_cases()) {
    if (only != nullptr && std::string(only) != action.name) continue;
    measure(model, action, stops, random);
  }
  tr_set_output(nullptr);
  return 0;
}
