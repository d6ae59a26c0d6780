#include <algorithm>
#include <cmath>

#include "dxf/in/convert/dimensiondrawing.h"
#include "dxf/in/convert/mtextreader.h"
#include "dxf/in/convert/replacement.h"
#include "dxf/ocs.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/entinsert.h"

namespace vek0::detail {
namespace {

/// The block that displays a record.
struct Picture {
  CBlock* block = nullptr;
  zim::WString name;

  void take(RecordReader& in) {
    block = in.findBlock(in.lexer().getBytes());
    name = in.lexer().getText();
  }
  /// Whether it can be inserted; if not, records an error. A block that is not defined yet is
  /// created.
  bool ready(RecordReader& in) {
    // Blocks may follow in the file, so the reference creates it and the definition fills it.
    if (!block) block = in.context().semantor.createBlockHurried(name, 0);
    if (block && !block->isXRef()) return true;
    if (!in.failed()) in.fail(CFileDXFIError::BlockNotFound);
    return false;
  }
};

EntPtr insertPicture(RecordReader& in, Picture& picture, const PNT_3D& at, double angleRad,
                     const zim::WString& kind) {
  if (!picture.ready(in)) return nullptr;
  in.insertRead = true;
  const Record& r = in.record();
  std::vector<EntPtr> built;
  if (EntPtr insert = in.make().insert(r, picture.block, at, 1, 1, 1, angleRad, 1, 1, 0, 0))
    built.push_back(std::move(insert));
  return handOver(in, std::move(built), kind);
}

DimensionType typeOf(const RecordReader& in, bool isArc, bool isLargeRadius) {
  constexpr long mask = 7, last = static_cast<long>(DimensionType::Ordinate);
  // Unknown types are drawn as the last known one.
  if (isArc) return DimensionType::Arc;
  if (isLargeRadius) return DimensionType::LargeRadius;
  return static_cast<DimensionType>(std::min(in.record().integer(70) & mask, last));
}

// The codes of the text, the block name and the style.
struct DimensionCodes {
  static bool has(long code) { return code == 1 || code == 2 || DimStyleReader::has(code); }
};

}  // namespace

EntPtr readDimension(RecordReader& in) {
  static constexpr RecordKind kind({10, 20, 30, 11, 21, 31, 12, 22, 32, 13, 23, 33, 14,
                                    24, 34, 15, 25, 35, 16, 26, 36, 42, 50, 53, 70},
                                   {8}, {42});
  const zim::WString name = in.lexer().getText();
  const bool isArc = in.lexer().isKeyword("ARC_DIMENSION");
  const bool isLargeRadius = in.lexer().isKeyword("LARGE_RADIAL_DIMENSION");
  Picture picture;
  MTextRecord text;
  DimStyleReader styleReader;
  const auto take = [&](long code) {
    if (code == 1) return text.take(in.lexer());
    if (code == 2) return picture.take(in);
    if (!styleReader.take(in.lexer())) in.note(ReportCode::CodeDropped, u"1001");
  };
  if (!in.read(kind, DimensionCodes(), 2, take)) return nullptr;
  // A named block may still be defined later while the BLOCKS section is not complete.
  const bool isShown = picture.block || (!picture.name.empty() && !in.blocksRead);
  if (isShown) {
    // A copy of a dimension shares the picture of the first one, moved.
    const PNT_3D at = PlaneAxes(in.record().extrusion).toWorld(in.record().point(2));
    return insertPicture(in, picture, at, 0, name);
  }
  const DimStyle style = styleReader.style(in.context().dimStyles);
  DimensionDrawing drawing(in, typeOf(in, isArc, isLargeRadius), style);
  drawing.draw(text);
  if (in.failed()) return nullptr;
  in.note(ReportCode::DimensionDrawn, zim::WString(text.text));
  return handOver(in, std::move(drawing.built), name);
}

EntPtr readTable(RecordReader& in) {
  static constexpr RecordKind kind({}, {8});
  Picture picture;
  double numbers[2][3] = {};  // insertion point and direction
  CodeSet taken;
  // The rest repeats the codes for the cells.
  const auto take = [&](long code) {
    if (taken.has(code)) return in.passOver();
    taken.add(code);
    if (code == 2)
      picture.take(in);
    else
      numbers[code % 10][code / 10 - 1] = in.lexer().getDouble();
  };
  if (!in.read(kind, {2, 10, 20, 30, 11, 21, 31}, 2, take)) return nullptr;
  if (picture.name.empty()) {
    in.note(ReportCode::KindSkipped, u"ACAD_TABLE");
    return nullptr;
  }
  const PNT_3D at(numbers[0][0], numbers[0][1], numbers[0][2]);
  const double angle = std::atan2(numbers[1][1], numbers[1][0]);
  return insertPicture(in, picture, at, angle, u"ACAD_TABLE");
}

}  // namespace vek0::detail
