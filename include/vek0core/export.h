#pragma once

/// Symbols are hidden by default; what carries VEK0_API is the library's interface.
/// A static build needs no decoration, and consumers of one define VEK0_STATIC
/// through the CMake target.
#if defined(VEK0_STATIC)
#define VEK0_API
#elif defined(_WIN32)
#if defined(VEK0_BUILDING)
#define VEK0_API __declspec(dllexport)
#else
#define VEK0_API __declspec(dllimport)
#endif
#else
#define VEK0_API __attribute__((visibility("default")))
#endif
