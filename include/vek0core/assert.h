#pragma once

#include "vek0core/export.h"

/// Called when an internal check fails, with the source path relative to the project, the line and
/// the condition's text. If it returns, the library continues as safely as it can and reports the
/// failure as it reports any other.
using AssertHandler = void (*)(const char* file, int line, const char* condition);

/// Installs `handler` process-wide and returns the previous one. Null restores the default, which
/// prints "%s:%d assertion failure:
/// %s" to the error stream and terminates the process. Not safe against concurrent calls.
VEK0_API AssertHandler setAssertHandler(AssertHandler handler);

/// Hands a failed check to the installed handler; `ZORA_ASSERT` calls it.
VEK0_API void assertionFailed(const char* file, int line, const char* condition);

/// Internal consistency check, active in every build. For programming errors only: anything that a
/// file's contents can cause is reported as an error instead.
#define ZORA_ASSERT(condition) \
  ((condition) ? static_cast<void>(0) : assertionFailed(__FILE__, __LINE__, #condition))
