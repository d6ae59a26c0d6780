#pragma once

#include "dxf/in/records/entityreaders.h"
#include "dxf/in/records/ltypereader.h"

namespace vek0::detail {

/// Reads what differs between the versions of the format, with one class per version.
class CFileDXFIVersionLoader {
 public:
  virtual ~CFileDXFIVersionLoader() = default;

  /// Reads one entry of the LTYPE table, at whose group 0 the lexer is positioned.
  virtual void readLtype() = 0;
  /// As `LtypeReader::settle`.
  void settleLtypes(const LtypeReader::FindStyle& find) { m_ltypes.settle(find); }
  /// Reads the entity at whose group 0 the lexer is positioned. The caller owns it; null if it was
  /// skipped or an error is recorded. Further entities of the record are in `getFurther`.
  virtual CEnt* readEntity() = 0;

  std::vector<EntPtr>& getFurther() { return m_entities.records.further; }
  /// Handle in the file of the entity that was read last, see `RecordReader::handle`.
  vek0::Handle getHandle() const { return m_entities.records.handle(); }
  /// Whether any insert was read.
  bool hasReadInsert() const { return m_entities.records.insertRead; }
  /// The reader of clip boundaries.
  ClipReader& getClips() { return m_entities.clips; }
  /// Whether the contents of sheets are read.
  bool keepsSheets() const { return m_entities.records.keepsSheets(); }
  /// Whether the entity that was read last is on a sheet that is read, and is not in a block.
  bool isOnSheet() const { return keepsSheets() && m_entities.records.frame().onPaper; }
  /// Name of the layout of that sheet; empty for the current one.
  const zim::WString& getLayout() const { return m_entities.records.layout(); }
  /// The viewports read so far, which the caller takes.
  std::vector<ReadViewport>& getViewports() { return m_entities.viewports; }
  /// Declares that the next entities belong to a block; null if it is new. `sheet` is its name if
  /// it holds a sheet, empty otherwise.
  void enterBlock(const CBlock* block, const zim::WString& sheet) {
    m_entities.records.inBlock = true;
    m_entities.records.owner = block;
    m_entities.records.sheet = sheet;
    m_entities.records.sheetUsed[1] = false;
  }
  /// Ends the block; returns whether it was a non-empty sheet.
  bool leaveBlock() {
    m_entities.records.inBlock = false;
    m_entities.records.owner = nullptr;
    m_entities.records.sheet = zim::WString();
    return m_entities.records.sheetUsed[1];
  }
  /// Whether the sheet that is not a block has any content.
  bool isSheetUsed() const { return m_entities.records.sheetUsed[0]; }
  /// Declares the end of a BLOCKS section.
  void endBlocks() { m_entities.records.blocksRead = true; }

 protected:
  CFileDXFIVersionLoader(const ReadContext& context, bool complexDashes)
      : m_ltypes(context, complexDashes), m_entities(context) {}

  LtypeReader m_ltypes;
  EntityReader m_entities;
};

/// R12, and files that state no version.
class CFileDXFIVersionLoaderR12 : public CFileDXFIVersionLoader {
 public:
  explicit CFileDXFIVersionLoaderR12(const ReadContext& context)
      : CFileDXFIVersionLoader(context, false) {}
  void readLtype() override { m_ltypes.read(); }
  CEnt* readEntity() override { return m_entities.read(EntityKinds::R12).release(); }
};

class CFileDXFIVersionLoaderAC1012 : public CFileDXFIVersionLoaderR12 {
 public:
  using CFileDXFIVersionLoaderR12::CFileDXFIVersionLoaderR12;
};

class CFileDXFIVersionLoaderAC1014 : public CFileDXFIVersionLoader {
 public:
  explicit CFileDXFIVersionLoaderAC1014(const ReadContext& context)
      : CFileDXFIVersionLoader(context, true) {}
  void readLtype() override { m_ltypes.read(); }
  CEnt* readEntity() override { return m_entities.read(EntityKinds::AC1014).release(); }
};

class CFileDXFIVersionLoaderAC1015 : public CFileDXFIVersionLoaderAC1014 {
 public:
  using CFileDXFIVersionLoaderAC1014::CFileDXFIVersionLoaderAC1014;
};

/// Any version, for tolerant reading.
class CFileDXFIVersionLoaderTolerant : public CFileDXFIVersionLoader {
 public:
  explicit CFileDXFIVersionLoaderTolerant(const ReadContext& context)
      : CFileDXFIVersionLoader(context, true) {}
  void readLtype() override { m_ltypes.read(); }
  CEnt* readEntity() override { return m_entities.read(EntityKinds::All).release(); }
};

/// The loader of a version number: 0 none stated, 1 R12, 2 AC1012, 3 AC1014, 4 AC1015; null for any
/// other.
std::unique_ptr<CFileDXFIVersionLoader> createVersionLoader(short version,
                                                            const ReadContext& context);

}  // namespace vek0::detail
