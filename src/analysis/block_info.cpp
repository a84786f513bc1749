// The statistics report of a block.

#include <algorithm>
#include <cmath>
#include <string>

#include "mesh/aspect_utils.h"
#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"
#include "progress/message.h"
#include "progress/progress.h"

namespace {

// Prints the report, and as commands to a file when there is one. A part that was interrupted returns false, and the report ends.
class BlockReport {
 public:
  BlockReport(const trTriBlock& block, double tol, std::FILE* file) : block_(block), tol_(tol), file_(file) {}

  void command(const std::string& text) const {
    if (file_ != nullptr) std::fputs(text.c_str(), file_);
  }

  bool nodes() const {
    int valid = 0;
    int highest = 0;
    for (int i = 1; i < block_.node_count(); ++i) {
      if (tr_interrupt()) return false;
      if (block_.node(i).invalid) continue;
      ++valid;
      highest = i;
    }
    if (block_.node_data_size() == 0) {
      print_message("  No node attributes");
    } else {
      print_text(tr_brnknls("  There are %d attributes stored per node\n"), block_.node_data_size());
    }
    print_text(tr_brnknls("  Node count: %d(max node num is %d)\n"), valid, highest);
    command(format_text(tr_brnknls("INPUT REGISTER @NUMNOD %d\n"), valid));
    command(format_text(tr_brnknls("INPUT REGISTER @MAXNOD %d\n"), highest));
    return true;
  }

  bool elements() const {
    int valid = 0;
    int highest = 0;
    for (int e = 1; e < block_.element_count(); ++e) {
      if (tr_interrupt()) return false;
      if (!block_.element(e).valid()) continue;
      ++valid;
      highest = e;
    }
    print_text(tr_brnknls("  Element count: %d(max element num is %d)\n"), valid, highest);
    command(format_text(tr_brnknls("INPUT REGISTER @NUMELE %d\n"), valid));
    command(format_text(tr_brnknls("INPUT REGISTER @MAXELE %d\n"), highest));
    return true;
  }

  bool size() const {
    const giBox3 box = block_.box();
    if (tr_interrupt()) return false;
    MessageLine line;
    line.text("  Size:-  ");
    if (box.is_empty()) {
      line.text("unevaluated.");
      command(tr_brnknls("DELETE REGISTER @SIZE\n"));
      return true;
    }
    const giPoint3 low = box.min();
    const giPoint3 high = box.max();
    line.text("X: ").number(low.x).text(", ").number(high.x).text("   ");
    line.text("Y: ").number(low.y).text(", ").number(high.y).text("   ");
    line.text("Z: ").number(low.z).text(", ").number(high.z).text("   ");
    command(format_text(tr_brnknls("INPUT REGISTER @SIZE %lf %lf %lf $\n"), low.x, high.x, low.y));
    command(format_text(tr_brnknls("                     %lf %lf %lf\n"), high.y, low.z, high.z));
    return true;
  }

  bool sick() const {
    intcoPageArr list;
    block_.find_sick(list, 0);
    if (tr_interrupt()) return false;
    command(format_text(tr_brnknls("INPUT REGISTER @NUMSICK %d\n"), list.count()));
    return true;
  }

  bool shapes() const {
    Least height;
    Least aspect;
    for (int e = 1; e < block_.element_count(); ++e) {
      if (tr_interrupt()) return false;
      const trElement& t = block_.element(e);
      if (!t.valid()) continue;
      const giPoint3 corners[3] = {block_.point(t[0]), block_.point(t[1]), block_.point(t[2])};
      height.take(trAspectUtils::triangle_height(corners[0], corners[1], corners[2]), tol_);
      aspect.take(trAspectUtils::triangle_aspect(corners[0], corners[1], corners[2]), tol_);
    }
    print_text(tr_brnknls("  Min element height: %lf  (%d are less than %lf)\n"), height.value(), height.below, tol_);
    print_text(tr_brnknls("  Min element aspect: %lf  (%d are less than %lf)\n"), aspect.value(), aspect.below, tol_);
    command(format_text(tr_brnknls("INPUT REGISTER @MINHITE %lf\n"), height.value()));
    command(format_text(tr_brnknls("INPUT REGISTER @MINASPT %lf\n"), aspect.value()));
    return true;
  }

  bool angles() const {
    int below = 0;
    const double least = block_.min_dotp(tol_, below);
    if (tr_interrupt()) return false;
    const double angle_deg = 180.0 - giAngle::from_radians(std::acos(least)).degrees();
    const double overlap_tol = (least + 1.0) * 0.5;
    print_text(tr_brnknls("  Sharpest Angle: %lf degrees (overlap tol: %lf, %d angles < %lf)\n"), angle_deg, overlap_tol, below, tol_);
    command(format_text(tr_brnknls("INPUT REGISTER @ANGLE %lf\n"), angle_deg));
    command(format_text(tr_brnknls("INPUT REGISTER @OVERTOL %lf\n"), overlap_tol));
    return true;
  }

 private:
  // A measure over the elements: its least value, and how many lie below a tolerance.
  struct Least {
    giLength least;
    int below = 0;

    void take(const giLength& measure, double tol) {
      if (!measure.is_set()) return;
      below += measure.is_below(tol);
      if (!least.is_set() || measure < least) least = measure;
    }
    double value() const { return least.is_set() ? least.value() : 0.0; }
  };

  const trTriBlock& block_;
  double tol_;
  std::FILE* file_;
};

}  // namespace

void trTriBlock::info(double tol, std::FILE* file, int level) const {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { info(tol, file, level); });
  const BlockReport report(*this, tol, file);
  report.command(tr_brnknls("UNSET ECHO#EDIT PLEV -1\n"));
  if (verbose) reference_elements();
  print_message("TriBlock info...");
  if (!report.nodes() || !report.elements() || !report.size()) return;
  if ((!verbose && !level) || file == nullptr) return;
  if (!report.sick() || !report.shapes()) return;
  report.angles();
}
