// Runs a verb of the program on files as they come. MENDEX_FUZZ_VERB names the verb; without it, check.
//
// The first line of an input is the extension of the output and options of the verb, each as one word; the file to read stands behind it.
// For `run` that is the script, beside a sound model with the name in.stl. Everything happens in a folder of its own.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "command_line.h"
#include "format_input.h"
#include "input_file.h"
#include "interruption.h"
#include "verbs.h"

extern "C" void __sanitizer_set_report_fd(void* fd);

namespace {

// The arguments beside options, where OUT stands for the output and IN for the input.
struct VerbUnderTest {
  const char* name;
  std::vector<std::string> arguments;
};

const VerbUnderTest verbs[] = {
    {"info", {"IN"}},
    {"check", {"IN"}},
    {"repair", {"IN", "-o", "OUT", "--force"}},
    {"weld", {"IN", "-o", "OUT"}},
    {"stitch", {"IN", "-o", "OUT"}},
    {"fill", {"IN", "-o", "OUT"}},
    {"cap", {"IN", "-o", "OUT"}},
    {"clean", {"IN", "-o", "OUT"}},
    {"orient", {"IN", "-o", "OUT"}},
    {"swap", {"IN", "-o", "OUT"}},
    {"transform", {"IN", "-o", "OUT"}},
    {"renumber", {"IN", "-o", "OUT"}},
    {"slice", {"IN", "-o", "OUT"}},
    {"section", {"IN", "-o", "OUT"}},
    {"convert", {"IN", "OUT"}},
    {"run", {"IN"}},
};

const VerbUnderTest& verb_under_test() {
  const char* const wanted = std::getenv("MENDEX_FUZZ_VERB");
  for (const VerbUnderTest& verb : verbs) {
    if (std::string(verb.name) == (wanted == nullptr ? "check" : wanted)) return verb;
  }
  std::fprintf(stderr, "MENDEX_FUZZ_VERB names no verb that can be run\n");
  std::_Exit(2);
}

// Options that start other processes, limit this one, or ask for something that costs what they say.
bool is_left_out(const std::string& word) {
  for (const char* const start : {"--max-m", "--jobs", "--timeout", "--out-dir", "--suffix", "--recursive", "--keep-going", "--append"}) {
    if (word.rfind(start, 0) == 0) return true;
  }
  return word.size() < 2 || word[0] != '-' || word[1] == 'o';
}

// A folder that is entered for the time of one run, and emptied.
class Scratch {
 public:
  Scratch() {
    static const std::filesystem::path folder = made();
    former_ = open(".", O_RDONLY | O_DIRECTORY);
    if (chdir(folder.c_str()) != 0) std::abort();
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  ~Scratch() {
    for (const auto& entry : std::filesystem::directory_iterator(".")) std::filesystem::remove_all(entry.path());
    if (fchdir(former_) != 0) std::abort();
    close(former_);
  }

 private:
  static std::filesystem::path made() {
    std::string name = (std::filesystem::temp_directory_path() / "mendex_fuzz_XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) std::abort();
    return name;
  }
  int former_ = -1;
};

// Standard output and standard error lead nowhere while it lives, save what a sanitizer has to say.
class Quiet {
 public:
  Quiet() : out_(dup(1)), error_(dup(2)) {
    __sanitizer_set_report_fd(reinterpret_cast<void*>(static_cast<std::intptr_t>(error_)));
    const int nowhere = open("/dev/null", O_RDWR);
    for (const int stream : {0, 1, 2}) dup2(nowhere, stream);
    close(nowhere);
  }
  Quiet(const Quiet&) = delete;
  Quiet& operator=(const Quiet&) = delete;
  ~Quiet() {
    std::fflush(stdout);
    std::fflush(stderr);
    dup2(out_, 1);
    dup2(error_, 2);
    __sanitizer_set_report_fd(reinterpret_cast<void*>(static_cast<std::intptr_t>(2)));
    close(out_);
    close(error_);
  }

 private:
  int out_, error_;
};

const char sound_model[] =
    "solid tetrahedron\n"
    "facet normal 0 0 0\nouter loop\nvertex 0 0 0\nvertex 0 1 0\nvertex 1 0 0\nendloop\nendfacet\n"
    "facet normal 0 0 0\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 0 1\nendloop\nendfacet\n"
    "facet normal 0 0 0\nouter loop\nvertex 0 0 0\nvertex 0 0 1\nvertex 0 1 0\nendloop\nendfacet\n"
    "facet normal 0 0 0\nouter loop\nvertex 1 0 0\nvertex 0 1 0\nvertex 0 0 1\nendloop\nendfacet\n"
    "endsolid tetrahedron\n";

void write_file(const char* name, const std::string& bytes) { std::ofstream(name, std::ios::binary) << bytes; }

std::string bytes_of(const char* name) {
  std::ifstream file(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Whether the file is in a format in which a few bytes may rightly ask for gigabytes.
bool asks_for_much(const std::string& file) {
  const std::optional<MeshFormat> format = format_of_file({std::string_view(file).substr(0, sniffed_bytes), file.size(), "in"});
  return (format == MeshFormat::native && has_large_numbers(FuzzedFormat::native, file)) ||
         (format == MeshFormat::mesh_file && has_large_numbers(FuzzedFormat::mesh, file));
}

// As `main` does it. Null, or what was wrong.
const char* fault_of_run(std::vector<std::string> words) {
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  Session session;
  CommandLine line;
  add_verbs(line);
  if (line.parse(static_cast<int>(words.size()), argv.data())) return nullptr;
  try {
    const int code = static_cast<int>(line.run(session));
    return code >= 0 && code <= 7 ? nullptr : "an exit code that there is not";
  } catch (const Failure& failure) {
    return *failure.what() != '\0' ? nullptr : "a failure that tells nothing";
  } catch (const std::bad_alloc&) {
    return nullptr;
  } catch (const std::exception&) {
    return "an exception that is no failure";
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const VerbUnderTest& verb = verb_under_test();
  const bool is_script = std::string(verb.name) == "run";
  const std::string input(reinterpret_cast<const char*>(data), size);
  const std::size_t end = std::min(input.find('\n'), input.size());
  std::string file = end < input.size() ? input.substr(end + 1) : "";
  if (asks_for_much(file)) return 0;
  // Nothing outside the folder is named.
  std::string options = input.substr(0, end);
  std::replace(options.begin(), options.end(), '/', '_');
  std::replace(options.begin(), options.end(), '\0', '_');
  if (is_script) std::replace(file.begin(), file.end(), '/', '_');

  std::istringstream rest(options);
  std::string extension, word;
  rest >> extension;
  const std::string in = is_script ? "the \x7f script" : "in";
  std::vector<std::string> words = {"mendex", verb.name};
  for (const std::string& argument : verb.arguments) words.push_back(argument == "IN" ? in : argument == "OUT" ? "out." + extension : argument);
  bool replaces = false;
  while (rest >> word) {
    if (is_left_out(word)) continue;
    replaces = replaces || word.rfind("-i", 0) == 0 || word.rfind("--in-p", 0) == 0;
    words.push_back(word);
  }

  const char* fault = nullptr;
  {
    const Scratch scratch;
    const Quiet quiet;
    write_file(in.c_str(), file);
    if (is_script) write_file("in.stl", sound_model);
    fault = fault_of_run(words);
    if (fault == nullptr && !replaces && !is_script && bytes_of(in.c_str()) != file) fault = "the input was changed";
  }
  if (fault == nullptr) return 0;
  std::fprintf(stderr, "%s\n", fault);
  std::abort();
}
