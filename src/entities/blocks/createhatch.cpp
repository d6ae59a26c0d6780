// Creates the block of a hatch from its boundary and pattern.
#include <atomic>
#include <memory>
#include <new>
#include <string>

#include "vek0core/tables/colors.h"

#include "entities/blocks/hatchblock.h"
#include "entities/entservices.h"
#include "tables/handover.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blockfactory.h"
#include "vek0core/entities/blocks/blocktable.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"
#include "vek0core/geometry/line.h"
#include "vek0core/hatch/fill.h"
#include "vek0core/hatch/hatchtypetable.h"
#include "vek0core/hatch/triangulate.h"

using vek0::detail::EntServices;
using vek0::detail::HatchParameters;

namespace {

std::atomic<HatchMessageHandler> g_handler{nullptr};

const zim::Char* messageOf(HatchStatus status) {
  switch (status) {
    case HatchStatus::BadBoundary:
      return u"The boundary of the hatch has coordinates that no line can be clipped at.";
    case HatchStatus::TooDense:
      return u"The hatch is too dense for its boundary.";
    default:
      return u"The hatch's pattern, scale or angle makes no lines.";
  }
}

// Adds the output of a pattern to a block.
class BlockSink final : public IHatchSink {
 public:
  BlockSink(const EntServices& services, CBlock& block) : m_services(services), m_block(block) {}

  void line(const PNT_3D& from, const PNT_3D& to) override {
    // On layer 0 and BYBLOCK, the lines take the properties of the hatch.
    keep(factory().createEntLine(gestor(), layer(), ltype(), kColorByBlock, LINE_3D(from, to), 0));
  }
  void dot(const PNT_3D& at) override {
    keep(factory().createEntPnt(gestor(), layer(), ltype(), kColorByBlock, at, 0));
  }
  void face(const HatchFace& f) {
    keep(factory().createEntSolid(gestor(), layer(), ltype(), kColorByBlock, f.p[0], f.p[1], f.p[2],
                                  f.p[3], CEnt3DFace::kNoEdges, FaceFill::Solid, 0));
  }

 private:
  CEntFactory& factory() const { return m_services.entFactory; }
  IHandleGestor& gestor() const { return m_services.gestor; }
  CLayer* layer() const { return &m_services.layer0; }
  CLtype* ltype() const { return &m_services.continuous; }

  void keep(CEnt* made) {
    if (!made) throw std::bad_alloc();
    vek0::detail::restoreTo(m_block, std::unique_ptr<CEnt>(made));
  }

  const EntServices& m_services;
  CBlock& m_block;
};

HatchStatus fill(const HatchParameters& with, const std::vector<PNT_3D>& boundary,
                 const EntServices& services, CBlock& block) {
  BlockSink sink(services, block);
  // A solid fill has no lines and consists of faces.
  if (!isSolid(*with.type))
    return fillHatch(*with.type, with.scale, with.rotate, boundary, services.hatchLimit, sink);
  std::vector<HatchFace> faces;
  const HatchStatus status = fillSolid(boundary, services.hatchLimit, faces);
  for (const HatchFace& face : faces) sink.face(face);
  return status;
}

}  // namespace

HatchMessageHandler setHatchMessageHandler(HatchMessageHandler handler) {
  return g_handler.exchange(handler);
}

zim::WString getHatchName(const CBlockTable& table) {
  const zim::WString prefix(u"*PAT");
  return prefix + zim::WString::fromUtf8(std::to_string(table.getProgNum(prefix)));
}

bool isHatchName(const zim::WString& name) {
  const std::u16string_view prefix = u"*PAT", text = name;
  // A name that merely starts with the prefix may be that of a user's block.
  if (text.substr(0, prefix.size()) != prefix) return false;
  const std::u16string_view number = text.substr(prefix.size());
  return !number.empty() && number.find_first_not_of(u"0123456789") == std::u16string_view::npos;
}

bool vek0::detail::addHatchBlock(CBlockTable& table, std::unique_ptr<CBlock>& block) {
  try {
    // A hatch inside the block may have received the name meanwhile.
    const CBlock* const same = table.get(block->getName());
    if (same && same != block.get()) block->setName(getHatchName(table));
    table.add(block.get());
  } catch (const std::bad_alloc&) {
    return false;
  }
  return block.release() != nullptr;  // only now that the table owns it
}

CBlock* vek0::detail::makeHatchBlock(const zim::WString& name, const HatchParameters& parameters,
                                     const std::vector<PNT_3D>& boundary, CData& data) {
  const EntServices services = servicesOf(data);
  std::unique_ptr<CBlock> block(
      services.blockFactory.create(name, PNT_3D(0, 0, 0), CBlock::kAnonymous));
  if (!block) throw std::bad_alloc();
  const HatchStatus status = fill(parameters, boundary, services, *block);
  if (status == HatchStatus::Done) return block.release();
  if (const HatchMessageHandler handler = g_handler) handler(*parameters.type, messageOf(status));
  return nullptr;
}

CBlock* createHatch(const zim::WString& name, const HATCH_TYPE& type, double scale, double rotate,
                    const std::vector<PNT_3D>& boundary, CData& data) try {
  return vek0::detail::makeHatchBlock(name, {&type, scale, rotate}, boundary, data);
} catch (const std::bad_alloc&) {
  return nullptr;
}
