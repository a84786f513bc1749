#include "memory_limit.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>
#include <vector>

#include "failure.h"
#include "interruption.h"
#include "text.h"

namespace {

// What the last words take where there is no limit to lift. It is never touched, and so takes no memory either until then.
constexpr std::size_t reserve_bytes = std::size_t{1} << 20;
void* reserve = nullptr;

std::uint64_t told_limit = 0;  // that was in force when memory ran out; 0: none

std::vector<std::function<void()>>& last_words() {
  static auto* const words = new std::vector<std::function<void()>>;
  return *words;
}

rlimit limit_of_memory() {
  rlimit limit = {RLIM_INFINITY, RLIM_INFINITY};
  getrlimit(RLIMIT_AS, &limit);
  return limit;
}

}  // namespace

void MemoryLimit::install(std::function<void()> words) {
  reserve = std::malloc(reserve_bytes);
  add_last_words(std::move(words));
  std::set_new_handler([] { end_program(); });
}

void MemoryLimit::add_last_words(std::function<void()> words) { last_words().push_back(std::move(words)); }

void MemoryLimit::remove_last_words() { last_words().pop_back(); }

void MemoryLimit::set(std::uint64_t bytes) {
#ifndef __SANITIZE_ADDRESS__
  rlimit limit = limit_of_memory();
  limit.rlim_cur = std::min<rlim_t>(bytes, limit.rlim_max);
  setrlimit(RLIMIT_AS, &limit);
#else
  (void)bytes;
#endif
}

void MemoryLimit::lift() {
  rlimit limit = limit_of_memory();
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_AS, &limit);
}

std::optional<std::uint64_t> MemoryLimit::current() {
  const rlimit limit = limit_of_memory();
  return limit.rlim_cur == RLIM_INFINITY ? std::nullopt : std::optional<std::uint64_t>(limit.rlim_cur);
}

std::uint64_t MemoryLimit::in_use() {
  unsigned long pages = 0;
  std::FILE* const file = std::fopen("/proc/self/statm", "re");
  if (file == nullptr) return 0;
  if (std::fscanf(file, "%lu", &pages) != 1) pages = 0;
  std::fclose(file);
  return std::uint64_t{pages} * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

std::string MemoryLimit::account() {
  if (told_limit == 0) return "out of memory";
  return formatted("out of memory: more than %.4g MiB would be needed, which is the limit", static_cast<double>(told_limit) / (1 << 20));
}

// A refusal during the last words is an ordinary exception.
void MemoryLimit::end_program() {
  std::set_new_handler(nullptr);
  told_limit = current().value_or(0);
  lift();
  std::free(std::exchange(reserve, nullptr));
  Interruption::remove_unfinished_file();
  for (auto words = last_words().rbegin(); words != last_words().rend(); ++words) {
    try {
      (*words)();
    } catch (...) {  // then without them
    }
  }
  std::fflush(stdout);
  std::_Exit(static_cast<int>(ExitCode::out_of_memory));
}

std::optional<std::uint64_t> MemoryLimit::bytes_in(const std::string& text) {
  double number = 0.0;
  const char* const end = text.data() + text.size();
  const std::from_chars_result result = std::from_chars(text.data(), end, number, std::chars_format::fixed);
  if (result.ec != std::errc() || !(number >= 0.0)) return std::nullopt;
  const std::string unit(result.ptr, end);
  const std::size_t power = std::string("BKMGT").find(unit.empty() ? "B" : unit);
  if (unit == "B" || power == std::string::npos) return std::nullopt;
  const double bytes = number * static_cast<double>(std::uint64_t{1} << (10 * power));
  if (!(bytes >= 1.0 && bytes < 9e18)) return std::nullopt;
  return static_cast<std::uint64_t>(bytes);
}

std::string MemoryLimit::problem(const std::string& text) { return bytes_in(text) ? "" : "'" + text + "' is not a size such as 500M or 1.5G"; }
