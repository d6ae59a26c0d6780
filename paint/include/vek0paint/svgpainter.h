#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "vek0paint/covergrid.h"
#include "vek0paint/sheetpainter.h"
#include "vek0paint/svgclips.h"
#include "vek0paint/svgwriter.h"

namespace vek0::paint {

/// Writes well-structured SVG: one group per layer (`layer-WALLS`, also an Inkscape layer), the
/// entity's handle as the id of its elements (`h1F`), arcs and circles as such, texts as texts or
/// as outlines.
///
/// Where a fill covers earlier content of another layer, or is covered by later content, order
/// takes precedence over grouping: groups are closed and reopened (`layer-WALLS-2`). The file is
/// written in blocks.
class SvgPainter final : public SheetPainter {
 public:
  enum Texts { AsText, AsOutlines };

  /// `file` is open, and borrowed like `fonts`.
  SvgPainter(IFile& file, const SHEET& sheet, IOutlineFonts& fonts, Texts texts);

  void begin(const DrawItem& item) override;
  bool finish() override;

 protected:
  void plainStroke(const PNT_2D* points, std::size_t count, bool closed) override;
  void plainSegments(const PNT_2D* points, std::size_t count) override;
  void plainArc(const PNT_2D& center, double radius, double startRad, double sweepRad) override;
  void plainFill(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
                 FillRule rule) override;
  void plainDot(const PNT_2D& at) override;
  void plainDisc(const PNT_2D& center, double diameter) override;
  bool plainClip(const PNT_2D* points, std::size_t count) override;
  void plainPopClip() override;
  void plainText(const DrawText& text, const OutlineFont& font, const RECT_2D& bounds) override;

 private:
  struct Group {
    std::string layer;  // UTF-8
    RGB_COLOR color;    // of its first element, like the next
    double width;
    int clip = 0;                  // the innermost one that its end is in
    std::string leavesClips = {};  // the tags that leave it and those around
  };

  void writeHead(const SHEET& sheet);
  void flushGroups();
  Group& groupOfItem();
  std::string groupId(const std::string& layer);
  std::string openingTag(const Group& group);
  std::string nextHandleId();

  void reach(const RECT_2D& box, bool isFill);
  void startElement(std::string_view name);
  template <class... Parts>
  void addElement(std::string_view name, const Parts&... rest);
  void startPath(bool fills);
  void endPath();
  void endEntity();
  void enterGroup();
  std::string strokeAttribute();
  std::string fillAttribute() const;
  static std::string widthAttribute(double width);
  std::string opacityAttribute(const char* of) const;
  std::string textAttributes(const DrawText& text, const OutlineFont& font) const;

  SvgWriter m_writer;
  Texts m_texts;
  const double m_lineWidth;  // of items without a width

  CoverGrid m_cover;
  std::vector<Group> m_groups;                             // not written yet, in their order
  std::unordered_map<std::string, std::size_t> m_groupOf;  // by the layer
  std::unordered_map<std::string, int> m_groupIds;         // last number appended to each
  std::size_t m_flushed = 0;                               // size recorded when last flushed
  std::unordered_map<vek0::Handle, int> m_handles;         // how many ids each has

  // Set by `begin`.
  zim::WString m_layer;
  std::string m_layerUtf8;
  RGB_COLOR m_color;
  double m_width;  // of strokes
  std::uint8_t m_alpha = 255;
  vek0::Handle m_handle = 0;
  static constexpr std::size_t kNoGroup = static_cast<std::size_t>(-1);
  std::size_t m_group = kNoGroup;  // of the layer, once it has drawn something

  // The current entity: how many elements it has, and the places for the tag of their group and the
  // id of the first one.
  int m_elementCount = 0;
  std::size_t m_groupPlace = 0, m_idPlace = 0;
  bool m_isPathOpen = false, m_pathFills = false;

  SvgClips m_clips;  // around what is drawn
};

}  // namespace vek0::paint
