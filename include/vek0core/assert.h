#pragma once

#include "vek0core/export.h"

/// Told about a failed internal check: the source path relative to the project,
/// the line and the condition's text. When it returns, the library goes on as
/// safely as it can and reports the failure as it reports any other.
using AssertHandler = void (*)(const char* file, int line, const char* condition);

/// Installs `handler` for the whole process and returns the one before it. Null
/// restores the default, which prints "%s:%d assertion failure:\n%s" to the
/// error stream and terminates the process. Not safe against concurrent calls.
VEK0_API AssertHandler setAssertHandler(AssertHandler handler);

/// Hands a failed check to the installed handler; `ZORA_ASSERT` calls it.
VEK0_API void assertionFailed(const char* file, int line, const char* condition);

/// Internal consistency check, active in every build. For our own mistakes only:
/// what a file's contents can cause is recorded as an error instead.
#define ZORA_ASSERT(condition) \
  ((condition) ? static_cast<void>(0) : assertionFailed(__FILE__, __LINE__, #condition))
