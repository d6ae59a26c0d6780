#include "vek0core/dxf/out/filedxfoblockwriter.h"

#include "dxf/out/blockrecord.h"
#include "vek0core/dxf/out/filedxfovisitor.h"
#include "vek0core/dxf/out/filedxfowriter.h"
#include "vek0core/dxf/out/nameacadconverter.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/ent.h"

namespace {

// Code 70 of BLOCK.

long flagsOf(const CBlock& block, bool exchange) {
  // Readers would look for a file behind a block that says it is external.
  const long flags = block.getFlags() & ~(vek0::detail::kExternal | CBlock::kOfRecord);
  // They also drop an empty block with such a name unless it is flagged as private.
  return exchange && block.getName()[0] == u'*' ? flags | CBlock::kAnonymous : flags;
}

}  // namespace

CFileDXFOBlockWriter::CFileDXFOBlockWriter(CFileDXFOWriter& writer, CFileDXFOVisitor& visitor,
                                           CNameAcadConverter& converter)
    : m_writer(writer), m_visitor(visitor), m_converter(converter) {}

int CFileDXFOBlockWriter::doOperation(CBlock& block) {
  const PNT_3D origin(0, 0, 0);
  vek0::detail::beginBlock(m_writer, m_converter.GetName(&block), flagsOf(block, m_exchange),
                           origin, zim::WString());
  for (unsigned i = 0; i < static_cast<unsigned>(block.size()) && !m_writer.fail(); ++i)
    block[i]->accept(m_visitor);
  vek0::detail::endBlock(m_writer, m_exchange);
  return ZORA_BLOCK_VISIT_RESULT_SUCCESS;
}
