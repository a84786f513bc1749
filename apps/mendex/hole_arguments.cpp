#include "hole_arguments.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "arguments.h"
#include "hole_report.h"
#include "interruption.h"
#include "mesh_writer.h"
#include "verbs.h"

namespace {

constexpr double largest_number = 2147483647.0;

std::vector<int> whole_numbers_in(const std::string& text) {
  std::vector<int> numbers;
  for (const double value : numbers_in(text).value_or(std::vector<double>{})) {
    if (value >= 0.0 && value <= largest_number && value == std::floor(value)) numbers.push_back(static_cast<int>(value));
  }
  return numbers;
}

bool are_whole(const std::string& text) {
  const auto numbers = numbers_in(text);
  return numbers && whole_numbers_in(text).size() == numbers->size();
}

std::string holes_problem(const std::string& text) { return are_whole(text) ? "" : "'" + text + "' is not a list of holes such as 0,3"; }

std::string between_problem(const std::string& text) {
  const std::vector<int> nodes = whole_numbers_in(text);
  const bool is_good = are_whole(text) && (nodes.size() == 2 || nodes.size() == 3) && nodes[0] != nodes[1];
  return is_good ? "" : "'" + text + "' is not two nodes, and perhaps a third, such as 12,40,25";
}

}  // namespace

HoleChoice HoleArguments::choice() const { return {whole_numbers_in(numbers), most_edges, whole_numbers_in(between)}; }

void add_hole_arguments(VerbOptions verb, HoleArguments& arguments) {
  add_input(verb, arguments.input);
  add_output(verb, arguments.output);
  verb.add_option("--hole", arguments.numbers, "Only these boundaries, by the numbers that mendex check lists")
      .check(holes_problem)
      .type_name("N[,N...]");
  add_count(verb, "--max-edges", arguments.most_edges, 1, "Only boundaries of at most so many edges");
  verb.add_option("--between", arguments.between,
                  "Of one boundary only the part from one node to another: the shorter\n"
                  "one, or the one with the third node; mendex check --json lists nodes")
      .check(between_problem)
      .type_name("N1,N2[,N3]");
  add_length(verb, "--weld", arguments.tolerance, "Merge nodes up to this far apart first; without it only exact copies");
  verb.add_flag("--json", arguments.is_json, "Print one JSON object with what became of each hole");
}

ExitCode run_closing(Session& session, const HoleArguments& arguments, HoleMethod method, const LengthArgument& spacing) {
  const MeshFormat format = output_format(arguments.output);
  const ReadOutcome read = read_mesh(session, arguments.input);
  session.progress.begin("merging " + arguments.input);
  const double tolerance = arguments.tolerance.resolve(session.mesh);
  session.mesh.unduplicate_nodes(tolerance);
  Interruption::check();
  session.progress.begin("closing holes of " + arguments.input);
  const ClosedHoles holes = close_holes(session.control, arguments.choice(), method, spacing.resolve(session.mesh));
  write_mesh(session, {arguments.output, format, false, arguments.input});
  session.progress.erase();
  const HoleAccount account{arguments.input, arguments.output, read, format, method, tolerance, holes};
  if (arguments.is_json) {
    std::printf("%s\n", json_of_closing(session, account).c_str());
  } else if (!session.is_quiet) {
    std::printf("%s", text_of_closing(session, account).c_str());
  }
  return holes.refused() == 0 ? ExitCode::done : ExitCode::defects_found;
}
