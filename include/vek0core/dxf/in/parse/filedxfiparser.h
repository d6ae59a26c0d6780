#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "vek0core/dxf/in/filedxfierror.h"
#include "vek0core/dxf/in/filedxfilexer.h"
#include "vek0core/dxf/in/filedxfioptions.h"
#include "vek0core/dxf/in/filedxfisemantor.h"
#include "vek0core/export.h"
#include "vek0core/files/reportcode.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/tables/handle.h"
#include "zim0lang/wstring.h"

class CLayer;
class IFile;

namespace vek0::detail {
class CFileDXFIVersionLoader;
class DimStyles;
class DroppedObjects;
}  // namespace vek0::detail

/// Reads a text DXF file section by section and passes what it recognizes to a semantor, skipping
/// the rest.
///
/// A parser reads one file, once. File, semantor, factory, error record and report are borrowed.
/// Reading stops at the first error.
class VEK0_API CFileDXFIParser {
 public:
  /// A failure as an exception type, for hosts that want to throw. The reader itself reports
  /// through `CFileDXFIError` and never throws.
  class FileDXFException {
   public:
    FileDXFException(const zim::WString& file, long number, long line, long param1, long param2)
        : m_file(file), m_number(number), m_line(line), m_param1(param1), m_param2(param2) {}
    const zim::WString& getErrorFile() const { return m_file; }
    long getErrorNumber() const { return m_number; }
    long getErrorLine() const { return m_line; }
    long getParam1() const { return m_param1; }
    long getParam2() const { return m_param2; }

   private:
    zim::WString m_file;
    long m_number, m_line, m_param1, m_param2;
  };

  CFileDXFIParser(IFile& file, IFileDXFISemantor& semantor, CEntFactory& factory,
                  CFileDXFIError* err, const CFileDXFIOptions& options = {});
  CFileDXFIParser(const CFileDXFIParser&) = delete;
  CFileDXFIParser& operator=(const CFileDXFIParser&) = delete;
  virtual ~CFileDXFIParser();

  /// Opens the file, clears the error record, reads and closes the file. Returns false without an
  /// error if the file cannot be opened, and false with one after a failure: the record then holds
  /// kind, line and file name. Running out of memory is error 1.
  bool load();

  /// Whether the host canceled the reading (`CFileDXFIOptions::progress`).
  bool isCancelled() const { return m_cancelled; }
  /// `$ACADVER` as stated in the file; empty if missing.
  const zim::WString& getVersionName() const { return m_versionName; }
  /// `$INSUNITS` and `$MEASUREMENT`; 0 and -1 if missing.
  long getUnits() const { return m_units; }
  long getMeasurement() const { return m_measurement; }
  /// `$INSBASE`; the origin if missing.
  const PNT_3D& getInsertionBase() const { return m_insertionBase; }
  /// The encoding used to decode the file.
  std::string getEncodingName() const { return m_lexer.getEncodingName(); }

 protected:
  bool doLoad();
  void readGlobal();

  void readHeader();
  void readHeaderString(const zim::WString& name, const zim::WString& value);
  void readHeaderDouble(const zim::WString& name, const double (&value)[3]);
  void readHeaderLong(const zim::WString& name, long value);

  void readTables();
  /// Skips a table's own pairs, up to its first entry.
  void readPreambolo();
  void readTablesLtype();
  void readTablesLayer();
  void readTablesStyle();
  void readTablesOther();

  void readBlocks();
  void readEntities();
  /// Reads one entity record. The caller owns the entity; null if the record yields none. Further
  /// entities of the record are queued in the version loader.
  CEnt* readAnEntity();
  /// Skips the current record.
  void readEntityOther();
  void readOtherSection();

  // Shortcuts to the lexer.
  long read() { return m_lexer.read(); }
  long getGroupValue() const { return m_lexer.getGroupValue(); }
  const SmartString& getString() const { return m_lexer.getString(); }
  double getDouble() const { return m_lexer.getDouble(); }
  long getInt() const { return m_lexer.getInt(); }
  vek0::Handle getHex() const { return m_lexer.getHex(); }

 private:
  struct HeaderValue;
  struct LayerEntry;
  struct StyleEntry;
  struct BlockHeader;
  class OwnedEntities;
  using ReadEntry = void (CFileDXFIParser::*)();
  using ReadSection = void (CFileDXFIParser::*)();

  void RealizeVersion();
  void noteSetting(ReportCode code, const zim::WString& name);
  void takeVersion(const zim::WString& name);
  void takeCodePage();
  void noteForm();
  void readHeaderVariable();
  void collect(long code, HeaderValue& value);
  void readHeaderValue(const zim::WString& name, const HeaderValue& value);
  void takeCurrentItems();
  void readSection();
  void readObjects();
  void noteSection();
  void readTable();
  bool toSection();
  bool isSectionOrEnd() const;
  ReadSection findSection() const;
  void readFragment();
  void addEntity();
  void readEnd();
  void nextRecord();
  void dropVariable(const zim::WString& name);
  long readFlags();
  void placeLayer(const LayerEntry& layer);
  void settleLayers();
  bool isBlockCut();
  bool isLayoutName(const zim::WString& name) const;
  bool isTimeToStop();
  void readEntries(std::string_view keyword, ReadEntry readEntry);
  void readLtypeEntry();
  void readDimStyleEntry();
  void readBlockRecordEntry();
  void readLayerEntry();
  void readLayerPair(long code, LayerEntry& layer);
  void leaveOutOfLayer(long code, LayerEntry& layer);
  void createLayer(LayerEntry& layer);
  void readStyleEntry();
  void readStylePair(long code, StyleEntry& style);
  void takeStyleNumber(double least, double most, StyleEntry& style, double& target);
  void createStyle(const StyleEntry& style);
  void readBlock();
  void readBlockHeader(BlockHeader& block);
  void readBlockEntities(OwnedEntities& entities);
  void createBlock(const BlockHeader& block, OwnedEntities& entities);
  void add(std::unique_ptr<CEnt> ent);
  void skipTo(std::string_view keyword);

  bool isTolerant() const { return m_options.policy.tolerant; }
  /// Under the tolerant policy, downgrades an error to a report entry; false if there was none, or
  /// a fatal one.
  bool forgive(ReportCode code, const zim::WString& sample);
  /// The same for an error in the current value, which is not a number: the pair is dropped.
  bool spareNumber();
  /// The same for an error in a record; continues with the next record.
  bool recover(ReportCode code, const zim::WString& sample);
  /// Under the tolerant policy, skips the current record, which is misplaced, whether or not there
  /// is an error.
  bool passRecord();
  /// Whether the current record ends the section; one that begins the next, or ends the
  /// file, does so under the tolerant policy and is left for `nextRecord`.
  bool atSectionEnd();
  bool isPending() const { return isKeyword("SECTION") || isKeyword("EOF"); }
  void note(ReportCode code, const zim::WString& sample = {}) const;

  bool failed() const { return m_err.HasAnError(); }
  void fail(CFileDXFIError::TDXFErrors kind) { m_err.SetError(kind); }
  bool isKeyword(std::string_view keyword) const { return m_lexer.isKeyword(keyword); }
  /// Reads a pair, which must have this group code: otherwise error 13.
  bool expect(long code);
  /// Whether the current pair begins a record and no error is recorded: otherwise error 13.
  bool atRecord();

  IFile& m_file;
  CFileDXFIError m_ownErr;  // used if the caller passes no record
  CFileDXFIError& m_err;
  CFileDXFILexer m_lexer;
  IFileDXFISemantor& m_semantor;
  CFileDXFIOptions m_options;
  zim::WString m_curLtype = u"ByLayer", m_curLayer = u"0", m_curStyle = u"Standard";
  bool m_blocksMeasured = false;
  bool m_pending = false;  // the current record was left for `nextRecord`
  bool m_isDrawing = false;
  bool m_cancelled = false;
  long m_units = 0, m_measurement = -1;
  PNT_3D m_insertionBase{0, 0, 0};
  long m_entities = 0;                                        // read so far
  std::string m_kind;                                         // of the entity being read, as bytes
  std::vector<std::pair<CLayer*, zim::WString>> m_unsettled;  // layers of unknown linetypes
  short m_version = 0;                                        // 0 none seen, 1 R12 ... 4 AC1015
  zim::WString m_versionName, m_codePageName;
  CEntFactory& m_factory;
  std::unique_ptr<vek0::detail::DimStyles> m_dimStyles;
  std::unique_ptr<vek0::detail::DroppedObjects> m_dropped;
  // Handle of the sheet record whose entities do not belong to a block.
  std::uint64_t m_activeSheet = 0;
  std::unique_ptr<vek0::detail::CFileDXFIVersionLoader> m_pACADVersionLoader;
  long m_faultLine = 0;  // 0: the error is at the lexer's current line
};
