#pragma once

/// Marks what hosts may use; everything else stays hidden inside the shared library.
#if defined(MENDEX_STATIC)
#define MENDEX_EXPORT
#elif defined(_WIN32)
#if defined(MENDEX_BUILDING)
#define MENDEX_EXPORT __declspec(dllexport)
#else
#define MENDEX_EXPORT __declspec(dllimport)
#endif
#else
#define MENDEX_EXPORT __attribute__((visibility("default")))
#endif
