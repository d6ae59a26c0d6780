// A hatch shows a private block of generated lines. Changes of the lines create a new block, which
// replaces the old one. The old block is kept until the change is complete: generation can fail,
// and undo restores the old block with its name and place.
#include "vek0core/entities/blocks/enthatch.h"

#include <new>
#include <optional>
#include <utility>

#include "entities/blocks/hatchblock.h"
#include "entities/entservices.h"
#include "entities/newornull.h"
#include "tables/handover.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blockfactory.h"
#include "vek0core/entities/blocks/blocktable.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/entities/entvisitor.h"
#include "vek0core/hatch/boundary.h"

using vek0::detail::HatchParameters;

CEntHatch::CEntHatch(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color, CBlock* block,
                     const HATCH_TYPE& type, double scale, double rotate,
                     const std::vector<PNT_3D>& boundary)
    : CEntInsertBase(handle, layer, ltype, color, block), m_parameters{&type, scale, rotate} {
  _hatch_compactVertex(boundary, m_boundary);
}

CEntHatch::CEntHatch(const CEntHatch& src, CBlock* block, vek0::Handle handle)
    : CEntInsertBase(src, block, handle),
      m_parameters(src.m_parameters),
      m_boundary(src.m_boundary) {}

CEntHatch* CEntHatch::Create(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color,
                             const zim::WString& name, const HATCH_TYPE& type, double scale,
                             double rotate, const std::vector<PNT_3D>& boundary, CData& data) {
  std::unique_ptr<CBlock> block(
      vek0::detail::makeHatchBlock(name, {&type, scale, rotate}, boundary, data));
  CEntHatch* hatch =
      new CEntHatch(handle, layer, ltype, color, block.get(), type, scale, rotate, boundary);
  static_cast<void>(block.release());  // the caller owns both
  return hatch;
}

void CEntHatch::accept(IEntVisitor& visitor) { visitor.visit(*this); }

void CEntHatch::getInsertParams(double, PNT_3D& point, double& sx, double& sy, double& sz,
                                double& rotation) const {
  point.set(0, 0, 0);
  sx = sy = sz = 1;
  rotation = 0;
}

bool CEntHatch::redefine(CData& data, double scale, double rotate, const HATCH_TYPE& type) try {
  const HatchParameters wanted{&type, scale, rotate};
  if (wanted == m_parameters) return true;
  // The parameters change only after the new lines exist.
  const auto displaced =
      replaceLines(vek0::detail::servicesOf(data).blockTable, [&](const zim::WString& name) {
        return vek0::detail::makeHatchBlock(name, wanted, m_boundary, data);
      });
  if (displaced) setParameters(wanted, m_boundary);
  return displaced != nullptr;
} catch (const std::bad_alloc&) {
  return false;
}

void CEntHatch::setParameters(const HatchParameters& parameters,
                              const std::vector<PNT_3D>& boundary) {
  m_boundary = boundary;  // first: only this can fail
  m_parameters = parameters;
  dirtyBdry();
}

// The block of a hatch after another one has replaced it. It is outside the table unless something
// else shows it too.
class CEntHatch::ReplacedBlock final : public vek0::detail::EntParts {
 public:
  ReplacedBlock(CEntHatch& hatch, CBlockTable& table)
      : m_hatch(hatch), m_table(table), m_block(hatch.getBlock()) {
    if (m_block) m_users = table.getBlockGraph().getUsers(*m_block);
  }
  ReplacedBlock(const ReplacedBlock&) = delete;
  ReplacedBlock& operator=(const ReplacedBlock&) = delete;
  ~ReplacedBlock() override {
    if (m_isIdle) delete m_block;
  }

  // The old block is removed first, because the new one may reuse its number, and is put back if
  // none is created.
  bool replace(const BlockMaker& make) {
    takeOut();
    bool isMade = false;
    try {
      isMade = show(std::unique_ptr<CBlock>(make(getHatchName(m_table))));
    } catch (const std::bad_alloc&) {
      putIn();
      throw;
    }
    isMade ? tellUsers() : putIn();
    return isMade;
  }

  void putBack() override {
    CBlock* const shown = m_hatch.getBlock();
    m_hatch.replaceBlock(nullptr);
    m_table.remove(shown);
    putIn();
    m_block = shown;
    m_isIdle = true;
    tellUsers();
  }

  // The parameters that belong to the block are restored with it.
  bool isAll() const override { return true; }

 private:
  // Until the hatch shows the new block, it must not count as a user of the old one.
  void takeOut() {
    m_hatch.replaceBlock(nullptr);
    m_place.reset();
    m_isIdle = m_block && m_block->getEntities() <= 0;  // otherwise an insert shows it too
    if (m_isIdle && m_table.contains(m_block)) m_place = m_table.getPlace(*m_block);
    if (m_place) m_table.remove(m_block);
  }

  void putIn() {
    if (m_place) m_table.restore(m_block, *m_place);
    m_hatch.replaceBlock(m_block);
    m_isIdle = false;
  }

  bool show(std::unique_ptr<CBlock> fresh) {
    CBlock* const shown = fresh.get();
    if (!shown) return false;
    // `addHatchBlock` fails only for lack of memory.
    if (!vek0::detail::addHatchBlock(m_table, fresh)) throw std::bad_alloc();
    m_hatch.replaceBlock(shown);
    return true;
  }

  void tellUsers() {
    // Blocks that contain the hatch have an edge to its block, and extents that depend on it.
    for (CBlock* user : m_users) {
      m_table.updateBlock(user);
      user->invalidateBdry();
    }
  }

  CEntHatch& m_hatch;
  CBlockTable& m_table;
  CBlock* m_block;  // the block that the hatch does not show now
  std::vector<CBlock*> m_users;
  std::optional<CBlockTable::Place> m_place;  // its previous place in the table, if any
  bool m_isIdle = false;                      // nothing shows it, so it belongs to this
};

// Null, with nothing changed, if no lines can be generated.
std::unique_ptr<CEntHatch::ReplacedBlock> CEntHatch::replaceLines(CBlockTable& table,
                                                                  const BlockMaker& make) {
  auto replaced = std::make_unique<ReplacedBlock>(*this, table);
  return replaced->replace(make) ? std::move(replaced) : nullptr;
}

void CEntHatch::setShown(CBlock* block, double scale, double rotate, const HATCH_TYPE& type) {
  replaceBlock(block);
  setParameters({&type, scale, rotate}, m_boundary);
}

CEnt* CEntHatch::clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory& blockFactory,
                       CBlockTable& blockTable, vek0::Handle handle) const {
  // Each copy needs its own block: editing one hatch must not affect the other.
  std::unique_ptr<CBlock> block(
      blockFactory.create(getHatchName(blockTable), PNT_3D(0, 0, 0), CBlock::kAnonymous));
  if (!block) return nullptr;
  if (const CBlock* own = getBlock()) {
    for (unsigned i = 0; i < static_cast<unsigned>(own->size()); ++i) {
      std::unique_ptr<CEnt> line(entFactory.clone(gestor, blockFactory, blockTable, *(*own)[i]));
      if (!line) return nullptr;
      vek0::detail::restoreTo(*block, std::move(line));
    }
  }
  std::unique_ptr<CEntHatch> copy(new CEntHatch(*this, block.get(), handle));
  return vek0::detail::addHatchBlock(blockTable, block) ? copy.release() : nullptr;
}

void CEntHatch::setMemento(CData& data, const IEntDerivedMemento* memento) {
  const auto* state = vek0::detail::mementoOf<CEntHatch, CEntHatchMemento>(memento);
  if (!state) return;
  // The block was replaced meanwhile, so its lines must be generated again.
  if (!state->showsSameBlock(*this)) {
    replaceParts(data, *state);
    return;
  }
  m_boundary.reserve(state->m_boundary.size());  // first: only this can fail
  if (CBlock* block = getBlock()) {
    // The lines may have been transformed in place together with the boundary.
    for (unsigned i = 0; i < state->m_lines.size(); ++i)
      (*block)[i]->setMemento(data, state->m_lines[i].state.get());
    block->invalidateBdry();
  }
  setParameters(state->m_parameters, state->m_boundary);
}

// A hatch without lines is restored without generating any: generation may have failed before.
std::unique_ptr<vek0::detail::EntParts> CEntHatch::replaceParts(CData& data,
                                                                const IEntDerivedMemento& memento) {
  const auto* state = vek0::detail::mementoOf<CEntHatch, CEntHatchMemento>(&memento);
  if (!state || state->showsSameBlock(*this)) return nullptr;
  m_boundary.reserve(state->m_boundary.size());
  const auto make = [&](const zim::WString& name) {
    if (!state->m_lines.empty())
      return vek0::detail::makeHatchBlock(name, state->m_parameters, state->m_boundary, data);
    CBlock* empty = vek0::detail::servicesOf(data).blockFactory.create(name, PNT_3D(0, 0, 0),
                                                                       CBlock::kAnonymous);
    if (!empty) throw std::bad_alloc();
    return empty;
  };
  auto replaced = replaceLines(vek0::detail::servicesOf(data).blockTable, make);
  if (replaced) setParameters(state->m_parameters, state->m_boundary);
  return replaced;
}

IEntDerivedMemento* CEntHatch::createDerivedMemento() const {
  return vek0::detail::newOrNull<CEntHatchMemento>(*this);
}

CEntHatchMemento::CEntHatchMemento(const CEntHatch& ent)
    : m_parameters(ent.m_parameters), m_boundary(ent.m_boundary), m_serial(0) {
  const CBlock* block = ent.getBlock();
  if (!block) return;
  m_serial = block->getSerial();
  m_lines.reserve(block->size());
  for (unsigned i = 0; i < static_cast<unsigned>(block->size()); ++i) {
    const CEnt& line = *(*block)[i];
    m_lines.push_back(
        {line.getType(), std::unique_ptr<IEntDerivedMemento>(line.createDerivedMemento())});
    if (!m_lines.back().state) throw std::bad_alloc();
  }
}

CEntHatchMemento::~CEntHatchMemento() = default;

// A pointer would not suffice: another block may have been allocated at the same address.
bool CEntHatchMemento::showsSameBlock(const CEntHatch& hatch) const {
  const CBlock* block = hatch.getBlock();
  if (!block) return m_serial == 0;
  if (block->getSerial() != m_serial || block->size() != m_lines.size()) return false;
  // Lines could have been replaced by others of the same number.
  for (unsigned i = 0; i < m_lines.size(); ++i)
    if ((*block)[i]->getType() != m_lines[i].type) return false;
  return true;
}

bool CEntHatchMemento::operator==(const CEnt& ent) const {
  if (ent.getType() != CEntHatch::kType) return false;
  const auto& hatch = static_cast<const CEntHatch&>(ent);
  if (hatch.m_parameters != m_parameters || hatch.m_boundary != m_boundary ||
      !showsSameBlock(hatch))
    return false;
  for (unsigned i = 0; i < m_lines.size(); ++i)
    if (!(*m_lines[i].state == *(*hatch.getBlock())[i])) return false;
  return true;
}

std::size_t CEntHatchMemento::size() const {
  std::size_t bytes = sizeof *this + m_boundary.size() * sizeof(PNT_3D);
  for (const Line& line : m_lines) bytes += sizeof line + line.state->size();
  return bytes;
}
