#include "control/file_format.h"

const trFileFormat trFileFormat::table[tr_unknown_file] = {{"mnx"}, {"mes"}, {"tri"}, {"stl"}, {"ast"}, {"kvx"}};
