#include "repair_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <new>
#include <stdexcept>

#include "interruption.h"
#include "memory_limit.h"
#include "mesh_writer.h"
#include "repair_report.h"
#include "repairer.h"
#include "verbs.h"

namespace {

bool exists(const std::string& path) {
  struct stat status = {};
  return lstat(path.c_str(), &status) == 0;
}

// Keeps the contents of a file under the name FILE~, once the new ones have arrived.
class Backup {
 public:
  explicit Backup(const std::string& path) : kept_(path + "~"), temporary_(path + ".mendex-" + std::to_string(getpid())) {
    std::error_code error;
    // Of a symbolic link the destination is what will be replaced.
    const std::filesystem::path contents = std::filesystem::canonical(path, error);
    if (!error) std::filesystem::create_hard_link(contents, temporary_, error);
    if (error) std::filesystem::copy_file(path, temporary_, error);
    if (error) throw Failure(ExitCode::cannot_write, "no copy can be kept: " + error.message());
  }
  Backup(const Backup&) = delete;
  Backup& operator=(const Backup&) = delete;
  ~Backup() {
    if (!is_kept_) unlink(temporary_.c_str());
  }

  const std::string& keep() {
    if (std::rename(temporary_.c_str(), kept_.c_str()) != 0) {
      throw Failure(ExitCode::cannot_write, "the old contents cannot be kept as " + kept_ + ": " + std::strerror(errno));
    }
    is_kept_ = true;
    return kept_;
  }

 private:
  std::string kept_;
  std::string temporary_;
  bool is_kept_ = false;
};

class FileRepair {
 public:
  FileRepair(Session& session, RepairRequest request) : session_(session), request_(std::move(request)) {
    report_.input = request_.input;
    report_.output = request_.output;
    report_.limits = request_.settings.limits;
    MemoryLimit::add_last_words([this] { tell_last(); });
  }
  FileRepair(const FileRepair&) = delete;
  FileRepair& operator=(const FileRepair&) = delete;
  ~FileRepair() { MemoryLimit::remove_last_words(); }

  ExitCode run() {
    try {
      work_and_tell();
    } catch (const std::bad_alloc&) {
      MemoryLimit::end_program();
    } catch (const std::length_error&) {
      MemoryLimit::end_program();
    }
    return report_.exit;
  }

 private:
  void work_and_tell() {
    try {
      work();
    } catch (const Failure& failure) {
      report_.error = failure.what();
      report_.exit = failure.code();
      tell();
      throw;
    }
    tell();
  }

  void work() {
    if (!request_.output.empty()) request_.settings.target = output_format(request_.output);
    if (!request_.output.empty() && !request_.is_in_place && !request_.is_forced && exists(request_.output)) {
      session_.messages.set_file(request_.output);
      throw Failure(ExitCode::wrong_usage, "is there already; --force replaces it");
    }
    struct stat status = {};
    if (stat(request_.input.c_str(), &status) == 0 && S_ISREG(status.st_mode)) report_.input_bytes = static_cast<std::uint64_t>(status.st_size);
    report_.read = read_mesh(session_, request_.input);
    session_.progress.begin("repairing " + request_.input);
    report_.account = Repairer(session_, request_.settings).run();
    if (!report_.account->budget.passed.empty()) {
      report_.exit = ExitCode::budget_passed;
      return;
    }
    if (report_.account->after.triangles == 0) {
      report_.error = "no triangle is left, so nothing is written";
      report_.exit = ExitCode::defects_found;
      session_.messages.error(report_.error);
      return;
    }
    report_.exit = report_.account->is_sound() ? ExitCode::done : ExitCode::defects_found;
    if (!request_.is_dry_run && !request_.output.empty()) write();
  }

  // A file that is sound already is not written over itself.
  void write() {
    if (request_.is_in_place && !report_.account->has_changed_mesh()) return;
    const MeshFormat format = *request_.settings.target;
    if (request_.is_in_place) {
      Backup backup(request_.output);
      write_mesh(session_, {request_.output, format, false, request_.input});
      report_.backup = backup.keep();
    } else {
      write_mesh(session_, {request_.output, format, false, request_.input});
    }
    report_.written = format;
  }

  void tell() {
    session_.progress.erase();
    if (request_.json) {
      const std::string line = json_of_repair(session_, report_) + "\n";
      has_told_ = true;  // where memory runs out before, the last words are a shorter report
      if (request_.json->empty()) {
        std::fputs(line.c_str(), stdout);
        return;
      }
      write_json(line);
    }
    if (report_.account && !session_.is_quiet) std::fputs(text_of_repair(session_, report_).c_str(), stdout);
  }

  // When memory runs out: nothing that was computed can be relied on.
  void tell_last() {
    if (has_told_) return;
    report_.account.reset();
    report_.error = MemoryLimit::account();
    report_.exit = ExitCode::out_of_memory;
    tell();
  }

  void write_json(const std::string& line) const {
    std::FILE* const file = std::fopen(request_.json->c_str(), "w");
    const bool is_written = file != nullptr && std::fputs(line.c_str(), file) >= 0;
    const int error = errno;
    if ((file == nullptr || std::fclose(file) != 0) || !is_written) {
      throw Failure(ExitCode::cannot_write, *request_.json + ": the report cannot be written: " + std::strerror(error));
    }
  }

  Session& session_;
  RepairRequest request_;
  RepairReport report_;
  bool has_told_ = false;
};

}  // namespace

ExitCode repair_file(Session& session, RepairRequest request) {
  return FileRepair(session, std::move(request)).run();
}
