#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "dxf/in/recordreader.h"
#include "vek0core/tables/ltypedash.h"

class CTextContext;

namespace vek0::detail {

/// Reads the entries of the LTYPE table.
class LtypeReader {
 public:
  /// `complexDashes`: whether dashes may carry texts and shapes, as from AC1014 on.
  LtypeReader(const ReadContext& context, bool complexDashes)
      : m_context(context), m_complexDashes(complexDashes) {}

  /// Reads the entry at whose group 0 the lexer is positioned, leaves the lexer at the next one and
  /// has the semantor create the linetype.
  void read();

  /// Finds a text style by the handle of its record; null if there is none.
  using FindStyle = std::function<CStyle*(std::uint64_t)>;
  /// Gives the texts of the linetypes read so far their styles, whose table follows that of the
  /// linetypes.
  void settle(const FindStyle& find);

 private:
  struct Entry;
  struct TextStyle {
    int dash;
    std::uint64_t style;
    CLtype* ltype = nullptr;
  };

  void takePair(long code, Entry& entry);
  void takeFlags(Entry& entry);
  void takeAlignment();
  void takeCount(Entry& entry);
  long integer() const;
  void takeDash(Entry& entry);
  void takeElementType(Entry& entry);
  void takeReal(double& value) const;
  void takeElement(long type, Entry& entry);
  void takeText(Entry& entry);
  long next();
  void skipShape();
  bool expect(long code);
  double expectDouble(long code);
  static bool isVisible(const CLtypeComplexDashSeq& sequence);
  void create(Entry& entry);
  void define(Entry& entry, long flags);
  void addText(Entry& entry, const CTextContext& context, double x, double y,
               std::uint64_t style) const;

  bool isTolerant() const { return m_context.options.policy.tolerant; }
  bool failed() const { return m_context.err.HasAnError(); }
  void fail(CFileDXFIError::TDXFErrors kind) const { m_context.err.SetError(kind); }

  ReadContext m_context;
  bool m_complexDashes;
  bool m_putBack = false;
  std::vector<TextStyle> m_texts;  // without their styles
};

}  // namespace vek0::detail
