#pragma once

#include <string>

namespace vek0::test {

// Other forms of a text file, whose texts must be ASCII.

/// The binary form, with group codes of two bytes, or of one where they fit.
std::string binaryOf(const std::string& file, bool isWide);
/// UTF-16 with a byte order mark.
std::string utf16Of(const std::string& file, bool isBigEndian);
std::string withLineEnds(const std::string& file, const std::string& end);

}  // namespace vek0::test
