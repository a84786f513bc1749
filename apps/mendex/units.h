#pragma once

#include <string>

/// The unit that the user says models are in, to go with what is printed for people. No file tells it, and nothing is converted.
class Units {
 public:
  Units() = default;
  explicit Units(std::string name) : name_(std::move(name)) {}

  const std::string& name() const { return name_; }

  /// "12.5", or "12.5 mm", "12.5 mm^2", "12.5 mm^3", with so many significant digits.
  std::string length(double value, int digits) const { return measure(value, digits) + with_power(""); }
  std::string area(double value, int digits) const { return measure(value, digits) + of_area(); }
  std::string volume(double value, int digits) const { return measure(value, digits) + of_volume(); }

  /// " mm^2" and " mm^3", or nothing.
  std::string of_area() const { return with_power("^2"); }
  std::string of_volume() const { return with_power("^3"); }

  /// What is wrong with a name, or nothing.
  static std::string problem(const std::string& name);

 private:
  static std::string measure(double value, int digits);
  std::string with_power(const char* power) const { return name_.empty() ? "" : " " + name_ + power; }

  std::string name_;
};
