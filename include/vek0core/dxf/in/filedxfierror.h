#pragma once

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

/// Describes why reading a drawing failed: kind, line, two numbers and the file's name. All stages
/// of the reader share one record; a later error replaces the kind.
class VEK0_API CFileDXFIError {
 public:
  /// The values are fixed; hosts store and print them. Reserved kinds are never
  /// raised.
  enum TDXFErrors {
    NoError = 0,
    GeneralError = 1,         ///< out of memory included
    NoMemory = 2,             ///< reserved
    CannotOpen = 3,           ///< reserved
    InvalidGroupCode = 4,     ///< reserved
    EmptyGroupCode = 5,       ///< a group-code line is empty
    EmptyNumber = 6,          ///< a number was expected and the value is empty
    UnexpectedEnd = 7,        ///< reserved
    UnknownSection = 8,       ///< reserved
    BlockNotFound = 9,        ///< a block does not exist or cannot be redefined
    XRefNotFound = 10,        ///< no such external reference, or a block has its name
    XRefNotCreated = 11,      ///< a block of an external reference cannot be made
    WrongStructure = 13,      ///< sections, tables, group codes, or the end of the file
    UnknownTable = 14,        ///< reserved
    OutOfRange = 15,          ///< a meaningless value or a non-finite number
    EntityNotBuilt = 16,      ///< parameters: 2 and the result of the entity factory
    LtypeNotFound = 17,       ///< a layer names it
    FontNotFound = 18,        ///< a text style names it
    NewerVersion = 19,        ///< than the reader supports
    InconsistentRecord = 20,  ///< of a hatch, a light-weight polyline or a linetype element
  };

  /// The form of the file; anything but text DXF is error 13.
  enum Form { TextForm, BinaryForm, DwgForm, EmptyForm };

  /// No error and no file.
  CFileDXFIError() = default;

  bool HasAnError() const { return m_type != NoError; }
  /// Sets the kind only, unconditionally.
  void SetError(TDXFErrors type) { m_type = type; }
  TDXFErrors GetErrorType() const { return m_type; }

  /// Number of lines read when the error was found; the last one is the offending line.
  long GetErrorLine() const { return m_line; }
  void SetErrorLine(long line) { m_line = line; }

  void SetErrorExtraParam(long param1, long param2) {
    m_param1 = param1;
    m_param2 = param2;
  }
  long GetErrorParam1() const { return m_param1; }
  long GetErrorParam2() const { return m_param2; }

  Form GetForm() const { return m_form; }
  void SetForm(Form form) { m_form = form; }

  void SetFileName(const zim::WString& name) { m_fileName = name; }
  const zim::WString& GetFileName() const { return m_fileName; }

  /// The localized text of the kind, from the string library; kinds without one use the general
  /// text.
  zim::WString GetErrorMessage() const;

  /// A human-readable sentence: the form of the file if it is not text DXF, otherwise the text of
  /// the kind (in English if the string library has none), the line, and the related numbers. Empty
  /// without an error.
  zim::WString GetFullMessage() const;

 private:
  TDXFErrors m_type = NoError;
  long m_line = 0;
  long m_param1 = 0;
  long m_param2 = 0;
  Form m_form = TextForm;
  zim::WString m_fileName;
};
