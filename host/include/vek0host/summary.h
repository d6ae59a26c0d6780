#pragma once

#include <string>

#include "vek0host/drawingfile.h"
#include "vek0host/entitycounts.h"
#include "vek0host/json.h"

namespace vek0::host {

/// What `info` says about model space, gathered without keeping it.
class ModelSummary {
 public:
  ModelSummary();
  /// That of a drawing.
  explicit ModelSummary(CData& data);

  void add(CEnt& ent);
  /// Adds the entities of the drawing's model space.
  void addAll(CData& data);

  const EntityCounts& counts() const { return m_counts; }
  /// Without entities on frozen layers, as `CEntTable::getBdry`.
  const RECT_3D& extents() const { return m_extents; }
  bool isEmpty() const { return m_isEmpty; }

 private:
  EntityCounts m_counts;
  RECT_3D m_extents;
  bool m_isEmpty = true;
};

/// Reads a drawing to summarize it, in bounded memory where `passFile` allows that.
ReadResult summarizeFile(Drawing& data, ModelSummary& model, const std::string& path,
                         const Session& session);

/// Everything `vek0 info --json` prints of one file. For a failed file, initial items are listed
/// only if they are used.
Json summaryToJson(const std::string& path, CData& data, const ReadResult& result,
                   const ModelSummary& model);

/// The same as human-readable text of several lines, with the variables and what was skipped.
std::string summaryToText(const std::string& path, CData& data, const ReadResult& result,
                          const ModelSummary& model);

}  // namespace vek0::host
