#pragma once

#include <string>

#include "section_files.h"
#include "session.h"

/// How outlines are written; `none` stands for no file.
enum class SectionFormat { none, picture, svg, json };

/// The format that a file's name asks for; throws when there is none, or when it does not take so many heights.
SectionFormat section_format_of(const std::string& path, std::size_t heights);

/// Writes outlines of the session's mesh in the format of the file's name. Throws, with the target untouched, when that fails or on
/// interruption.
void write_sections(Session& session, const std::string& path, const SectionDrawing& drawing);
