#include "vek0core/dxf/in/filedxfierror.h"

#include <cstddef>
#include <cstdint>

#include "files/number.h"

namespace {

constexpr long kGeneralMessage = 10000;

struct KindMessage {
  CFileDXFIError::TDXFErrors kind;
  long id;
};

constexpr KindMessage kMessages[] = {
    {CFileDXFIError::NoMemory, 10002},         {CFileDXFIError::CannotOpen, 10001},
    {CFileDXFIError::InvalidGroupCode, 10009}, {CFileDXFIError::EmptyNumber, 10005},
    {CFileDXFIError::UnexpectedEnd, 10004},    {CFileDXFIError::UnknownSection, 10003},
    {CFileDXFIError::BlockNotFound, 10023},    {CFileDXFIError::WrongStructure, 10006},
    {CFileDXFIError::UnknownTable, 10007},     {CFileDXFIError::OutOfRange, 10008},
    {CFileDXFIError::EntityNotBuilt, 10020},   {CFileDXFIError::LtypeNotFound, 10021},
    {CFileDXFIError::FontNotFound, 10022},     {CFileDXFIError::NewerVersion, 10034},
};

// Texts that the string library lacks.
const zim::Char* ownText(CFileDXFIError::TDXFErrors kind) {
  switch (kind) {
    case CFileDXFIError::EmptyGroupCode:
      return u"A group code is missing.";
    case CFileDXFIError::XRefNotFound:
      return u"An external reference does not exist, or a block has its name.";
    case CFileDXFIError::XRefNotCreated:
      return u"The block of an external reference cannot be created.";
    case CFileDXFIError::InconsistentRecord:
      return u"A hatch or a light-weight polyline contradicts itself.";
    default:
      return nullptr;
  }
}

const zim::Char* formText(CFileDXFIError::Form form) {
  switch (form) {
    case CFileDXFIError::BinaryForm:
      return u"This is a binary DXF file; strict reading accepts only text.";
    case CFileDXFIError::DwgForm:
      return u"This is a DWG file, not a DXF file.";
    case CFileDXFIError::EmptyForm:
      return u"The file is empty.";
    default:
      return nullptr;
  }
}

zim::WString decimal(long value) {
  char digits[vek0::detail::kIntegerRoom];
  const char* const end = vek0::detail::formatInteger(digits, std::int64_t{value});
  return zim::WString::fromUtf8({digits, static_cast<std::size_t>(end - digits)});
}

}  // namespace

zim::WString CFileDXFIError::GetErrorMessage() const {
  long id = kGeneralMessage;
  for (const KindMessage& message : kMessages) {
    if (message.kind == m_type) id = message.id;
  }
  zim::WString text;
  text.LoadStr(id);
  return text;
}

zim::WString CFileDXFIError::GetFullMessage() const {
  if (!HasAnError()) return {};
  if (const zim::Char* const text = formText(m_form)) return text;
  const zim::Char* const own = ownText(m_type);
  zim::WString text = own ? zim::WString(own) : GetErrorMessage();
  if (m_line > 0) text = zim::WString(u"Line ") + decimal(m_line) + u": " + text;
  if (m_param1 != 0 || m_param2 != 0) {
    text = text + u" (" + decimal(m_param1) + u", " + decimal(m_param2) + u")";
  }
  return text;
}
