#pragma once

/// Makes a function or a class visible outside its shared object. All other symbols are hidden.
#if defined(_WIN32)
#if defined(TARNEX_MEDIACORE_BUILD)
#define TARNEX_API __declspec(dllexport)
#else
#define TARNEX_API __declspec(dllimport)
#endif
#define TARNEX_TYPE
#else
#define TARNEX_API __attribute__((visibility("default")))
/// For types that are thrown or cast across shared objects: all must see one type information.
#define TARNEX_TYPE __attribute__((visibility("default")))
#endif
