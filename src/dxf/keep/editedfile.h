#pragma once

#include <string>

#include "vek0core/dxf/in/filedxfioptions.h"

class CData;
class CFileReport;
class IFile;

namespace vek0::detail {

/// Writes `source`, the bytes of the file that `data` was loaded from with these options, but for
/// what was edited since, to the open `file`; with other damage repaired if `isRepaired`. False if
/// that or reading the source fails. Throws `std::bad_alloc`.
bool saveEdited(const CData& data, std::string source, const CFileDXFIOptions& options,
                bool isRepaired, IFile& file, CFileReport* report);

}  // namespace vek0::detail
