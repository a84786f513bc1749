// The boundary report and the picture file.

#include <map>
#include <ostream>

#include "boundaries/cycle_array.h"
#include "boundaries/cycle_it.h"
#include "mesh/memory_guard.h"
#include "progress/message.h"
#include "progress/progress.h"

namespace {

constexpr int values_in_a_line = 10;

void end_line() { tr_out() << '\n'; }

// How many live cycles have how many edges. False when interrupted.
bool count_sizes(const trCyclecoPageArr& cycles, std::map<int, int>& counts) {
  for (int i = 0; i < cycles.count(); ++i) {
    if (tr_interrupt()) return false;
    if (cycles.at(i).start != -1) ++counts[cycles.at(i).size()];
  }
  return true;
}

// Writes the sizes as a list of values, each as often as there are cycles of that size.
class SizeList {
 public:
  explicit SizeList(std::FILE* file) : file_(file) {
    if (file_ != nullptr) write_text(file_, "INPUT LIST @BOU ");
  }

  // False when interrupted.
  bool add(int size, int times) {
    for (int k = 0; k < times; ++k) {
      if (tr_interrupt()) return false;
      if (file_ == nullptr) return true;
      if (written_ > 0 && written_ % values_in_a_line == 0) write_text(file_, "\nAPPEND LIST @BOU ");
      write_text(file_, " %d", size);
      ++written_;
    }
    return true;
  }

  void end() {
    if (file_ != nullptr) write_text(file_, "\n");
  }

 private:
  std::FILE* file_;
  std::int64_t written_ = 0;
};

void report_sizes(const trCyclecoPageArr& cycles, std::FILE* file) {
  std::map<int, int> counts;
  if (!count_sizes(cycles, counts)) return;
  print_message("  Boundary edge distribution:- ");
  SizeList list(file);
  for (const auto& entry : counts) {
    if (tr_interrupt()) return;
    print_text(tr_brnknls("   %d sided: %d"), entry.first, entry.second);
    end_line();
    if (!list.add(entry.first, entry.second)) return;
  }
  list.end();
}

// One polyline after another, points numbered throughout.
class PictureFile {
 public:
  explicit PictureFile(std::FILE* file) : file_(file) {
    write_text(file_, "EDIT PLEV 0#UNSET ECHO\n");
    write_text(file_, "DELETE PICTURE\n");
  }

  // The first point is reached with the pen up.
  void draw(const trCycle& cycle) {
    trCycleIT it(&cycle);
    if (!++it) return;
    const int first = it.s_node();
    const giPoint3 p = cycle.position(first);
    write_text(file_, "INPUT PIX %d %lf %lf %lf\n", ++points_, p.x, p.y, p.z);
    write_text(file_, "EDIT PIX %d INV\n", points_);
    while (++it) draw_to(it.s_node(), cycle.position(it.s_node()));
    draw_to(first, p);
    ++polylines_;
  }

  int edges() const { return points_ - polylines_; }

 private:
  void draw_to(int node, const giPoint3& p) {
    write_text(file_, "INPUT PIX %d %lf %lf %lf $$ = NODE %d\n", ++points_, p.x, p.y, p.z, node);
  }

  std::FILE* file_;
  int points_ = 0;
  int polylines_ = 0;
};

}  // namespace

void trCycleArray::info(std::FILE* file, int detailed) const {
  if (!coMemoryScope::is_open()) return tr_guarded(block, [&] { info(file, detailed); });
  detect();
  if (tr_interrupt()) return;
  print_message("Boundary info...");
  const int boundaries = num_boundaries();
  print_text(tr_brnknls(" Boundary count: %d"), boundaries);
  end_line();
  const int edges = num_edges();
  print_text(tr_brnknls(" Boundary edge count: %d"), edges);
  end_line();
  if (file != nullptr) {
    write_text(file, "INPUT REGISTER @NUMBOU %d\n", boundaries);
    write_text(file, "INPUT REGISTER @NUMEDGE %d\n", edges);
  }
  if (edges <= 0 || !(block->verbose || detailed)) return;
  report_sizes(cycles, file);
}

void trCycleArray::write(std::FILE* file) const {
  print_message("Writing picture file ...");
  detect();
  if (file == nullptr) return;
  PictureFile picture(file);
  for (int i = 0; i < cycles.count(); ++i) {
    if (tr_interrupt()) break;
    if (cycles.at(i).start != -1) picture.draw(cycles.at(i));
  }
  std::fclose(file);
  print_text(tr_brnknls("... %d boundary edges written."), picture.edges());
  end_line();
}
