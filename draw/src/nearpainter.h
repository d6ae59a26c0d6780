#pragma once

#include <cstddef>
#include <vector>

#include "vek0core/geometry/edge.h"
#include "vek0draw/painter.h"

namespace vek0::detail {

/// The sides of a box, counterclockwise.
std::vector<EDGE_3D> sidesOf(const RECT_2D& box);

/// Reduces what it receives to edges, areas and points, for comparing them with a place.
class NearPainter : public IPainter {
 public:
  void begin(const DrawItem& item) override;
  void stroke(const PNT_2D* points, std::size_t count, bool closed) override;
  bool arc(const PNT_2D& center, double radius, double startRad, double sweepRad) override;
  void fill(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
            FillRule rule) override {
    area(points, ends, rings, rule);
  }
  void dot(const PNT_2D& at) override { spot(at); }
  bool point(const PNT_2D& at) override {
    spot(at);
    return true;
  }
  void text(const DrawText& text) override;
  bool pushClip(const PNT_2D* points, std::size_t count) override;
  void popClip() override { m_clips.pop_back(); }

 protected:
  /// A straight edge or an arc.
  virtual void edge(const EDGE_3D& edge) = 0;
  virtual void spot(const PNT_2D& at) = 0;
  /// The edges of one stroke. Default: each of them.
  virtual void chain(const std::vector<EDGE_3D>& edges, bool closed);
  /// A fill, or the frame of a text. Default: its edges.
  virtual void area(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
                    FillRule rule);

  /// What is being drawn: the entity of model space or of the sheet.
  CEnt* entity() const { return m_top; }
  void setEntity(CEnt* top) { m_top = top; }
  bool isInHatch() const { return m_isInHatch; }
  /// Whether it is a curve that is stored as chords.
  bool isOfChords() const { return m_isOfChords; }
  bool isInfinite() const { return m_isInfinite; }

  /// Whether a clip hides the point; whether it hides the whole box.
  bool isClipped(const PNT_2D& at) const;
  bool isClipAway(const RECT_2D& box) const;
  static bool isWithin(const PNT_2D& at, const PNT_2D* points, const std::size_t* ends,
                       std::size_t rings, FillRule rule);

 private:
  CEnt* m_top = nullptr;
  bool m_isInHatch = false, m_isOfChords = false, m_isInfinite = false;
  std::vector<std::vector<PNT_2D>> m_clips;
  std::vector<EDGE_3D> m_edges;  // scratch
};

}  // namespace vek0::detail
