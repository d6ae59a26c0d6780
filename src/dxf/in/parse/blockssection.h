#pragma once

#include <cstdint>

#include "dxf/in/parse/droppedobjects.h"
#include "dxf/in/parse/entitiessection.h"
#include "dxf/in/parse/sectioninput.h"

namespace vek0::detail {

/// Reads the BLOCKS section. The blocks that hold the contents of layouts are no blocks of the
/// drawing.
class BlocksSection {
 public:
  /// All are borrowed.
  BlocksSection(SectionInput& in, EntitiesSection& entities, Sheets& sheets,
                DroppedObjects& dropped)
      : m_in(in), m_entities(entities), m_sheets(sheets), m_dropped(dropped) {}

  /// Reads the pairs after the section's name, up to its end.
  void read();
  /// Reads one block, at whose group 0 the lexer is positioned.
  void readBlock();

  /// Handle of the sheet record whose entities do not belong to a block.
  std::uint64_t getActiveSheet() const { return m_activeSheet; }

 private:
  struct Header;
  class OwnedEntities;

  void takePair(long code, Header& block);
  void readHeader(Header& block);
  void readContent(OwnedEntities& entities);
  bool isBlockCut();
  bool isLayoutName(const zim::WString& name) const;
  void create(const Header& block, OwnedEntities& entities);

  SectionInput& m_in;
  EntitiesSection& m_entities;
  Sheets& m_sheets;
  DroppedObjects& m_dropped;
  bool m_isMeasured = false;
  std::uint64_t m_activeSheet = 0;
};

}  // namespace vek0::detail
