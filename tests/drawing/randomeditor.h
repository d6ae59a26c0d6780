#pragma once

#include "drawing/drawings.h"
#include "support/test.h"

namespace vek0::test {

/// Makes random edits of every sort through an undo stack, each in at most one step.
class RandomEditor {
 public:
  RandomEditor(CData& data, CUndoStack& undo, unsigned seed)
      : m_data(data), m_undo(undo), m_random(seed) {}

  void edit() {
    m_undo.begin(u"edit");
    for (int i = number(3); i >= 0; --i) editOnce();
    m_undo.commit();
  }

  int number(int below) { return static_cast<int>(m_random() % static_cast<unsigned long>(below)); }

 private:
  // A manager of handles chooses them itself.
  vek0::Handle handle() { return m_data.getHandleGestor().nextseed() != 0 ? 0 : m_handle++; }
  double coordinate() { return number(2001) / 10.0 - 100; }
  PNT_3D point() { return PNT_3D(coordinate(), coordinate(), coordinate()); }
  zim::WString name(const char* prefix) {
    return zim::WString::fromUtf8(prefix + std::to_string(number(1000)));
  }
  CLayer* layer() {
    const int i = number(m_data.getLayerTable().size() + 1);
    return i == 0 ? &m_data.getLayer0() : m_data.getLayerTable()[i - 1];
  }
  CLtype* ltype() {
    const int i = number(m_data.getLtypeTable().size() + 1);
    return i == 0 ? &m_data.getLtypeByLayer() : m_data.getLtypeTable()[i - 1];
  }
  CStyle* style() { return m_data.getStyleTable()[number(m_data.getStyleTable().size())]; }
  CBlock* block() {
    const int count = m_data.getBlockTable().size();
    return count == 0 ? nullptr : m_data.getBlockTable()[number(count)];
  }
  CEnt* entity() {
    const std::list<CEnt*>& all = m_data.getEntTable().getEntityTbl();
    return all.empty() ? nullptr : *std::next(all.begin(), number(static_cast<int>(all.size())));
  }
  CEnt* entityOf(CBlock* of) {
    return of == nullptr || of->size() == 0
               ? nullptr
               : (*of)[static_cast<unsigned>(number(static_cast<int>(of->size())))];
  }
  CEnt* anyEntity() { return number(4) == 0 ? entityOf(block()) : entity(); }
  TEXT_3D text() {
    TEXT_3D text(name("text "), style(), coordinate(), 1, 0, 2, 0, 1, 0.5, 0);
    text.setFit(static_cast<TextFit>(number(3)), 7);
    return text;
  }
  void touch(CEnt& ent) {
    ent.calcBdry();
    if (CBlock* owner = ent.getOwnerBlock()) owner->invalidateBdry();
    m_data.getEntTable().invalidateBdry();
  }

  CEnt* newPolyline() {
    CEntPolyline* made = createEntPolyline(m_data, layer(), ltype(), 1, number(2), 0, handle());
    for (int i = number(6); i >= 0; --i)
      made->addBulgedVertex(point(), number(2), number(2), number(3) - 1, handle());
    return made;
  }
  CEnt* newInsert() {
    CBlock* shown = block();
    if (shown == nullptr) return nullptr;
    CEntInsert* made = createEntInsert(m_data, layer(), ltype(), 2, *shown, point(), 1, 2, 3, 0.5,
                                       1 + number(2), 1, 3, 4, handle());
    if (number(2) == 0) made->add(newAttrib());
    return made;
  }
  CEntAttrib* newAttrib() {
    CEntAttrib* made = m_data.getEntFactory().createEntAttrib(
        m_data.getHandleGestor(), layer(), ltype(), 3, text(), u"TAG", 0, handle());
    made->setTraits(traits());
    return made;
  }
  CEnt* newHatch() {
    const PNT_3D p = point();
    const std::vector<PNT_3D> square{p, p + PNT_3D(9, 0, 0), p + PNT_3D(9, 9, 0),
                                     p + PNT_3D(0, 9, 0)};
    return createEntHatch(m_data, layer(), ltype(), 4, pattern(), 10 + number(9), 0.3, square,
                          handle());
  }
  const HATCH_TYPE& pattern() {
    return *getHatch(zim::WString(number(2) == 0 ? u"ANSI31" : u"ANSI37"));
  }
  CEnt* newEntity() {
    switch (number(10)) {
      case 0:
        return createEntPnt(m_data, layer(), ltype(), 5, point(), handle());
      case 1:
        return createEntCircle(m_data, layer(), ltype(), 6, CIRCLE_3D(1, 2, 3, 4), 0);
      case 2:
        return createEntArc(m_data, layer(), ltype(), 7, ARC_3D(1, 2, 3, 4, 5, 6), 0);
      case 3:
        return newPolyline();
      case 4:
        return createEntText(m_data, layer(), ltype(), 8, text(), handle());
      case 5:
        return createEntAttdef(m_data, layer(), ltype(), 9, text(), u"value", u"prompt", 1, 0);
      case 6:
        return newInsert();
      case 7:
        return newHatch();
      case 8:
        return createEnt3DFace(m_data, layer(), ltype(), 10, point(), point(), point(), point(),
                               number(16), handle());
      default:
        return createEntLine(m_data, layer(), ltype(), 11, LINE_3D(point(), point()), handle());
    }
  }
  void drop(CEnt* ent, bool taken) {
    if (taken || ent == nullptr) return;
    if (CEntHatch* hatch = castHatch(ent)) {
      CBlock* shown = hatch->getBlock();
      m_data.getBlockTable().remove(shown);
      delete shown;
    }
    delete ent;
  }

  void addEntity() {
    CEnt* made = newEntity();
    if (number(5) != 0) return drop(made, m_undo.add(made));
    CBlock* into = block();
    drop(made, into != nullptr && into->size() < 20 && m_undo.add(*into, made));
  }
  void transform() {
    CEnt* ent = anyEntity();
    if (ent == nullptr || !m_undo.keep(*ent)) return;
    CEntMoveVisitor mover(point());
    CEntRotateXYVisitor turner(point(), number(100));
    CEntScaleVisitor scaler(point(), number(2) == 0 ? -0.5 : 2);
    IEntVisitor* visitors[] = {&mover, &turner, &scaler};
    ent->accept(*visitors[number(3)]);
    touch(*ent);
  }
  ENT_TRAITS traits() {
    ENT_TRAITS traits;
    traits.trueColor = static_cast<std::uint32_t>(number(3));
    traits.lineweight = static_cast<short>(number(5));
    traits.opacity = static_cast<short>(number(4) - 2);
    traits.isVisible = number(2) == 0;
    traits.ltypeScale = 1 + number(3);
    traits.thickness = coordinate();
    return traits;
  }
  void setProperties() {
    CEnt* ent = anyEntity();
    if (ent == nullptr || !m_undo.keepProperties(*ent)) return;
    ent->setLayer(layer());
    ent->setLtype(ltype());
    ent->setColor(static_cast<short>(number(256)));
    ent->setTraits(traits());
    m_data.getEntTable().invalidateBdry();
  }
  void changeKind() {
    CEnt* ent = anyEntity();
    if (ent == nullptr || !m_undo.keep(*ent)) return;
    ent->setStyle(style());
    if (CEntPolyline* polyline = castPolyline(ent)) changeVertexes(*polyline);
    CEntInsertBase* insert = ent->getEntInsert();
    if (insert != nullptr && ent->getType() == CEntInsert::kType) {
      insert->add(newAttrib());
      // Inserts inside blocks keep their block, because the graph would have to be updated too.
      CBlock* other = block();
      if (other != nullptr && ent->getOwnerBlock() == nullptr) insert->setBlock(other);
    }
    touch(*ent);
  }
  void changeVertexes(CEntPolyline& polyline) {
    const long count = polyline.getNoTotalVertexes();
    switch (number(4)) {
      case 0:
        polyline.addVertex(*createVertex(m_data, point(), 0, 1, handle()));
        break;
      case 1:
        delete polyline.removeVertex(number(static_cast<int>(count) + 1));
        break;
      case 2:
        polyline.SetVertexPos(number(static_cast<int>(count) + 1), point());
        break;
      default:
        polyline.close(m_data.getHandleGestor(), m_data.getEntFactory(), false);
        polyline.gener(m_data.getHandleGestor(), m_data.getEntFactory(),
                       polyline.isCurve() ? 0 : CEntPolyline::kSpline, 2, false);
    }
  }

  template <class Item>
  void addOrRemove(Item* made, Item* old) {
    if (number(2) == 0 || old == nullptr) {
      if (!m_undo.add(made)) delete made;
      return;
    }
    delete made;
    m_undo.remove(old);
  }
  void changeTables() {
    double dashes[] = {1, -2};
    switch (number(4)) {
      case 0:
        return addOrRemove(m_data.getLayerFactory().create(name("layer"), ltype(), 3, 0), layer());
      case 1:
        return addOrRemove(m_data.getLtypeFactory().create(name("type"), u"- -", dashes, 2, 0),
                           ltype());
      case 2:
        return addOrRemove(m_data.getStyleFactory().create(name("style"), nullptr, 0, 1, 0, 0.2, 0),
                           style());
      default:
        return addOrRemove(m_data.getBlockFactory().create(name("block"), point(), 0), block());
    }
  }
  void changeItem() {
    CLayer* changed = layer();
    CLtype* pattern = ltype();
    CStyle* font = style();
    CBlock* renamed = block();
    if (m_undo.keep(*changed)) {
      changed->setLtype(ltype());
      if (!changed->is0()) changed->setName(name("renamed"));
      changed->setFrozen(number(2) == 0);
      const ENT_TRAITS t = traits();
      changed->setTraits({t.trueColor, t.lineweight, t.opacity, t.isVisible});
      m_data.getEntTable().invalidateBdry();
    }
    if (!pattern->isByLayer() && m_undo.keep(*pattern)) {
      if (pattern->getNoDashes() > 5) pattern->ClearDashes();
      pattern->AddDashText(text());
      pattern->AddDashDouble(3);
    }
    if (m_undo.keep(*font)) font->setFixedHeight(number(5));
    if (renamed != nullptr && !isHatchName(renamed->getName()) && m_undo.keep(*renamed))
      renamed->setName(name("called"));
  }
  void redefineBlock() {
    CBlock* redefined = block();
    if (redefined == nullptr || isHatchName(redefined->getName())) return;
    std::list<CEnt*> content;
    for (int i = number(3); i > 0; --i)
      content.push_back(createEntLine(m_data, layer(), ltype(), 1, LINE_3D(point(), point()), 0));
    if (CBlock* inner = block(); number(2) == 0)
      content.push_back(createEntInsert(m_data, *inner, point(), 1, 1, 1, 0, 1, 1, 0, 0, 0));
    if (m_undo.redefine(*redefined, point(), 0, content)) return;
    for (const CEnt* ent : content) delete ent;
  }
  void redefineHatch() {
    if (CEntHatch* hatch = castHatch(anyEntity()))
      m_undo.redefine(*hatch, 10 + number(9), hatch->getHatchRotate(), pattern());
  }
  void changeVars() {
    if (!m_undo.keepVars()) return;
    setCurLayer(m_data, layer());
    setCurLtype(m_data, ltype());
    setCurStyle(m_data, style());
    setLtypeScale(m_data, 1 + number(9));
  }
  void remap() {
    CTableRemapper remapper(m_data, true);
    remapper.ChangeInto(layer(), layer());
    remapper.ChangeInto(ltype(), ltype());
    remapper.ChangeInto(style(), style());
    remapper.Remap(m_undo);
  }
  void editOnce() {
    const bool isFull = m_data.getEntTable().getEntityTbl().size() > 60;
    switch (number(16)) {
      case 0:
      case 1:
      case 2:
        if (!isFull) return addEntity();
        [[fallthrough]];
      case 3:
      case 4:
        m_undo.remove(anyEntity());
        return;
      case 5:
      case 6:
        return transform();
      case 7:
        return setProperties();
      case 8:
      case 9:
        return changeKind();
      case 10:
        return changeTables();
      case 11:
        return changeItem();
      case 12:
        return redefineBlock();
      case 13:
        return redefineHatch();
      case 14:
        return changeVars();
      default:
        if (number(8) == 0) remap();
    }
  }

  CData& m_data;
  CUndoStack& m_undo;
  std::mt19937 m_random;
  vek0::Handle m_handle = 1;
};

}  // namespace vek0::test
