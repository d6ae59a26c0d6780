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
/// The loaded linetypes stay in a table of the loader's own; `addLtypes` takes copies of
/// them into a drawing. Their texts name styles of the style table given, which must
/// outlive the loader, as must the factory.
///
/// Nothing in a file is an error: what cannot be understood is left out or read as 0, and
/// the report of the last `Load` or `Save` says so.
class VEK0_API CLtypeLoader {
 public:
  /// How the last `Load` or `Save` ended.
  enum Status {
    Idle,         ///< there was none
    Done,         ///< the file was read or written to its end
    NotOpened,    ///< it could not be opened
    ReadFailed,   ///< reading broke off; what was read until then is in the table
    WriteFailed,  ///< the file did not take everything
    NoMemory      ///< likewise, for want of memory
  };

  /// Asked for styles that the style table does not know.
  class VEK0_API IErrorNotifier {
   public:
    virtual ~IErrorNotifier() = default;
    /// The style that texts with this style name get; null for none. It must live as
    /// long as those of the style table. Called for every such text.
    virtual CStyle* Notify(const zim::WString& styleName) = 0;
  };

  /// The lines of a definition file that count: no comments, no empty ones.
  class VEK0_API CFileLtypeLexer {
   public:
    /// The file is open, is read by lines and outlives the lexer.
    explicit CFileLtypeLexer(IFile& file) : m_file(file) {}
    CFileLtypeLexer(const CFileLtypeLexer&) = delete;
    CFileLtypeLexer& operator=(const CFileLtypeLexer&) = delete;

    /// Goes to the next line; false at the end of the file and after a failure.
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
    zim::Char m_buffer[kBufferUnits];  // longer lines are put together from several
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

  /// Borrowed; null, as at first, for none.
  void SetNotifier(IErrorNotifier* notifier) { m_notifier = notifier; }

  /// Empties the table and fills it from the file. Always 0: `GetStatus` and
  /// `GetNoLtype` tell how it went. Names may repeat. Null opens nothing.
  int Load(const zim::Char* path);
  /// The same from a closed file of the host, which is closed afterwards.
  int Load(IFile& file);

  /// Writes every linetype of the table, replacing the file. Dash lengths read back
  /// exactly, the numbers of a text to six decimals.
  void Save(const zim::Char* path);
  /// The same to a closed file of the host, which is closed afterwards.
  void Save(IFile& file);

  Status GetStatus() const { return m_status; }
  /// What the last `Load` or `Save` left out or changed:
  ///   "shape-left-out"      a pattern element that is no text; the sample is its name
  ///   "unknown-style"       a text is left without style; the sample is the style's name
  ///   "number-expected"     read as 0
  ///   "number-range"        not finite: read or written as 0
  ///   "empty-field"         nothing between two commas: no element
  ///   "unclosed-element"    a ']' or a closing quote is missing
  ///   "missing-pattern"     the line after a header is missing, or is a header itself
  ///   "replaced-quote"      a '"' inside a text was written as two single quotes
  ///   "replaced-separator"  a ',' or ']' inside a name was written as '_'
  ///   "rounded-number"      a number of a text has more than six decimals
  const CFileReport& GetReport() const { return m_report; }

  /// Number of linetypes in the table.
  int GetNoLtype() const { return m_ltypes.size(); }
  /// Linetype `i` in the order of the file; null when there is no such position.
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
