#include <memory>
#include <optional>

#include "arguments.h"
#include "command_line.h"
#include "edit_verb.h"
#include "verbs.h"

namespace {

struct CleanArguments : EditArguments {
  bool keeps_repeated = false;
  bool keeps_cancelling = false;
  bool keeps_fins = false;
  bool deletes_sick = false;
  bool keeps_two = false;
  LengthArgument small;
  std::optional<VerbOption> small_given;
  double thin = -1.0;  // below 0: they stay
};

// Does what is asked for, one thing after the other, and notes how many triangles each took.
class Cleaner {
 public:
  explicit Cleaner(trControl& control) : control_(control), mesh_(control.triblock()) {}

  template <class Work>
  void step(bool is_wanted, const char* what, Work work, std::optional<double> limit = {}) {
    if (!is_wanted || tr_interrupt()) return;
    const int before = mesh_.valid_elements();
    work();
    results_.push_back({std::string(what) + " deleted", before - mesh_.valid_elements(), limit});
  }

  std::vector<EditResult> clean(const CleanArguments& wanted) {
    step(!wanted.keeps_cancelling, "cancelling triangles", [&] { mesh_.cancelling(1); });
    step(!wanted.keeps_repeated, "repeated triangles", [&] { mesh_.repeating(); });
    const double small = wanted.small.resolve(mesh_);
    step(wanted.small_given->count() > 0, "small triangles", [&] { control_.action_height(small); }, small);
    step(wanted.thin >= 0.0, "thin triangles", [&] { control_.action_aspect(wanted.thin); }, wanted.thin);
    step(!wanted.keeps_fins, "triangles of fins", [&] { mesh_.cure_sick_fins(); });
    step(wanted.deletes_sick || wanted.keeps_two, "sick triangles", [&] { control_.action_cure(wanted.deletes_sick ? 0 : 1); });
    return std::move(results_);
  }

 private:
  trControl& control_;
  trTriBlock& mesh_;
  std::vector<EditResult> results_;
};

}  // namespace

void add_clean_verb(CommandLine& line) {
  const auto arguments = std::make_shared<CleanArguments>();
  const VerbOptions verb = line.add_verb("clean", "Delete triangles that should not be there", [arguments](Session& session) {
    return run_edit(session, *arguments, "cleaning", [&](trControl& control) { return Cleaner(control).clean(*arguments); });
  });
  add_edit_arguments(verb, *arguments, true);
  verb.add_flag("--keep-cancelling", arguments->keeps_cancelling, "Leave triangles that lie back to back with another");
  verb.add_flag("--keep-repeated", arguments->keeps_repeated, "Leave copies of triangles");
  verb.add_flag("--keep-fins", arguments->keeps_fins, "Leave loose flaps on edges of more than two triangles");
  arguments->small_given =
      add_length(verb, "--small", arguments->small, "Delete triangles of less than this height over their longest edge too");
  verb.add_option("--thin", arguments->thin, "Delete triangles below this ratio of height to longest edge too")
      .check(tolerance_problem)
      .type_name("RATIO");
  const VerbOption sick = verb.add_flag("--sick", arguments->deletes_sick, "Delete all triangles on edges that more than two share too");
  verb.add_flag("--sick-but-two", arguments->keeps_two, "Of these delete all but the two largest of each edge").excludes(sick);
  line.set_notes(verb,
                 "In this order: cancelling, repeated, small, thin, fins, sick. What is deleted may leave holes: see mendex fill.",
                 "mendex clean part.stl -o clean.stl --small 0.001");
}
