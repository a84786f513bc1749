#pragma once

#include <iosfwd>

#include "platform/utilities/export.h"

/// Where every text of the library goes: the standard output until the host redirects it. Usable from global objects.
MENDEX_EXPORT std::ostream& tr_out();
/// Redirects all texts; the stream stays the host's and must outlive its use. Null restores the standard output.
MENDEX_EXPORT void tr_set_output(std::ostream* stream);

/// The host's translation of a text, or the text itself, also where the hook has none and returns null. Every message and format
/// passes through before it is used. A translated format must take the same values.
__attribute__((format_arg(1))) MENDEX_EXPORT const char* tr_brnknls(const char* text);
/// Registers the translation; null unregisters it.
MENDEX_EXPORT void tr_set_brnknls_function(const char* (*hook)(const char*));
/// The identity, for hosts that want an explicit hook.
MENDEX_EXPORT const char* tr_dummy_brnknls(const char* text);
