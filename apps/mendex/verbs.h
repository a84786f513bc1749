#pragma once

#include <string>
#include <vector>

#include "failure.h"
#include "mesh_check.h"
#include "report.h"
#include "session.h"

struct InfoOptions {
  std::vector<std::string> files;
  bool is_json = false;
};

struct CheckOptions {
  std::vector<std::string> files;
  CheckLimits limits;
  bool is_json = false;
};

struct WeldOptions {
  std::string input;
  std::string output;
  double tolerance = exact_copies;
  bool is_positive = false;
  bool is_json = false;
};

struct ConvertOptions {
  std::string input;
  std::string output;
};

/// `mendex info`: statistics and mass properties of each file. A file that fails is reported and the others go on.
ExitCode run_info(Session& session, const InfoOptions& options);

/// `mendex check`: what is wrong with each file. A file that fails is reported and the others go on.
ExitCode run_check(Session& session, const CheckOptions& options);

/// `mendex weld`: read, merge, drop what collapses, write.
ExitCode run_weld(Session& session, const WeldOptions& options);

/// `mendex convert`: read and write in the format that the output's name asks for.
ExitCode run_convert(Session& session, const ConvertOptions& options);

/// The format that an output's name asks for; throws, naming what can be written, when there is none.
MeshFormat output_format(const std::string& path);
