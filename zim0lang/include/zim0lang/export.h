#pragma once

/// The string library is linked into vek0core or used on its own; either way its
/// symbols must stay visible when the rest is hidden.
#if defined(ZIM0LANG_STATIC) || defined(VEK0_STATIC)
#define ZIM0LANG_API
#elif defined(_WIN32)
#if defined(ZIM0LANG_BUILDING)
#define ZIM0LANG_API __declspec(dllexport)
#else
#define ZIM0LANG_API __declspec(dllimport)
#endif
#else
#define ZIM0LANG_API __attribute__((visibility("default")))
#endif
