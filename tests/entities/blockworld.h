#pragma once

#include "support/test.h"

/// A block table and everything it needs, with shortcuts to create blocks and entities.
struct BlockWorld {
  CHandleGestorFoo gestor;
  CBlockXRefDepend depend;
  CEntFactory ents;
  CBlockFactory blocks;
  CBlockTable table{gestor, depend};

  CBlock* block(const std::string& name, const PNT_3D& base = PNT_3D(0, 0, 0)) {
    return blocks.create(zim::WString::fromUtf8(name), base, 0);
  }

  /// Adds a block to the table that inserts the given ones.
  CBlock* tabled(const std::string& name, const std::vector<CBlock*>& inserted = {}) {
    CBlock* made = block(name);
    for (CBlock* inner : inserted) made->add(insert(inner));
    table.add(made);
    return made;
  }

  CEntInsert* insert(CBlock* block, const PNT_3D& pnt = PNT_3D(0, 0, 0), double sx = 1,
                     double sy = 1, double rotation = 0) {
    return ents.createEntInsert(gestor, nullptr, nullptr, 256, block, pnt, sx, sy, 1, rotation, 1,
                                1, 0, 0, 0);
  }

  CEntLine* line(double x1, double y1, double x2, double y2) {
    return ents.createEntLine(gestor, nullptr, nullptr, 256, LINE_3D(x1, y1, 0, x2, y2, 0), 0);
  }

  CEntAttdef* attdef(const zim::WString& tag, double x, double y) {
    return ents.createEntAttdef(gestor, nullptr, nullptr, 256, text(tag, x, y), u"default",
                                u"prompt?", 3, 0);
  }

  CEntAttrib* attrib(const zim::WString& value, double x, double y) {
    return ents.createEntAttrib(gestor, nullptr, nullptr, 256, text(value, x, y), u"TAG", 0, 0);
  }

  static TEXT_3D text(const zim::WString& string, double x, double y, CStyle* style = nullptr) {
    CTextContext context;
    context.setHeight(1);
    context.setWidthScale(1);
    context.setRotate(0);
    context.setOblique(0);
    context.setString(string);
    return TEXT_3D(context, style, x, y, 0, 0);
  }

  std::list<CEnt*> inserts(const std::vector<CBlock*>& inserted) {
    std::list<CEnt*> made;
    for (CBlock* inner : inserted) made.push_back(insert(inner));
    return made;
  }

  /// Redefines a block as loading does, which keeps no undo: the remaining list is deleted.
  int redefine(CBlock* block, std::list<CEnt*> entities) {
    const std::unique_ptr<CBlockMemento> old(block->createMemento());
    const int result = table.Redefine(block, PNT_3D(0, 0, 0), 0, entities);
    if (result == 0)
      old->destroyEntity();
    else
      for (CEnt* ent : entities) delete ent;
    return result;
  }
};

/// Records the blocks that it is applied to, and ends the visit at one of them.
class Journal final : public IBlockOperation {
 public:
  explicit Journal(const CBlock* last = nullptr) : m_last(last) {}

  int doOperation(CBlock& block) override {
    blocks.push_back(&block);
    return &block == m_last ? 42 : ZORA_BLOCK_VISIT_RESULT_SUCCESS;
  }

  std::vector<CBlock*> blocks;

 private:
  const CBlock* m_last;
};
