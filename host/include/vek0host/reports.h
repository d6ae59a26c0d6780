#pragma once

#include <string>

#include "vek0host/drawingfile.h"
#include "vek0host/json.h"

namespace vek0::host {

/// The error as JSON: null, or {"kind", "line", "message"}, the kind in words. Line 0 if the file
/// cannot be read at all.
Json errorToJson(const ReadResult& result);

/// [{"code", "severity", "count", "line", "sample"}, ...] in the order of the file; line is null
/// for entries about the whole file.
Json reportToJson(const CFileReport& report);

/// "    loss: kind skipped 'MTEXT' (3 times, first at line 120)" for each report entry.
std::string reportToText(const CFileReport& report);
/// The same for entries about lost or changed content only.
std::string lossesToText(const CFileReport& report);

/// What `auditDXF` finds in a file that could be read. Reads it again, so that
/// `session.readsTwice` must be set if it may be the standard input.
CFileReport auditOf(const std::string& path, const Session& session);

/// One line of `vek0 check --json`: whether the file could be read, the error, the report and the
/// findings of the audit.
Json checkToJson(const std::string& path, const ReadResult& result, const CFileReport& audit);
/// The same as lines for humans.
std::string checkToText(const std::string& path, const ReadResult& result,
                        const CFileReport& audit);

}  // namespace vek0::host
