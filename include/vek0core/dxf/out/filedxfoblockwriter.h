#pragma once

#include "vek0core/entities/blocks/blockgraph.h"
#include "vek0core/export.h"

class CBlock;
class CFileDXFOVisitor;
class CFileDXFOWriter;
class CNameAcadConverter;

/// Writes block definitions during a traversal of the block graph.
class VEK0_API CFileDXFOBlockWriter final : public IBlockOperation {
 public:
  /// All three are borrowed; entities go through `visitor`, which must write to the
  /// same writer.
  CFileDXFOBlockWriter(CFileDXFOWriter& writer, CFileDXFOVisitor& visitor,
                       CNameAcadConverter& converter);

  /// Whether to write (8, "0") after ENDBLK; off by default.
  void setExchange(bool exchange) { m_exchange = exchange; }

  /// Writes the block's record and its entities in their order. The base point is always written as
  /// the origin, because entities are already stored relative to the block's base point. Always
  /// returns `ZORA_BLOCK_VISIT_RESULT_SUCCESS`; the writer records failed writes.
  int doOperation(CBlock& block) override;

 private:
  CFileDXFOWriter& m_writer;
  CFileDXFOVisitor& m_visitor;
  CNameAcadConverter& m_converter;
  bool m_exchange = false;
};
