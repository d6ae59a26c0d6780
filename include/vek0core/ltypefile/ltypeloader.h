#pragma once

#include <string>

#include "vek0core/export.h"
#include "vek0core/files/file.h"
#include "vek0core/files/report.h"
#include "vek0core/files/smartstring.h"
#include "vek0core/tables/ltype.h"
#include "vek0core/tables/nameditemtable.h"

class CStyle;
class CStyleTable;

/// Reads and writes linetype definition files, see docs/formats/lin.md.
///
/// The loaded linetypes stay in the loader's own table; `addLtypes` copies them into a drawing.
/// Their texts refer to styles of the given style table, which must outlive the loader, as must the
/// factory.
///
/// No file content is an error: anything malformed is skipped or read as 0 and listed in the report
/// of the last `Load` or `Save`.
class VEK0_API CLtypeLoader {
 public:
  /// Result of the last `Load` or `Save`.
  enum Status {
    Idle,         ///< none yet
    Done,         ///< the file was read or written to its end
    NotOpened,    ///< it could not be opened
    ReadFailed,   ///< reading was interrupted; the table holds what was read until then
    WriteFailed,  ///< not everything could be written
    NoMemory      ///< the same, because memory ran out
  };

  /// Supplies styles that are not in the style table.
  class VEK0_API IErrorNotifier {
   public:
    virtual ~IErrorNotifier() = default;
    /// Returns the style for texts with this style name; null for none. It must live as long as
    /// those of the style table. Called for every such text.
    virtual CStyle* Notify(const zim::WString& styleName) = 0;
  };

  /// Reads the significant lines of a definition file: no comments, no empty lines.
  class VEK0_API CFileLtypeLexer {
   public:
    /// The file must be open, is read by lines and must outlive the lexer.
    explicit CFileLtypeLexer(IFile& file) : m_file(file) {}
    CFileLtypeLexer(const CFileLtypeLexer&) = delete;
    CFileLtypeLexer& operator=(const CFileLtypeLexer&) = delete;

    /// Advances to the next line; false at the end of the file and after a failure.
    bool Read();
    /// The current line without trailing blanks, valid until the next `Read`; empty
    /// before the first and after the last.
    SmartString GetString() const { return m_line.c_str(); }
    /// Number of the current line, from 1; every line of the file counts.
    long GetLine() const { return m_lineNo; }

   private:
    static constexpr long kBufferUnits = 8192;

    bool readWholeLine();

    IFile& m_file;
    zim::Char m_buffer[kBufferUnits];  // longer lines are assembled from several reads
    long m_lineNo = 0;
    std::u16string m_line;
  };

  CLtypeLoader(const CStyleTable& styles, CLtypeFactory& factory)
      : m_styles(styles), m_factory(factory) {}
  /// The copy has its own copies of the linetypes, and the source's notifier. Throws
  /// `std::bad_alloc` when out of memory for them.
  CLtypeLoader(const CLtypeLoader& src);
  CLtypeLoader& operator=(const CLtypeLoader&) = delete;
  virtual ~CLtypeLoader() = default;

  /// Borrowed; null, the default, for none.
  void SetNotifier(IErrorNotifier* notifier) { m_notifier = notifier; }

  /// Clears the table and fills it from the file. Always returns 0: see `GetStatus` and
  /// `GetNoLtype` for the result. Names may repeat. Null opens nothing.
  int Load(const zim::Char* path);
  /// The same from a file of the host, passed closed and left closed.
  int Load(IFile& file);

  /// Writes every linetype of the table, replacing the file. Dash lengths read back exactly, the
  /// numbers of a text are written with six decimals.
  void Save(const zim::Char* path);
  /// The same to a file of the host, passed closed and left closed.
  void Save(IFile& file);

  Status GetStatus() const { return m_status; }
  /// Lists what the last `Load` or `Save` skipped or changed, under the codes of linetype files.
  const CFileReport& GetReport() const { return m_report; }

  /// Number of linetypes in the table.
  int GetNoLtype() const { return m_ltypes.size(); }
  /// Linetype `i` in file order; null if out of range.
  const CLtype* GetLtypeNo(int i) const;
  const CNamedItemTable<CLtype>& GetTable() const { return m_ltypes; }
  CNamedItemTable<CLtype>& GetTable() { return m_ltypes; }

 private:
  Status readDefinitions(IFile& file);
  Status writeDefinitions(IFile& file);

  CNamedItemTable<CLtype> m_ltypes;
  const CStyleTable& m_styles;
  CLtypeFactory& m_factory;
  IErrorNotifier* m_notifier = nullptr;
  Status m_status = Idle;
  CFileReport m_report;
};
