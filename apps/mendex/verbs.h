#pragma once

#include <string>

#include "mesh_format.h"

class CommandLine;

// Each adds a verb of the program to its command line.
void add_info_verb(CommandLine& line);     // statistics and mass properties
void add_check_verb(CommandLine& line);    // what is wrong
void add_repair_verb(CommandLine& line);   // all that follows, in order, with an account
void add_weld_verb(CommandLine& line);     // read, merge, drop what collapses, write
void add_stitch_verb(CommandLine& line);   // join boundaries
void add_fill_verb(CommandLine& line);     // close holes by fans
void add_cap_verb(CommandLine& line);      // close holes by good triangles
void add_clean_verb(CommandLine& line);    // delete what should not be there
void add_orient_verb(CommandLine& line);   // turn triangles over
void add_swap_verb(CommandLine& line);     // better diagonals
void add_transform_verb(CommandLine& line);  // scale, turn, move
void add_renumber_verb(CommandLine& line);   // close the gaps in the numbers
void add_slice_verb(CommandLine& line);    // keep one side of a plane
void add_section_verb(CommandLine& line);  // outlines of cuts
void add_convert_verb(CommandLine& line);  // read and write in the format that the output's name asks for
void add_shell_verb(CommandLine& line);    // command by command
void add_run_verb(CommandLine& line);      // the same from a script
void add_formats_verb(CommandLine& line);  // what can be read and written

/// All of them, in the order of the help.
void add_verbs(CommandLine& line);

/// The format that an output's name asks for; throws, naming what can be written, when there is none.
MeshFormat output_format(const std::string& path);
