#pragma once

#include <string>
#include <utility>
#include <vector>

#include "vek0core/vek0core.h"
#include "vek0host/drawingfile.h"
#include "vek0host/session.h"

namespace vek0::host {

/// Where to look for files of external references, besides the drawing's own folder.
struct ReferenceOptions {
  std::vector<std::string> searched, allowed;
};

/// Reads the external references of a drawing.
class ReferenceReader {
 public:
  /// For the drawing `path` ("-": the standard input, which has no folder). `session` is
  /// borrowed.
  ReferenceReader(const std::string& path, const ReferenceOptions& options, const Session& session);

  /// Reads all references; returns the number that are not loaded afterwards.
  int resolve(CData& data) { return resolveXRefs(data, m_folders, m_options); }
  /// Reads one and its nested references.
  bool resolve(CData& data, CBlockXRef& xref) {
    return resolveXRef(data, xref, m_folders, m_options);
  }

  /// The failures and other notes.
  const CFileReport& report() const { return m_report; }
  /// Number of failures.
  long failures() const;
  /// One line per failure; empty if there are none.
  std::string failuresToText() const;
  /// The drawings that were read, each with what its reading repaired or lost.
  using Readings = std::vector<std::pair<std::string, CFileReport>>;
  const Readings& readings() const { return m_readings; }

 private:
  CXRefFolders m_folders;
  CXRefOptions m_options;  // refers to the two below
  CFileReport m_report;
  Readings m_readings;
};

/// The references of a drawing, by where they come from.
struct References {
  explicit References(const CData& data);

  std::vector<CBlockXRef*> all;
  /// Direct references: those that the drawing inserts, or that no other one shows.
  std::vector<CBlockXRef*> own;
};

const char* nameOf(CBlockXRef::Status status);

/// "HOUSE (house.dxf)", with ", overlay" after the path of an overlay.
std::string toText(const CBlockXRef& xref);

}  // namespace vek0::host
