// What the shared libraries show to the linker. Everything else is hidden: an exported symbol is
// part of the binary interface and carries one of these two marks.
#pragma once

/// Marks a symbol of libBrindlePlatform.so that clients link against.
#define BRINDLE_PLATFORM_EXPORT __attribute__((visibility("default")))

/// Marks a symbol of libBrindle.so that clients link against.
#define BRINDLE_EXPORT __attribute__((visibility("default")))

/// Marks a template's static data that every library keeps for itself. A default visibility would
/// make it one symbol for the whole process, which the loader can never unload.
#define BRINDLE_LOCAL __attribute__((visibility("hidden")))

// Assertions check every send against the method found. They follow NDEBUG unless told otherwise.
#if !defined(BRINDLE_ASSERTIONS)
#if defined(NDEBUG)
#define BRINDLE_ASSERTIONS 0
#else
#define BRINDLE_ASSERTIONS 1
#endif
#endif
