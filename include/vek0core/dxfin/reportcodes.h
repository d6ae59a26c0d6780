#pragma once

#include <string_view>

#include "vek0core/export.h"

/// How much an entry of a report matters.
enum class ReportSeverity {
  Note,    ///< the drawing is what the file says
  Repair,  ///< the file says something else than the rules allow, and its meaning was plain
  Change,  ///< what is seen is nearly the same, but it is another thing: a curve became a chain
  Loss,    ///< something that the file holds is not in the drawing, nor in what is saved of it
};

/// The severity of a code that reading or saving notes (see `CFileDXFIOptions`, `CXRefOptions` and
/// `SaveDXF`); `Loss` for codes that are not known.
VEK0_API ReportSeverity severityOf(std::string_view code);

/// "note", "repair", "change" or "loss".
VEK0_API const char* nameOf(ReportSeverity severity);
