#pragma once

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

/// How reading a drawing failed: kind, line, two numbers and the file's name.
/// Every stage of the reader fills one record; a later error replaces the kind.
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
    EmptyNumber = 6,          ///< a number was asked for and the value is empty
    UnexpectedEnd = 7,        ///< reserved
    UnknownSection = 8,       ///< reserved
    BlockNotFound = 9,        ///< a block does not exist or cannot be redefined
    XRefNotFound = 10,        ///< no such external reference, or a block has its name
    XRefNotCreated = 11,      ///< a block of an external reference cannot be made
    WrongStructure = 13,      ///< sections, tables, group codes, or the end of the file
    UnknownTable = 14,        ///< reserved
    OutOfRange = 15,          ///< a value has no meaning; numbers that are not finite
    EntityNotBuilt = 16,      ///< parameters: 2 and the entity factory's result
    LtypeNotFound = 17,       ///< a layer names it
    FontNotFound = 18,        ///< a text style names it
    NewerVersion = 19,        ///< than the reader supports
    InconsistentRecord = 20,  ///< of a hatch, a light-weight polyline or a linetype element
  };

  /// What the file is where it is no text DXF at all, which is error 13.
  enum Form { TextForm, BinaryForm, DwgForm, EmptyForm };

  /// No error, no file.
  CFileDXFIError() = default;

  bool HasAnError() const { return m_type != NoError; }
  /// Sets the kind and nothing else, whatever it was before.
  void SetError(TDXFErrors type) { m_type = type; }
  TDXFErrors GetErrorType() const { return m_type; }

  /// The lines read when the error was found; the last of them is at fault.
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

  /// The localised text of the kind, from the string library; kinds without a text
  /// of their own have the general one.
  zim::WString GetErrorMessage() const;

  /// A sentence for people: what the file is if it is no text DXF, else the text of the kind
  /// (in English where the string library has none of its own), the line, and the numbers
  /// that belong to it. Empty without an error.
  zim::WString GetFullMessage() const;

 private:
  TDXFErrors m_type = NoError;
  long m_line = 0;
  long m_param1 = 0;
  long m_param2 = 0;
  Form m_form = TextForm;
  zim::WString m_fileName;
};
