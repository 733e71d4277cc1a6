#pragma once

/// Marks what crosses the border of a shared object. Everything else is built hidden.
#if defined(_WIN32)
#if defined(TARNEX_MEDIACORE_BUILD)
#define TARNEX_API __declspec(dllexport)
#else
#define TARNEX_API __declspec(dllimport)
#endif
#define TARNEX_TYPE
#else
#define TARNEX_API __attribute__((visibility("default")))
/// For types that are thrown or cast across shared objects: their type information has to agree.
#define TARNEX_TYPE __attribute__((visibility("default")))
#endif
