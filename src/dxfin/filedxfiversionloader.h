#pragma once

#include "dxfin/entityreaders.h"
#include "dxfin/ltypereader.h"

namespace vek0::detail {

/// Reads what differs between the versions of the format: one class a version.
class CFileDXFIVersionLoader {
 public:
  virtual ~CFileDXFIVersionLoader() = default;

  /// Reads one entry of the LTYPE table, on whose group 0 the lexer stands.
  virtual void readLtype() = 0;
  /// Reads one entity likewise. Null when it was skipped or an error is recorded;
  /// the caller owns it. Further entities of the record are in `getFurther`.
  virtual CEnt* readEntity() = 0;

  std::vector<EntPtr>& getFurther() { return m_entities.records.further; }
  /// Whether any insert was read.
  bool hasReadInsert() const { return m_entities.records.insertRead; }
  /// Reads what clips inserts.
  ClipReader& getClips() { return m_entities.clips; }
  /// Tells that the next entities belong to a block; null when it is new. `sheet` is the name of
  /// one that holds a sheet, which is not read; empty for any other.
  void enterBlock(const CBlock* block, const zim::WString& sheet) {
    m_entities.records.inBlock = true;
    m_entities.records.owner = block;
    m_entities.records.sheet = sheet;
    m_entities.records.sheetUsed[1] = false;
  }
  /// Whether it was a sheet that something stands on.
  bool leaveBlock() {
    m_entities.records.inBlock = false;
    m_entities.records.owner = nullptr;
    m_entities.records.sheet = zim::WString();
    return m_entities.records.sheetUsed[1];
  }
  /// Whether anything stands on the sheet that is not a block.
  bool isSheetUsed() const { return m_entities.records.sheetUsed[0]; }
  /// Tells that a section of blocks is over.
  void endBlocks() { m_entities.records.blocksRead = true; }

 protected:
  CFileDXFIVersionLoader(const ReadContext& context, bool complexDashes)
      : m_ltypes(context, complexDashes), m_entities(context) {}

  LtypeReader m_ltypes;
  EntityReader m_entities;
};

/// R12, and files that name no version.
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

/// Any version, for files that are not taken at their word.
class CFileDXFIVersionLoaderTolerant : public CFileDXFIVersionLoader {
 public:
  explicit CFileDXFIVersionLoaderTolerant(const ReadContext& context)
      : CFileDXFIVersionLoader(context, true) {}
  void readLtype() override { m_ltypes.read(); }
  CEnt* readEntity() override { return m_entities.read(EntityKinds::All).release(); }
};

/// The loader of a version number: 0 none named, 1 R12, 2 AC1012, 3 AC1014, 4
/// AC1015; null for any other.
std::unique_ptr<CFileDXFIVersionLoader> createVersionLoader(short version,
                                                            const ReadContext& context);

}  // namespace vek0::detail
