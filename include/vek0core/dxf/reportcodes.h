#pragma once

#include <string_view>

#include "vek0core/export.h"

/// Severity of a report entry.
enum class ReportSeverity {
  Note,    ///< the drawing matches the file
  Repair,  ///< the file violates the rules, but its meaning was clear
  Change,  ///< nearly the same appearance, but a different object: a curve became a chain
  Loss,    ///< something in the file is not in the drawing, nor in what is saved from it
};

/// The severity of a report code (see `CFileDXFIOptions`, `CXRefOptions` and `SaveDXF`); `Loss` for
/// unknown codes.
VEK0_API ReportSeverity severityOf(std::string_view code);

/// "note", "repair", "change" or "loss".
VEK0_API const char* nameOf(ReportSeverity severity);
