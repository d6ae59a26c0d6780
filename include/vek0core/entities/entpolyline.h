#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "vek0core/entities/bulgedchain.h"
#include "vek0core/entities/ent.h"
#include "vek0core/entities/entmemento.h"
#include "vek0core/entities/vertex.h"
#include "vek0core/export.h"
#include "vek0core/geometry/line.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/tables/handle.h"

class CEntLine;

/// Polyline entity: a chain of vertices with widths, open or closed, optionally with a curve
/// generated from control points.
///
/// A curve holds two runs of vertices in one list: the control points that the user placed, then
/// the visible vertices generated from them. A plain polyline has only visible ones. Vertex indices
/// count through both runs.
///
/// Flags: bit 0 closed; bits 1 to 3 (mask 14) the curve: 0 plain, 2 arcs fitted through the control
/// points, 4 B-spline, 8 Bezier; bit 7 the linetype pattern continues along the whole polyline
/// instead of restarting at each vertex. The degree is that of the curve, 0 for a plain polyline.
///
/// Arcs: a vertex has no bulge. Vertices with bulges from files represent the chain of chords along
/// their arcs (see `vek0::detail::BulgedChain`), and every index, count and point of this interface
/// refers to that chain. The polyline keeps it packed until a `CVertex` is requested or a vertex
/// among arcs is edited; it is then unpacked into plain `CVertex` objects, and the arcs are
/// remembered separately until one of their vertices is edited. Packing is not observable.
///
/// Extents are computed on demand. Writing a single vertex does not refresh them: call `calcBdry()`
/// or `moveBdry()` afterwards.
///
/// Invariant: 0 <= first visible <= number of vertices, and 0 for a plain polyline. The polyline
/// owns its vertices.
class VEK0_API CEntPolyline : public CEnt {
 public:
  static constexpr short kType = 5;  ///< what `getType` answers

  static constexpr short kClosed = 1;      ///< bit of the flags, see the class
  static constexpr short kCurveBits = 14;  ///< bits of the flags, see the class
  static constexpr short kFit = 2;         ///< curve: arcs through the control points
  static constexpr short kSpline = 4;      ///< curve: B-spline
  static constexpr short kBezier = 8;      ///< curve: piecewise Bezier
  static constexpr short kLtGen = 128;     ///< bit of the flags, see the class

  /// Receives, during iteration: point, start and end width of the segment that begins there, its
  /// bulge, the vertex's handle (0 for generated vertices).
  using VertexSink = std::function<void(const PNT_3D& pnt, double widthStart, double widthEnd,
                                        double bulge, vek0::Handle handle)>;

  ~CEntPolyline() override;
  void accept(IEntVisitor& visitor) override;
  /// Registers the vertices as well, last to first. If the manager does not track handles
  /// (`IHandleGestor::handling`), a packed polyline stays packed.
  void addTbls(IHandleGestor& gestor) const override;
  void removeTbls(IHandleGestor& gestor) const override;
  using CEnt::setMemento;
  /// Restores shape and vertices. If the vertex count matches the memento, the current vertex
  /// objects are kept and reset by position; otherwise those in the memento are reused, missing
  /// ones are created, and others are deleted. Handles are restored too, unless a manager tracks
  /// them.
  void setMemento(CData& data, const IEntDerivedMemento* memento) override;
  std::unique_ptr<vek0::detail::EntParts> replaceParts(CData& data,
                                                       const IEntDerivedMemento& memento) override;
  short getType() const override { return kType; }
  /// Box of the visible vertices, or of the outline if the polyline is wide; control points never
  /// count.
  void calcBdry() override;
  IEntDerivedMemento* createDerivedMemento() const override;

  short getFlags() const { return m_flags; }
  short getDegree() const { return m_degree; }
  /// Curve bits of the flags; 0 for a plain polyline.
  short getCurve() const { return static_cast<short>(m_flags & kCurveBits); }
  bool isClosed() const { return (m_flags & kClosed) != 0; }
  bool isCurve() const { return getCurve() != 0; }
  bool IsLtGen() const { return (m_flags & kLtGen) != 0; }
  void setLtGen(bool on);

  long getNoTotalVertexes() const;
  long getFirstCtrlPnt() const { return 0; }
  /// Number of control points; of all vertices for a plain polyline.
  long getNoCtrlPnts() const;
  /// One past the last control point, likewise.
  long getLastCtrlPnt() const { return getNoCtrlPnts(); }
  long getFirstVisibleVertex() const { return m_firstVisible; }
  /// One past the last visible vertex.
  long getLastVisibleVertex() const { return getNoTotalVertexes(); }
  long getNoVisibleVertexes() const { return getNoTotalVertexes() - m_firstVisible; }
  /// Never negative.
  long getNoVisibleSegments() const;
  /// Vertex indices of the first visible segment. A closed polyline reports its
  /// closing segment, last vertex to first visible, before all others; (0, 0)
  /// without vertices.
  void getFirstVisibileSegmentIndex(long& from, long& to) const;
  /// Ends of segment `i`, from vertex i to the next. For an index below the first visible one, it
  /// is the closing segment, from the last vertex to the first visible one. From the last vertex
  /// on, it is the closing segment if closed, otherwise a null segment. Without vertices, both ends
  /// are the origin.
  void getPoints(long i, PNT_3D& a, PNT_3D& b) const;
  void getLine(long i, LINE_3D& segment) const;  ///< likewise

  /// Vertex `i`, control points included; unpacks. An index out of range is a caller error: it
  /// triggers an assertion and returns the nearest vertex, or one at the origin.
  const CVertex& GetVertex(int i) const;
  const CVertex& operator[](int i) const { return GetVertex(i); }
  /// Its point; does not unpack. An index out of range is treated as in `GetVertex`.
  PNT_3D GetVertexPos(int i) const;
  /// Writes a vertex without refreshing the extents. An arc that it belongs to becomes a chain of
  /// chords. An index out of range has no effect.
  void SetVertexPos(int i, const PNT_3D& pnt);
  void SetVertexWidth(int i, double widthStart, double widthEnd);  ///< likewise
  /// Adds `delta` to every vertex, control points included, without refreshing the
  /// extents; arcs stay arcs, and a packed polyline stays packed.
  void translate(const PNT_3D& delta);
  /// Rotates every vertex about the vertical axis through `centre`, likewise.
  void rotate(const PNT_3D& centre, double angleRad);
  /// Scales every vertex about `centre` and the widths by the factor's magnitude, likewise. A
  /// negative factor includes half a turn, which preserves bulges.
  void scale(const PNT_3D& centre, double factor);
  /// Mirrors with `image`, which replaces points by their mirror images; bulges change their sign.
  template <class Image>
  void mirror(const Image& image) {
    m_packed.mirror(image);
    for (CVertex* vertex : m_vertexes) image(vertex->getPnt());
    for (ArcRun& run : m_runs) run.bulge = run.bulge == 0 ? 0 : -run.bulge;
  }

  /// Whether any visible vertex has a non-zero width; control points are ignored.
  bool isWide() const;
  /// Whether all vertices, control points included, have the same width, which is then stored in
  /// `width`; otherwise, and without vertices, `width` is 0.
  bool IsWidthConstant(double& width) const;
  /// Sets both widths of every vertex, control points included.
  void setWidth(double width);

  /// Appends a vertex; for a curve, a control point, after which the caller must call `regen`. The
  /// polyline takes ownership. The overloads with a handle manager reserve the vertex's handle
  /// first.
  void addVertex(CVertex& vertex);
  void addVertex(IHandleGestor& gestor, CVertex& vertex);
  /// Appends a visible vertex, even to a curve; the caller must then update a curve's extents.
  void addVisibleVertex(CVertex& vertex);
  void addVisibleVertex(IHandleGestor& gestor, CVertex& vertex);
  /// Inserts before vertex `i`, clamped to the list. The first visible index is not adjusted: see
  /// `insertControl`.
  void insertVertex(CVertex& vertex, long i);
  void insertVertex(IHandleGestor& gestor, CVertex& vertex, long i);
  /// Removes vertex `i`; the caller owns it afterwards. Null for an index out of range. The first
  /// visible index is not adjusted, unless the list becomes shorter than it: see `removeControl`.
  CVertex* removeVertex(long i);
  CVertex* removeVertex(IHandleGestor& gestor, long i);
  /// Inserts a control point before control point `i` of a curve (clamped to them) and regenerates
  /// the curve; `handles` as in `regen`. For a plain polyline, equivalent to `insertVertex`.
  void insertControl(IHandleGestor& gestor, CEntFactory& factory, CVertex& vertex, long i,
                     bool handles);
  /// Removes control point `i` and regenerates the curve; the caller owns the vertex afterwards.
  /// Null for an index out of range. For a plain polyline, equivalent to `removeVertex`.
  CVertex* removeControl(IHandleGestor& gestor, CEntFactory& factory, long i, bool handles);
  /// Deletes every vertex; the overload with a handle manager releases their handles first.
  void clearVertex();
  void clearVertex(IHandleGestor& gestor);

  /// Appends a vertex as stored in files; only for a plain polyline. Bulges are kept only while no
  /// `CVertex` was requested or added: once there are vertex objects, another one is appended and
  /// its bulge dropped.
  void addBulgedVertex(const PNT_3D& pnt, double widthStart, double widthEnd, double bulge,
                       vek0::Handle handle);
  /// Replaces all vertices of a plain polyline by `count` such vertices, in one allocation; has no
  /// effect on a curve.
  void setBulgedVertexes(const BULGED_VERTEX* vertexes, std::size_t count);
  /// The same with vertices from a factory: a derived factory creates them immediately. The
  /// overloads without a factory create plain ones.
  void setBulgedVertexes(IHandleGestor& gestor, CEntFactory& factory, const BULGED_VERTEX* vertexes,
                         std::size_t count);
  /// Whether a visible segment is known as an arc.
  bool hasArcRuns() const;
  /// Passes the visible vertices to `sink`, an arc as its start vertex with its bulge. In a closed
  /// polyline the last one may have the bulge of the closing segment. Does not unpack.
  void forEachBulged(const VertexSink& sink) const;
  /// Passes the visible vertices to `sink`, arcs as their chords; all bulges are 0. Does not
  /// unpack.
  void forEachVisible(const VertexSink& sink) const;

  /// Sets bit 0, if it is clear, and refreshes the curve (`handles` as in `regen`)
  /// or the extents.
  void close(IHandleGestor& gestor, CEntFactory& factory, bool handles);
  /// Clears bit 0 likewise. An arc that closed the polyline becomes chords.
  void open(IHandleGestor& gestor, CEntFactory& factory, bool handles);
  /// Changes the curve to `curveType` (0, 2, 4 or 8) of this degree. Type 0 turns the control
  /// points into the vertices of a plain polyline and deletes the generated ones; any other type
  /// turns the vertices of a plain polyline into control points. Has no effect if type and degree
  /// are unchanged, or if a plain polyline stays plain.
  void gener(IHandleGestor& gestor, CEntFactory& factory, short curveType, short degree,
             bool releaseHandles);
  /// Makes the generated vertices the vertices of a plain polyline and deletes the
  /// control points, without releasing their handles.
  void Rectify();

  /// Regenerates the visible vertices of a curve from the control points: new vertices with handle
  /// 0, created by the factory. With `handles`, the old handles are released and new ones reserved.
  /// Has no effect on a plain polyline.
  void regen(IHandleGestor& gestor, CEntFactory& factory, bool handles);
  /// Appends the generated vertices; `regen` is this after deleting the old ones.
  void makeCurve(IHandleGestor& gestor, CEntFactory& factory, bool handles);
  /// Sets the number of chords between two control points, effective from the next `regen`; 8 by
  /// default, clamped to 2 to 64. Fitted arcs follow the general rule for arcs instead.
  void setCurveChords(int chords);
  /// Points of the curve defined by the control points, in order; the vertices of a plain polyline.
  void createPartition(std::vector<PNT_3D>& points) const;

 protected:
  friend class CEntFactory;
  friend class CEntPolylineMemento;

  /// No vertices; flags and degree as passed.
  CEntPolyline(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color, short flags,
               short degree);
  /// A copy whose vertices are created by the factory and have handle 0. A packed polyline is
  /// copied packed.
  CEntPolyline(IHandleGestor& gestor, CEntFactory& factory, const CEntPolyline& src,
               vek0::Handle handle);
  /// Two vertices of width 0 at the ends of the line; plain and open.
  CEntPolyline(IHandleGestor& gestor, CEntFactory& factory, const CEntLine& src,
               vek0::Handle handle);

  CEnt* clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory& blockFactory,
              CBlockTable& blockTable, vek0::Handle handle) const override;

  /// Deletes the vertex objects, last to first, without changing the list.
  void deleteVertex();
  /// Deletes the visible vertices, releasing their handles if there is a manager, and clears the
  /// extents.
  void deleteVertexVisible(IHandleGestor* gestor);

 private:
  /// An arc among vertex objects: it starts at vertex `first`, runs through `count` generated ones
  /// and ends at the next, or at vertex 0 at the end of the list. A bulge of 0 marks a run
  /// discarded by an edit of one of its vertices.
  struct ArcRun {
    long first;
    long count;
    double bulge;
    bool operator==(const ArcRun&) const = default;
  };
  struct MementoEntry {
    CVertex* vertex;  // compared by address only
    vek0::Handle handle;
    CVertexMemento values;
  };

  CEntPolyline(const CEntPolyline& src, vek0::Handle handle);  // everything except the vertex
                                                               // objects
  CEntPolyline(const CEnt& src, vek0::Handle handle);          // the common part of all kinds

  using VertexMaker = std::function<CVertex*(const vek0::detail::ChainVertex&)>;

  bool isPacked() const { return !m_packed.empty(); }
  void unpack() const;
  void unpack(const VertexMaker& make) const;
  void unpackFor(const CEntFactory& factory, const VertexMaker& make);
  long listSize() const { return static_cast<long>(m_vertexes.size()); }
  bool isIndex(long i) const { return i >= 0 && i < getNoTotalVertexes(); }
  long clampedIndex(long i) const;
  CVertex& at(long i) const { return *m_vertexes[static_cast<std::size_t>(i)]; }
  PNT_3D posAt(long i) const;
  void forEachListed(const VertexSink& sink) const;

  static std::vector<ArcRun> runsOf(const vek0::detail::BulgedChain& chain);
  static std::size_t mostRunsOf(const vek0::detail::BulgedChain& chain);
  static void addRunsOf(const vek0::detail::BulgedChain& chain, std::vector<ArcRun>& runs);
  const ArcRun* runAt(std::size_t& next, long i) const;
  bool closesList(const ArcRun& run) const;
  void dropRunsAt(long i, bool asEnd);
  void dropClosingRun();
  void shiftRuns(long from, long by);

  void placeVertex(CVertex& vertex, long i);
  void releaseFrom(long from, IHandleGestor& gestor) const;
  void growOrDirtyBdry(const CVertex& vertex);
  void growBySilhouette(RECT_3D& box) const;
  vek0::detail::BulgedChain curveChain() const;
  void emptyBdry();
  void setClosed(IHandleGestor& gestor, CEntFactory& factory, bool closed, bool handles);
  class ReplacedVertexes;
  static void resetVertex(CVertex& vertex, const MementoEntry& entry, bool isBooked);

  // Either the packed chain holds the vertices or the list does, never both. Requesting a vertex
  // object switches to the list, hence mutable.
  mutable std::vector<CVertex*> m_vertexes;
  mutable std::vector<ArcRun> m_runs;  // ascending, not overlapping
  mutable vek0::detail::BulgedChain m_packed;
  long m_firstVisible = 0;
  short m_flags;
  short m_degree;
  unsigned char m_curveChords = 8;
  // False until a vertex with a width is added: extents then grow by points only, without examining
  // all other vertices.
  bool m_maybeWide = false;
};

/// Undo snapshot of a polyline: extents, shape and, for every vertex in order, the vertex object,
/// its handle and its state. The vertex objects are only compared by address, so they may be
/// deleted meanwhile. A packed polyline's snapshot is packed too.
class VEK0_API CEntPolylineMemento final : public IEntDerivedMemento {
 public:
  explicit CEntPolylineMemento(const CEntPolyline& polyline);

  bool operator==(const CEnt& ent) const override;
  std::size_t size() const override;
  short getType() const override { return CEntPolyline::kType; }

 private:
  friend class CEntPolyline;

  template <class Each>
  void forEachEntry(const Each& each) const;
  std::size_t noEntries() const;
  std::vector<CEntPolyline::MementoEntry> entries() const;
  std::vector<CEntPolyline::ArcRun> arcRuns() const;

  RECT_3D m_bdry;
  std::vector<CEntPolyline::MementoEntry> m_vertexes;  // empty when packed
  std::vector<CEntPolyline::ArcRun> m_runs;
  vek0::detail::BulgedChain m_packed;
  long m_firstVisible;
  short m_flags;
  short m_degree;
  bool m_maybeWide;
};
