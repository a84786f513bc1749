#include "support/child.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

#include "support/check.h"

namespace fs = std::filesystem;

std::string quoted(const std::string& word) { return "'" + word + "'"; }

fs::path this_program() { return fs::read_symlink("/proc/self/exe"); }

fs::path beside_this_program(const std::string& name) { return this_program().parent_path() / name; }

std::vector<double> numbers_of(const std::string& command) {
  std::FILE* output = popen(command.c_str(), "r");
  std::vector<double> numbers;
  if (output == nullptr) return numbers;
  for (double number = 0.0; std::fscanf(output, "%lf", &number) == 1;) numbers.push_back(number);
  if (pclose(output) != 0) numbers.clear();
  return numbers;
}

Cost cost_of_program(const std::vector<std::string>& words) {
  std::string command = quoted(this_program()) + " --program-probe";
  for (const std::string& word : words) command += " " + quoted(word);
  const std::vector<double> numbers = numbers_of(command);
  require(numbers.size() == 2, "a program failed: " + command);
  return {numbers[0], numbers[1]};
}

int run_program_probe(char** words) {
  const pid_t child = fork();
  if (child == 0) {
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, 1);
    dup2(nowhere, 2);
    execvp(words[0], words);
    _exit(127);
  }
  int status = 0;
  rusage use = {};
  if (child < 0 || wait4(child, &status, 0, &use) != child || status != 0) return 1;
  const auto seconds = [](const timeval& t) { return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6; };
  std::printf("%.17g %.17g\n", seconds(use.ru_utime) + seconds(use.ru_stime), 1024.0 * static_cast<double>(use.ru_maxrss));
  return 0;
}
