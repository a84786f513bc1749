#pragma once

#include <iosfwd>

#include "platform/utilities/export.h"

/// The stream that every text of the library goes to: the standard output until a host replaces it. Works before main as well.
MENDEX_EXPORT std::ostream& tr_out();

/// Replaces the stream; a null pointer brings the standard output back. The library never closes or deletes it, so it must live
/// until it is replaced or the process ends.
MENDEX_EXPORT void tr_set_output(std::ostream* stream);

/// Turns a text into the host's language: what the registered hook returns for it, or the text itself without a hook (or when the
/// hook has no answer and returns null). Every text and every format string of the library passes through here before it is used;
/// a translated format must take the same arguments.
MENDEX_EXPORT const char* tr_brnknls(const char* text);

/// Registers the translation hook; a null pointer unregisters it.
MENDEX_EXPORT void tr_set_brnknls_function(const char* (*hook)(const char*));

/// The text unchanged: a hook for hosts that want to register one explicitly.
MENDEX_EXPORT const char* tr_dummy_brnknls(const char* text);
