#pragma once

#include <string>
#include <string_view>

#include "vek0core/files/report.h"
#include "vek0core/ltypefile/ltypeloader.h"

class CLtype;
class CLtypeComplexDashSeq;
class CStyleTable;

// Parsing and formatting of linetype definition lines, independent of the file.
namespace vek0::detail {

/// Context for reading a pattern line: the source of styles and the report.
struct LtypeReading {
  const CStyleTable& styles;
  CLtypeLoader::IErrorNotifier* notifier;
  CFileReport& report;
  long line;
};

/// Appends the elements of a pattern line to `dashes`.
void readLtypePattern(std::u16string_view text, const LtypeReading& reading,
                      CLtypeComplexDashSeq& dashes);

/// The text with every `\U+XXXX` replaced by that unit.
zim::WString decodeLtypeText(std::u16string_view text);

/// The two lines of a definition, each with its line feed.
std::u16string ltypeHeader(const CLtype& ltype, CFileReport& report);
std::u16string ltypePattern(const CLtypeComplexDashSeq& dashes, CFileReport& report);

}  // namespace vek0::detail
