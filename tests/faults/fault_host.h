#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <streambuf>

#include "faults/fault_cases.h"
#include "progress/output.h"
#include "support/block_snapshot.h"
#include "support/validator.h"

/// Swallows what the library prints while it lives, without memory of its own.
class Silence {
 public:
  Silence() { tr_set_output(&stream_); }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;
  ~Silence() { tr_set_output(nullptr); }

 private:
  class Sink : public std::streambuf {
    int overflow(int c) override { return c == EOF ? 0 : c; }
    std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
  };
  Sink sink_;
  std::ostream stream_{&sink_};
};

/// A host that makes one edit as hosts do, and takes it back.
class FaultHost : public trControl {
 public:
  FaultHost(const Shape& model, const FaultCase& edit) : edit_(edit) {
    add_to(triblock(), model);
    prepare();
    undo_hist().reset("");
    before_.emplace(triblock());
  }

  void open() {
    if (!edit_.brackets_itself) start_undo(edit_.name);
  }
  void run() { edit_.act(*this); }
  void act() {
    open();
    run();
  }
  /// Of an edit in brackets of its own, all that were kept.
  void take_back() {
    if (edit_.brackets_itself) {
      if (undo_hist().current() >= 0) action_undo(undo_hist().current() + 1);
    } else {
      finish_undo(0);
      triangle_update(1);
    }
  }
  void prepare() { edit_.prepare(*this); }
  /// From the mesh as it was before the edit.
  std::string difference() const { return before_->difference(BlockSnapshot(triblock())); }

 private:
  Silence silence_;
  const FaultCase& edit_;
  std::optional<BlockSnapshot> before_;
};
