#pragma once

#include <string>

#include "failure.h"
#include "command_shell.h"

/// Does what a script says, "-" being standard input. Errors are told on standard error with the script's name and the line's number; the
/// first one ends the script, unless the shell keeps going.
/// @return the highest code of all errors
ExitCode run_script(CommandShell& shell, const std::string& path);
