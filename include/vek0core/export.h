#pragma once

/// Symbols are hidden by default; VEK0_API exports the public interface. A static build needs no
/// decoration; the CMake target defines VEK0_STATIC for its consumers.
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
