#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/rect.h"
#include "vek0core/polyline/silhouette.h"

/// Outlines of a long wide polyline in pieces, which take little memory however long it is.
///
/// Consecutive pieces share a segment, so that every joint is inside a piece: filled one by one,
/// they cover what `CPolylineSilhouette` covers. A polyline of no more vertices than a piece may
/// have is passed on as a whole.
class VEK0_API CSilhouettePieces {
 public:
  using Sink = std::function<void(const CPolylineSilhouette&)>;
  static constexpr std::size_t kMostVertexes = 1 << 16;  ///< of a piece, unless specified

  /// At least 3 vertices a piece.
  explicit CSilhouettePieces(Sink sink, std::size_t mostVertexes = kMostVertexes);

  /// Leaves out what is certainly within the box, which may grow meanwhile and must outlive this,
  /// unless the polyline is passed on as a whole.
  void leaveOutWithin(const RECT_3D& box) { m_box = &box; }

  void add(const WIDE_VERTEX& vertex);
  /// Passes on what is left. Nothing may be added afterwards.
  void finish(bool closed);

 private:
  void passOn();
  void passOnOutside();

  Sink m_sink;
  std::size_t m_most;
  const RECT_3D* m_box = nullptr;
  std::vector<WIDE_VERTEX> m_vertexes;  // of the current piece
  std::vector<WIDE_VERTEX> m_first;     // of the first segment, once a piece was passed on
};
