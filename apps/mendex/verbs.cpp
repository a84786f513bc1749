#include "verbs.h"

void add_verbs(CommandLine& line) {
  add_info_verb(line);
  add_check_verb(line);
  add_repair_verb(line);
  add_weld_verb(line);
  add_stitch_verb(line);
  add_fill_verb(line);
  add_cap_verb(line);
  add_clean_verb(line);
  add_orient_verb(line);
  add_swap_verb(line);
  add_transform_verb(line);
  add_renumber_verb(line);
  add_slice_verb(line);
  add_section_verb(line);
  add_convert_verb(line);
  add_shell_verb(line);
  add_run_verb(line);
  add_formats_verb(line);
}
