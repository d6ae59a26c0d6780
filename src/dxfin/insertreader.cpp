#include "dxfin/entityreaders.h"
#include "vek0core/entities/attribplacement.h"
#include "vek0core/entities/block.h"
#include "vek0core/entities/blockxref.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entinsert.h"

namespace vek0::detail {
namespace {

// The first count and spacing are the columns', the second the rows'.
CEntInsert* createInsert(RecordReader& in, CBlock& block) {
  const Record& r = in.record();
  const double sx = r.real(41, 1), sy = r.real(42, 1), sz = r.real(43, 1);
  const double rotation = r.real(50) * kRadPerDegree;
  const long columns = r.integer(70, 1), rows = r.integer(71, 1);
  if (block.isXRef())
    return in.factory().createEntInsertXRef(
        in.gestor(), r.layer, r.ltype, r.color, in.context().semantor.getDepend(),
        static_cast<CBlockXRef*>(&block), r.point(0), sx, sy, sz, rotation, columns, rows,
        r.real(44), r.real(45), r.handle);
  return in.factory().createEntInsert(in.gestor(), r.layer, r.ltype, r.color, &block, r.point(0),
                                      sx, sy, sz, rotation, columns, rows, r.real(44), r.real(45),
                                      r.handle);
}

// The attributes stand in drawing coordinates in the file and in the coordinates
// of the block in the insert.
void readAttribs(RecordReader& in, CEntInsertBase& insert) {
  while (!in.lexer().isKeyword("SEQEND")) {
    if (!in.lexer().isKeyword("ATTRIB")) return in.fail(CFileDXFIError::WrongStructure);
    std::unique_ptr<CEntAttrib> attrib = readAttrib(in);
    if (!attrib) return;
    TEXT_3D text = attrib->getText();
    transform_attrib_phisic_2_logic(1.0, insert, text);
    attrib->setText(text);
    insert.add(attrib.get());
    static_cast<void>(attrib.release());  // not before the insert has it
  }
  in.skip();
}

}  // namespace

EntPtr readInsert(RecordReader& in) {
  static constexpr RecordKind kind({2, 10, 20, 30, 41, 42, 43, 50, 44, 45, 70, 71, 66},
                                   {8, 2, 10, 20});
  CBlock* block = nullptr;
  zim::WString unknownName;
  const auto takeName = [&](long) {
    block = in.findBlock(in.lexer().getBytes());
    if (!block) unknownName = in.lexer().getText();
  };
  if (!in.read(kind, {2}, 2, takeName)) return nullptr;
  if (!block) block = in.context().semantor.createBlockHurried(unknownName, 0);
  if (!block) {
    if (!in.failed()) in.fail(CFileDXFIError::BlockNotFound);
    return nullptr;
  }
  in.insertRead = true;
  const bool attribsFollow = in.record().integer(66) != 0;
  std::unique_ptr<CEntInsert> insert = in.built(createInsert(in, *block));
  if (insert && attribsFollow) readAttribs(in, *insert);
  if (in.failed()) return nullptr;
  return insert;
}

}  // namespace vek0::detail
