// What the controller prints of its mesh.

#include <ostream>

#include "control/control.h"
#include "mesh/memory_guard.h"
#include "progress/message.h"

void trControl::print_system_params(int full) const {
  print_message("System info...");
  tr_out() << "  ";
  print_verbose();
  tr_out() << "  ";
  print_undomode();
  if (full) {
    tr_out() << "  ";
    print_preserve();
    tr_out() << "  ";
    print_trismooth();
  }
  MessageLine line;
  line.text("  Formats:");
  for (int type = 0; type < tr_unknown_file; ++type) line.text(" .").raw(extension_of(static_cast<trFileType>(type)));
}

void trControl::print_element_lists(int detect) const {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { print_element_lists(detect); });
  print_message("Triangle statistics...");
  trControl& edited = *self();
  const auto report = [detect](auto& list) {
    if (detect) list.detect_elements();
    list.print();
  };
  report(edited.sick_elems_);
  report(edited.small_elems_);
  report(edited.thin_elems_);
  report(edited.overlap_elems_);
  report(edited.overhang_elems_);
  isect_elems_.print();
}

void trControl::action_info(int level, double tol, std::FILE* file) {
  tr_guarded(&triblock_, [&] {
    print_system_params(level);
    tr_out() << '\n';
    triblock_.info(tol, file, level);
    tr_out() << '\n';
    print_element_lists(level);
    tr_out() << '\n';
    cycles_.info(file, level);
  });
  if (file != nullptr) std::fclose(file);
}
