#pragma once

#include <memory>
#include <string>

#include "vek0core/dxf/in/filedxfierror.h"
#include "vek0core/dxf/in/filedxfilexer.h"
#include "vek0core/dxf/in/filedxfioptions.h"
#include "vek0core/dxf/in/filedxfisemantor.h"
#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/tables/handle.h"
#include "zim0lang/wstring.h"

class IFile;

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
  bool isCancelled() const;
  /// `CFileDXFIResult::isOutdated`; the reading is then canceled, too.
  bool isOutdated() const;
  /// `$ACADVER` as stated in the file; empty if missing.
  const zim::WString& getVersionName() const;
  /// `$INSUNITS` and `$MEASUREMENT`; 0 and -1 if missing.
  long getUnits() const;
  long getMeasurement() const;
  /// `$INSBASE`; the origin if missing.
  const PNT_3D& getInsertionBase() const;
  vek0::Handle getHandleSeed() const;  ///< `$HANDSEED`; 0 or less if there is none
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
  struct Sections;
  using ReadSection = void (CFileDXFIParser::*)();

  void noteForm();
  bool toSection();
  void seekSection();
  bool isSectionOrEnd() const;
  void readFragment();
  void readLooseBlock();
  void readEnd();
  ReadSection findSection() const;
  void readSection();
  void readFurtherSection();
  void readObjects();
  /// Chooses the version loader; called by the first section that needs it.
  void RealizeVersion();

  IFile& m_file;
  CFileDXFIError m_ownErr;  // used if the caller passes no record
  CFileDXFIError& m_err;
  CFileDXFILexer m_lexer;
  IFileDXFISemantor& m_semantor;
  CFileDXFIOptions m_options;
  CEntFactory& m_factory;
  std::unique_ptr<Sections> m_sections;
  bool m_isDrawing = false;  // a section was found
};
