#include "verb_options.h"

#include <CLI/CLI.hpp>

VerbOption VerbOption::required() const { return VerbOption(option_->required()); }

VerbOption VerbOption::type_name(const std::string& name) const { return VerbOption(option_->type_name(name)); }

VerbOption VerbOption::check(const std::function<std::string(const std::string&)>& problem) const {
  return VerbOption(option_->check(CLI::Validator(problem, "")));
}

VerbOption VerbOption::one_of(const std::vector<std::string>& texts) const { return VerbOption(option_->check(CLI::IsMember(texts))); }

VerbOption VerbOption::show_default() const { return VerbOption(option_->capture_default_str()); }

VerbOption VerbOption::show_default(const std::string& text) const { return VerbOption(option_->default_str(text)); }

VerbOption VerbOption::group(const std::string& heading) const { return VerbOption(option_->group(heading)); }

VerbOption VerbOption::excludes(VerbOption other) const { return VerbOption(option_->excludes(other.option_)); }

std::size_t VerbOption::count() const { return option_->count(); }

std::string VerbOption::name() const { return option_->get_name(); }

std::string VerbOption::group() const { return option_->get_group(); }

bool VerbOption::is_positional() const { return option_->get_positional(); }

std::vector<std::string> VerbOption::words() const {
  const bool is_flag = option_->get_items_expected_max() == 0;
  std::vector<std::string> words;
  for (const std::string& value : option_->results()) words.push_back(name() + (is_flag ? "" : "=" + value));
  return words;
}

VerbOption VerbOptions::add_option(const std::string& name, std::string& value, const std::string& text) const {
  return VerbOption(verb_->add_option(name, value, text));
}

VerbOption VerbOptions::add_option(const std::string& name, char& value, const std::string& text) const {
  return VerbOption(verb_->add_option(name, value, text));
}

VerbOption VerbOptions::add_option(const std::string& name, int& value, const std::string& text) const {
  return VerbOption(verb_->add_option(name, value, text));
}

VerbOption VerbOptions::add_option(const std::string& name, double& value, const std::string& text) const {
  return VerbOption(verb_->add_option(name, value, text));
}

VerbOption VerbOptions::add_option(const std::string& name, std::vector<std::string>& values, const std::string& text) const {
  return VerbOption(verb_->add_option(name, values, text));
}

VerbOption VerbOptions::add_option(const std::string& name, const std::function<void(const std::string&)>& take, const std::string& text) const {
  return VerbOption(verb_->add_option_function(name, take, text));
}

VerbOption VerbOptions::add_flag(const std::string& name, bool& is_given, const std::string& text) const {
  return VerbOption(verb_->add_flag(name, is_given, text));
}

VerbOption VerbOptions::add_flag(const std::string& name, std::string& value, const std::string& text) const {
  return VerbOption(verb_->add_flag(name, value, text));
}

void VerbOptions::require(const std::function<std::string()>& missing) const {
  verb_->final_callback([missing] {
    if (const std::string names = missing(); !names.empty()) throw CLI::RequiredError(names);
  });
}

void VerbOptions::set_footer(const std::string& text) const { verb_->footer(text); }

std::string VerbOptions::name() const { return verb_->get_name(); }

std::size_t VerbOptions::count(const std::string& name) const { return verb_->count(name); }

std::vector<VerbOption> VerbOptions::options() const {
  std::vector<VerbOption> options;
  for (CLI::Option* option : verb_->get_options()) options.emplace_back(option);
  return options;
}

VerbOption VerbOptions::option_of_program(const std::string& name) const { return VerbOption(verb_->get_parent()->get_option(name)); }
