#pragma once

#include <string_view>

class CFileDXFOWriter;

namespace vek0::detail {

/// The application whose data states the transparency of layers.
inline constexpr char kTransparencyOwner[] = "AcCmTransparency";

/// Writes the extended data of a text style that names the family of an outline font, as far as it
/// follows from the name of the font's file, and whether it is bold or italic.
void writeFontFamily(CFileDXFOWriter& out, std::u16string_view font, bool isBold, bool isItalic);

}  // namespace vek0::detail
