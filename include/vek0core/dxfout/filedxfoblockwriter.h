#pragma once

#include "vek0core/entities/blockgraph.h"
#include "vek0core/export.h"

class CBlock;
class CFileDXFOVisitor;
class CFileDXFOWriter;
class CNameAcadConverter;

/// Writes block definitions while the block graph is walked.
class VEK0_API CFileDXFOBlockWriter final : public IBlockOperation {
 public:
  /// All three are borrowed; entities go through `visitor`, which must write to the
  /// same writer.
  CFileDXFOBlockWriter(CFileDXFOWriter& writer, CFileDXFOVisitor& visitor,
                       CNameAcadConverter& converter);

  /// Ends blocks with (8, "0") after ENDBLK; off at first.
  void setExchange(bool exchange) { m_exchange = exchange; }

  /// Writes the block's record and its entities in their order. The base point is
  /// always the origin, whatever the block's own is: entities are stored relative
  /// to it already. Always `ZORA_BLOCK_VISIT_RESULT_SUCCESS`; failed writes show in
  /// the writer.
  int doOperation(CBlock& block) override;

 private:
  CFileDXFOWriter& m_writer;
  CFileDXFOVisitor& m_visitor;
  CNameAcadConverter& m_converter;
  bool m_exchange = false;
};
