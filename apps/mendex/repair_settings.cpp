#include "repair_settings.h"

#include "arguments.h"

const char* name_of(RepairStep step) {
  switch (step) {
    case RepairStep::weld: return "weld";
    case RepairStep::clean: return "clean";
    case RepairStep::align: return "align";
    case RepairStep::join: return "join";
    case RepairStep::drop: return "drop";
    case RepairStep::cure: return "cure";
    case RepairStep::fill: return "fill";
    case RepairStep::orient: return "orient";
  }
  return "";
}

const char* purpose_of(RepairStep step) {
  switch (step) {
    case RepairStep::weld: return "merge exact copies of nodes";
    case RepairStep::clean: return "delete repeated triangles and those back to back";
    case RepairStep::align: return "turn triangles over that disagree with most of their piece";
    case RepairStep::join: return "merge and staple boundaries, the smallest tolerance first";
    case RepairStep::drop: return "delete specks, where asked for";
    case RepairStep::cure: return "undo edges of more than two triangles";
    case RepairStep::fill: return "close holes";
    case RepairStep::orient: return "turn closed shells outward";
  }
  return "";
}

std::optional<Allowance> Allowance::parse(const std::string& text) {
  const bool is_share = !text.empty() && text.back() == '%';
  const std::optional<std::vector<double>> numbers = numbers_in(is_share ? text.substr(0, text.size() - 1) : text);
  if (!numbers || numbers->size() != 1 || numbers->front() < 0.0) return std::nullopt;
  return Allowance{is_share ? numbers->front() / 100.0 : numbers->front(), is_share};
}

std::string Allowance::problem(const std::string& text) {
  return parse(text) ? "" : "'" + text + "' is neither a number from 0 up nor a share such as 1%";
}
