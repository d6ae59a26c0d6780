// A memento stores the addresses of attributes besides their values. Attributes that the insert
// still has are restored in place, so that a host's pointers to them stay valid; the others are
// created anew or exchanged with the action that replaced them (`AttribsMemento::Replaced`).
#include <algorithm>
#include <map>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "entities/entservices.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entfactory.h"

namespace vek0::detail {

AttribsMemento::AttribsMemento(const CEntInsertBase& insert) : m_block(insert.getBlock()) {
  m_attribs.reserve(insert.m_attribs.size());
  for (const auto& attrib : insert.m_attribs)
    m_attribs.push_back({attrib.get(), attrib->getLayer(), attrib->getLtype(), attrib->getColor(),
                         attrib->m_traits, attrib->GetHandle(), CEntAttribMemento(*attrib)});
}

bool AttribsMemento::matches(const CEntInsertBase& insert) const {
  return insert.getBlock() == m_block &&
         std::equal(m_attribs.begin(), m_attribs.end(), insert.m_attribs.begin(),
                    insert.m_attribs.end(), [](const Entry& entry, const auto& attrib) {
                      return attrib.get() == entry.attrib && attrib->getLayer() == entry.layer &&
                             attrib->getLtype() == entry.ltype &&
                             attrib->getColor() == entry.color &&
                             attrib->m_traits == entry.traits && entry.state == *attrib;
                    });
}

void AttribsMemento::restore(CData& data, CEntInsertBase& insert) const {
  insert.setBlock(m_block);
  for (std::size_t i = 0; i < m_attribs.size(); ++i)
    reset(data, *insert.m_attribs[i], m_attribs[i]);
}

void AttribsMemento::reset(CData& data, CEntAttrib& attrib, const Entry& entry) {
  attrib.setLayer(entry.layer);
  attrib.setLtype(entry.ltype);
  attrib.m_color = entry.color;
  attrib.m_traits = entry.traits;
  attrib.setMemento(data, &entry.state);
}

std::unique_ptr<CEntAttrib> AttribsMemento::remake(CData& data, const Entry& entry) {
  const CEntAttribMemento& state = entry.state;
  const EntServices services = servicesOf(data);
  std::unique_ptr<CEntAttrib> attrib(services.entFactory.createEntAttrib(
      services.gestor, entry.layer, entry.ltype, entry.color, state.getText(), state.getTag(),
      state.getFlags(), entry.handle));
  if (attrib) attrib->m_traits = entry.traits;
  return attrib;
}

// The attributes of one list that the other one lacks belong to this; the rest is on both.
class AttribsMemento::Replaced final : public EntParts {
 public:
  explicit Replaced(CEntInsertBase& insert) : m_insert(insert) {}

  // Takes the memento's attributes from those present, or makes them. Throws before anything
  // changes.
  void prepare(CData& data, const std::vector<Entry>& entries) {
    Present present;
    for (std::size_t i = 0; i < m_insert.m_attribs.size(); ++i) {
      const CEntAttrib& attrib = *m_insert.m_attribs[i];
      present.emplace(Identity(&attrib, attrib.GetHandle()), i);
      if (attrib.GetHandle() != 0) present.emplace(Identity(nullptr, attrib.GetHandle()), i);
    }
    std::vector<bool> isTaken(m_insert.m_attribs.size());
    m_attribs.resize(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
      auto found = present.find(Identity(entries[i].attrib, entries[i].handle));
      // One that was remade has another address.
      if (found == present.end()) found = present.find(Identity(nullptr, entries[i].handle));
      if (found == present.end() || isTaken[found->second]) {
        m_attribs[i] = orThrow(remake(data, entries[i]));
      } else {
        isTaken[found->second] = true;
        m_shared.emplace_back(found->second, i);
      }
    }
  }

  void exchange() {
    IHandleGestor* gestor = m_insert.m_gestor;
    // Attributes that return are registered before the others are released, so that no count drops
    // to 0 in between.
    for (const auto& attrib : m_attribs)
      if (attrib && gestor != nullptr) attrib->addTbls(*gestor);
    for (auto& [here, there] : m_shared) {
      m_insert.m_attribs[here].swap(m_attribs[there]);
      // The places are relative to each list, so they swap with the lists.
      std::swap(here, there);
    }
    m_insert.m_attribs.swap(m_attribs);
    for (const auto& attrib : m_attribs)
      if (attrib && gestor != nullptr) attrib->removeTbls(*gestor);
  }

  void putBack() override { exchange(); }

 private:
  // By address and handle, because another one may have been allocated at the address of a deleted
  // one.
  using Identity = std::pair<const CEntAttrib*, vek0::Handle>;
  using Present = std::map<Identity, std::size_t>;

  static std::unique_ptr<CEntAttrib> orThrow(std::unique_ptr<CEntAttrib> made) {
    if (made == nullptr) throw std::bad_alloc();
    return made;
  }

  CEntInsertBase& m_insert;
  std::vector<std::unique_ptr<CEntAttrib>> m_attribs;  // null where the insert has the attribute
  std::vector<std::pair<std::size_t, std::size_t>> m_shared;  // places in the insert's list, here
};

std::unique_ptr<EntParts> AttribsMemento::replaceAttribs(CData& data,
                                                         CEntInsertBase& insert) const {
  // With the same number of attributes, all are restored in place.
  if (m_attribs.size() == insert.m_attribs.size()) return nullptr;
  auto replaced = std::make_unique<Replaced>(insert);
  replaced->prepare(data, m_attribs);
  replaced->exchange();
  return replaced;
}

}  // namespace vek0::detail
