#pragma once

#include <memory>
#include <string>

#include "dxf/in/parse/draworder.h"
#include "dxf/in/parse/sectioninput.h"
#include "dxf/in/parse/sheets.h"

namespace vek0::detail {

/// Reads the ENTITIES section, and the entities of blocks one by one. Counts both: the host's limit
/// and its progress callback apply to their sum.
class EntitiesSection {
 public:
  /// All are borrowed.
  EntitiesSection(SectionInput& in, Sheets& sheets, DrawOrder& order,
                  const CFileDXFIOptions& options)
      : m_in(in), m_sheets(sheets), m_order(order), m_options(options) {}

  /// Reads the pairs after the section's name, up to its end.
  void read();
  /// Reads one record and adds its entities to the drawing.
  void addOne();
  /// Reads one record. Null if it yields no entity; further ones are queued in the version loader.
  EntPtr readOne();

  /// Whether `addOne` has added an entity.
  bool hasAdded() const { return m_hasAdded; }
  bool isCancelled() const { return m_isCancelled; }

  /// Stops the reading if entities have passed (`CFileDXFIOptions::onPassing`): what follows may
  /// define them anew.
  void endPassing();
  bool isOutdated() const { return m_isOutdated; }

 private:
  void add(EntPtr ent);
  void note(const CEnt& ent, long line);
  bool isTimeToStop();

  SectionInput& m_in;
  Sheets& m_sheets;
  DrawOrder& m_order;
  const CFileDXFIOptions& m_options;
  bool m_hasAdded = false;
  bool m_isCancelled = false;
  bool m_isOutdated = false;
  long m_count = 0;    // of records read so far
  std::string m_kind;  // of the entity being read, as bytes; kept to reuse its memory
};

}  // namespace vek0::detail
