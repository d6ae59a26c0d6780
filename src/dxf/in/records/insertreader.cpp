#include "dxf/in/convert/planeplacement.h"
#include "dxf/in/convert/replacement.h"
#include "dxf/in/records/entityreaders.h"
#include "dxf/in/records/hatchdata.h"
#include "files/number.h"
#include "tables/handover.h"
#include "vek0core/entities/blocks/attribplacement.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blockxref.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/hatch/boundary.h"

namespace vek0::detail {
namespace {

void noteDropped(const RecordReader& in) { in.note(ReportCode::CodeDropped, u"1001"); }

void takeExtended(const RecordReader& in, HatchData& data) {
  if (!data.take(in.lexer()) && in.lexer().getGroupValue() == 1001) noteDropped(in);
  if (in.failed()) data.spoil();
}

// A scale of 0 shows nothing and cannot be inverted: no program intends it.
double scale(const RecordReader& in, long code) {
  const double value = in.record().real(code, 1);
  if (value != 0 || !in.isTolerant()) return value;
  in.note(ReportCode::NumberReplaced, u"0");
  return 1;
}

// The first count and spacing are the columns', the second the rows'.
std::unique_ptr<CEntInsert> createInsert(RecordReader& in, CBlock& block) {
  const Record& r = in.record();
  const double sx = scale(in, 41), sy = scale(in, 42), sz = scale(in, 43);
  const double rotation = r.real(50) * kRadiansPerDegree;
  const long columns = r.integer(70, 1), rows = r.integer(71, 1);
  if (block.isXRef())
    return in.make().xrefInsert(r, in.context().semantor.getDepend(),
                                static_cast<CBlockXRef*>(&block), r.point(0), sx, sy, sz, rotation,
                                columns, rows, r.real(44), r.real(45));
  return in.make().insert(r, &block, r.point(0), sx, sy, sz, rotation, columns, rows, r.real(44),
                          r.real(45));
}

// Attributes are in drawing coordinates in the file and in block coordinates in the insert.
void readAttribs(RecordReader& in, CEntInsertBase& insert) {
  while (!in.lexer().isKeyword("SEQEND")) {
    if (!in.lexer().isKeyword("ATTRIB")) {
      if (in.isTolerant()) return in.note(ReportCode::SequenceCut, u"INSERT");
      return in.fail(CFileDXFIError::WrongStructure);
    }
    std::unique_ptr<CEntAttrib> attrib = readAttrib(in);
    if (!attrib) {
      if (!in.recover(u"ATTRIB")) return;
      continue;
    }
    TEXT_3D text = attrib->getText();
    const PNT_3D& normal = in.record().extrusion;
    if (normal != in.frame().normal)
      changePlane(text, PlaneAxes(normal), PlaneAxes(in.frame().normal));
    placeAttrib(insert, text, *attrib);
    addTo(insert, std::move(attrib));
  }
  in.skip();
}

// The codes of the block's name, the array counts (which are flags in other kinds), the dictionary
// and extended data.
struct InsertCodes {
  static bool has(long code) {
    return code == 2 || code == 70 || code == 71 || code == kDictionary || code >= kExtended;
  }
  static constexpr long kDictionary = 360, kExtended = 1000;
};

// The boundary is not known before the objects of the file are read.
std::shared_ptr<const INSERT_CLIP> promisedClip(RecordReader& in, std::uint64_t dictionary) {
  auto& promised = in.clips[dictionary];
  if (!promised.clip) promised = {std::make_shared<INSERT_CLIP>(), in.lexer().getLine()};
  return promised.clip;
}

// The lines are generated in place: the block of a hatch is neither moved nor scaled.
bool isPlain(const Record& r) {
  return r.point(0) == PNT_3D(0, 0, 0) && r.real(41, 1) == 1 && r.real(42, 1) == 1 &&
         r.real(43, 1) == 1 && r.real(50) == 0 && r.integer(70, 1) <= 1 && r.integer(71, 1) <= 1 &&
         r.integer(66) == 0;
}

bool holdsHatch(CBlock& block) {
  for (CBlock::CInsertIterator insert(block); *insert; ++insert)
    if ((*insert)->getType() == CEntHatch::kType) return true;
  return false;
}

// Whether the block can be the private block of a hatch: only of a single one, and not of a hatch
// within another, since edits of a hatch apply to everything in its block.
bool isFree(const RecordReader& in, CBlock& block) {
  return !block.isXRef() && block.getName().view().substr(0, 1) == u"*" &&
         in.hatchBlocks.count(&block) == 0 && in.hatchBlocks.count(in.owner) == 0 &&
         !holdsHatch(block);
}

// The hatch that the insert represents, or its outline; null if it is an ordinary insert.
EntPtr readHatch(RecordReader& in, CBlock& block, HatchData& data) {
  if (!isFree(in, block) || !isPlain(in.record()) ||
      !data.parse(in.context().semantor.getHatchTypeTable()))
    return nullptr;
  in.hatchBlocks.insert(&block);
  if (in.context().options.policy.hatchOutlines && !isSolid(*data.type))
    return outlineHatch(in, data.rings, data.type->name);
  const Record& r = in.record();
  auto hatch =
      in.make().hatch(r, &block, *data.type, data.scale, data.angleRad, joinHatchRings(data.rings));
  if (hatch) in.context().semantor.adoptHatch(*hatch);
  return hatch;
}

}  // namespace

EntPtr readInsert(RecordReader& in) {
  static constexpr RecordKind kind({2, 10, 20, 30, 41, 42, 43, 50, 44, 45, 70, 71, 66},
                                   {8, 2, 10, 20}, {44, 45});
  CBlock* block = nullptr;
  zim::WString unknownName;
  HatchData hatchData;
  std::uint64_t dictionary = 0;
  const auto take = [&](long code) {
    if (code == 70 || code == 71) return in.takeCount(code);
    if (code == InsertCodes::kDictionary) {
      dictionary = parseHex(in.lexer().getBytes());
      return;
    }
    if (code != 2) return takeExtended(in, hatchData);
    block = in.findBlock(in.lexer().getBytes());
    if (!block) unknownName = in.lexer().getText();
  };
  if (!in.read(kind, InsertCodes(), 2, take)) return nullptr;
  if (!block && unknownName.empty() && in.isTolerant()) {
    in.fail(CFileDXFIError::BlockNotFound);
    return nullptr;
  }
  if (!block)
    block = in.context().semantor.createBlockHurried(
        unknownName, hatchData.claimsHatch() ? CBlock::kAnonymous : 0);
  if (!block) {
    if (!in.failed()) in.fail(CFileDXFIError::BlockNotFound);
    return nullptr;
  }
  in.insertRead = true;
  if (!hatchData.empty()) {
    if (EntPtr hatch = readHatch(in, *block, hatchData)) return hatch;
    if (in.failed()) return nullptr;
    noteDropped(in);
  }
  const bool attribsFollow = in.isTolerant()
                                 ? in.lexer().isKeyword("ATTRIB") || in.lexer().isKeyword("SEQEND")
                                 : in.record().integer(66) != 0;
  std::unique_ptr<CEntInsert> insert = createInsert(in, *block);
  if (insert && dictionary != 0 && in.isTolerant()) insert->setClip(promisedClip(in, dictionary));
  if (insert && attribsFollow) readAttribs(in, *insert);
  if (in.failed()) return nullptr;
  return insert;
}

}  // namespace vek0::detail
