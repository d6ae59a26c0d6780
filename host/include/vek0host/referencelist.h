#pragma once

#include <string>

#include "vek0host/drawingfile.h"
#include "vek0host/json.h"
#include "vek0host/references.h"

namespace vek0::host {

/// A drawing with all references that could be read.
struct ResolvedDrawing {
  /// Reads the drawing, and its references unless that fails. A failure to read the drawing itself
  /// is a failure of the session.
  ResolvedDrawing(const std::string& path, const ReferenceOptions& options, Session& session);

  const std::string path;
  const Drawing data;
  const ReadResult reading;
  ReferenceReader reader;
};

/// {"file", "ok", "error", "references", "report"}, the references with their names, paths, states,
/// files, numbers of inserts and the names of those that they show.
Json referencesToJson(const ResolvedDrawing& drawing, bool ok);
/// The same as lines for humans, without the report.
std::string referencesToText(const ResolvedDrawing& drawing);

/// The same keys, but each reference holds those that it shows. One that several others show is
/// followed once and marked as "repeated" elsewhere.
Json referenceTreeToJson(const ResolvedDrawing& drawing);
std::string referenceTreeToText(const ResolvedDrawing& drawing);

/// Which references cannot be shown and what reading the others lost, as lines for humans.
std::string referenceCheckToText(const ResolvedDrawing& drawing);

}  // namespace vek0::host
