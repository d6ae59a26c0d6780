#include "vek0core/entities/ent.h"

#include <new>
#include <utility>

#include "vek0core/entities/entmemento.h"
#include "vek0core/entities/enttable.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/ltype.h"

namespace {

// Moves one use count from `from` to `to`; null is not counted.
template <class Item>
void moveCount(Item* from, Item* to) {
  if (from != nullptr) from->decEntity();
  if (to != nullptr) to->addEntity();
}

}  // namespace

CEnt::CEnt(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color)
    : IHandleEnt(handle), m_layer(layer), m_ltype(ltype), m_color(color) {
  m_bdry.initRegion();
}

CEnt::CEnt(const CEnt& src, vek0::Handle handle)
    : IHandleEnt(handle),
      m_bdry(src.m_bdry),
      m_layer(src.m_layer),
      m_ltype(src.m_ltype),
      m_userType(src.m_userType),
      m_userData(src.m_userData),
      m_traits(src.m_traits),
      m_color(src.m_color),
      m_bdryDirty(src.m_bdryDirty) {}

CEnt::~CEnt() = default;

void CEnt::addTbls(IHandleGestor& gestor) const {
  gestor.reserve(this);
  moveCount<CLayer>(nullptr, m_layer);
  moveCount<CLtype>(nullptr, m_ltype);
}

void CEnt::removeTbls(IHandleGestor& gestor) const {
  gestor.release(GetHandle());
  moveCount<CLayer>(m_layer, nullptr);
  moveCount<CLtype>(m_ltype, nullptr);
}

CStyle* CEnt::getStyle() const { return nullptr; }

void CEnt::GetBdry(double, RECT_3D& box) const { box = getBdry(); }

void CEnt::setStyle(CStyle*) {}

CEntInsertBase* CEnt::getEntInsert() { return nullptr; }

const CEntInsertBase* CEnt::getEntInsert() const { return nullptr; }

void CEnt::setLayer(CLayer* layer) {
  moveCount(m_layer, layer);
  m_layer = layer;
}

void CEnt::setLtype(CLtype* ltype) {
  moveCount(m_ltype, ltype);
  m_ltype = ltype;
}

void CEnt::setColor(short color) {
  if (getTraits().hasTrueColor()) {
    ENT_TRAITS traits = getTraits();
    traits.trueColor = ENT_TRAITS::kNoTrueColor;
    setTraits(traits);
  }
  m_color = color;
}

void CEnt::copyExtras(const CEnt& src) {
  m_traits = src.m_traits;
  setUserInfo(src.m_userType, src.m_userData);
}

void CEnt::setUserInfo(long type, long data) {
  m_userType = type;
  m_userData = data;
}

void CEnt::moveBdry(const PNT_3D& delta) {
  // Moving the two huge corners of an empty box could make it a valid one.
  if (m_bdryDirty || !m_bdry.validRegion()) return;
  m_bdry.move(delta);
  if (m_watched) tellWatchers();
}

CEntBaseMemento* CEnt::createBaseMemento() const {
  return new (std::nothrow) CEntBaseMemento(m_layer, m_ltype, m_color, m_traits);
}

void CEnt::setMemento(const CEntBaseMemento* memento) {
  if (memento == nullptr) return;
  setLayer(memento->m_layer);
  setLtype(memento->m_ltype);
  m_traits = memento->m_traits;
  m_color = memento->m_color;
}

void CEnt::exchange(CEntBaseMemento& memento) {
  CEntBaseMemento present(m_layer, m_ltype, m_color, m_traits);
  setMemento(&memento);
  std::swap(memento, present);
}

std::unique_ptr<vek0::detail::EntParts> CEnt::replaceParts(CData&, const IEntDerivedMemento&) {
  return nullptr;
}

bool CEnt::operator==(const CEntBaseMemento& memento) const {
  return memento.m_ltype == m_ltype && memento.m_layer == m_layer && memento.m_color == m_color &&
         memento.m_traits == m_traits;
}

bool CEnt::operator!=(const CEntBaseMemento& memento) const { return !(*this == memento); }

bool CEnt::operator==(const IEntDerivedMemento& memento) const { return memento.operator==(*this); }

bool CEnt::operator!=(const IEntDerivedMemento& memento) const { return memento.operator!=(*this); }

void CEnt::setSelectStatus(Node node) {
  m_selectStatus = node;
  m_selected = true;
}

// Only a table has its entities watched.
void CEnt::tellWatchers() { m_owner->table->tellReshaped(*this); }

void CEnt::refreshBdry() const {
  // The box is a cache, and every entity is a heap object that is not itself const.
  const_cast<CEnt*>(this)->calcBdry();
}
