#pragma once

#include <string>
#include <utility>
#include <vector>

#include "commands.h"
#include "drawingfile.h"
#include "vek0core/vek0core.h"

namespace vek0::tool {

/// Where the files of external references are looked for, beside the drawing's own folder.
struct ReferenceOptions {
  std::vector<std::string> searched, allowed;
};

void addReferenceOptions(CLI::App& verb, ReferenceOptions& options);

/// Reads what a drawing refers to.
class ReferenceReader {
 public:
  /// For the drawing `path` ("-": the standard input, which lies nowhere). `session` is
  /// borrowed.
  ReferenceReader(const std::string& path, const ReferenceOptions& options, const Session& session);

  /// Reads all references; answers how many are not loaded then.
  int resolve(CData& data) { return resolveXRefs(data, m_folders, m_options); }
  /// Reads one and what it refers to.
  bool resolve(CData& data, CBlockXRef& xref) {
    return resolveXRef(data, xref, m_folders, m_options);
  }

  /// What did not work, and what else is to be known.
  const CFileReport& report() const { return m_report; }
  /// How often something did not work.
  long failures() const;
  /// A line for each of these; empty when all is shown.
  std::string failuresToText() const;
  /// The drawings that were read, each with what its reading repaired or lost.
  using Readings = std::vector<std::pair<std::string, CFileReport>>;
  const Readings& readings() const { return m_readings; }

 private:
  CXRefFolders m_folders;
  CXRefOptions m_options;  // names the two below
  CFileReport m_report;
  Readings m_readings;
};

/// The references of a drawing, by where they come from.
struct References {
  explicit References(const CData& data);

  std::vector<CBlockXRef*> all;
  /// Those that the drawing itself refers to: that it inserts, or that no other one shows.
  std::vector<CBlockXRef*> own;
};

const char* nameOf(CBlockXRef::Status status);

/// "HOUSE (house.dxf)", with ", overlay" behind the path of one.
std::string toText(const CBlockXRef& xref);

}  // namespace vek0::tool
