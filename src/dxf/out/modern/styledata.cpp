#include "dxf/out/modern/styledata.h"

#include "vek0core/dxf/out/filedxfowriter.h"

namespace vek0::detail {
namespace {

struct FontFile {
  std::u16string_view file;  // without its ending
  const char* family;
  bool isBold = false, isItalic = false;
};

constexpr FontFile kFontFiles[] = {
    {u"arial", "Arial"},
    {u"arialbd", "Arial", true},
    {u"ariali", "Arial", false, true},
    {u"arialbi", "Arial", true, true},
    {u"arialn", "Arial Narrow"},
    {u"times", "Times New Roman"},
    {u"timesbd", "Times New Roman", true},
    {u"timesi", "Times New Roman", false, true},
    {u"timesbi", "Times New Roman", true, true},
    {u"cour", "Courier New"},
    {u"courbd", "Courier New", true},
    {u"calibri", "Calibri"},
    {u"calibrib", "Calibri", true},
    {u"calibrii", "Calibri", false, true},
    {u"cambria", "Cambria"},
    {u"consola", "Consolas"},
    {u"georgia", "Georgia"},
    {u"segoeui", "Segoe UI"},
    {u"tahoma", "Tahoma"},
    {u"tahomabd", "Tahoma", true},
    {u"trebuc", "Trebuchet MS"},
    {u"verdana", "Verdana"},
    {u"verdanab", "Verdana", true},
    {u"isocpeur", "ISOCPEUR"},
    {u"isocteur", "ISOCTEUR"},
    {u"romans__", "RomanS"},
    {u"simsun", "SimSun"},
    {u"simhei", "SimHei"},
    {u"msyh", "Microsoft YaHei"},
    {u"msgothic", "MS Gothic"},
    {u"msmincho", "MS Mincho"},
    {u"gulim", "Gulim"},
    {u"batang", "Batang"},
};

const FontFile* findFontFile(std::u16string_view font) {
  const std::size_t dot = font.rfind(u'.');
  if (dot == std::u16string_view::npos) return nullptr;
  const std::u16string_view ending = font.substr(dot);
  if (!zim::equalsIgnoreCase(ending, u".ttf") && !zim::equalsIgnoreCase(ending, u".ttc") &&
      !zim::equalsIgnoreCase(ending, u".otf"))
    return nullptr;
  for (const FontFile& known : kFontFiles)
    if (zim::equalsIgnoreCase(known.file, font.substr(0, dot))) return &known;
  return nullptr;
}

}  // namespace

void writeFontFamily(CFileDXFOWriter& out, std::u16string_view font, bool isBold, bool isItalic) {
  const FontFile* known = findFontFile(font);
  if (!known) return;
  constexpr long swiss = 0x22, italic = 0x1000000, bold = 0x2000000;  // as in system interfaces
  out.writeEncoded(1001, "ACAD");
  out.writeEncoded(1000, known->family);
  out.write(1071, swiss | (isItalic || known->isItalic ? italic : 0) |
                      (isBold || known->isBold ? bold : 0));
}

}  // namespace vek0::detail
