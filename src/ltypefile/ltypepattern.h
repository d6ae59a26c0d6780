#pragma once

#include <string>
#include <string_view>

#include "vek0core/files/report.h"
#include "vek0core/ltypefile/ltypeloader.h"

class CLtype;
class CLtypeComplexDashSeq;
class CStyleTable;

// The lines of a linetype definition, apart from the file they stand in.
namespace vek0::detail {

/// Where a pattern line is read: whom to ask for styles and whom to tell.
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
